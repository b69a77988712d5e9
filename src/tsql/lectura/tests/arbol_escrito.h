#pragma once

#include <string>

#include "tsql/lectura/parser.h"

namespace quimo::tsql {

// Trees as one line of text, every group in parentheses, for tests to compare. A constant that the
// tree names by position is written #0.
std::string Escribir(const Expr& expr);
std::string Escribir(const Consulta& consulta);
std::string Escribir(const Sentencia& sentencia);
/// "numeric(10,2)", "varchar(5)", "int".
std::string Escribir(const Tipo& tipo);
/// All statements of a text, separated by " ; ". The text must be one that can be read.
std::string ArbolDe(const std::string& texto, Constantes constantes = Constantes::EnElArbol);

}  // namespace quimo::tsql
