#include <algorithm>
#include <utility>

#include "tsql/reescritura/arbol_interno.h"

namespace quimo::tsql {

ExprPtr Hoja(ClaseExpr clase, std::string texto, std::vector<std::string> partes) {
    Expr expr{clase};
    expr.texto = std::move(texto);
    expr.partes = std::move(partes);
    return std::make_shared<const Expr>(std::move(expr));
}

ExprPtr Nodo(ClaseExpr clase, std::string texto, std::vector<ExprPtr> hijos) {
    Expr expr{clase};
    expr.texto = std::move(texto);
    for (const ExprPtr& hijo : hijos)
        expr.altura = std::max(expr.altura, hijo->altura + 1);
    expr.hijos = std::move(hijos);
    return std::make_shared<const Expr>(std::move(expr));
}

ExprPtr Entero(std::int64_t numero) {
    Expr expr{ClaseExpr::Literal};
    expr.tipo = TipoEntero(Clase::BigInt);
    expr.literal = Literal{expr.tipo, Valor::De(numero)};
    return std::make_shared<const Expr>(std::move(expr));
}

ExprPtr Por(const ExprPtr& a, const ExprPtr& b) {
    return a ? Nodo(ClaseExpr::Binaria, "*", {a, b}) : b;
}

ExprPtr ComoTipo(const ExprPtr& expr, const Tipo& tipo) {
    Expr conversion = *Nodo(ClaseExpr::Conversion, "CAST", {expr});
    conversion.tipo = tipo;
    return std::make_shared<const Expr>(std::move(conversion));
}

ExprPtr Ademas(const ExprPtr& condicion, const ExprPtr& otra) {
    return condicion ? Nodo(ClaseExpr::Binaria, "AND", {condicion, otra}) : otra;
}

FuentePtr Derivada(Consulta consulta, std::string alias) {
    Fuente fuente;
    fuente.clase = Fuente::Clase::Derivada;
    fuente.alias = std::move(alias);
    fuente.consulta = std::make_shared<const Consulta>(std::move(consulta));
    return std::make_shared<const Fuente>(std::move(fuente));
}

void Conjunciones(const ExprPtr& condicion, std::vector<ExprPtr>& partes) {
    if (!condicion) return;
    if (condicion->clase != ClaseExpr::Binaria || condicion->texto != "AND") {
        partes.push_back(condicion);
        return;
    }
    Conjunciones(condicion->hijos[0], partes);
    Conjunciones(condicion->hijos[1], partes);
}

bool EsIgualdad(const Expr& expr) { return expr.clase == ClaseExpr::Binaria && expr.texto == "="; }

}  // namespace quimo::tsql
