#include <gtest/gtest.h>

#include <QFile>

#include "dayclose/cierre/resumen_cierre.h"
#include "restaurante_prueba.h"
#include "terminal_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {
namespace {

using foundation::Respuesta;
using Desenlace = FinDeDia::Desenlace;
using Operacion = ShareConFallas::Operacion;
using Pendiente = OpcionesCierre::Pendiente;

/// The rows of a close that CAJA2 was left out of from the start.
const QStringList& VentasSinCaja2() {
    static const QStringList kVentas = [] {
        Restaurante restaurante;
        restaurante.opciones.omitir = {u"CAJA2"_s};
        EXPECT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
        EXPECT_EQ(restaurante.Resumen().entregadas, (QStringList{u"CAJA1"_s, u"BARRA"_s}));
        EXPECT_EQ(restaurante.Archivados(u"CAJA2"_s).size(), 1);
        return Ventas(restaurante);
    }();
    return kVentas;
}

TEST(TerminalAparte, LaTerminalSinSuBaseNuevaTieneSalida) {
    Restaurante restaurante;
    restaurante.share.Poner([](Operacion operacion, const QString& remoto) {
        return operacion == Operacion::Llevar && remoto.contains(u"CAJA2"_s)
                   ? FalloArchivo::kNombreIncorrecto
                   : 0;
    });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    EXPECT_EQ(restaurante.Resumen().sin_entregar, QStringList{u"CAJA2"_s});
    EXPECT_TRUE(LineasFaltantes(restaurante.Resumen()).contains(u"--enviar CAJA2"_s));
    const QStringList ventas = Ventas(restaurante);
    EXPECT_EQ(ventas, VentasDelDia());
    restaurante.share.Poner({});

    // The next day its file holds the same rows again.
    restaurante.dialogos.ResponderSi({u"CAJA2"_s, u"14/11/2026"_s}, Respuesta::Aceptar);
    restaurante.dialogos.ResponderSi(
        {QString::number(static_cast<qint32>(data::FalloSql::kIntegridad)), u"PRIMARY KEY"_s,
         u"CAJA2"_s, u"ProductosXCuenta"_s, u"14/11/2026"_s, u"--omitir CAJA2"_s},
        Respuesta::Terminar);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    EXPECT_EQ(Ventas(restaurante), ventas) << "nothing of a refused terminal stays";
    restaurante.opciones.pendiente = Pendiente::Continuar;
    restaurante.opciones.omitir = {u"caja2"_s};
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    EXPECT_EQ(Ventas(restaurante), ventas);
    EXPECT_TRUE(LineasFaltantes(restaurante.Resumen()).contains(u"--traer "_s));
    EXPECT_GT(OrdenesEn(restaurante.Terminal(u"CAJA2"_s)).toInt(), 0) << "nothing was sent to it";

    // Brought in afterwards: everything is there already.
    const QString archivado =
        restaurante.Programa() + u"/archivo/15112026/CAJA2/Quimo_Terminal-1.mdb"_s;
    TrabajoTerminal trabajo = restaurante.Trabajo();
    ASSERT_EQ(trabajo.Traer(archivado, u"CAJA2"_s), TrabajoTerminal::Desenlace::Hecho);
    EXPECT_EQ(trabajo.Traida()->comparacion.Nuevas(), 0);
    EXPECT_EQ(trabajo.Traida()->comparacion.Distintas(), 0);
    EXPECT_GT(trabajo.Traida()->comparacion.Iguales(), 1000);
    EXPECT_EQ(trabajo.Traida()->fechas, QStringList{u"14112026"_s});
    EXPECT_EQ(Ventas(restaurante), ventas);
    EXPECT_EQ(restaurante.Trabajo().Enviar(u"CAJA2"_s), TrabajoTerminal::Desenlace::Hecho);
    EXPECT_EQ(OrdenesEn(restaurante.Terminal(u"CAJA2"_s)), u"0"_s);
    EXPECT_EQ(Ventas(restaurante), ventas);
}

TEST(TerminalAparte, EnviarTraeAntesLoQueSeVendioConLaBaseDeAyer) {
    Restaurante restaurante;
    restaurante.share.Poner([](Operacion operacion, const QString& remoto) {
        return operacion == Operacion::Llevar && remoto.contains(u"CAJA2"_s)
                   ? FalloArchivo::kNombreIncorrecto
                   : 0;
    });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    restaurante.share.Poner({});
    const Venta venta{51900, 20999, 95900};
    Vender(restaurante.Terminal(u"CAJA2"_s), venta);
    ASSERT_EQ(restaurante.Trabajo().Enviar(u"CAJA2"_s), TrabajoTerminal::Desenlace::Hecho);
    EsperarVendida(restaurante, venta);
    EXPECT_EQ(OrdenesEn(restaurante.Terminal(u"CAJA2"_s)), u"0"_s);
    // The counters do not give out its numbers again.
    EXPECT_EQ(
        restaurante.Valor(u"SELECT Valor_Num FROM Parametros WHERE ID_Parametro='FOLIOPAGO'"_s)
            .toDouble(),
        95901);
    restaurante.Mandar(u"UPDATE Terminal SET Estado_Terminal='D' WHERE Nombre_Terminal='BARRA'"_s);
    for (const QString& mala : {u"BARRA"_s, u"CAJA9"_s}) {
        EXPECT_EQ(restaurante.Trabajo().Enviar(mala), TrabajoTerminal::Desenlace::SinEmpezar);
    }
}

TEST(TerminalAparte, LaTerminalQueNoSeLeyoSeDiceYSeTraeDespues) {
    Restaurante restaurante;
    bool reuniendo = true;
    restaurante.share.Poner([&](Operacion, const QString& remoto) {
        return reuniendo && remoto.contains(u"CAJA2"_s) ? FalloArchivo::kRutaNoEncontrada : 0;
    });
    restaurante.dialogos.Responder(u"Falla de comunicación con CAJA2"_s, Respuesta::Ignorar,
                                   [&] { reuniendo = false; });
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    ASSERT_EQ(restaurante.Resumen().sin_copiar.size(), 1);
    const QString lineas = LineasFaltantes(restaurante.Resumen());
    EXPECT_TRUE(
        lineas.contains(u"CAJA2: no se leyó (falla de comunicación): 419 artículos, "
                        u"$36,585.14 en "_s +
                        restaurante.EnArchivo(u"CAJA2"_s, 1)))
        << lineas.toStdString();
    EXPECT_NE(Ventas(restaurante), VentasDelDia());
    restaurante.Mandar(u"UPDATE Parametros SET Valor_Num=99000 WHERE ID_Parametro='FOLIOPAGO'"_s);
    ASSERT_EQ(restaurante.Trabajo().Traer(restaurante.EnArchivo(u"CAJA2"_s, 1), u"CAJA2"_s),
              TrabajoTerminal::Desenlace::Hecho);
    EXPECT_EQ(DiferenciasCentrales(restaurante), QStringList());
    EXPECT_EQ(
        restaurante.Valor(u"SELECT Valor_Num FROM Parametros WHERE ID_Parametro='FOLIOPAGO'"_s)
            .toDouble(),
        99000)
        << "a counter never goes back";
    EXPECT_FALSE(QFile::exists(restaurante.Programa() + u"/CAJA2/traido.mdb"_s));
    EXPECT_EQ(restaurante.Trabajo().Traer(restaurante.Raiz() + u"/nada.mdb"_s, u"CAJA2"_s),
              TrabajoTerminal::Desenlace::SinEmpezar);
}

TEST(TerminalAparte, LoDistintoSePreguntaAlTraer) {
    for (const Respuesta respuesta : {Respuesta::Si, Respuesta::No}) {
        Restaurante restaurante;
        ASSERT_EQ(restaurante.Cerrar(), Desenlace::Terminado);
        restaurante.Mandar(u"UPDATE Pago SET Monto_Pago=1 WHERE ID_Pago=94301"_s);
        const QStringList cambiadas = Ventas(restaurante);
        restaurante.dialogos.ResponderSi({u"1 renglones"_s, u"94301"_s, u"563"_s}, respuesta);
        const auto desenlace =
            restaurante.Trabajo().Traer(restaurante.EnArchivo(u"CAJA1"_s, 1), u"CAJA1"_s);
        const bool puso = respuesta == Respuesta::Si;
        EXPECT_EQ(desenlace, puso ? TrabajoTerminal::Desenlace::Hecho
                                  : TrabajoTerminal::Desenlace::Incompleto);
        EXPECT_EQ(Ventas(restaurante), puso ? VentasDelDia() : cambiadas);
    }
}

TEST(TerminalAparte, LaTerminalQueYaNoEstaActivaQuedaFueraAlContinuar) {
    Restaurante restaurante;
    CambiarDato(restaurante.Terminal(u"CAJA2"_s), u"ProductosXCuenta"_s, u"ID_ProductosXCuenta"_s,
                20001, u"ID_Producto"_s, std::monostate());
    restaurante.dialogos.ResponderSi(
        {u"CAJA2"_s, u"ProductosXCuenta"_s, u"20001"_s, u"ID_Producto"_s, u"--omitir CAJA2"_s},
        Respuesta::Terminar);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::ConError);
    restaurante.Mandar(u"UPDATE Terminal SET Estado_Terminal='R' WHERE Nombre_Terminal='CAJA2'"_s);
    restaurante.opciones.pendiente = Pendiente::Continuar;
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    EXPECT_TRUE(LineasFaltantes(restaurante.Resumen()).contains(u"CAJA2"_s));
    EXPECT_EQ(Ventas(restaurante), VentasSinCaja2());
}

