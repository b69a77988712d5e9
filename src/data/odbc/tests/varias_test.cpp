// Many statements in one send: the one that fails is known, nothing behind it is done, whatever the
// server and the driver make of it. Each group does over the driver what it does one by one.

#include <QTemporaryDir>

#include "apoyo_odbc.h"
#include "foundation/conector.h"
#include "support/dialogos_guion.h"

namespace quimo::data::odbc {

namespace {

QString U(const char* texto) { return QString::fromUtf8(texto); }

/// What the server's answers to a group are turned into.
using Torcer = std::function<void(const QString&, RespuestaSql&)>;

ServidorTds::NuevaSesion Torcida(const QString& archivo, Torcer torcer) {
    const ServidorTds::NuevaSesion recta = DeEmbebida(archivo);
    return [recta, torcer]() -> ServidorTds::Contestar {
        const ServidorTds::Contestar contestar = recta();
        return [contestar, torcer](const QString& texto, const QVector<QVariant>& parametros) {
            RespuestaSql respuesta = contestar(texto, parametros);
            if (torcer && texto.startsWith(U("SAVE TRANSACTION"))) torcer(texto, respuesta);
            return respuesta;
        };
    };
}

class VariasTest : public testing::Test {
protected:
    static void SetUpTestSuite() { PrepararControladores(); }

    static void Crear(SqlConnection& conexion) {
        for (const char* texto :
             {"CREATE TABLE G (a INT NOT NULL PRIMARY KEY)", "INSERT INTO G (a) VALUES (1)",
              "CREATE TABLE T (a INT NOT NULL PRIMARY KEY, b VARCHAR(5) NULL, c INT NULL "
              "REFERENCES G (a), d DATETIME NULL, e MONEY NOT NULL DEFAULT 0)",
              "INSERT INTO T (a) VALUES (900)"}) {
            ASSERT_FALSE(conexion.Ejecutar(U(texto)).fallo.has_value()) << texto;
        }
    }
    /// How many were done, the failure's number, the transaction and the rows in the end.
    static QString Correr(SqlConnection& conexion, const QStringList& sentencias) {
        EXPECT_TRUE(conexion.Iniciar().has_value());
        const RespuestaSql respuesta = conexion.EjecutarVarias(sentencias);
        QString dicho = QStringLiteral("%1 hechas").arg(respuesta.resultados.size());
        if (respuesta.fallo) dicho += QStringLiteral(", fallo %1").arg(respuesta.fallo->Nativo());
        for (const ResultadoSql& resultado : respuesta.resultados)
            EXPECT_FALSE(resultado.conjunto.has_value());
        if (conexion.EnTransaccion()) {
            EXPECT_TRUE(conexion.Confirmar().has_value());
        } else {
            dicho += U(", sin transacción");
        }
        const RespuestaSql filas = conexion.Ejecutar(U("SELECT * FROM T ORDER BY a"));
        EXPECT_FALSE(conexion.Ejecutar(U("DELETE FROM T WHERE a<>900")).fallo.has_value());
        return dicho + u'\n' + Escrito(filas);
    }

