#include "tsql/reescritura/busqueda_de_grupo.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tsql/reescritura/arbol_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

bool EsColumnaDe(const Expr& expr, const std::string& nombre) {
    return expr.clase == ClaseExpr::Columna && expr.partes.size() > 1 &&
           MismoNombre(expr.partes[expr.partes.size() - 2], nombre);
}

/// SUM and the like of no rows are NULL, as is the column of a row that a join did not find.
bool EsNuloSinFilas(const Expr& expr) {
    constexpr auto kAgregados = std::to_array<std::string_view>({"SUM", "MIN", "MAX", "AVG"});
    return EsAgregado(expr) &&
           std::find(kAgregados.begin(), kAgregados.end(), expr.texto) != kAgregados.end();
}

}  // namespace

const Fuente* OpcionalDerivada(const Fuente& join) {
    const Fuente* opcional = nullptr;
    if (join.join == TipoJoin::Izquierda) opcional = join.derecha.get();
    if (join.join == TipoJoin::Derecha) opcional = join.izquierda.get();
    if (opcional == nullptr || opcional->clase != Fuente::Clase::Derivada) return nullptr;
    return opcional;
}

bool BuscarGrupo(const Fuente& join, const PiezasDeGrupo& grupo, TablaAmbito& tabla, Ambito& ambito,
                 Valorador& valores) {
    const Fuente& opcional = *OpcionalDerivada(join);
    if (!grupo.clave.tipo.EsEntero() || !EsIgualdad(*join.condicion)) return false;
    ExprPtr de_grupo = join.condicion->hijos[0];
    ExprPtr de_fila = join.condicion->hijos[1];
    if (!EsColumnaDe(*de_grupo, opcional.alias)) std::swap(de_grupo, de_fila);
    if (!EsColumnaDe(*de_grupo, opcional.alias) || EsColumnaDe(*de_fila, opcional.alias) ||
        de_fila->clase != ClaseExpr::Columna || de_fila->partes.size() < 2) {
        return false;
    }
    const auto fila = valores.Valor(de_fila, ambito);
    if (!fila || !fila->tipo.EsEntero()) return false;
    bool por_clave = false;
    for (std::size_t i = 0; i < tabla.columnas.size(); ++i) {
        por_clave = por_clave || (MismoNombre(tabla.columnas[i].nombre, de_grupo->partes.back()) &&
                                  grupo.lista[i] == grupo.clave.sql);
    }
    if (!por_clave) return false;
    const std::vector<ItemSeleccion>& items = opcional.consulta->simple->items;
    for (std::size_t i = 0; i < tabla.columnas.size(); ++i) {
        ColumnaAmbito& columna = tabla.columnas[i];
        const bool sin_filas_nulo =
            items.size() == tabla.columnas.size() && EsNuloSinFilas(*items[i].expr);
        columna.sql = "(SELECT " + grupo.lista[i] + " FROM " + grupo.desde + " WHERE " +
                      (grupo.donde.empty() ? "" : "(" + grupo.donde + ") AND ") +
                      Par(grupo.clave, Fuerza::Orden) + "=" + Par(*fila, Fuerza::Orden) +
                      (sin_filas_nulo ? "" : " GROUP BY " + grupo.clave.sql) + ")";
        columna.admite_nulos = true;
    }
    return true;
}

}  // namespace quimo::tsql
