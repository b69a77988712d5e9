#include "demo/jornada.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "demo/carta.h"

namespace quimo::demo {
namespace {

using base::Dinero;

// A small terminal: one product of each kind, one package, one promotion, three courtesies.
Catalogo UnCatalogo(int terminal) {
    Catalogo c{.terminal = terminal, .siguiente_articulo = 98};
    int id = 0;
    for (const int categoria : {kDesayunos, kMoles, kEntradas, kPostres, kCafe, kAguas, kMezcal}) {
        ++id;
        c.productos[id] = {.id = id,
                           .categoria = categoria,
                           .precio = Dinero::DeEntero(37 * id),
                           .grupo_modificadores = 5,
                           .impuestos = {{kIva16, 1600, true}}};
    }
    c.productos[8] = {
        .id = 8, .categoria = kTienda, .precio = Dinero::DeEntero(60), .abierto = true};
    c.productos[9] = {
        .id = 9, .categoria = kMoles, .precio = Dinero::DeEntero(99), .activo = false};
    c.productos[10] = {.id = 10,
                       .categoria = kPaquetes,
                       .precio = Dinero::DeEntero(189),
                       .paquete = true,
                       .impuestos = {{kIva16, 1600, true}}};
    c.productos[11] = {.id = 11, .categoria = kAguas};  // only inside packages
    c.paquetes[10] = {{.cuantos = 2, .productos = {2, 3}}, {.cuantos = 1, .productos = {11}}};
    c.modificadores[5] = {{1, Dinero()}, {2, Dinero::DeEntero(18)}};
    c.promociones = {{.promocion = 4,
                      .minimo = 2,
                      .obsequios = 1,
                      .descuento = 5000,
                      .comprados = {7},
                      .regalados = {5}}};
    c.cortesias = {
        {.id = 1, .tipo = u'P', .cantidad = Dinero::DeEntero(10), .maximo = Dinero::DeEntero(15)},
        {.id = 2, .tipo = u'F', .cantidad = Dinero::DeEntero(500), .maximo = Dinero::DeEntero(900)},
        {.id = 3,
         .tipo = u'A',
         .maximo = Dinero::DeEntero(20),
         .por_articulo = true,
         .productos = {6}}};
    c.pagos = {{1, u'E'}, {2, u'T'}, {3, u'E'}};
    c.anulaciones = {1, 2};
    c.modos = {1, 2};
    c.meseros = {7, 8, 9};
    c.responsables = {1};
    return c;
}

VentasDia UnDia(int terminal, const QString& fecha, Ritmo ritmo = Ritmo::Salon) {
    const auto dia = LeerFechaTrabajo(fecha);
    EXPECT_TRUE(dia);
    return SimularJornada(UnCatalogo(terminal), *dia, ritmo, AlCerrar::QuedanAbiertas);
}

template <typename Visita>
void CadaCuenta(const VentasDia& ventas, const Visita& visita) {
    for (const ComandaVendida& comanda : ventas.comandas) {
        EXPECT_FALSE(comanda.cuentas.empty());
        for (const CuentaVendida& cuenta : comanda.cuentas)
            visita(comanda, cuenta);
    }
}

struct Dia {
    const char* fecha = "";
    Ritmo ritmo = Ritmo::Salon;
};
class DiaDeTerminal : public testing::TestWithParam<Dia> {
protected:
    VentasDia ventas_ = UnDia(2, QString::fromLatin1(GetParam().fecha), GetParam().ritmo);
};
INSTANTIATE_TEST_SUITE_P(Dias, DiaDeTerminal,
                         testing::Values(Dia{"23112026", Ritmo::Salon},  // a quiet Monday
                                         Dia{"28112026", Ritmo::Salon},  // a full Saturday
                                         Dia{"24112026", Ritmo::Bar},    // few orders
                                         Dia{"01132027", Ritmo::Salon},  // after the end of a year
                                         Dia{"29022027", Ritmo::Bar}));  // a day that is none

void RevisarArticulos(const CuentaVendida& cuenta) {
    ASSERT_FALSE(cuenta.articulos.empty());
    Dinero total;
    std::set<int> paquetes;
    for (const Articulo& a : cuenta.articulos) {
        if (a.producto == 10) paquetes.insert(a.id);
        const Dinero cortesia = a.cortesia ? a.cortesia->monto : Dinero();
        EXPECT_LE(cortesia, a.venta);
        EXPECT_FALSE(a.cortesia && a.anulacion);
        for (const ModificadorVendido& m : a.modificadores)
            total += a.anulacion ? Dinero() : m.monto;
        total += a.anulacion ? Dinero() : a.venta - cortesia;
        if (!a.paquete) continue;
        EXPECT_TRUE(paquetes.contains(*a.paquete)) << "component before or away from its package";
        EXPECT_EQ(a.venta, Dinero());
        EXPECT_TRUE(a.impuestos.empty());
    }
    EXPECT_EQ(cuenta.Total(), total);
}

TEST_P(DiaDeTerminal, LasCuentasCuadran) {
    CadaCuenta(ventas_, [](const ComandaVendida& comanda, const CuentaVendida& cuenta) {
        RevisarArticulos(cuenta);
        Dinero pagado;
        for (const PagoHecho& pago : cuenta.pagos) {
            EXPECT_GT(pago.monto, Dinero());
            EXPECT_GT(pago.momento, comanda.apertura);
            EXPECT_TRUE(comanda.cierre && pago.momento <= *comanda.cierre);
            EXPECT_EQ(pago.referencia.isNull(), pago.tipo != 2);
            pagado += pago.monto;
        }
        EXPECT_EQ(cuenta.pagada, comanda.cierre.has_value());
        EXPECT_EQ(pagado, cuenta.pagada ? cuenta.Total() : Dinero());
    });
}

void AnotarArticulo(std::map<std::string, int>& vistos, const Articulo& a) {
    vistos["anulacion"] += a.anulacion && a.anulacion->empleado == 1;
    vistos["cortesia"] += a.cortesia.has_value();
    vistos["modificador"] += !a.modificadores.empty();
    vistos["comentario"] += !a.comentario.isNull();
    vistos["componente"] += a.paquete.has_value();
    vistos["promocion"] += a.promocion == 4 && a.venta == Dinero::DeDiezmilesimas(925000);
}

TEST_P(DiaDeTerminal, TieneTodoLoQuePromete) {
    std::map<std::string, int> vistos;
    const QDate dia = LeerFechaTrabajo(ventas_.fecha_trabajo)->dia;
    for (const ComandaVendida& c : ventas_.comandas) {
        vistos["abierta"] += !c.cierre;
        vistos["medianoche"] += c.cierre && c.cierre->date() > dia;
        vistos["dividida"] += c.cuentas.size() > 1;
        EXPECT_GE(c.apertura.date(), dia);
    }
    CadaCuenta(ventas_, [&](const ComandaVendida&, const CuentaVendida& cuenta) {
        vistos["pago mixto"] += cuenta.pagos.size() > 1;
        for (const PagoHecho& pago : cuenta.pagos) {
            vistos["propina"] += pago.propina && *pago.propina > Dinero();
            vistos["propina nula"] += !pago.propina;
            vistos["sin propina"] += pago.propina == Dinero();
        }
        for (const Articulo& articulo : cuenta.articulos)
            AnotarArticulo(vistos, articulo);
    });
    for (const char* rasgo : {"abierta", "medianoche", "dividida", "pago mixto", "propina",
                              "propina nula", "sin propina", "anulacion", "cortesia", "modificador",
                              "comentario", "componente", "promocion"})
        EXPECT_GT(vistos[rasgo], 0) << rasgo;
    EXPECT_LE(vistos["abierta"], 2);
}

TEST_P(DiaDeTerminal, LosArticulosLlevanElNumeroDeLaTerminalYSuContador) {
    std::map<int, std::set<int>> ids;  // by the order's position
    CadaCuenta(ventas_, [&](const ComandaVendida& comanda, const CuentaVendida& cuenta) {
        for (const Articulo& articulo : cuenta.articulos)
            ids[static_cast<int>(&comanda - ventas_.comandas.data())].insert(articulo.id);
    });
    int contador = 98;
    for (const auto& [comanda, de_comanda] : ids) {
        std::set<int> esperados;
        for (std::size_t i = 0; i < de_comanda.size(); ++i)
            esperados.insert(std::stoi("2" + std::to_string(contador++)));
        EXPECT_EQ(de_comanda, esperados);
    }
    EXPECT_EQ(ventas_.siguiente_articulo, contador);
}

// 16 % within the price, to the ten-thousandth.
bool EsSuIva(const ImpuestoCobrado& impuesto, Dinero venta) {
    const std::int64_t exceso = impuesto.monto.Diezmilesimas() * 116 - venta.Diezmilesimas() * 16;
    return std::abs(exceso) <= 58;
}

TEST_P(DiaDeTerminal, NuncaVendeLoInactivoNiLoSinPrecio) {
    CadaCuenta(ventas_, [](const ComandaVendida& comanda, const CuentaVendida& cuenta) {
        for (const Articulo& a : cuenta.articulos) {
            EXPECT_NE(a.producto, 9);
            EXPECT_EQ(a.producto == 11, a.original == Dinero()) << a.producto;
            EXPECT_TRUE(a.producto != 11 || a.paquete);
            EXPECT_TRUE(std::ranges::all_of(
                a.impuestos, [&](const ImpuestoCobrado& i) { return EsSuIva(i, a.venta); }));
            if (a.anulacion) {
                EXPECT_GT(a.anulacion->hora, comanda.apertura);
            }
        }
    });
}

TEST(Jornada, EsLaMismaParaLaMismaFechaYOtraParaOtra) {
    const auto filas = [](const VentasDia& ventas) {
        QVector<data::Fila> todas;
        for (const TablaVentas& tabla : Tablas(ventas))
            todas += tabla.filas;
        return todas;
    };
    const QString fecha = QStringLiteral("28112026");
    EXPECT_EQ(filas(UnDia(2, fecha)), filas(UnDia(2, fecha)));
    EXPECT_NE(UnDia(2, fecha).comandas[3].apertura, UnDia(3, fecha).comandas[3].apertura);
    EXPECT_NE(UnDia(2, fecha).comandas[3].apertura.time(),
              UnDia(2, QStringLiteral("05122026")).comandas[3].apertura.time());
}

TEST(Jornada, NumeraTodasLasTerminalesPorHoraSinRepetir) {
    const QString fecha = QStringLiteral("28112026");
    std::vector<VentasDia> terminales{UnDia(1, fecha), UnDia(2, fecha),
                                      UnDia(3, fecha, Ritmo::Bar)};
    Folios folios{.comanda = 501, .pago = 77};
    Numerar(terminales, folios);
    std::map<int, QDateTime> comandas;
    std::map<int, QDateTime> pagos;
    std::size_t cuantos_pagos = 0;
    std::size_t cuantas = 0;
    for (const VentasDia& ventas : terminales) {
        cuantas += ventas.comandas.size();
        CadaCuenta(ventas, [&](const ComandaVendida& comanda, const CuentaVendida& cuenta) {
            comandas[comanda.id] = comanda.apertura;
            cuantos_pagos += cuenta.pagos.size();
            for (const PagoHecho& pago : cuenta.pagos)
                pagos[pago.id] = pago.momento;
        });
    }
    const auto por_hora = [](const auto& a, const auto& b) { return a.second < b.second; };
    EXPECT_EQ(comandas.size(), cuantas);
    EXPECT_EQ(comandas.begin()->first, 501);
    EXPECT_EQ(folios.comanda, 501 + static_cast<int>(cuantas));
    EXPECT_TRUE(std::ranges::is_sorted(comandas, por_hora));
    EXPECT_EQ(pagos.size(), cuantos_pagos);
    EXPECT_EQ(folios.pago, 77 + static_cast<int>(cuantos_pagos));
    EXPECT_TRUE(std::ranges::is_sorted(pagos, por_hora));
}

TEST(FechaTrabajo, ElMesTreceYElVeintinueveDeFebreroSonDias) {
    const struct {
        const char* texto = "";
        QDate dia = {};
    } casos[] = {
        {"14112026", {2026, 11, 14}},
        {"01132026", {2026, 1, 1}},
        {"15142026", {2026, 2, 15}},
        {"01252026", {2027, 1, 1}},
        {"29022025", {2025, 3, 1}},
        {"29022024", {2024, 2, 29}},
        {"31042026", {2026, 5, 1}},
        {"00112026", {}},
        {"32112026", {}},
        {"14002026", {}},
        {"1411202", {}},
        {"14/11/26", {}},
        {"", {}},
    };
    for (const auto& caso : casos) {
        const auto leido = LeerFechaTrabajo(QString::fromLatin1(caso.texto));
        EXPECT_EQ(leido ? leido->dia : QDate(), caso.dia) << caso.texto;
    }
}

}  // namespace
}  // namespace quimo::demo