TEST(TerminalAparte, ApartarDesdeLaPreguntaCierraConLasDemas) {
    Restaurante restaurante;
    CambiarDato(restaurante.Terminal(u"CAJA2"_s), u"ProductosXCuenta"_s, u"ID_ProductosXCuenta"_s,
                20002, u"Num_Cuenta"_s, std::monostate());
    restaurante.dialogos.ResponderSi({u"CAJA2"_s, u"20002"_s, u"sin su cuenta"_s},
                                     Respuesta::Aceptar);
    restaurante.dialogos.ResponderSi({u"CAJA2"_s, u"20002"_s, u"Num_Cuenta"_s}, Respuesta::Apartar);
    ASSERT_EQ(restaurante.Cerrar(), Desenlace::Incompleto);
    ASSERT_EQ(restaurante.Resumen().contadas.size(), 2) << "it is not told as copied";
    EXPECT_EQ(restaurante.Resumen().contadas[1].terminal.nombre, u"BARRA"_s);
    EXPECT_EQ(Ventas(restaurante), VentasSinCaja2());
    EXPECT_EQ(restaurante.Resumen().entregadas, (QStringList{u"CAJA1"_s, u"BARRA"_s}));
    EXPECT_EQ(restaurante.Valor(u"SELECT COUNT(*) FROM Cierre_Pendiente"_s), u"0"_s);
}

}  // namespace
}  // namespace quimo::dayclose::pruebas
