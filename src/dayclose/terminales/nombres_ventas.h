#pragma once

#include <QString>

#include "base/dinero.h"

namespace quimo::dayclose {

/// One row of a sales table as the manager calls it: "una orden", "un pago"; "un renglón" for a
/// table that holds no sales.
QString UnRenglon(const QString& tabla);

/// Rows of a sales table, counted: "1 pago", "500 pagos".
QString RenglonesContados(qint64 cuantos, const QString& tabla);

/// The plural without a count: "pagos".
QString NombreDeRenglones(const QString& tabla);

/// A lookup condition for people: "ID_Comanda=5, Num_Cuenta=1".
QString ClaveVisible(const QString& condicion);

/// "dd/mm/aaaa" for eight digits; anything else between quotation marks, as it stands.
QString FechaTrabajoMostrada(const QString& fecha);

/// "$1,234.50", or all four decimals where two would hide a difference.
QString ImporteVisible(base::Dinero importe);

/// A text of a terminal for one line of a message: shortened, without control characters, between
/// quotation marks.
QString TextoVisible(const QString& texto);

/// What a literal of a statement stands for.
struct LiteralLeido {
    bool nulo = false;
    QString texto = {};  ///< without quotes, apostrophes single
};
LiteralLeido LeerLiteral(const QString& literal);

/// A literal of a sales row for people: amounts as money, texts as TextoVisible shows them.
QString LiteralVisible(const QString& literal);

}  // namespace quimo::dayclose
