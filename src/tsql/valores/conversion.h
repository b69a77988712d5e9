#pragma once

#include "tsql/valores/error_sql.h"
#include "tsql/valores/fechas.h"
#include "tsql/valores/tipos.h"
#include "tsql/valores/valor.h"

namespace quimo::tsql {

/// What a conversion is for, which decides about texts that are too long.
enum class Destino {
    Expresion,  ///< CAST, CONVERT, a variable or a parameter: cut off in silence
    Columna,    ///< a column being written: refused, unless only blanks are lost
};

struct OpcionesConversion {
    Destino destino = Destino::Expresion;
    int estilo = 0;
    OrdenFecha orden = OrdenFecha::Dma;
};

/// A value of one type as the value of another, by the server's rules of rounding and range.
Resultado<Valor> Convertir(const Valor& valor, const Tipo& de, const Tipo& a,
                           const OpcionesConversion& opciones = {});

/// Whether the server converts without CAST or CONVERT: a failure names both types.
Resultado<bool> PermiteImplicita(const Tipo& de, const Tipo& a);

/// A date as its text; the error of an unknown style.
Resultado<std::string> FechaATexto(std::int64_t milisegundos, int estilo);

/// A real as the server writes it: six digits in style 0, eight or sixteen in 1 and 2.
std::string RealATexto(double valor, int estilo);

}  // namespace quimo::tsql
