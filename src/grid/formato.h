#pragma once

#include "grid/celda.h"

namespace quimo::grid {

/// A number for people: "1,234.50", "$1,234.50", "12.5%". The value is any number, or its text;
/// nothing is 0. What is no number is shown as it is. Exact: halves are rounded away from zero, and
/// no binary fraction is involved where the database used none. Whole numbers have no decimals
/// whatever is asked for.
QString NumeroVisible(const QVariant& valor, TipoCelda tipo, int decimales);

/// The same for other programs: the digits that are shown, with a point and nothing else.
QString NumeroPlano(const QVariant& valor, TipoCelda tipo, int decimales);

/// All digits of a number with a point, money with its four decimals; of anything else its text.
QString Cifras(const QVariant& valor);

}  // namespace quimo::grid
