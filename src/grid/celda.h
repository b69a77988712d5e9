#pragma once

#include <cstdint>

#include <QString>
#include <QVariant>

namespace quimo::grid {

/// What a cell holds and how it is shown, on the screen, on paper and in an exported file.
enum class TipoCelda : std::uint8_t {
    Estatico,  ///< a label; never edited
    Texto,
    Entero,      ///< a whole number, thousands apart
    Numero,      ///< thousands apart
    Moneda,      ///< thousands apart, with the currency sign
    Porcentaje,  ///< with the percent sign
    Casilla,     ///< yes or no
    Fecha,       ///< a day, or a moment
    Lista,       ///< a key, shown by its text
};

/// Whether cells of this kind hold a number.
constexpr bool EsNumerica(TipoCelda tipo) {
    return tipo == TipoCelda::Entero || tipo == TipoCelda::Numero || tipo == TipoCelda::Moneda ||
           tipo == TipoCelda::Porcentaje;
}

/// One cell. A value is a QVariant as the database gives them: not valid for nothing, bool, int,
/// qlonglong, double, base::Dinero, base::Decimal, QDateTime (a wall clock, marked UTC), QString.
struct Celda {
    QString texto = {};  ///< as people read it
    QString plano = {};  ///< as other programs read it: a number with a point and nothing else
    QVariant valor = {};
    TipoCelda tipo = TipoCelda::Texto;
    bool negrita = false;
    int puntos = 0;  ///< size of its letters; 0: the usual one
};

}  // namespace quimo::grid
