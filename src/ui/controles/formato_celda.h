#pragma once

#include <QString>
#include <QVariant>

namespace quimo::ui {

/// What a cell of the grid holds and how it is shown.
enum class TipoCelda {
    Estatico,  ///< a label; never edited
    Texto,
    Numero,      ///< thousands apart
    Moneda,      ///< thousands apart, with the currency sign
    Porcentaje,  ///< with the percent sign
    Casilla,     ///< 1 or 0, a check box
    Lista,       ///< a key, shown by its text in the column's list
};

/// Whether cells of this kind hold a number.
bool EsNumerica(TipoCelda tipo);

/// A number for people: "1,234.50", "$1,234.50", "12.5%". The value is anything that the database
/// gives for a number, or its text; NULL is 0. What is no number is shown as it is. Exact: halves
/// are rounded away from zero, and no binary fraction is involved where the database used none.
QString NumeroVisible(const QVariant& valor, TipoCelda tipo, int decimales);

}  // namespace quimo::ui
