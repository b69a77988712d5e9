#pragma once

#include <optional>
#include <vector>

#include <QDateTime>
#include <QString>
#include <QVector>

#include "base/dinero.h"
#include "data/sql_connection.h"

namespace quimo::demo {

struct ModificadorVendido {
    int tipo = 0;
    base::Dinero monto = {};
};

struct ImpuestoCobrado {
    int tipo = 0;
    base::Dinero monto = {};
};

struct CortesiaDada {
    int tipo = 0;
    base::Dinero monto = {};
};

struct Anulacion {
    int tipo = 0;
    int empleado = 0;
    QDateTime hora = {};
};

/// One sold item.
struct Articulo {
    int id = 0;  ///< terminal number followed by the terminal's running counter
    int producto = 0;
    QString comentario = {};  ///< null text: no comment
    bool preparado = true;
    base::Dinero venta = {};
    base::Dinero original = {};
    std::optional<Anulacion> anulacion = {};
    std::optional<int> modo = {};
    std::optional<int> promocion = {};
    std::optional<int> paquete = {};  ///< item number of the package it belongs to
    std::vector<ModificadorVendido> modificadores = {};
    std::vector<ImpuestoCobrado> impuestos = {};
    std::optional<CortesiaDada> cortesia = {};
};

struct PagoHecho {
    int id = 0;
    int tipo = 0;
    base::Dinero monto = {};
    std::optional<base::Dinero> propina = {};
    QString referencia = {};  ///< null text: none
    QDateTime momento = {};
};

struct CuentaVendida {
    bool pagada = false;
    int impresiones = 0;
    std::vector<Articulo> articulos = {};
    std::vector<PagoHecho> pagos = {};

    /// Prices and modifiers less courtesies of the items that were not voided.
    base::Dinero Total() const;
};

struct ComandaVendida {
    int id = 0;
    int empleado = 0;
    std::optional<int> mesa = {};
    QDateTime apertura = {};
    std::optional<QDateTime> cierre = {};  ///< without it the order is still open
    QString tipo = {};
    std::optional<int> huespedes = {};
    std::vector<CuentaVendida> cuentas = {};  ///< check 1, 2, ...
};

/// What one terminal sold on one working date.
struct VentasDia {
    QString fecha_trabajo = {};
    std::vector<ComandaVendida> comandas = {};
    int siguiente_articulo = 1;  ///< the terminal's item counter afterwards
};

/// Figures of a day's sales, to be shown.
struct CifrasVentas {
    int comandas = 0;
    int abiertas = 0;
    int articulos = 0;
    int anulados = 0;
    base::Dinero total = {};
};
CifrasVentas Cifras(const VentasDia& ventas);

/// Next free order and payment numbers of the whole restaurant.
struct Folios {
    int comanda = 1;
    int pago = 1;
};

/// Gives the orders of all terminals their numbers in the order of opening, and the payments theirs
/// in the order in which they were made. Moves `folios` on.
void Numerar(std::vector<VentasDia>& terminales, Folios& folios);

/// Rows of one sales table, ready to be written. The columns have the names of the table.
struct TablaVentas {
    QString nombre;
    QStringList columnas;
    QVector<data::Fila> filas = {};
};

/// The sales as rows of the seven tables, in an order in which a row comes after those it names.
QVector<TablaVentas> Tablas(const VentasDia& ventas);

}  // namespace quimo::demo
