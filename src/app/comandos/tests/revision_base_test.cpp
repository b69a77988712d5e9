#include "app/comandos/revision_base.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "data/esquema.h"
#include "foundation/conector.h"
#include "support/dialogos_guion.h"

using namespace Qt::StringLiterals;

namespace quimo::app {
namespace {

/// A central database with a sale in it.
class RevisionBaseTest : public testing::Test {
protected:
    void SetUp() override {
        Abrir(foundation::SiFalta::Crear);
        ASSERT_TRUE(data::CrearBase(*conexion_));
        Hacer(u"INSERT INTO Comanda (ID_Comanda,Fecha_Trabajo) VALUES (10,'14112026')"_s);
        Hacer(u"INSERT INTO Cuenta (ID_Comanda,Num_Cuenta) VALUES (10,1)"_s);
        Hacer(
            u"INSERT INTO ProductosXCuenta (ID_ProductosXCuenta,ID_Comanda,Num_Cuenta,"
            "ID_Producto) VALUES (100,10,1,1)"_s);
        Hacer(u"INSERT INTO Pago (ID_Pago,ID_Comanda,Num_Cuenta,ID_Tipo_Pago) VALUES (5,10,1,1)"_s);
    }
    void Abrir(foundation::SiFalta si_falta) {
        auto abierta =
            foundation::CrearConector(reloj_, si_falta)({u"embebido"_s, Archivo(), {}, {}});
        ASSERT_TRUE(abierta);
        conexion_ = std::move(abierta).value();
    }
    QString Archivo() const { return carpeta_.filePath(u"central.db"_s); }
    void Hacer(const QString& tsql) {
        const auto respuesta = conexion_->Ejecutar(tsql);
        ASSERT_FALSE(respuesta.fallo) << respuesta.fallo->Descripcion().toStdString();
    }
    QTemporaryDir carpeta_;
    pruebas::RelojFijo reloj_;
    std::unique_ptr<data::SqlConnection> conexion_;
};

TEST_F(RevisionBaseTest, UnaBaseSanaNoDiceNadaYCuentaLoQueLeyo) {
    RevisionBase revision = RevisarBase(*conexion_);
    EXPECT_EQ(revision.fallas, QStringList());
    EXPECT_EQ(revision.avisos, QStringList());
    EXPECT_EQ(revision.pendiente, QString());
    const qint64 antes = revision.renglones;
    EXPECT_GT(revision.tablas, 50);
    Hacer(u"INSERT INTO Pago (ID_Pago,ID_Comanda,Num_Cuenta,ID_Tipo_Pago) VALUES (6,10,1,1)"_s);
    EXPECT_EQ(RevisarBase(*conexion_).renglones, antes + 1);
}

TEST_F(RevisionBaseTest, LasVentasSinSuRenglonSonAvisos) {
    Hacer(u"DELETE FROM Comanda"_s);
    Hacer(u"INSERT INTO Modificador (ID_ProductosXCuenta,ID_Tipo_Modificador) VALUES (7,3)"_s);
    for (int i = 21; i <= 27; ++i) {
        Hacer(u"INSERT INTO Pago (ID_Pago,ID_Comanda,Num_Cuenta,ID_Tipo_Pago) VALUES (%1,10,2,1)"_s
                  .arg(i));
    }
    const RevisionBase revision = RevisarBase(*conexion_);
    EXPECT_EQ(revision.fallas, QStringList());
    EXPECT_EQ(
        revision.avisos,
        QStringList(
            {u"Tabla Cuenta, cuentas sin su orden: 1 (ID_Comanda,Num_Cuenta: 10/1)."_s,
             u"Tabla ProductosXCuenta, productos sin su orden: 1 (ID_ProductosXCuenta: 100)."_s,
             u"Tabla Pago, pagos sin su cuenta: 7 (ID_Pago: 21, 22, 23, 24, 25...)."_s,
             u"Tabla Modificador, modificadores sin su producto: 1 "
             u"(ID_ProductosXCuenta,ID_Tipo_Modificador: 7/3)."_s}));
}

TEST_F(RevisionBaseTest, ElCierrePendienteSeDiceYSusNotasDebenConcordar) {
    struct Caso {
        const char16_t* hacer;
        const char16_t* pendiente;  ///< what is told of it
        const char16_t* falla;
    };
    constexpr auto kDelDia = u"14/11/2026 no terminó: ";
    for (const Caso& caso : {
             Caso{u"INSERT INTO Cierre_Avance VALUES ('BARRA',1,'Pago',1,'3;0;0')", u"",
                  u"Tabla Cierre_Avance: notas de un cierre que no está pendiente: 1."},
             Caso{u"INSERT INTO Cierre_Pendiente VALUES ('14112026',1,GETDATE())", u"reuniendo",
                  u""},
             Caso{u"UPDATE Cierre_Pendiente SET Paso=2", u"copiando", u""},
             Caso{u"UPDATE Cierre_Pendiente SET Paso=3", u"enviando", u""},
             Caso{u"INSERT INTO Cierre_Avance VALUES ('BARRA',1,'*envio',2,'')", u"enviando", u""},
             Caso{u"INSERT INTO Cierre_Avance VALUES ('BARRA',1,'*version-1',127,'')", u"enviando",
                  u""},
             Caso{u"UPDATE Cierre_Avance SET Estado=2 WHERE Tabla='Pago'", u"enviando",
                  u"Tabla Cierre_Avance: la nota Pago de la terminal BARRA no se entiende (estado "
                  u"2)"},
             Caso{u"UPDATE Cierre_Avance SET Estado=0,Tabla='Otra' WHERE Tabla='Pago'", u"enviando",
                  u"Tabla Cierre_Avance: la nota Otra "},
             Caso{u"DELETE FROM Cierre_Avance UPDATE Cierre_Pendiente SET Paso=4", u"",
                  u"Tabla Cierre_Pendiente: el cierre pendiente tiene una fecha o un paso "
                  u"imposible"},
             Caso{u"UPDATE Cierre_Pendiente SET Paso=1 INSERT INTO Cierre_Pendiente VALUES "
                  u"('15112026',1,GETDATE())",
                  u"", u"Tabla Cierre_Pendiente: hay 2 cierres pendientes"},
         }) {
        const QString hacer = QString::fromUtf16(caso.hacer);
        SCOPED_TRACE(hacer.toStdString());
        Hacer(hacer);
        const RevisionBase revision = RevisarBase(*conexion_);
        const QString falla = QString::fromUtf16(caso.falla);
        ASSERT_EQ(revision.fallas.size(), falla.isEmpty() ? 0 : 1);
        EXPECT_TRUE(falla.isEmpty() || revision.fallas[0].startsWith(falla.chopped(1)))
            << revision.fallas.join(u'\n').toStdString();
        EXPECT_FALSE(revision.danada);
        const QString pendiente = QString::fromUtf16(caso.pendiente);
        if (pendiente.isEmpty()) continue;
        EXPECT_TRUE(revision.pendiente.contains(QString::fromUtf16(kDelDia)) &&
                    revision.pendiente.contains(pendiente))
            << revision.pendiente.toStdString();
    }
}

TEST_F(RevisionBaseTest, UnaPaginaDanadaSeDiceConSuTablaYLoDemasSeRevisa) {
    Hacer(u"BEGIN TRANSACTION"_s);
    for (int i = 200; i < 700; ++i) {
        Hacer(
            u"INSERT INTO ProductosXCuenta (ID_ProductosXCuenta,ID_Comanda,Num_Cuenta,"
            "ID_Producto,Comentario) VALUES (%1,10,1,1,'marca %1')"_s.arg(i));
    }
    Hacer(u"COMMIT"_s);
    conexion_.reset();
    QFile archivo(Archivo());
    ASSERT_TRUE(archivo.open(QIODevice::ReadWrite));
    constexpr qint64 kPagina = 4096;
    // The page of a row in the middle, by what that row says.
    const qint64 lugar = archivo.readAll().indexOf("marca 450");
    ASSERT_GT(lugar, kPagina);
    archivo.seek(lugar / kPagina * kPagina);
    archivo.write(QByteArray(64, '\x5a'));
    archivo.close();
    Abrir(foundation::SiFalta::Fallar);
    Hacer(u"DELETE FROM Cuenta"_s);
    const RevisionBase revision = RevisarBase(*conexion_);
    EXPECT_TRUE(revision.danada);
    ASSERT_FALSE(revision.fallas.isEmpty());
    EXPECT_TRUE(revision.fallas[0].startsWith(
        u"Tabla ProductosXCuenta: una parte no se puede leer (8928: "_s))
        << revision.fallas.join(u'\n').toStdString();
    EXPECT_TRUE(revision.avisos.contains(u"Tabla Pago, pagos sin su cuenta: 1 (ID_Pago: 5)."_s));
}

}  // namespace
}  // namespace quimo::app
