// What belongs to the session on the server: its lock and its transaction, out of the embedded
// engine behind the tests' server.

#include <QTemporaryDir>

#include "apoyo_odbc.h"
#include "data/candado.h"

namespace quimo::data::odbc {

namespace {

QString U(const char* texto) { return QString::fromUtf8(texto); }

class SesionOdbcTest : public testing::Test {
protected:
    static void SetUpTestSuite() { PrepararControladores(); }

    QTemporaryDir carpeta_;
    const ServidorTds servidor_{DeEmbebida(carpeta_.filePath(U("c.db")))};
};

// The lock is taken with the statements that SQL Server knows; a connection that was lost and
// mended has lost it.
TEST_F(SesionOdbcTest, ElCandadoSeTomaYSePierdeConLaConexion) {
    const auto una = AbrirEn(servidor_);
    const auto otra = AbrirEn(servidor_);
    ASSERT_TRUE(una && otra);
    const QDateTime hora(QDate(2026, 11, 14), QTime(22, 0), Qt::UTC);
    const auto tomar = [&](SqlConnection& conexion, const char* quien) {
        auto tomado = Candado::Tomar(conexion, U("cierre"), U(quien), hora);
        EXPECT_TRUE(tomado.has_value())
            << (tomado ? "" : tomado.error().Descripcion().toStdString());
        return tomado;
    };
    auto suyo = tomar(*una, "maría");
    ASSERT_TRUE(suyo && std::holds_alternative<Candado>(suyo.value()));
    EXPECT_TRUE(std::get<Candado>(suyo.value()).Vigente());
    EXPECT_TRUE(std::get<Candado>(suyo.value()).Renovar(hora.addSecs(30)));
    const auto ajeno = tomar(*otra, "juan");
    ASSERT_TRUE(ajeno && std::holds_alternative<DuenoCandado>(ajeno.value()));
    EXPECT_EQ(std::get<DuenoCandado>(ajeno.value()).quien, U("maría"));
    EXPECT_EQ(std::get<DuenoCandado>(ajeno.value()).desde, hora);
    EXPECT_TRUE(una->Ejecutar(U("SELECT 1 /*corta*/")).fallo.has_value());
    EXPECT_FALSE(std::get<Candado>(suyo.value()).Vigente());
    const auto nuevo = tomar(*otra, "juan");
    EXPECT_TRUE(nuevo && std::holds_alternative<Candado>(nuevo.value()));
}

// Which transaction is open, by what the server counts.
TEST_F(SesionOdbcTest, CadaTransaccionTieneSuNumero) {
    const auto conexion = AbrirEn(servidor_);
    ASSERT_NE(conexion, nullptr);
    EXPECT_EQ(conexion->TransaccionActual(), 0U);
    ASSERT_TRUE(conexion->Iniciar().has_value());
    const auto primera = conexion->TransaccionActual();
    EXPECT_NE(primera, 0U);
    EXPECT_FALSE(conexion->Ejecutar(U("BEGIN TRAN COMMIT SELECT 1")).fallo.has_value());
    ASSERT_TRUE(conexion->Iniciar().has_value());
    ASSERT_TRUE(conexion->Confirmar().has_value());
    EXPECT_TRUE(conexion->EnTransaccion());
    EXPECT_FALSE(conexion->Ejecutar(U("ROLLBACK")).fallo.has_value());
    EXPECT_EQ(conexion->TransaccionActual(), 0U);
    ASSERT_TRUE(conexion->Iniciar().has_value());
    EXPECT_GT(conexion->TransaccionActual(), primera);
    EXPECT_TRUE(conexion->Revertir().has_value());
}

}  // namespace

}  // namespace quimo::data::odbc
