#include "tsql/reescritura/rangos_prefijo.h"

#include <algorithm>
#include <limits>

#include "tsql/reescritura/arbol_interno.h"

namespace quimo::tsql {

namespace {

std::int64_t Maximo(const Tipo& entero) {
    if (entero.clase == Clase::TinyInt) return std::numeric_limits<std::uint8_t>::max();
    if (entero.clase == Clase::SmallInt) return std::numeric_limits<std::int16_t>::max();
    if (entero.clase == Clase::Int) return std::numeric_limits<std::int32_t>::max();
    return std::numeric_limits<std::int64_t>::max();
}

/// All rows of several queries. In halves: the engine reads only so many levels of parentheses.
ConsultaPtr Unir(std::vector<ConsultaPtr> consultas) {
    while (consultas.size() > 1) {
        std::vector<ConsultaPtr> pares;
        for (std::size_t i = 0; i + 1 < consultas.size(); i += 2) {
            Consulta par;
            par.combinacion = Combinacion::UnionTodo;
            par.izquierda = consultas[i];
            par.derecha = consultas[i + 1];
            pares.push_back(std::make_shared<const Consulta>(std::move(par)));
        }
        if (consultas.size() % 2 == 1) pares.push_back(consultas.back());
        consultas = std::move(pares);
    }
    return consultas[0];
}

}  // namespace

std::optional<Rangos> RangosDePrefijo(const Expr& como, const Tipo& tipo, Lote* lote) {
    if (!tipo.EsEntero() || tipo.clase == Clase::Bit || como.hijos.size() != 2) return std::nullopt;
    const auto patron = Fijar(*como.hijos[1], lote);
    if (!patron || !patron->tipo.EsTexto()) return std::nullopt;
    const std::string& texto = patron->valor.texto;
    constexpr std::size_t kCifras = 18;
    if (texto.size() < 2 || texto.size() > kCifras + 1 || texto.back() != '%') return std::nullopt;
    const std::string cifras = texto.substr(0, texto.size() - 1);
    if (cifras.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
    Rangos rangos;
    // No number but zero is written with a zero in front.
    if (cifras[0] == '0') {
        if (cifras.size() == 1) rangos.emplace_back(0, 0);
        return rangos;
    }
    const Int128 tope = Maximo(tipo);
    const Int128 prefijo = std::stoll(cifras);
    for (Int128 potencia = 1; prefijo * potencia <= tope; potencia *= 10) {
        const Int128 hasta = std::min((prefijo + 1) * potencia - 1, tope);
        rangos.emplace_back(static_cast<std::int64_t>(prefijo * potencia),
                            static_cast<std::int64_t>(hasta));
    }
    return rangos;
}

Termino EnRangos(const Termino& numero, const Rangos& rangos, bool negado) {
    std::string sql;
    for (const auto& [desde, hasta] : rangos) {
        sql += (sql.empty() ? "" : " OR ") + numero.sql + " BETWEEN " + std::to_string(desde) +
               " AND " + std::to_string(hasta);
    }
    if (negado) return Verdad("NOT (" + sql + ")", Fuerza::No);
    return Verdad("(" + sql + ")", Fuerza::Atomo);
}

std::optional<Consulta> ExtremoPorRangos(const Consulta& consulta, const Ambito& ambito,
                                         Lote* lote) {
    const Seleccion& seleccion = *consulta.simple;
    const bool sencilla = seleccion.items.size() == 1 && seleccion.fuentes.size() == 1 &&
                          ambito.tablas.size() == 1 && seleccion.donde &&
                          seleccion.donde->clase == ClaseExpr::Como && !seleccion.donde->negado &&
                          seleccion.grupos.empty() && !seleccion.teniendo && !seleccion.distinto &&
                          !seleccion.tope && consulta.orden.empty();
    if (!sencilla) return std::nullopt;
    const ItemSeleccion& item = seleccion.items[0];
    const Expr& extremo = *item.expr;
    const Expr& como = *seleccion.donde;
    if (!EsAgregado(extremo) || (extremo.texto != "MAX" && extremo.texto != "MIN") ||
        extremo.hijos.size() != 1 || extremo.hijos[0]->clase != ClaseExpr::Columna ||
        !DicenLoMismo(*extremo.hijos[0], *como.hijos[0], ambito, lote)) {
        return std::nullopt;
    }
    const auto columna = BuscarColumna(*extremo.hijos[0], ambito);
    if (!columna || *columna == nullptr) return std::nullopt;
    const auto rangos = RangosDePrefijo(como, (*columna)->tipo, lote);
    if (!rangos || rangos->size() < 2) return std::nullopt;
    std::vector<ConsultaPtr> cada;
    for (const auto& [desde, hasta] : *rangos) {
        Consulta una;
        una.simple.emplace();
        una.simple->items.push_back({item.expr, "m", {}});
        una.simple->fuentes = seleccion.fuentes;
        una.simple->donde = Nodo(ClaseExpr::Entre, {},
                                 {como.hijos[0], ComoTipo(Entero(desde), (*columna)->tipo),
                                  ComoTipo(Entero(hasta), (*columna)->tipo)});
        cada.push_back(std::make_shared<const Consulta>(std::move(una)));
    }
    Consulta nueva;
    nueva.simple.emplace();
    nueva.simple->fuentes.push_back(Derivada(*Unir(std::move(cada)), "rangos"));
    nueva.simple->items.push_back(
        {Nodo(ClaseExpr::Funcion, extremo.texto, {Hoja(ClaseExpr::Columna, {}, {"m"})}), item.alias,
         item.variable});
    return nueva;
}

}  // namespace quimo::tsql
