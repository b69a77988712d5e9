#include "demo/demo.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "data/valores.h"
#include "dayclose/cierre/fin_de_dia.h"
#include "dayclose/terminales/carpeta_share.h"
#include "demo/archivo_terminal.h"
#include "demo/catalogo.h"
#include "foundation/conector.h"
#include "jet/verificador.h"
#include "support/dialogos_guion.h"

namespace quimo::demo {
namespace {

using namespace Qt::StringLiterals;
using base::Dinero;

// A short past, as long as the sequence of numbers is continued from it.
constexpr int kDias = 2;

/// The demonstration in a folder of its own, with what its user does to it.
class DemoTest : public testing::Test {
protected:
    QString Carpeta() const { return temporal_.filePath(u"restaurante"_s); }
    QString Terminal(const QString& nombre) const {
        return Carpeta() + u"/red/%1/quimo/Quimo_Terminal.mdb"_s.arg(nombre);
    }

    ResumenDemo Preparar() {
        auto resumen = PrepararDemo(Carpeta(), dialogos_, reloj_, kDias);
        EXPECT_TRUE(resumen) << resumen.error().mensaje << " " << resumen.error().detalle;
        return resumen ? *resumen : ResumenDemo();
    }

    void Conectar() {
        bitacora_ = std::make_unique<foundation::ClsBitacora>(
            foundation::OpcionesBitacora{.Parchivo = false, .PMsgBox = false}, dialogos_, reloj_);
        ado_ = std::make_unique<foundation::ClsAdo>(foundation::CrearConector(reloj_), dialogos_,
                                                    *bitacora_);
        QString servidor = u"embebido"_s;
        QString archivo = Carpeta() + u"/central.db"_s;
        QString nadie;
        ASSERT_TRUE(ado_->Conectar(servidor, archivo, nadie, nadie));
    }

    // One value as text.
    std::string Valor(const QString& consulta) {
        const auto respuesta = ado_->Conexion().Ejecutar(consulta);
        EXPECT_FALSE(respuesta.fallo) << respuesta.fallo->Descripcion().toStdString();
        if (respuesta.fallo || !respuesta.resultados.last().conjunto) return "?";
        return data::TextoDeValor(respuesta.resultados.last().conjunto->filas[0][0]).toStdString();
    }

    void Cerrar() {
        dayclose::CarpetaShare share(Carpeta() + u"/red"_s);
        dayclose::FinDeDia cierre(*ado_, share, reloj_, Carpeta() + u"/quimo"_s);
        ASSERT_EQ(cierre.Ejecutar(), dayclose::FinDeDia::Desenlace::Terminado)
            << dialogos_.Mostrados().join(u'\n').toStdString();
    }

    // What the central tables say of a working date, to be compared with a summary.
    std::string Central(const QString& fecha) {
        const QString comandas =
            u"(SELECT ID_Comanda FROM Comanda WHERE Fecha_Trabajo='%1')"_s.arg(fecha);
        return Valor(u"SELECT COUNT(*) FROM Comanda WHERE Fecha_Trabajo='%1'"_s.arg(fecha)) + " " +
               Valor(u"SELECT COUNT(*) FROM ProductosXCuenta WHERE ID_Comanda IN "_s + comandas) +
               " " + Valor(u"SELECT SUM(Total) FROM Cuenta WHERE ID_Comanda IN "_s + comandas);
    }

    static std::string Vendido(const ResumenDemo& resumen) {
        int comandas = 0;
        int articulos = 0;
        Dinero total;
        for (const VentasDeTerminal& terminal : resumen.terminales) {
            EXPECT_EQ(terminal.estado, VentasDeTerminal::Estado::Vendio);
            EXPECT_GE(terminal.cifras.abiertas, 1);
            EXPECT_GE(terminal.cifras.anulados, 1);
            comandas += terminal.cifras.comandas;
            articulos += terminal.cifras.articulos;
            total += terminal.cifras.total;
        }
        return std::to_string(comandas) + " " + std::to_string(articulos) + " " + total.ATexto();
    }

