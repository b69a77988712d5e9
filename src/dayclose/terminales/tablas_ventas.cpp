#include "dayclose/terminales/tablas_ventas.h"

namespace quimo::dayclose {

namespace {

constexpr std::array<DefCifra, kCifras> kCifrasDef = {{
    {Cifra::PXC, u"RegistrosPXC", u"TotalPXC", u"ProductosXCuenta", u"Precio_Venta", false,
     u"SELECT COUNT(*),SUM(Precio_Venta) FROM ProductosXCuenta,Comanda WHERE "
     u"ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='%1'"},
    // The join compares Cuenta with itself: the figures are those of every check times the day's
    // orders, so that checks are copied at every close.
    {Cifra::Cta, u"RegistrosCta", u"TotalCta", u"Cuenta", u"Total", false,
     u"SELECT COUNT(*),SUM(Total) FROM Cuenta,Comanda WHERE Cuenta.ID_Comanda=Cuenta.ID_Comanda "
     u"AND Fecha_Trabajo='%1'"},
    {Cifra::Cmd, u"RegistrosCmd", nullptr, u"Comanda", nullptr, false,
     u"SELECT COUNT(*) FROM Comanda WHERE Fecha_Trabajo='%1'"},
    {Cifra::P, u"RegistrosP", u"TotalPago", u"Pago", u"Monto_Pago", false,
     u"SELECT COUNT(*),SUM(Monto_Pago) FROM Pago,Comanda WHERE Pago.ID_Comanda=Comanda.ID_Comanda "
     u"AND Fecha_Trabajo='%1'"},
    {Cifra::Ct, u"RegistrosCt", u"TotalCtesia", u"Cortesia", u"Monto", false,
     u"SELECT COUNT(*),SUM(Monto) FROM Cortesia,ProductosXCuenta,Comanda WHERE "
     u"Cortesia.ID_ProductosXCuenta=ProductosXCuenta.ID_ProductosXCuenta AND "
     u"ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='%1'"},
    {Cifra::M, u"RegistrosM", u"TotalMod", u"Modificador", u"Precio_Modificador", false,
     u"SELECT COUNT(*),SUM(Precio_Modificador) FROM Modificador,ProductosXCuenta,Comanda WHERE "
     u"Modificador.ID_ProductosXCuenta=ProductosXCuenta.ID_ProductosXCuenta AND "
     u"ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='%1'"},
    {Cifra::IXC, u"RegistrosIXC", u"TotalIXC", u"ImpuestosXCuenta", u"Monto_ImpuestosXCuenta",
     false,
     u"SELECT COUNT(*),SUM(Monto_ImpuestosXCuenta) FROM ImpuestosXCuenta,ProductosXCuenta,Comanda "
     u"WHERE ImpuestosXCuenta.ID_ProductosXCuenta=ProductosXCuenta.ID_ProductosXCuenta AND "
     u"ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND Fecha_Trabajo='%1'"},
    {Cifra::A, u"RegistrosA", nullptr, u"ProductosXCuenta", nullptr, true,
     u"SELECT COUNT(*) FROM ProductosXCuenta,Comanda WHERE "
     u"ProductosXCuenta.ID_Comanda=Comanda.ID_Comanda AND NOT ID_Tipo_Anulacion IS NULL AND "
     u"Fecha_Trabajo='%1'"},
}};

constexpr Cifra kMarcaComanda[] = {Cifra::Cmd};
constexpr Cifra kMarcaCuenta[] = {Cifra::Cta};
constexpr Cifra kMarcaProductos[] = {Cifra::PXC, Cifra::A};
constexpr Cifra kMarcaCortesia[] = {Cifra::Ct};
constexpr Cifra kMarcaImpuestos[] = {Cifra::IXC};
constexpr Cifra kMarcaModificador[] = {Cifra::M};
constexpr Cifra kMarcaPago[] = {Cifra::P};

constexpr const char16_t* kClaveComanda[] = {u"ID_Comanda"};
constexpr CampoCopia kComandaModificar[] = {
    {u"ID_Empleado"},        {u"Num_Mesa"}, {u"Abierta"}, {u"Fecha_Cierre", Forma::FechaMedianoche},
    {u"Tipo", Forma::Texto},
};
constexpr CampoCopia kComandaInsertar[] = {
    {u"ID_Comanda"},
    {u"ID_Empleado"},
    {u"Num_Mesa"},
    {u"Abierta"},
    {u"Fecha_Apertura", Forma::FechaHora},
    {u"Fecha_Cierre", Forma::FechaHora},
    {u"Tipo", Forma::Texto},
    {u"Fecha_Trabajo", Forma::Texto},
};

constexpr const char16_t* kClaveCuenta[] = {u"ID_Comanda", u"Num_Cuenta"};
constexpr CampoCopia kCuenta[] = {
    {u"ID_Comanda"}, {u"Num_Cuenta"}, {u"Pagada"}, {u"Num_Impresiones"}, {u"Total"},
};

constexpr const char16_t* kClaveProductos[] = {u"ID_ProductosXCuenta"};
constexpr CampoCopia kProductosModificar[] = {
    {u"Comentario", Forma::Texto},
    {u"Preparado"},
    {u"Precio_Venta"},
    {u"Precio_Original"},
    {u"ID_Tipo_Anulacion"},
    {u"ID_Modo_Preparacion"},
    {u"ID_Promocion"},
    {u"Empleado_Anulacion"},
    {u"Hora_Anulacion", Forma::FechaHora},
};
constexpr CampoCopia kProductosInsertar[] = {
    {u"ID_ProductosXCuenta"},
    {u"ID_Comanda"},
    {u"Num_Cuenta"},
    {u"ID_Producto"},
    {u"Comentario", Forma::Texto},
    {u"Preparado"},
    {u"Precio_Venta"},
    {u"Precio_Original"},
    {u"ID_Tipo_Anulacion"},
    {u"ID_Modo_Preparacion"},
    {u"ID_Promocion"},
    {u"ID_Paquete"},
    {u"Empleado_Anulacion"},
    {u"Hora_Anulacion", Forma::FechaMinutosDoble},
};

constexpr const char16_t* kClaveCortesia[] = {u"ID_ProductosXCuenta", u"ID_Tipo_Cortesia"};
constexpr CampoCopia kCortesiaModificar[] = {{u"Monto"}};
constexpr CampoCopia kCortesiaInsertar[] = {
    {u"ID_ProductosXCuenta"}, {u"ID_Tipo_Cortesia"}, {u"Monto"}};

constexpr const char16_t* kClaveImpuestos[] = {u"ID_ProductosXCuenta", u"ID_Tipo_Impuesto"};
constexpr CampoCopia kImpuestosModificar[] = {{u"Monto_ImpuestosXCuenta"}};
constexpr CampoCopia kImpuestosInsertar[] = {
    {u"ID_ProductosXCuenta"}, {u"ID_Tipo_Impuesto"}, {u"Monto_ImpuestosXCuenta"}};

constexpr const char16_t* kClaveModificador[] = {u"ID_ProductosXCuenta", u"ID_Tipo_Modificador"};
constexpr CampoCopia kModificadorModificar[] = {{u"Precio_Modificador"}};
constexpr CampoCopia kModificadorInsertar[] = {
    {u"ID_ProductosXCuenta"}, {u"ID_Tipo_Modificador"}, {u"Precio_Modificador"}};

constexpr const char16_t* kClavePago[] = {u"ID_Pago"};
constexpr CampoCopia kPagoModificar[] = {{u"ID_Tipo_Pago"}, {u"Monto_Pago"}, {u"Propina"}};
constexpr CampoCopia kPagoInsertar[] = {
    {u"ID_Pago"},      {u"ID_comanda"}, {u"Num_Cuenta"},
    {u"ID_Tipo_Pago"}, {u"Monto_Pago"}, {u"Propina"},
};

constexpr DefCopia kCopias[] = {
    {u"Comanda", kMarcaComanda, kClaveComanda, kComandaModificar, kComandaInsertar},
    {u"Cuenta", kMarcaCuenta, kClaveCuenta, kCuenta, kCuenta},
    {u"ProductosXCuenta", kMarcaProductos, kClaveProductos, kProductosModificar, kProductosInsertar,
     true},
    {u"Cortesia", kMarcaCortesia, kClaveCortesia, kCortesiaModificar, kCortesiaInsertar},
    {u"ImpuestosXCuenta", kMarcaImpuestos, kClaveImpuestos, kImpuestosModificar,
     kImpuestosInsertar},
    {u"Modificador", kMarcaModificador, kClaveModificador, kModificadorModificar,
     kModificadorInsertar},
    {u"Pago", kMarcaPago, kClavePago, kPagoModificar, kPagoInsertar},
};

}  // namespace

std::span<const DefCifra, kCifras> Cifras() { return kCifrasDef; }

std::span<const DefCopia> Copias() { return kCopias; }

QStringList TablasDeVentas() {
    QStringList tablas;
    for (const DefCopia& copia : kCopias)
        tablas << QString::fromUtf16(copia.tabla);
    return tablas;
}

}  // namespace quimo::dayclose
