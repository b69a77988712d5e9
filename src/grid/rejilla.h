#pragma once

#include "grid/celda.h"

namespace quimo::grid {

/// A grid of cells that is read by its places, from 0, to be copied or exported. Whoever has the
/// rows implements it over them, so that a long result is not held twice. The first rows are its
/// captions, and titles above them: cells like all others, that stay in sight in a workbook.
class Rejilla {
public:
    Rejilla() = default;
    Rejilla(const Rejilla&) = delete;
    Rejilla& operator=(const Rejilla&) = delete;
    virtual ~Rejilla() = default;

    /// What it is called: the sheet's name in a workbook.
    virtual QString Nombre() const = 0;
    virtual qsizetype Filas() const = 0;
    virtual qsizetype Columnas() const = 0;
    /// How many of the first rows are titles and captions; the last of them is the captions.
    virtual qsizetype FilasDeTitulos() const = 0;
    virtual Celda En(qsizetype fila, qsizetype columna) const = 0;
};

}  // namespace quimo::grid
