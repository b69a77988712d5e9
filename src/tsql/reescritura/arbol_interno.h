#pragma once

#include "tsql/lectura/ast.h"

namespace quimo::tsql {

/// Pieces of the tree, for rewrites that write queries of their own.
ExprPtr Hoja(ClaseExpr clase, std::string texto = {}, std::vector<std::string> partes = {});
ExprPtr Nodo(ClaseExpr clase, std::string texto, std::vector<ExprPtr> hijos);
ExprPtr Entero(std::int64_t numero);
/// a * b; b when there is no a.
ExprPtr Por(const ExprPtr& a, const ExprPtr& b);
ExprPtr ComoTipo(const ExprPtr& expr, const Tipo& tipo);
/// condicion AND otra; otra when there is no condition.
ExprPtr Ademas(const ExprPtr& condicion, const ExprPtr& otra);
/// (consulta) AS alias
FuentePtr Derivada(Consulta consulta, std::string alias);

/// What a condition joins by AND, one by one; nothing of a missing one.
void Conjunciones(const ExprPtr& condicion, std::vector<ExprPtr>& partes);
bool EsIgualdad(const Expr& expr);

}  // namespace quimo::tsql
