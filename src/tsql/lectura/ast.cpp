#include "tsql/lectura/ast.h"

#include <algorithm>
#include <array>

namespace quimo::tsql {

std::string NombreObjeto::Completo() const {
    std::string nombre = objeto;
    if (!esquema.empty() || !base.empty()) nombre = esquema + "." + nombre;
    if (!base.empty()) nombre = base + "." + nombre;
    return nombre;
}

bool Expr::EsCondicion() const {
    if (clase == ClaseExpr::Binaria) {
        return texto == "AND" || texto == "OR" || texto.find_first_of("<>=") != std::string::npos;
    }
    if (clase == ClaseExpr::Unaria) return texto == "NOT";
    return clase >= ClaseExpr::Entre && clase != ClaseExpr::Subconsulta;
}

bool EsAgregado(const Expr& expr) {
    constexpr auto kAgregados = std::to_array<std::string_view>(
        {"COUNT", "COUNT_BIG", "SUM", "AVG", "MIN", "MAX", "STDEV", "STDEVP", "VAR", "VARP"});
    return expr.clase == ClaseExpr::Funcion && expr.partes.empty() && !expr.ventana &&
           std::find(kAgregados.begin(), kAgregados.end(), expr.texto) != kAgregados.end();
}

bool TieneAgregado(const Expr& expr) {
    if (EsAgregado(expr)) return true;
    return std::any_of(expr.hijos.begin(), expr.hijos.end(),
                       [](const ExprPtr& hijo) { return TieneAgregado(*hijo); });
}

bool TieneVentana(const Expr& expr) {
    return expr.ventana != nullptr ||
           std::any_of(expr.hijos.begin(), expr.hijos.end(),
                       [](const ExprPtr& hijo) { return hijo && TieneVentana(*hijo); });
}

}  // namespace quimo::tsql
