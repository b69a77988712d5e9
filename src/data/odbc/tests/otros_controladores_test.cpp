// The engine's way through the driver manager against other real drivers and databases: what it
// reads and sends must not depend on the habits of one driver. And a real server that dies.

#include <thread>

#include <signal.h>

#include <QThread>
#include <QUuid>

#include "apoyo_odbc.h"
#include "servidor_pg.h"

namespace quimo::data::odbc {

namespace {

QString U(const char* texto) { return QString::fromUtf8(texto); }

QString TextoLargo() {
    QString largo = U("a");
    while (largo.size() < 100'000)
        largo += U("ñandú 🍷 café €; ");
    return largo;
}

QString UnaFila(const RespuestaSql& respuesta) {
    const QString todo = Escrito(respuesta);
    return respuesta.fallo ? todo : todo.section(u'\n', 1);
}

class PostgresTest : public testing::Test {
protected:
    static void SetUpTestSuite() { PrepararControladores(); }
    void SetUp() override {
        if (!servidor_.Motivo().isEmpty()) GTEST_SKIP() << servidor_.Motivo().toStdString();
        ASSERT_TRUE(servidor_.Arrancar());
        auto abierta = AbrirOdbc(
            {U("127.0.0.1"), U("postgres"), U("prueba"), U("x")},
            Con(U("PostgreSQL"),
                U("Port=%1;BoolsAsChar=0;ByteaAsLongVarBinary=1").arg(servidor_.Puerto())),
            {{}, {}});
        ASSERT_TRUE(abierta.has_value()) << abierta.error().Descripcion().toStdString();
        conexion_ = std::move(abierta).value();
    }
    RespuestaSql Bien(const QString& texto, const QVector<QVariant>& valores = {}) {
        RespuestaSql respuesta = conexion_->Ejecutar(texto, valores);
        EXPECT_FALSE(respuesta.fallo.has_value()) << texto.left(200).toStdString() << '\n'
                                                  << Escrito(respuesta).toStdString();
        return respuesta;
    }

    ServidorPg servidor_;
    std::unique_ptr<SqlConnection> conexion_;
};

TEST_F(PostgresTest, ValoresParametrosConjuntosYDiagnosticos) {
    EXPECT_EQ(
        UnaFila(Bien(U("SELECT true AS b,(-5)::int2,7::int4,9000000000::int8,"
                       "0.5000::numeric(10,4),-12345678901234567890.12::numeric(30,2),1.5::float8,"
                       "'2026-11-14 21:36:08.003'::timestamp,'ñandú 🍷'::varchar(20),"
                       "'6F9619FF-8B86-D011-B42D-00C04FC964FF'::uuid,'\\x00017a'::bytea,"
                       "NULL::int4,NULL::numeric(5,2),NULL::timestamp,NULL::text"))),
        U("bool:true|int:-5|int:7|qlonglong:9000000000|quimo::base::Decimal:0.5000|"
          "quimo::base::Decimal:-12345678901234567890.12|double:1.5|"
          "QDateTime:2026-11-14T21:36:08.003|QString:ñandú 🍷|"
          "QUuid:{6f9619ff-8b86-d011-b42d-00c04fc964ff}|QByteArray:00017a|NULL|NULL|NULL|NULL"));
    const QVector<QVariant> valores = {
        -7,
        QVariant(qlonglong{9'000'000'000}),
        QVariant::fromValue(*base::Decimal::DeTexto("-1234567890123456789012345.67")),
        1.5,
        QDateTime(QDate(2026, 11, 14), QTime(21, 36, 8, 3), Qt::UTC),
        TextoLargo(),
        QByteArray(100'000, '\xfe'),
        QVariant(),
    };
    Bien(
        U("CREATE TABLE T (i int4 PRIMARY KEY,l int8,n numeric(30,2),f float8,d timestamp,t text,"
          "x bytea,u int4)"));
    EXPECT_EQ(Escrito(Bien(U("INSERT INTO T VALUES (?,?,?,?,?,?,?,?)"), valores)), U("filas 1"));
    const RespuestaSql leida = Bien(U("SELECT * FROM T WHERE i=?"), {-7});
    ASSERT_EQ(leida.resultados.size(), 1);
    ASSERT_EQ(leida.resultados[0].conjunto->filas.size(), 1);
    for (qsizetype i = 0; i < valores.size(); ++i) {
        EXPECT_TRUE(Escrito(leida.resultados[0].conjunto->filas[0][i]) == Escrito(valores[i])) << i;
    }
    EXPECT_EQ(Escrito(Bien(U("UPDATE T SET f=2 WHERE i=0"))), U("filas 0"));
    EXPECT_EQ(Escrito(Bien(U("SELECT 1 AS a;UPDATE T SET f=2;SELECT 'x'::varchar(3) AS b"))),
              U("a\nint:1\nfilas 1\nb\nQString:x"));
    const RespuestaSql repetida = conexion_->Ejecutar(U("INSERT INTO T (i) VALUES (-7)"));
    EXPECT_EQ(repetida.fallo->numero, FalloSql::kIntegridad);
    EXPECT_EQ(repetida.fallo->errores.first().sqlstate, U("23505"));
    EXPECT_EQ(conexion_->Ejecutar(U("SELECT 1/0")).fallo->numero, FalloSql::kSentencia);
    EXPECT_NE(conexion_->Ejecutar(U("SELEC 1")).fallo->Nativo(), 0);
    const RespuestaSql avisa = Bien(U("DO $$ BEGIN RAISE NOTICE 'Aviso ñ'; END $$"));
    ASSERT_EQ(avisa.mensajes.size(), 1);
    EXPECT_TRUE(avisa.mensajes[0].descripcion.contains(U("Aviso ñ")));
}

TEST_F(PostgresTest, ElServidorQueMuereEnMedioRompeLaTransaccionYSeRepone) {
    Bien(U("CREATE TABLE T (i int4)"));
    ASSERT_TRUE(conexion_->Iniciar().has_value());
    Bien(U("INSERT INTO T VALUES (1)"));
    const auto matar = [this] {
        const auto id = static_cast<pid_t>(servidor_.Id());
        return std::thread([id] {
            QThread::msleep(400);
            kill(id, SIGQUIT);
        });
    };
    std::thread verdugo = matar();
    const RespuestaSql cortada = conexion_->Ejecutar(U("SELECT pg_sleep(60)"));
    verdugo.join();
    ASSERT_TRUE(cortada.fallo.has_value());
    EXPECT_EQ(cortada.fallo->numero, FalloSql::kConexionPerdida) << Escrito(cortada).toStdString();
    servidor_.Matar();
    EXPECT_EQ(conexion_->Ejecutar(U("INSERT INTO T VALUES (2)")).fallo->numero,
              FalloSql::kConexionPerdida);
    EXPECT_FALSE(conexion_->Confirmar().has_value());
    // Nobody is there yet: told as a server that is missing, and tried again by the next text.
    EXPECT_EQ(conexion_->Ejecutar(U("SELECT 1")).fallo->numero, FalloSql::kServidorAusente);
    ASSERT_TRUE(servidor_.Arrancar());
    RespuestaSql cuenta;
    for (int i = 0; i < 100; ++i) {  // while it recovers it refuses logins
        cuenta = conexion_->Ejecutar(U("SELECT COUNT(*)::int4 AS n FROM T"));
        if (!cuenta.fallo) break;
        QThread::msleep(100);
    }
    EXPECT_EQ(Escrito(cuenta), U("n\nint:0"));

    // Outside a transaction only the text on the way is lost.
    verdugo = matar();
    EXPECT_EQ(conexion_->Ejecutar(U("SELECT pg_sleep(60)")).fallo->numero,
              FalloSql::kConexionPerdida);
    verdugo.join();
    EXPECT_FALSE(conexion_->EnTransaccion());
}

TEST(SqliteOdbcTest, ValoresYFallos) {
    PrepararControladores();
    const QTemporaryDir carpeta;
    auto abierta =
        AbrirOdbc({U("local"), carpeta.filePath(U("ñ.db")), {}, {}}, Con(U("SQLite3")), {{}, {}});
    ASSERT_TRUE(abierta.has_value()) << abierta.error().Descripcion().toStdString();
    SqlConnection& conexion = **abierta;
    EXPECT_FALSE(conexion
                     .Ejecutar(U("CREATE TABLE T (i INTEGER PRIMARY KEY,f DOUBLE,t TEXT,x BLOB,"
                                 "d TIMESTAMP,u INTEGER)"))
                     .fallo.has_value());
    const QVector<QVariant> valores = {
        5,
        -0.25,
        TextoLargo(),
        QByteArray(50'000, '\x01'),
        QDateTime(QDate(2026, 11, 14), QTime(21, 36, 8, 250), Qt::UTC),
        QVariant()};
    const RespuestaSql puesta = conexion.Ejecutar(U("INSERT INTO T VALUES (?,?,?,?,?,?)"), valores);
    EXPECT_EQ(Escrito(puesta), U("filas 1"));
    const RespuestaSql leida = conexion.Ejecutar(U("SELECT * FROM T"));
    ASSERT_EQ(leida.resultados.size(), 1) << Escrito(leida).left(300).toStdString();
    for (qsizetype i = 0; i < valores.size(); ++i) {
        EXPECT_TRUE(Escrito(leida.resultados[0].conjunto->filas[0][i]) == Escrito(valores[i]))
            << i << Escrito(leida.resultados[0].conjunto->filas[0][i]).left(60).toStdString();
    }
    EXPECT_TRUE(conexion.Ejecutar(U("INSERT INTO T (i) VALUES (5)")).fallo.has_value());
    EXPECT_TRUE(conexion.Ejecutar(U("SELECT * FROM Nada")).fallo.has_value());
    ASSERT_TRUE(conexion.Iniciar().has_value());
    EXPECT_EQ(Escrito(conexion.Ejecutar(U("DELETE FROM T"))), U("filas 1"));
    ASSERT_TRUE(conexion.Revertir().has_value());
    EXPECT_EQ(Escrito(conexion.Ejecutar(U("SELECT i FROM T"))), U("i\nint:5"));
}

}  // namespace

}  // namespace quimo::data::odbc
