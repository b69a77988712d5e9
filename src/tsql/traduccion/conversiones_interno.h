#pragma once

#include <string>
#include <string_view>

#include "tsql/reescritura/ambito.h"
#include "tsql/reescritura/termino.h"
#include "tsql/valores/fechas.h"

namespace quimo::tsql {

using Hecho = base::Result<void, ErrorSql>;

/// A type as the engine's own functions take it.
std::string TipoSqlTexto(const Tipo& tipo);
/// The SQL of an exact number of `de` decimals, brought to `a` of them, which are no fewer.
std::string Escalar(const Termino& termino, int de, int a);

/// A value as one of another type. `orden` is how texts are read as dates.
Resultado<Termino> Convertir(Termino termino, const Tipo& a, OrdenFecha orden, int estilo = 0);
/// A value as a column of a table that is written to keeps it. `verbo`: INSERT or UPDATE.
Resultado<Termino> ConvertirParaColumna(Termino termino, const ColumnaTabla& columna,
                                        const Tabla& tabla, std::string_view verbo,
                                        OrdenFecha orden);

/// Makes two values comparable by the engine's own operators.
Hecho Igualar(Termino& a, Termino& b, OrdenFecha orden);
Resultado<Termino> CompararTerminos(std::string_view operador, Termino a, Termino b,
                                    OrdenFecha orden);
/// A text with the order that the dialect compares by; anything else as it is.
std::string Cotejada(const Termino& termino);
/// The left side of IN, BETWEEN and the like.
std::string LadoComparado(const Termino& termino);
std::string ClaveDeOrden(const Termino& termino);

/// a `operador` b of + - * / % & | ^, texts and dates included.
Resultado<Termino> Aritmetica(char operador, Termino a, Termino b, OrdenFecha orden);

}  // namespace quimo::tsql
