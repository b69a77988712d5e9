#include "tsql/reescritura/filtro_opcional.h"

#include <algorithm>

#include "tsql/reescritura/arbol_interno.h"

namespace quimo::tsql {

namespace {

bool EncabezaIndice(const Tabla& tabla, const Expr& expr) {
    if (expr.clase != ClaseExpr::Columna) return false;
    const int columna = tabla.Columna(expr.partes.back());
    return columna >= 0 &&
           std::any_of(tabla.indices.begin(), tabla.indices.end(),
                       [&](const Indice& indice) { return indice.columnas[0] == columna; });
}

bool EsBusquedaPorIndice(const Tabla& tabla, const Expr& parte) {
    return parte.clase == ClaseExpr::EnConsulta && !parte.negado &&
           EncabezaIndice(tabla, *parte.hijos[0]);
}

/// The engine finds the row of the other side by an index as it is.
bool UnePorIndice(const Tabla& tabla, const Expr& parte) {
    return EsIgualdad(parte) &&
           (EncabezaIndice(tabla, *parte.hijos[0]) || EncabezaIndice(tabla, *parte.hijos[1]));
}

}  // namespace

std::optional<std::string> FiltrarOpcional(const Fuente& join, const Ambito& ambito,
                                           Valorador& valores) {
    const TablaAmbito& opcional = ambito.tablas.back();
    if (join.derecha->clase != Fuente::Clase::Tabla || !opcional.tabla) return std::nullopt;
    std::vector<ExprPtr> partes;
    Conjunciones(join.condicion, partes);
    if (std::none_of(partes.begin(), partes.end(), [&](const ExprPtr& parte) {
            return EsBusquedaPorIndice(*opcional.tabla, *parte);
        })) {
        return std::nullopt;
    }
    Ambito sola;
    sola.clausula = Clausula::Union;
    sola.tablas.push_back(opcional);
    Ambito todas = ambito;
    std::string dentro;
    std::string fuera;
    for (const ExprPtr& parte : partes) {
        const std::size_t marca = valores.Marca();
        auto termino = valores.Valor(parte, sola);
        const bool suya = termino.has_value();
        if (!suya) {
            if (UnePorIndice(*opcional.tabla, *parte)) return std::nullopt;
            valores.Volver(marca);
            termino = valores.Valor(parte, todas);
            if (!termino) return std::nullopt;
        }
        std::string& donde = suya ? dentro : fuera;
        donde += (donde.empty() ? "" : " AND ") + Par(*termino, Fuerza::No);
    }
    // The limit keeps the engine from putting the query back into the join.
    return "(SELECT * FROM " + opcional.tabla->sql + " AS " + opcional.alias_sql + " WHERE " +
           dentro + " LIMIT -1) AS " + opcional.alias_sql + " ON " + (fuera.empty() ? "1" : fuera);
}

}  // namespace quimo::tsql
