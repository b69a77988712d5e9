#pragma once

#include <cstdint>
#include <span>

#include <QStringView>

namespace quimo::catalog {

/// An entry of a fixed list: what is read and the letter that is stored.
struct ItemCodigo {
    QStringView texto = {};
    QStringView codigo = {};
};

/// What a filter shows of a stored code that is not in its column's list.
enum class OtroCodigo : std::uint8_t {
    Nada,      ///< nothing
    ElUltimo,  ///< the last entry's text, which then stands for every other code, its own included
};

/// One column that a catalogue offers in its filter dialog. What the result grid shows is a select
/// list's expression or, for a column of codes, the text of each code under the name `expresion`.
struct ColumnaFiltro {
    QStringView titulo;     ///< caption, in the conditions and in the result grid
    QStringView expresion;  ///< see above
    QStringView columna;    ///< what a condition compares; it may be another column
    std::span<const ItemCodigo> codigos = {};  ///< the list of the field that edits the column
    OtroCodigo otro = OtroCodigo::Nada;
};

/// What the filter dialog asks of a catalogue. The first column is the record's key.
struct FiltroDef {
    QStringView base;  ///< the tables followed by " WHERE", and the joins where there are several
    std::span<const ColumnaFiltro> columnas;
};

}  // namespace quimo::catalog
