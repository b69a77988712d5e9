// What does not need a server's protocol: which driver, which text, which number a failure gets.
// And record sets, definitions and transactions over the embedded engine served as SQL Server.

#include <QTemporaryDir>

#include "apoyo_odbc.h"
#include "data/odbc/diagnostico.h"
#include "data/odbc/valores_ligados.h"
#include "data/recordset.h"

namespace quimo::data::odbc {

namespace {

QString U(const char* texto) { return QString::fromUtf8(texto); }

TEST(ControladorTest, SeTomaElPrimeroInstaladoEnSuOrden) {
    const QStringList nombres = NombresDeControladores(Con(U("el mío")));
    EXPECT_EQ(nombres.join(u'|'), U("el mío|SQL Server|ODBC Driver 18 for SQL Server|ODBC Driver "
                                    "17 for SQL Server|FreeTDS"));
    const auto elegidos = ElegirControladores(
        nombres, {{U("FREETDS"), true}, {U("PostgreSQL")}, {U("odbc driver 17 for sql server")}});
    ASSERT_EQ(elegidos.size(), 2);
    EXPECT_EQ(elegidos[0].nombre, U("odbc driver 17 for sql server"));
    EXPECT_TRUE(elegidos[1].es_freetds);
    EXPECT_TRUE(ElegirControladores(nombres, {{U("PostgreSQL")}}).isEmpty());
}

struct CasoTexto {
    bool es_freetds = false;
    const char* servidor = nullptr;
    const char* clave = nullptr;
    OpcionesOdbc opciones;
    const char* texto = nullptr;
};

TEST(ControladorTest, TextoDeConexion) {
    OpcionesOdbc cifrada;
    cifrada.cifrado = U("si");
    cifrada.confiar = true;
    OpcionesOdbc clara;
    clara.cifrado = U("NO");
    clara.opciones = U("Timeout=9");
    const CasoTexto casos[] = {
        {false, "caja", "c", {}, "Driver={D};Server=caja;Database=b;UID=u;PWD=c;APP=QUIMO;"},
        {false, "caja\\SQL", "c;d", cifrada,
         "Driver={D};Server=caja\\SQL;Database=b;UID=u;PWD={c;d};APP=QUIMO;Encrypt=yes;"
         "TrustServerCertificate=yes;"},
        {false, "10.0.0.5,1444", "a}b;Server=otro", clara,
         "Driver={D};Server=10.0.0.5,1444;Database=b;UID=u;PWD={a}}b;Server=otro};APP=QUIMO;"
         "Encrypt=no;Timeout=9"},
        {true, "10.0.0.5,1444", "a}b", cifrada,
         "Driver={D};Server=10.0.0.5;Port=1444;Database=b;UID=u;PWD={a}b};APP=QUIMO;TDS_Version=7."
         "4;"
         "ClientCharset=UTF-8;Encryption=require;"},
        {true, "caja", "", clara,
         "Driver={D};Server=caja;Port=1433;Database=b;UID=u;APP=QUIMO;TDS_Version=7.4;"
         "ClientCharset=UTF-8;Encryption=off;Timeout=9"},
        {true,
         "caja\\SQL",
         "",
         {},
         "Driver={D};Server=caja\\SQL;Database=b;UID=u;APP=QUIMO;TDS_Version=7.4;"
         "ClientCharset=UTF-8;"},
    };
    for (const CasoTexto& caso : casos) {
        const auto texto =
            TextoDeConexion({U("D"), caso.es_freetds},
                            {U(caso.servidor), U("b"), U("u"), U(caso.clave)}, caso.opciones);
        ASSERT_TRUE(texto.has_value()) << caso.texto;
        EXPECT_EQ(*texto, U(caso.texto));
    }
}

ErrorProveedor Registro(const char* estado, int nativo, const char* texto = "") {
    return {U(estado), nativo, U("D"), U(texto)};
}

struct CasoAlAbrir {
    QVector<ErrorProveedor> errores;
    qint64 numero = 0;
    int nativo = 0;
};

TEST(DiagnosticoTest, ElFalloAlAbrirTomaSuNumeroDelRegistroQueDiceElMotivo) {
    const CasoAlAbrir casos[] = {
        {{Registro("IM002", 0)}, FalloSql::kServidorAusente, 0},
        {{Registro("01000", 0, "Can't open lib"), Registro("IM003", 0)},
         FalloSql::kServidorAusente,
         0},
        {{Registro("08001", 10061), Registro("HYT00", 0), Registro("08001", 258)},
         FalloSql::kServidorAusente,
         6},
        {{Registro("01S00", 0), Registro("08001", 17)}, FalloSql::kServidorAusente, 6},
        {{Registro("08S01", 20004)}, FalloSql::kServidorAusente, 6},
        {{Registro("08004", 0)}, FalloSql::kServidorAusente, 6},
        {{Registro("HYT00", 0)}, FalloSql::kServidorAusente, 6},
        {{Registro("28000", 18456), Registro("08001", 0)}, FalloSql::kAccesoNegado, 18456},
        {{Registro("42000", 18456), Registro("08001", 20002)}, FalloSql::kAccesoNegado, 18456},
        {{Registro("42000", 4060), Registro("28000", 18456)}, FalloSql::kServidorAusente, 4060},
        {{Registro("HYC00", 0)}, FalloSql::kSentencia, -1},
        {{Registro("HY000", 0)}, FalloSql::kOtroAlAbrir, 0},
        {{}, FalloSql::kOtroAlAbrir, 0},
    };
    for (const CasoAlAbrir& caso : casos) {
        const FalloSql fallo = FalloAlAbrir(caso.errores);
        const std::string que =
            caso.errores.isEmpty() ? "" : caso.errores.first().sqlstate.toStdString();
        EXPECT_EQ(fallo.numero, caso.numero) << que;
        EXPECT_EQ(fallo.Nativo(), caso.nativo) << que;
        EXPECT_EQ(fallo.errores.size(), caso.errores.size());
        // The endless second attempt is only for what names nothing; a refusal says 28000 first.
        if (fallo.numero == FalloSql::kAccesoNegado) {
            EXPECT_EQ(fallo.errores.first().sqlstate, U("28000"));
        }
    }
}

TEST(DiagnosticoTest, ElFalloDeSentenciaYSuTexto) {
    const auto numero = [](const char* estado, int nativo) {
        return FalloDeSentencia({Registro("01000", 0, "aviso"), Registro(estado, nativo)}, false);
    };
    EXPECT_EQ(numero("23000", 547).numero, FalloSql::kIntegridad);
    EXPECT_EQ(numero("42S02", 208).numero, FalloSql::kSentencia);
    EXPECT_EQ(numero("42S02", 208).Nativo(), 208);
    EXPECT_EQ(numero("HYT00", 1222).numero, FalloSql::kServidorAusente);
    // 0 would be told as a data source that does not exist.
    EXPECT_EQ(numero("HY090", 0).Nativo(), -1);
    EXPECT_EQ(FalloDeSentencia({}, true).numero, FalloSql::kConexionPerdida);
    EXPECT_FALSE(FalloDeSentencia({}, false).Descripcion().isEmpty());
    const QString prefijo = U("[Microsoft][ODBC SQL Server Driver][SQL Server]");
    const auto comun = [](const char* texto, int nativo, const char* estado = "HY000") {
        return ConPrefijoComun(U(texto), U(estado), nativo);
    };
    EXPECT_EQ(comun("[FreeTDS][SQL Server]Listo", 0, "01000"), prefijo + U("Listo"));
    EXPECT_EQ(comun("[FreeTDS][SQL Server]Unable to connect", 0, "08001"),
              U("[FreeTDS][SQL Server]Unable to connect"));
    EXPECT_EQ(comun("[FreeTDS][SQL Server]No [x]", 50000), prefijo + U("No [x]"));
    EXPECT_EQ(comun("[Microsoft][ODBC Driver 17 for SQL Server][SQL Server]A", 1),
              prefijo + U("A"));
    EXPECT_EQ(comun("[FreeTDS][SQL Server]Read failed", 20004),
              U("[FreeTDS][SQL Server]Read failed"));
    EXPECT_EQ(comun("[Microsoft][ODBC Driver 17 for SQL Server]Login timeout expired", 0),
              U("[Microsoft][ODBC Driver 17 for SQL Server]Login timeout expired"));
    EXPECT_EQ(comun("[unixODBC][Driver Manager]Can't open lib", 0),
              U("[unixODBC][Driver Manager]Can't open lib"));
    EXPECT_EQ(comun("ERROR: [SQL Server] no", 0), U("ERROR: [SQL Server] no"));
}

TEST(ValoresLigadosTest, LiteralesDeCadaTipo) {
    const QVector<QVariant> valores = {QVariant::fromValue(base::Dinero::DeDiezmilesimas(-12345)),
                                       QVariant::fromValue(base::Decimal{12345, 3}),
                                       QDateTime(QDate(2026, 11, 14), QTime(21, 36, 8, 3), Qt::UTC),
                                       QVariant(),
                                       false,
                                       QByteArray("\x01z", 2),
                                       U("o'é")};
    EXPECT_EQ(ConLiterales(U("?,?,?,?,?,?,?"), valores),
              U("CAST('-1.2345' AS MONEY),CAST('12.345' AS NUMERIC(38,3)),CAST('20261114 "
                "21:36:08.003' AS DATETIME),NULL,CAST('0' AS BIT),0x017A,N'o''é'"));
    EXPECT_FALSE(ConLiterales(U("? ?"), {1}).has_value());
    EXPECT_FALSE(ConLiterales(U("'?' ?"), {1, 2}).has_value());
    EXPECT_EQ(ConLiterales(U("[?] \"?\" '''?' ? 'sin fin ?"), {1}),
              U("[?] \"?\" '''?' (1) 'sin fin ?"));
    EXPECT_TRUE(CreaTemporal(U("create  table [#t] (a INT)")));
    EXPECT_TRUE(CreaTemporal(U("SELECT 1 INTO #t")));
    EXPECT_FALSE(CreaTemporal(U("SELECT a FROM #t")));
}

class ServidaTest : public testing::Test {
protected:
    static void SetUpTestSuite() { PrepararControladores(); }
    void SetUp() override {
        servidor_ = std::make_unique<ServidorTds>(DeEmbebida(carpeta_.filePath(U("c.db"))));
        conexion_ = AbrirEn(*servidor_);
        ASSERT_NE(conexion_, nullptr);
    }
    void TearDown() override { conexion_.reset(); }
    void Bien(const char* texto) {
        const RespuestaSql respuesta = conexion_->Ejecutar(U(texto));
        EXPECT_FALSE(respuesta.fallo.has_value()) << texto << Escrito(respuesta).toStdString();
    }

