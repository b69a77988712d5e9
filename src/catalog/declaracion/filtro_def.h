#pragma once

#include <span>

#include <QStringView>

namespace quimo::catalog {

/// One column that a catalogue offers in its filter dialog.
struct ColumnaFiltro {
    QStringView titulo;     ///< caption, in the conditions and in the result grid
    QStringView expresion;  ///< what the result grid shows, as a select list writes it
    QStringView columna;    ///< what a condition compares; it may be another column
};

/// What the filter dialog asks of a catalogue. The first column is the record's key.
struct FiltroDef {
    QStringView base;  ///< the tables followed by " WHERE", and the joins where there are several
    std::span<const ColumnaFiltro> columnas;
};

}  // namespace quimo::catalog
