#pragma once

#include <QPair>
#include <QString>
#include <QVector>

#include "catalog/declaracion/filtro_def.h"
#include "data/valores_escritos.h"

namespace quimo::catalog {

enum class Operador {
    Contiene,
    Empieza,
    Igual,
    Distinto,
    MayorIgual,
    MenorIgual,
    Entre,
    Vacio,
};

/// How an operator is called on the screen.
QString NombreDe(Operador operador);

/// A code that a column stores, and what is shown for it. An empty code: every other one.
struct CodigoMostrado {
    QString codigo;
    QString texto;
};

/// The codes of a filter's column as a condition translates them; none when it has no list.
QVector<CodigoMostrado> CodigosDe(const ColumnaFiltro& columna);

/// What a select list shows of a filter's column: its expression or, of one with codes,
/// "CASE columna WHEN 'E' THEN 'Efectivo' ... END AS expresion".
QString ExpresionDe(const ColumnaFiltro& columna);

/// A column on which rows can be filtered.
struct ColumnaFiltrable {
    QString titulo;
    QString columna;  ///< as the statement names it
    data::TipoSql tipo = data::TipoSql::VarChar;
    QVector<CodigoMostrado> codigos = {};

    /// The operators that make sense for it, the usual one first.
    QVector<Operador> Operadores() const;
};

/// What the user asks of one column. Without a value it asks nothing, but for "vacío".
struct Condicion {
    qsizetype columna = 0;  ///< its place
    Operador operador = Operador::Igual;
    QString valor = {};
    QString hasta = {};  ///< the upper end of "entre"; either end may be left open
};

/// Why a condition cannot be sent, in Spanish, and whose it is.
struct CondicionMalEscrita {
    qsizetype columna = 0;
    QString mensaje;
};

/// The condition as T-SQL; empty when it asks nothing. Texts have their apostrophes doubled and
/// stand for themselves in LIKE; a date means the whole day. "Distinto" holds for empty values too.
base::Result<QString, CondicionMalEscrita> TextoDeCondicion(const ColumnaFiltrable& columna,
                                                            const Condicion& condicion);

}  // namespace quimo::catalog