    QTemporaryDir carpeta_;
    std::unique_ptr<ServidorTds> servidor_;
    std::unique_ptr<SqlConnection> conexion_;
};

TEST_F(ServidaTest, ElConjuntoSeEscribePorSuLlave) {
    for (const char* tabla : {"T", "#T"}) {
        const QString nombre = U(tabla);
        Bien(U("CREATE TABLE %1 (ID INT IDENTITY(10,1) NOT NULL PRIMARY KEY,Nombre VARCHAR(20) NOT "
               "NULL,Precio MONEY NULL,Razon NUMERIC(9,4) NULL,Alta DATETIME NULL,Si BIT NULL)")
                 .arg(nombre)
                 .toUtf8());
        auto abierto = Recordset::Abrir(*conexion_, U("SELECT * FROM %1").arg(nombre));
        ASSERT_TRUE(abierto.has_value());
        Recordset& filas = **abierto;
        const auto definicion = conexion_->Describir(nombre);
        ASSERT_TRUE(definicion.has_value());
        EXPECT_EQ(definicion->nombre, nombre);
        EXPECT_EQ(definicion->clave, QStringList{U("ID")});
        EXPECT_EQ(definicion->identidad, U("ID"));
        EXPECT_EQ(definicion->columnas[1].longitud, 20);
        EXPECT_EQ(definicion->columnas[3].escala, 4);
        ASSERT_TRUE(filas.AddNew().has_value());
        const auto asignar = [&](const char* campo, const QVariant& valor) {
            EXPECT_TRUE(filas.Asignar(U(campo), valor).has_value());
        };
        asignar("Nombre", U("Ñandú 'asado'"));
        asignar("Precio", QVariant::fromValue(base::Dinero::DeDiezmilesimas(1234567)));
        asignar("Razon", QVariant::fromValue(base::Decimal{160000, 4}));
        asignar("Alta", QDateTime(QDate(2026, 11, 14), QTime(1, 2, 3), Qt::UTC));
        asignar("Si", true);
        ASSERT_TRUE(filas.Update().has_value());
        EXPECT_EQ(filas.Campo(U("ID"))->toInt(), 10);
        EXPECT_EQ(Escrito(*filas.Campo(U("Precio"))), U("quimo::base::Dinero:123.4567"));
        asignar("Razon", QVariant());
        asignar("Nombre", U("otro"));
        ASSERT_TRUE(filas.Update().has_value());
        EXPECT_EQ(Escrito(*filas.Campo(U("Razon"))), U("NULL"));
        Bien(U("DELETE FROM %1").arg(nombre).toUtf8());
        asignar("Nombre", U("tarde"));
        EXPECT_EQ(filas.Update().error().numero, 0x80040E38);
    }
    EXPECT_EQ(conexion_->Describir(U("Nada")).error().Nativo(), 208);
    EXPECT_EQ(conexion_->Describir(U("x'];DROP TABLE T --")).error().Nativo(), 208);
    Bien("SELECT * FROM T");
}

TEST_F(ServidaTest, LasTransaccionesSonLasDelServidor) {
    Bien("CREATE TABLE T (a INT)");
    ASSERT_TRUE(conexion_->Iniciar().has_value());
    EXPECT_TRUE(conexion_->EnTransaccion());
    Bien("INSERT INTO T VALUES (1)");
    ASSERT_TRUE(conexion_->Revertir().has_value());
    EXPECT_FALSE(conexion_->EnTransaccion());
    Bien("BEGIN TRAN INSERT INTO T VALUES (2)");
    EXPECT_TRUE(conexion_->EnTransaccion());
    ASSERT_TRUE(conexion_->Iniciar().has_value());
    ASSERT_TRUE(conexion_->Confirmar().has_value());
    EXPECT_TRUE(conexion_->EnTransaccion());
    ASSERT_TRUE(conexion_->Confirmar().has_value());
    EXPECT_FALSE(conexion_->EnTransaccion());
    EXPECT_EQ(conexion_->Confirmar().error().Nativo(), 3902);
    // A failure that ends the transaction is noticed.
    Bien("SET XACT_ABORT ON BEGIN TRAN");
    EXPECT_EQ(conexion_->Ejecutar(U("SELECT 1/0")).fallo->Nativo(), 8134);
    EXPECT_FALSE(conexion_->EnTransaccion());
    EXPECT_EQ(Escrito(conexion_->Ejecutar(U("SELECT a FROM T"))), U("a\nint:2"));
    // Failures before and after what was done: nothing of either is lost.
    const RespuestaSql varias = conexion_->Ejecutar(
        U("SET XACT_ABORT OFF INSERT INTO T VALUES (3) SELECT a FROM T WHERE a=3"));
    EXPECT_EQ(Escrito(varias), U("filas 1\na\nint:3"));
}

// Runs where a real server is at hand: QUIMO_TEST_MSSQL=HOST,PORT/database/user/password, an empty
// database. What it makes it takes away.
TEST(ServidorRealTest, TiposTransaccionesYTemporales) {
    const QStringList partes = qEnvironmentVariable("QUIMO_TEST_MSSQL").split(u'/');
    if (partes.size() < 4)
        GTEST_SKIP() << "QUIMO_TEST_MSSQL=HOST,PORT/database/user/password is not set";
    const QString clave = partes.mid(3).join(u'/');
    auto abierta = AbrirOdbc({partes[0], partes[1], partes[2], clave});
    ASSERT_TRUE(abierta.has_value()) << abierta.error().Descripcion().toStdString();
    SqlConnection& conexion = **abierta;
    const auto bien = [&](const char* texto, const QVector<QVariant>& valores = {}) {
        const RespuestaSql respuesta = conexion.Ejecutar(U(texto), valores);
        EXPECT_FALSE(respuesta.fallo.has_value()) << texto << Escrito(respuesta).toStdString();
        return Escrito(respuesta);
    };
    ASSERT_TRUE(conexion.Iniciar().has_value());
    bien(
        "CREATE TABLE T (ID INT IDENTITY(1,1) PRIMARY KEY,M MONEY,N NUMERIC(30,4),D DATETIME,B "
        "BIT,V NVARCHAR(MAX),C VARCHAR(10),G UNIQUEIDENTIFIER)");
    const QVector<QVariant> valores = {
        QVariant::fromValue(base::Dinero::DeDiezmilesimas(-12345)),
        QVariant::fromValue(*base::Decimal::DeTexto("-12345678901234567890.1234")),
        QDateTime(QDate(2026, 11, 14), QTime(21, 36, 8, 3), Qt::UTC),
        true,
        QString(50'000, u'ñ') + U("🍷"),
        QVariant(),
        U("6F9619FF-8B86-D011-B42D-00C04FC964FF")};
    EXPECT_EQ(bien("INSERT INTO T VALUES (?,?,?,?,?,?,?)", valores), U("filas 1"));
    const RespuestaSql leida =
        conexion.Ejecutar(U("SELECT M,N,D,B,V,C FROM T WHERE M=?"), {valores[0]});
    ASSERT_FALSE(leida.fallo.has_value()) << Escrito(leida).toStdString();
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(Escrito(leida.resultados[0].conjunto->filas[0][i]), Escrito(valores[i])) << i;
    bien("SELECT M INTO #X FROM T WHERE ID=?", {1});
    EXPECT_EQ(bien("SELECT COUNT(*) AS n FROM #X"), U("n\nint:1"));
    EXPECT_EQ(conexion.Describir(U("T"))->identidad, U("ID"));
    EXPECT_EQ(conexion.Ejecutar(U("INSERT INTO T (M) VALUES ('31/11/x')")).fallo->numero,
              FalloSql::kSentencia);
    EXPECT_EQ(conexion.Ejecutar(U("RAISERROR('Fin del día',16,1)")).fallo->Descripcion().mid(47),
              U("Fin del día"));
    EXPECT_EQ(bien("SELECT CONVERT(DATETIME,'14/11/2026') AS d").section(u'\n', 1),
              U("QDateTime:2026-11-14T00:00:00.000"));
    static_cast<void>(conexion.Revertir());
}

}  // namespace

}  // namespace quimo::data::odbc