    QTemporaryDir carpeta_;
    pruebas::RelojFijo reloj_;
};

QStringList Grupo(const char* malo, int lugar, int cuantas) {
    QStringList sentencias;
    for (int i = 0; i < cuantas; ++i) {
        sentencias << (i % 3 == 2 ? QStringLiteral("UPDATE T SET b='it''s',d='31/12/2026 "
                                                   "23:59:58' WHERE a=%1")
                                        .arg(i - 1)
                                  : QStringLiteral("INSERT INTO T (a,b,e) VALUES (%1,'%2',-%1.5)")
                                        .arg(i)
                                        .arg(i % 10));
    }
    if (malo != nullptr) sentencias[lugar] = U(malo);
    return sentencias;
}

TEST_F(VariasTest, LaQueFallaSeConoceYNadaDetrasSeHace) {
    const char* const malos[] = {
        nullptr,
        "INSERT INTO T (a) VALUES (900)",                // 2627
        "INSERT INTO T (a,c) VALUES (901,2)",            // 547
        "INSERT INTO T (a,e) VALUES (901,NULL)",         // 515
        "INSERT INTO T (a,b) VALUES (901,'demasiado')",  // 8152
        "INSERT INTO T (a) VALUES ('x')",                // 245
        "UPDATE T SET d='30/02/2026' WHERE a=900",       // 242
        "INSERT INTO T (a,nada) VALUES (901,1)",         // 207
        "INSERT INTO Nada (a) VALUES (1)",               // 208
        "INSERT INTO T (a VALUES (901)",                 // 102: the whole text is not read
        "UPDATE T SET b='nadie' WHERE a=12345",          // no failure at all
    };
    const ServidorTds servidor(DeEmbebida(carpeta_.filePath(U("odbc.db"))));
    const auto por_odbc = AbrirEn(servidor);
    ASSERT_NE(por_odbc, nullptr);
    const auto directa = foundation::CrearConector(reloj_, foundation::SiFalta::Crear)(
        {U("embebido"), carpeta_.filePath(U("directa.db")), {}, {}});
    ASSERT_TRUE(directa.has_value());
    Crear(*por_odbc);
    Crear(**directa);
    for (const char* const malo : malos) {
        for (const int lugar : {0, 17, 29}) {
            const QStringList sentencias = Grupo(malo, lugar, 30);
            const QString esperado = Correr(**directa, sentencias);
            EXPECT_EQ(Correr(*por_odbc, sentencias), esperado)
                << lugar << ' ' << (malo == nullptr ? "" : malo);
            if (malo != nullptr && !U(malo).contains(U("nadie"))) {
                EXPECT_TRUE(esperado.startsWith(QStringLiteral("%1 hechas, fallo").arg(lugar)))
                    << esperado.toStdString();
            }
        }
    }
    EXPECT_TRUE(Correr(*por_odbc, {}).startsWith(U("0 hechas\n")));
}

TEST_F(VariasTest, CienCambiosSonUnaIdaYVuelta) {
    const ServidorTds servidor(DeEmbebida(carpeta_.filePath(U("odbc.db"))));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    Crear(*conexion);
    ASSERT_TRUE(conexion->Iniciar().has_value());
    const qsizetype antes = servidor.Textos().size();
    const RespuestaSql respuesta = conexion->EjecutarVarias(Grupo(nullptr, 0, 100));
    EXPECT_EQ(respuesta.resultados.size(), 100) << Escrito(respuesta).toStdString();
    EXPECT_EQ(servidor.Textos().size() - antes, 1);
    EXPECT_EQ(respuesta.resultados[5].afectadas, 1);
    // Two groups in one transaction: a failure of the second leaves the first alone.
    EXPECT_TRUE(conexion
                    ->EjecutarVarias(
                        {U("INSERT INTO T (a) VALUES (500)"), U("INSERT INTO T (a VALUES (501)")})
                    .fallo.has_value());
    ASSERT_TRUE(conexion->Confirmar().has_value());
    const RespuestaSql filas = conexion->Ejecutar(U("SELECT COUNT(*) FROM T"));
    EXPECT_EQ(filas.resultados[0].conjunto->filas[0][0].toInt(), 67 + 1 + 1);
}

TEST_F(VariasTest, LaTransaccionQueElServidorDeshaceSeDice) {
    const ServidorTds servidor(DeEmbebida(carpeta_.filePath(U("odbc.db"))));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    Crear(*conexion);
    ASSERT_FALSE(conexion->Ejecutar(U("SET XACT_ABORT ON")).fallo.has_value());
    const QString dicho = Correr(*conexion, Grupo("INSERT INTO T (a) VALUES (900)", 57, 100));
    EXPECT_TRUE(dicho.startsWith(U("57 hechas, fallo 2627, sin transacción\n")))
        << dicho.toStdString();
    EXPECT_EQ(dicho.count(u'\n'), 2);
}

struct CasoTorcido {
    const char* nombre = nullptr;
    Torcer torcer;
};

TEST_F(VariasTest, LoQueElServidorCuentaDeMasODeMenosNoEngana) {
    const CasoTorcido casos[] = {
        {"una cuenta de más",
         [](const QString&, RespuestaSql& r) {
             r.resultados.insert(3, ResultadoSql{std::nullopt, 4});
         }},
        {"ninguna cuenta",
         [](const QString&, RespuestaSql& r) { r.resultados = {r.resultados.last()}; }},
        {"sin final", [](const QString&, RespuestaSql& r) { r.resultados.removeLast(); }},
        {"otro final",
         [](const QString&, RespuestaSql& r) { r.resultados.last().conjunto->filas[0][0] = 99; }},
        {"un fallo que solo tiene el grupo",
         [](const QString&, RespuestaSql& r) {
             r.resultados.removeLast();
             r.fallo = FalloSql{FalloSql::kSentencia, {{{}, 8623, {}, U("Demasiado larga")}}};
         }},
    };
    for (const CasoTorcido& caso : casos) {
        const QString archivo = carpeta_.filePath(U(caso.nombre));
        const ServidorTds servidor(Torcida(archivo, caso.torcer));
        const auto conexion = AbrirEn(servidor);
        ASSERT_NE(conexion, nullptr);
        Crear(*conexion);
        const QString dicho = Correr(*conexion, Grupo(nullptr, 0, 100));
        EXPECT_TRUE(dicho.startsWith(U("100 hechas\n"))) << caso.nombre;
        EXPECT_EQ(dicho.count(u'\n'), 1 + 67 + 1) << caso.nombre;
    }
}

TEST_F(VariasTest, LaConexionPerdidaEnMedioNoSeRepite) {
    const ServidorTds servidor(DeEmbebida(carpeta_.filePath(U("odbc.db"))));
    const auto conexion = AbrirEn(servidor);
    ASSERT_NE(conexion, nullptr);
    Crear(*conexion);
    for (const char* corte :
         {"UPDATE T SET b='/*corta*/'", "UPDATE T SET b='/*corta en medio*/'"}) {
        ASSERT_TRUE(conexion->Iniciar().has_value());
        const RespuestaSql respuesta = conexion->EjecutarVarias(Grupo(corte, 50, 100));
        ASSERT_TRUE(respuesta.fallo.has_value());
        EXPECT_EQ(respuesta.fallo->numero, FalloSql::kConexionPerdida);
        EXPECT_LT(respuesta.resultados.size(), 100);
        EXPECT_EQ(conexion->EjecutarVarias(Grupo(nullptr, 0, 2)).fallo->numero,
                  FalloSql::kConexionPerdida);
        EXPECT_FALSE(conexion->Confirmar().has_value());
        const RespuestaSql filas = conexion->Ejecutar(U("SELECT COUNT(*) FROM T"));
        EXPECT_EQ(filas.resultados[0].conjunto->filas[0][0].toInt(), 1) << corte;
    }
}

}  // namespace

}  // namespace quimo::data::odbc
