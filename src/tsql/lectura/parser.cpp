#include "tsql/lectura/parser.h"

#include <utility>

#include "tsql/lectura/parser_interno.h"

namespace quimo::tsql {

Resultado<Lote> LeerLote(const std::string& texto, Lexico lexico, Constantes constantes) {
    Cursor cursor(texto, std::move(lexico), constantes);
    QUIMO_TRY_VOID(ParserSentencias(cursor).LeerTodo());
    return cursor.Terminar();
}

Resultado<Lote> LeerLote(const std::string& texto, Constantes constantes) {
    QUIMO_TRY(Lexico lexico, Analizar(texto));
    return LeerLote(texto, std::move(lexico), constantes);
}

Resultado<ExprPtr> LeerExpresion(const std::string& texto) {
    QUIMO_TRY(Lexico lexico, Analizar(texto));
    Cursor cursor(texto, std::move(lexico), Constantes::EnElArbol);
    QUIMO_TRY(ExprPtr expr, ParserConsultas(cursor).Expresiones().ValorOCondicion());
    if (!cursor.Fin()) return cursor.Sintaxis();
    return expr;
}

}  // namespace quimo::tsql
