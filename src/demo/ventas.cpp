#include "demo/ventas.h"

#include <algorithm>

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Dinero;
using data::Fila;

namespace {

QVariant Dato(Dinero monto) { return QVariant::fromValue(monto); }
QVariant Dato(const QString& texto) { return texto.isNull() ? QVariant() : QVariant(texto); }

template <typename T>
QVariant Dato(const std::optional<T>& opcional) {
    return opcional ? QVariant::fromValue(*opcional) : QVariant();
}

// Positions in TablasVacias().
constexpr int kComanda = 0;
constexpr int kCuenta = 1;
constexpr int kArticulo = 2;
constexpr int kCortesia = 3;
constexpr int kImpuesto = 4;
constexpr int kModificador = 5;
constexpr int kPago = 6;

QVector<TablaVentas> TablasVacias() {
    const auto columnas = [](const QString& nombres) {
        return nombres.split(u',', Qt::KeepEmptyParts);
    };
    return {
        {u"Comanda"_s,
         columnas(u"ID_Comanda,ID_Empleado,Num_Mesa,Abierta,Fecha_Apertura,Fecha_Cierre,"
                  "Tipo,Fecha_Trabajo,Control,CantHuespedes"_s)},
        {u"Cuenta"_s, columnas(u"ID_Comanda,Num_Cuenta,Pagada,Num_Impresiones,Total,Control"_s)},
        {u"ProductosXCuenta"_s,
         columnas(u"ID_ProductosXCuenta,ID_Comanda,Num_Cuenta,ID_Producto,Comentario,Preparado,"
                  "Precio_Venta,Precio_Original,ID_Tipo_Anulacion,ID_Modo_Preparacion,ID_Promocion,"
                  "ID_Paquete,Empleado_Anulacion,Hora_Anulacion,Control"_s)},
        {u"Cortesia"_s, columnas(u"ID_ProductosXCuenta,ID_Tipo_Cortesia,Monto"_s)},
        {u"ImpuestosXCuenta"_s,
         columnas(u"ID_ProductosXCuenta,ID_Tipo_Impuesto,Monto_ImpuestosXCuenta"_s)},
        {u"Modificador"_s,
         columnas(u"ID_ProductosXCuenta,ID_Tipo_Modificador,Precio_Modificador"_s)},
        {u"Pago"_s, columnas(u"ID_Pago,ID_comanda,Num_Cuenta,ID_Tipo_Pago,Monto_Pago,Propina,"
                             "Referencia,Control"_s)},
    };
}

void AgregarArticulo(QVector<TablaVentas>& tablas, int comanda, int cuenta, const Articulo& a) {
    Fila fila{a.id,        comanda,       cuenta,          a.producto, Dato(a.comentario),
              a.preparado, Dato(a.venta), Dato(a.original)};
    fila << (a.anulacion ? QVariant(a.anulacion->tipo) : QVariant()) << Dato(a.modo)
         << Dato(a.promocion) << Dato(a.paquete)
         << (a.anulacion ? QVariant(a.anulacion->empleado) : QVariant())
         << (a.anulacion ? QVariant(a.anulacion->hora) : QVariant()) << 0;
    tablas[kArticulo].filas.append(std::move(fila));
    if (a.cortesia)
        tablas[kCortesia].filas.append({a.id, a.cortesia->tipo, Dato(a.cortesia->monto)});
    for (const ImpuestoCobrado& impuesto : a.impuestos)
        tablas[kImpuesto].filas.append({a.id, impuesto.tipo, Dato(impuesto.monto)});
    for (const ModificadorVendido& modificador : a.modificadores)
        tablas[kModificador].filas.append({a.id, modificador.tipo, Dato(modificador.monto)});
}

void AgregarCuenta(QVector<TablaVentas>& tablas, int comanda, int numero, const CuentaVendida& c) {
    tablas[kCuenta].filas.append({comanda, numero, c.pagada, c.impresiones, Dato(c.Total()), 0});
    for (const Articulo& articulo : c.articulos)
        AgregarArticulo(tablas, comanda, numero, articulo);
    for (const PagoHecho& pago : c.pagos)
        tablas[kPago].filas.append({pago.id, comanda, numero, pago.tipo, Dato(pago.monto),
                                    Dato(pago.propina), Dato(pago.referencia), 0});
}

}  // namespace

Dinero CuentaVendida::Total() const {
    Dinero total;
    for (const Articulo& articulo : articulos) {
        if (articulo.anulacion) continue;
        total += articulo.venta;
        for (const ModificadorVendido& modificador : articulo.modificadores)
            total += modificador.monto;
        if (articulo.cortesia) total -= articulo.cortesia->monto;
    }
    return total;
}

CifrasVentas Cifras(const VentasDia& ventas) {
    CifrasVentas cifras;
    for (const ComandaVendida& comanda : ventas.comandas) {
        ++cifras.comandas;
        if (!comanda.cierre) ++cifras.abiertas;
        for (const CuentaVendida& cuenta : comanda.cuentas) {
            cifras.total += cuenta.Total();
            cifras.articulos += static_cast<int>(cuenta.articulos.size());
            cifras.anulados += static_cast<int>(
                std::count_if(cuenta.articulos.begin(), cuenta.articulos.end(),
                              [](const Articulo& a) { return a.anulacion.has_value(); }));
        }
    }
    return cifras;
}

void Numerar(std::vector<VentasDia>& terminales, Folios& folios) {
    std::vector<ComandaVendida*> comandas;
    std::vector<PagoHecho*> pagos;
    for (VentasDia& ventas : terminales) {
        for (ComandaVendida& comanda : ventas.comandas) {
            comandas.push_back(&comanda);
            for (CuentaVendida& cuenta : comanda.cuentas) {
                for (PagoHecho& pago : cuenta.pagos)
                    pagos.push_back(&pago);
            }
        }
    }
    std::stable_sort(comandas.begin(), comandas.end(),
                     [](const auto* a, const auto* b) { return a->apertura < b->apertura; });
    std::stable_sort(pagos.begin(), pagos.end(),
                     [](const auto* a, const auto* b) { return a->momento < b->momento; });
    for (ComandaVendida* comanda : comandas)
        comanda->id = folios.comanda++;
    for (PagoHecho* pago : pagos)
        pago->id = folios.pago++;
}

QVector<TablaVentas> Tablas(const VentasDia& ventas) {
    QVector<TablaVentas> tablas = TablasVacias();
    for (const ComandaVendida& c : ventas.comandas) {
        tablas[kComanda].filas.append({c.id, c.empleado, Dato(c.mesa), !c.cierre, c.apertura,
                                       Dato(c.cierre), c.tipo, ventas.fecha_trabajo, 0,
                                       Dato(c.huespedes)});
        for (std::size_t i = 0; i < c.cuentas.size(); ++i)
            AgregarCuenta(tablas, c.id, static_cast<int>(i) + 1, c.cuentas[i]);
    }
    return tablas;
}

}  // namespace quimo::demo
