// The connection: parameters, kinds of values, cached translations, several connections, files.

#include <thread>

#include <QDir>
#include <QUuid>

#include "base_prueba.h"

namespace quimo::data {

namespace {

QString U(const char* texto) { return QString::fromUtf8(texto); }

class ConexionEmbebidaTest : public testing::Test {
protected:
    BasePrueba base_;
};

TEST_F(ConexionEmbebidaTest, CadaTipoVaYVuelveIgual) {
    base_.Bien(
        U("CREATE TABLE T (B BIT, I INT, L BIGINT, M MONEY, N NUMERIC(18,3), F FLOAT, D DATETIME, "
          "V VARCHAR(50), X VARBINARY(10), U UNIQUEIDENTIFIER, W NUMERIC(30,2))"));
    const QDateTime fecha(QDate(2026, 11, 14), QTime(21, 36, 8, 3), Qt::UTC);
    const QVector<QVariant> valores = {
        true,
        -7,
        QVariant(qlonglong{9'000'000'000}),
        QVariant::fromValue(base::Dinero::DeDiezmilesimas(-12345)),
        QVariant::fromValue(base::Decimal{12345, 3}),
        1.5,
        fecha,
        U("Ñandú 'y' %"),
        QByteArray("\x00\x01z", 3),
        QUuid(U("6F9619FF-8B86-D011-B42D-00C04FC964FF")),
        QVariant::fromValue(*base::Decimal::DeTexto("1234567890123456789012345.67")),
    };
    base_.Bien(U("INSERT INTO T VALUES (?,?,?,?,?,?,?,?,?,?,?)"), valores);
    const RespuestaSql respuesta = base_.Bien(U("SELECT * FROM T"));
    const Fila& fila = respuesta.resultados[0].conjunto->filas[0];
    for (int i = 0; i < valores.size(); ++i) {
        EXPECT_EQ(fila[i].typeId(), valores[i].typeId()) << i;
        EXPECT_EQ(ATexto(fila[i]), ATexto(valores[i])) << i;
    }
    EXPECT_EQ(respuesta.resultados[0].conjunto->columnas[4].tipo, TipoSql::Numeric);
    EXPECT_EQ(respuesta.resultados[0].conjunto->columnas[4].escala, 3);
    EXPECT_EQ(respuesta.resultados[0].conjunto->columnas[7].longitud, 50);
    EXPECT_EQ(ATexto(base_.Uno(
                  U("SELECT COUNT(*) FROM T WHERE B=? AND M=? AND D=? AND V=? AND N=? AND W=?"),
                  {true, valores[3], fecha, U("ñANDÚ 'Y' %  "), valores[4], valores[10]})),
              U("1"));
}

TEST_F(ConexionEmbebidaTest, NuloYParametrosDeMasODeMenos) {
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT ISNULL(?,5)"), {QVariant()})), U("5"));
    EXPECT_EQ(base_.Falla(U("SELECT ?"), {}), 8178);
    EXPECT_EQ(base_.Falla(U("SELECT 1"), {1}), 8178);
}

// Texts that differ in a constant alone share their translation, unless the constant shapes it.
TEST_F(ConexionEmbebidaTest, ConstantesDistintasDanRespuestasDistintas) {
    base_.Bien(U("CREATE TABLE T (ID INT NOT NULL PRIMARY KEY, N VARCHAR(8), D DATETIME)"));
    for (int i = 1; i <= 3; ++i) {
        base_.Bien(U("INSERT INTO T VALUES (%1,'n%1','0%1/11/2026')").arg(i));
    }
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(ATexto(base_.Uno(U("SELECT N FROM T WHERE ID=%1").arg(i))), U("n%1").arg(i));
        EXPECT_EQ(ATexto(base_.Uno(U("SELECT N FROM T WHERE D='0%1/11/2026'").arg(i))),
                  U("n%1").arg(i));
        EXPECT_EQ(ATexto(base_.Uno(U("SELECT SUBSTRING('abcdef',%1,1)").arg(i))),
                  U("abcdef").mid(i - 1, 1));
        EXPECT_EQ(
            base_.Bien(U("SELECT TOP %1 ID FROM T").arg(i)).resultados[0].conjunto->filas.size(),
            i);
        EXPECT_EQ(ATexto(base_.Uno(U("SELECT ID FROM T ORDER BY %1 DESC").arg(1))), U("3"));
    }
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT ISNULL('ab','abcdef')+ISNULL(NULL,'x')"))), U("abx"));
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT ISNULL('abc','abcdef')+ISNULL(NULL,'xyz')"))),
              U("abcxyz"));
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT 1/3.0"))), U("0.333333"));
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT 1/300000.0"))), U("0.00000333"));
    EXPECT_EQ(base_.Falla(U("UPDATE T SET N='cabe' WHERE ID=1")), 0);
    EXPECT_EQ(base_.Falla(U("UPDATE T SET N='no cabe aquí' WHERE ID=1")), 8152);
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT CONVERT(VARCHAR(10),GETDATE(),103)"))), U("14/11/2026"));
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT CONVERT(VARCHAR(10),GETDATE(),112)"))), U("20261114"));
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT CONVERT(VARCHAR(06),GETDATE(),112)"))), U("202611"));
}

TEST_F(ConexionEmbebidaTest, CadaSentenciaDiceSuHora) {
    const QString hora = U("SELECT CONVERT(VARCHAR(8),GETDATE(),108)");
    EXPECT_EQ(ATexto(base_.Uno(hora)), U("21:36:08"));
    base_.ElReloj().Pasar(1);
    EXPECT_EQ(ATexto(base_.Uno(hora)), U("21:36:09"));
}

TEST_F(ConexionEmbebidaTest, UnaTablaTemporalConOtrasColumnasSeTraduceDeNuevo) {
    base_.Bien(U("CREATE TABLE #t (a INT)"));
    base_.Bien(U("INSERT INTO #t VALUES (1)"));
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT a FROM #t"))), U("1"));
    base_.Bien(U("DROP TABLE #t"));
    EXPECT_EQ(base_.Falla(U("SELECT a FROM #t")), 208);
    base_.Bien(U("CREATE TABLE #t (b INT, a MONEY)"));
    base_.Bien(U("INSERT INTO #t VALUES (1,2)"));
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT a FROM #t"))), U("2.0000"));
    auto otra = base_.Otra();
    EXPECT_EQ(otra->Ejecutar(U("SELECT a FROM #t")).fallo->Nativo(), 208);
}

TEST_F(ConexionEmbebidaTest, OtraConexionVeLoConfirmadoYNadaMas) {
    base_.Bien(U("CREATE TABLE T (ID INT NOT NULL PRIMARY KEY)"));
    auto otra = base_.Otra();
    ASSERT_TRUE(base_->Iniciar().has_value());
    base_.Bien(U("INSERT INTO T VALUES (1)"));
    EXPECT_TRUE(base_->EnTransaccion());
    const auto cuenta = [&] {
        return ATexto(
            otra->Ejecutar(U("SELECT COUNT(*) FROM T")).resultados[0].conjunto->filas[0][0]);
    };
    EXPECT_EQ(cuenta(), U("0"));
    ASSERT_TRUE(base_->Confirmar().has_value());
    EXPECT_EQ(cuenta(), U("1"));
    // Definitions made here are seen there.
    base_.Bien(U("CREATE TABLE Nueva (a INT)"));
    EXPECT_FALSE(otra->Ejecutar(U("INSERT INTO Nueva VALUES (5)")).fallo.has_value());
    base_.Bien(U("CREATE PROCEDURE P AS SELECT a FROM Nueva"));
    EXPECT_EQ(ATexto(otra->Ejecutar(U("EXEC P")).resultados[0].conjunto->filas[0][0]), U("5"));
    base_.Bien(U("ALTER PROCEDURE P AS SELECT a*2 FROM Nueva"));
    EXPECT_EQ(ATexto(otra->Ejecutar(U("EXEC P")).resultados[0].conjunto->filas[0][0]), U("10"));
}

// What is read after BEGIN is still so when it is written: nobody wrote in between.
TEST_F(ConexionEmbebidaTest, QuienEmpiezaDespuesEspera) {
    base_.Bien(U("CREATE TABLE T (N INT) INSERT INTO T VALUES (0)"));
    ASSERT_TRUE(base_->Iniciar().has_value());
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT N FROM T"))), U("0"));
    std::thread otro([this] {
        const auto suya = base_.Otra();
        EXPECT_FALSE(suya->Ejecutar(U("UPDATE T SET N=N+1")).fallo.has_value());
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    base_.Bien(U("UPDATE T SET N=10"));
    EXPECT_TRUE(base_->Confirmar().has_value());
    otro.join();
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT N FROM T"))), U("11"));
}

// A numbered row reads the last number and writes the next.
TEST_F(ConexionEmbebidaTest, DosQueNumeranALaVezNoFallanNiRepiten) {
    constexpr int kFilas = 60;
    base_.Bien(U("CREATE TABLE T (ID INT IDENTITY(1,1) PRIMARY KEY, N INT)"));
    const auto numerar = [this] {
        const auto suya = base_.Otra();
        for (int i = 0; i < kFilas; ++i) {
            EXPECT_FALSE(suya->Ejecutar(U("INSERT INTO T (N) VALUES (1)")).fallo.has_value());
        }
    };
    std::thread uno(numerar);
    std::thread dos(numerar);
    uno.join();
    dos.join();
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT MAX(ID)*1000+COUNT(*) FROM T"))), U("120120"));
}

// Definitions that two make without knowing of each other's are both there.
TEST_F(ConexionEmbebidaTest, DosQueCreanTablasALaVezLasTienenTodas) {
    const auto otra = base_.Otra();
    base_.Bien(U("CREATE TABLE A (ID INT NOT NULL PRIMARY KEY, N INT)"));
    EXPECT_FALSE(otra->Ejecutar(U("CREATE TABLE B (X INT NOT NULL)")).fallo.has_value());
    EXPECT_FALSE(otra->Ejecutar(U("CREATE INDEX IX_A ON A (N)")).fallo.has_value());
    EXPECT_EQ(otra->Ejecutar(U("CREATE TABLE A (Z INT)")).fallo->Nativo(), 2714);
    base_.Reabrir();
    base_.Bien(U("INSERT INTO A VALUES (1,2) INSERT INTO B VALUES (3)"));
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT N+X FROM A,B"))), U("5"));
}

TEST_F(ConexionEmbebidaTest, LoNoConfirmadoSeVaConLaConexion) {
    base_.Bien(U("CREATE TABLE T (ID INT IDENTITY(1,1) PRIMARY KEY, N INT)"));
    base_.Bien(U("INSERT INTO T (N) VALUES (1)"));
    ASSERT_TRUE(base_->Iniciar().has_value());
    base_.Bien(U("INSERT INTO T (N) VALUES (2)"));
    base_.Reabrir();
    EXPECT_EQ(ATexto(base_.Uno(U("SELECT COUNT(*) FROM T"))), U("1"));
    const auto definicion = base_->Describir(U("dbo.t"));
    ASSERT_TRUE(definicion.has_value());
    EXPECT_EQ(definicion->clave, QStringList{U("ID")});
    EXPECT_EQ(definicion->identidad, U("ID"));
    EXPECT_EQ(base_->Describir(U("Nada")).error().Nativo(), 208);
}

TEST_F(ConexionEmbebidaTest, NumerosDeFallo) {
    base_.Bien(U("CREATE TABLE T (ID INT NOT NULL PRIMARY KEY)"));
    base_.Bien(U("INSERT INTO T VALUES (1)"));
    const auto fallo = [&](const char* sql) { return *base_->Ejecutar(U(sql)).fallo; };
    EXPECT_EQ(fallo("INSERT INTO T VALUES (1)").numero, FalloSql::kIntegridad);
    EXPECT_EQ(fallo("SELECT 1/0").numero, FalloSql::kSentencia);
    EXPECT_EQ(fallo("SELECT * FROM Nada").errores[0].sqlstate, U("42S02"));
    EXPECT_EQ(base_->Confirmar().error().Nativo(), 3902);
    // Whoever shows a raised message takes 47 characters off it.
    EXPECT_EQ(fallo("RAISERROR('Fin del día',16,1)").Descripcion().mid(47), U("Fin del día"));
    base_->Cerrar();
    EXPECT_EQ(fallo("SELECT 1").numero, FalloSql::kConexionCerrada);
}

// Who reads a refused reference skips 8 characters after the first comma, up to the next comma.
TEST_F(ConexionEmbebidaTest, LaTablaQueRefiereSeLeeTrasLaPrimeraComa) {
    base_.Guion(U(QUIMO_RAIZ "/db/schema.sql"));
    base_.Bien(
        U("INSERT INTO Menu VALUES (1,'Carta',NULL,1) INSERT INTO Categoria VALUES (1,'a','V') "
          "INSERT INTO "
          "Producto (ID_Producto,Nombre_Completo,ID_Categoria) VALUES (5,'x',1) INSERT INTO "
          "PreciosXMenu "
          "VALUES (1,5,10)"));
    const QString texto =
        base_->Ejecutar(U("DELETE FROM Producto WHERE ID_Producto=5")).fallo->Descripcion();
    EXPECT_EQ(texto.section(QLatin1Char(','), 1).mid(7).section(QLatin1Char(','), 0, 0),
              U("'PreciosXMenu'"));
}

struct Archivo {
    const char* nombre = nullptr;
    const char* contenido = nullptr;  ///< null: no file
    bool crear = false;
};
class AbrirTest : public testing::TestWithParam<Archivo> {};

TEST_P(AbrirTest, LoQueNoEsBaseSeRechazaConMotivo) {
    const QTemporaryDir carpeta;
    const QString ruta = carpeta.filePath(U(GetParam().nombre));
    if (GetParam().contenido != nullptr) {
        QFile archivo(ruta);
        ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
        archivo.write(GetParam().contenido);
    }
    const RelojFijo reloj;
    const auto abierta = AbrirEmbebida(ruta, reloj, GetParam().crear);
    ASSERT_FALSE(abierta.has_value());
    EXPECT_EQ(abierta.error().numero, FalloSql::kServidorAusente);
    EXPECT_EQ(abierta.error().Nativo(), 4060);
    EXPECT_GT(abierta.error().Descripcion().size(), 47);
}

INSTANTIATE_TEST_SUITE_P(
    Embebida, AbrirTest,
    testing::Values(Archivo{"falta.db", nullptr, false},
                    Archivo{"no/hay/carpeta.db", nullptr, true},
                    Archivo{"texto.db",
                            "Esto no es una base de datos, sino un texto bastante largo.", true},
                    Archivo{".", nullptr, false}));

TEST(GuionesDeLaBaseTest, LosProcedimientosDanLasCifrasDeLaVispera) {
    BasePrueba base;
    base.Guion(U(QUIMO_RAIZ "/db/schema.sql"));
    base.Guion(U(QUIMO_RAIZ "/db/procedures.sql"));
    base.Lineas(U(QUIMO_RAIZ "/tests/data/day-golden/central-before.sql"));
    base.Bien(
        U("CREATE TABLE #Tmp_Ventas(ID_Categoria Integer,Nombre Varchar(50),Ventas_Netas "
          "Money,Cortesias "
          "Money,Promociones Money,Anulaciones Money,Impuestos Money,Ventas_Brutas AS "
          "isnull(Ventas_Netas,0)+isnull(Cortesias,0)+isnull(Promociones,0)+isnull(Impuestos,0))"));
    base.Bien(U("EXEC Reporte_Ventas '13/11/2026','13/11/2026'"));
    // The same figure by another way: prices and modifiers of the day's lines that were not voided.
    EXPECT_EQ(ATexto(base.Uno(U("SELECT SUM(Ventas_Netas) FROM #Tmp_Ventas"))),
              ATexto(base.Uno(U(
                  "SELECT SUM(Precio_Venta)+(SELECT SUM(Precio_Modificador) FROM Modificador WHERE "
                  "ID_ProductosXCuenta IN (SELECT ID_ProductosXCuenta FROM ProductosXCuenta WHERE "
                  "ID_Tipo_Anulacion IS NULL)) FROM ProductosXCuenta,Comanda WHERE "
                  "ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='13112026' AND "
                  "ID_Tipo_Anulacion IS NULL"))));
    EXPECT_EQ(ATexto(base.Uno(U("SELECT COUNT(*) FROM #Tmp_Ventas WHERE Ventas_Brutas IS NULL"))),
              U("0"));
    base.Bien(U("EXEC Borrar_Comanda '010106',1"));
    EXPECT_EQ(
        ATexto(base.Uno(U("SELECT (SELECT COUNT(*) FROM Comanda)+(SELECT COUNT(*) FROM Pago)"))),
        U("0"));
}

// A working date that is no date stops the reports, as a conversion that fails does.
TEST(FechaDeTrabajoTest, ElIndiceDaLoMismoQueLaConversion) {
    BasePrueba base;
    base.Bien(U(
        "CREATE TABLE C (ID INT NOT NULL PRIMARY KEY, F VARCHAR(8) NULL) CREATE INDEX IX ON C (F) "
        "CREATE TABLE S (ID INT NOT NULL PRIMARY KEY, F VARCHAR(8) NULL)"));
    const QString filas = U(" VALUES (1,'13112026'),(2,'14112026'),(3,NULL),(4,'01122026')");
    base.Bien(U("INSERT INTO C") + filas + U(" INSERT INTO S") + filas);
    const QString pregunta =
        U("SELECT COUNT(*) FROM %1 WHERE CONVERT(DateTime,SUBSTRING(F,1,2)+ '/' + SUBSTRING(F,3,2) "
          "+ '/' + SUBSTRING(F,5,4),103) BETWEEN CONVERT(DateTime,'14/11/2026',103) AND "
          "CONVERT(DateTime,'1/12/2026',103)");
    EXPECT_EQ(ATexto(base.Uno(pregunta.arg(U("C")))), U("2"));
    EXPECT_EQ(ATexto(base.Uno(pregunta.arg(U("S")))), U("2"));
    base.Bien(U("INSERT INTO C VALUES (5,'29022025') INSERT INTO S VALUES (5,'29022025')"));
    EXPECT_EQ(base.Falla(pregunta.arg(U("C"))), 242);
    EXPECT_EQ(base.Falla(pregunta.arg(U("S"))), 242);
}

}  // namespace

}  // namespace quimo::data