    QTemporaryDir temporal_;
    quimo::pruebas::DialogosGuion dialogos_;
    quimo::pruebas::RelojFijo reloj_{QDateTime(QDate(2026, 12, 31), QTime(11, 0), Qt::UTC)};
    std::unique_ptr<foundation::ClsBitacora> bitacora_;
    std::unique_ptr<foundation::ClsAdo> ado_;
};

TEST_F(DemoTest, TieneHistoriaYDosCierresPasandoElFinDeAno) {
    const ResumenDemo nueva = Preparar();
    ASSERT_TRUE(nueva.nueva);
    ASSERT_EQ(nueva.terminales.size(), 3);
    EXPECT_EQ(nueva.fecha_trabajo, u"31122026"_s);
    EXPECT_EQ(Lineas(nueva).size(), 6);
    Conectar();
    EXPECT_EQ(Valor(u"SELECT COUNT(DISTINCT Fecha_Trabajo) FROM Comanda"_s), std::to_string(kDias));
    EXPECT_EQ(Valor(u"SELECT COUNT(*) FROM Comanda"_s), std::to_string(nueva.historia.comandas));
    EXPECT_EQ(Valor(u"SELECT SUM(Total) FROM Cuenta"_s), nueva.historia.total.ATexto());
    EXPECT_EQ(Valor(u"SELECT SUM(Monto_Pago) FROM Pago"_s), nueva.historia.total.ATexto());
    EXPECT_EQ(Valor(u"SELECT COUNT(*) FROM Comanda WHERE Abierta=1 OR Fecha_Cierre IS NULL"_s),
              "0");

    std::string vendido = Vendido(nueva);
    QString fecha = nueva.fecha_trabajo;
    for (const QString& siguiente : {u"01132027"_s, u"02132027"_s}) {
        Cerrar();
        EXPECT_EQ(Central(fecha), vendido) << fecha.toStdString();
        const ResumenDemo otra = Preparar();
        EXPECT_FALSE(otra.nueva);
        EXPECT_EQ(otra.fecha_trabajo, siguiente);
        vendido = Vendido(otra);
        fecha = siguiente;
    }
}

TEST_F(DemoTest, LaTerminalQueYaVendioNoVuelveAVender) {
    Preparar();
    const auto leer = [&](const QString& nombre) {
        QFile archivo(Terminal(nombre));
        EXPECT_TRUE(archivo.open(QIODevice::ReadOnly));
        return archivo.readAll();
    };
    const QByteArray caja1 = leer(u"CAJA1"_s);
    ASSERT_TRUE(QFile::remove(Terminal(u"BARRA"_s)));
    const ResumenDemo otra = Preparar();
    EXPECT_EQ(otra.terminales[0].estado, VentasDeTerminal::Estado::YaTeniaVentas);
    EXPECT_EQ(otra.terminales[2].estado, VentasDeTerminal::Estado::SinBaseDeDatos);
    EXPECT_EQ(leer(u"CAJA1"_s), caja1);
    EXPECT_FALSE(QFile::exists(Terminal(u"BARRA"_s)));
}

TEST_F(DemoTest, LosArchivosDeLasTerminalesEstanSanosYSusContadoresSiguen) {
    Preparar();
    Conectar();
    for (const QString& nombre : {u"CAJA1"_s, u"CAJA2"_s, u"BARRA"_s}) {
        const auto base = jet::BaseDatos::Abrir(Terminal(nombre).toStdString());
        ASSERT_TRUE(base);
        const auto hallazgos = jet::Verificador::Verificar(*base);
        ASSERT_TRUE(hallazgos);
        EXPECT_TRUE(hallazgos->empty()) << hallazgos->front().mensaje;

        const auto catalogo = LeerCatalogo(*base);
        ASSERT_TRUE(catalogo);
        const auto articulos = LeerTabla(*base, "ProductosXCuenta", {"ID_ProductosXCuenta"});
        ASSERT_TRUE(articulos);
        int mayor = 0;
        for (const jet::Fila& fila : *articulos)
            mayor = std::max(mayor, std::get<std::int32_t>(fila[0]));
        EXPECT_EQ(std::to_string(mayor), std::to_string(catalogo->terminal) +
                                             std::to_string(catalogo->siguiente_articulo - 1));
        // No number that the history already used.
        EXPECT_EQ(
            Valor(u"SELECT COUNT(*) FROM ProductosXCuenta WHERE ID_ProductosXCuenta>=%1 AND "
                  "ID_ProductosXCuenta LIKE '%2%'"_s.arg(std::get<std::int32_t>((*articulos)[0][0]))
                      .arg(catalogo->terminal)),
            "0");
    }
}

TEST_F(DemoTest, UnaCarpetaAjenaSeQuedaComoEstaba) {
    QDir().mkpath(Carpeta());
    QFile ajeno(Carpeta() + u"/.tesis"_s);
    ASSERT_TRUE(ajeno.open(QIODevice::WriteOnly));
    ajeno.write("capítulo 1");
    ajeno.close();
    const auto resumen = PrepararDemo(Carpeta(), dialogos_, reloj_);
    ASSERT_FALSE(resumen);
    EXPECT_EQ(resumen.error().codigo, base::Error::Codigo::Restriccion);
    EXPECT_NE(resumen.error().mensaje.find("no es un restaurante de demostración"),
              std::string::npos);
    const auto todo = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
    EXPECT_EQ(QDir(Carpeta()).entryList(todo), QStringList{u".tesis"_s});
    EXPECT_EQ(QDir(temporal_.path()).entryList(todo), QStringList{u"restaurante"_s});
}

}  // namespace
}  // namespace quimo::demo
