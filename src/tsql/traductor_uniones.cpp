#include <algorithm>
#include <utility>

#include "tsql/texto.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

bool EsColumnaDe(const Expr& expr, const std::string& nombre) {
    return expr.clase == ClaseExpr::Columna && expr.partes.size() > 1 &&
           MismoNombre(expr.partes[expr.partes.size() - 2], nombre);
}

bool EsIgualdad(const Expr& expr) { return expr.clase == ClaseExpr::Binaria && expr.texto == "="; }

/// SUM and the like of no rows are NULL, as is the column of a row that a join did not find.
bool EsNuloSinFilas(const Expr& expr) {
    constexpr auto kAgregados = std::to_array<std::string_view>({"SUM", "MIN", "MAX", "AVG"});
    return EsAgregado(expr) &&
           std::find(kAgregados.begin(), kAgregados.end(), expr.texto) != kAgregados.end();
}

void Conjunciones(const ExprPtr& expr, std::vector<ExprPtr>& partes) {
    if (expr->clase == ClaseExpr::Binaria && expr->texto == "AND") {
        Conjunciones(expr->hijos[0], partes);
        Conjunciones(expr->hijos[1], partes);
    } else {
        partes.push_back(expr);
    }
}

bool EncabezaIndice(const Tabla& tabla, const Expr& expr) {
    if (expr.clase != ClaseExpr::Columna) return false;
    const int columna = tabla.Columna(expr.partes.back());
    return columna >= 0 &&
           std::any_of(tabla.indices.begin(), tabla.indices.end(),
                       [&](const Indice& indice) { return indice.columnas[0] == columna; });
}

bool TieneOpcionalDerivada(const Fuente& fuente) {
    if (fuente.join == TipoJoin::Izquierda) {
        return fuente.derecha->clase == Fuente::Clase::Derivada;
    }
    return fuente.join == TipoJoin::Derecha && fuente.izquierda->clase == Fuente::Clase::Derivada;
}

}  // namespace

Resultado<std::string> Traductor::JoinSql(const Fuente& fuente, Ambito& ambito) {
    if (++niveles_ > 1000) return CrearError(191);
    std::string izquierda;
    std::string derecha;
    if (TieneOpcionalDerivada(fuente)) {
        QUIMO_TRY(std::optional<std::string> busqueda,
                  ConGrupos(fuente, ambito, izquierda, derecha));
        if (busqueda) {
            --niveles_;
            return *std::move(busqueda);
        }
    } else {
        QUIMO_TRY(izquierda, FuenteSql(*fuente.izquierda, ambito));
        QUIMO_TRY(derecha, FuenteSql(*fuente.derecha, ambito));
    }
    --niveles_;
    std::string condicion;
    if (fuente.condicion) {
        const Clausula antes = ambito.clausula;
        ambito.clausula = Clausula::Union;
        const std::size_t ranuras = ranuras_.size();
        QUIMO_TRY(const Termino termino, Valor(fuente.condicion, ambito));
        condicion = " ON " + termino.sql;
        // The condition is read anew for this: not inside another that is.
        if (fuente.join == TipoJoin::Izquierda && !filtrando_) {
            const std::vector<tsql::Ranura> todas = ranuras_;
            const int niveles = niveles_;
            ranuras_.resize(ranuras);
            filtrando_ = true;
            const auto filtrada = FiltrarOpcional(fuente, ambito);
            filtrando_ = false;
            niveles_ = niveles;
            if (filtrada) {
                ambito.clausula = antes;
                return izquierda + " LEFT JOIN " + *filtrada;
            }
            ranuras_ = todas;
        }
        ambito.clausula = antes;
    }
    const bool izquierda_join = fuente.izquierda->clase == Fuente::Clase::Join;
    const bool derecha_join = fuente.derecha->clase == Fuente::Clase::Join;
    if (fuente.join == TipoJoin::Derecha) {
        if (izquierda_join) izquierda = "(" + izquierda + ")";
        return derecha + " LEFT JOIN " + izquierda + condicion;
    }
    if (derecha_join) derecha = "(" + derecha + ")";
    std::string verbo = " JOIN ";
    if (fuente.join == TipoJoin::Izquierda) verbo = " LEFT JOIN ";
    if (fuente.join == TipoJoin::Completa) verbo = " FULL JOIN ";
    // The engine puts the two sides of any other join in the order that it thinks best.
    if (fuente.join == TipoJoin::Delante) verbo = " CROSS JOIN ";
    return izquierda + verbo + derecha + condicion;
}

/// A join that keeps one side's rows, with a query in parentheses on the other. Either it becomes a
/// look-up of groups, and then this is its whole SQL, or both sides' SQL is left in `izquierda` and
/// `derecha`. Each side is read once: joins of such queries stand inside one another.
Resultado<std::optional<std::string>> Traductor::ConGrupos(const Fuente& fuente, Ambito& ambito,
                                                           std::string& izquierda,
                                                           std::string& derecha) {
    const bool por_la_izquierda = fuente.join == TipoJoin::Izquierda;
    const Fuente& opcional = por_la_izquierda ? *fuente.derecha : *fuente.izquierda;
    const Fuente& conservada = por_la_izquierda ? *fuente.izquierda : *fuente.derecha;
    std::string& sql = por_la_izquierda ? izquierda : derecha;
    std::string& sql_opcional = por_la_izquierda ? derecha : izquierda;
    const std::size_t tablas = ambito.tablas.size();
    QUIMO_TRY(sql, FuenteSql(conservada, ambito));
    QUIMO_TRY(const ConsultaSql dentro, ConsultaEn(*opcional.consulta, ambito.padre));
    QUIMO_TRY(TablaAmbito tabla, TablaDerivada(dentro, opcional.alias, opcional.columnas));
    const bool busqueda = BuscarGrupo(fuente, opcional, dentro, tabla, ambito);
    if (!busqueda) sql_opcional = "(" + dentro.sql + ") AS " + tabla.alias_sql;
    QUIMO_TRY_VOID(Exponer(std::move(tabla), ambito));
    if (!por_la_izquierda) {
        const auto primera = ambito.tablas.begin() + static_cast<std::ptrdiff_t>(tablas);
        std::rotate(primera, ambito.tablas.end() - 1, ambito.tablas.end());
    }
    return busqueda ? std::optional<std::string>(sql) : std::nullopt;
}

/// t LEFT JOIN (SELECT k, SUM(x) AS s FROM ... GROUP BY k) d ON d.k = t.k: the engine would work
/// all the groups out before the first row of t. There is at most one row per key, so that d.s can
/// be asked for where it is used, which reads the rows of that key alone: the columns of `tabla`
/// become those questions. False, and nothing changed, when the join is not of this shape.
bool Traductor::BuscarGrupo(const Fuente& fuente, const Fuente& opcional, const ConsultaSql& dentro,
                            TablaAmbito& tabla, Ambito& ambito) {
    if (!dentro.grupo || !dentro.grupo->clave.tipo.EsEntero() || !EsIgualdad(*fuente.condicion)) {
        return false;
    }
    ExprPtr de_grupo = fuente.condicion->hijos[0];
    ExprPtr de_fila = fuente.condicion->hijos[1];
    if (!EsColumnaDe(*de_grupo, opcional.alias)) std::swap(de_grupo, de_fila);
    if (!EsColumnaDe(*de_grupo, opcional.alias) || EsColumnaDe(*de_fila, opcional.alias) ||
        de_fila->clase != ClaseExpr::Columna || de_fila->partes.size() < 2) {
        return false;
    }
    const auto fila = Valor(de_fila, ambito);
    if (!fila || !fila->tipo.EsEntero()) return false;
    const PiezasDeGrupo& grupo = *dentro.grupo;
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

/// a LEFT JOIN b ON b.x = a.x AND b.y IN (SELECT ...), with an index on y and none on x: the engine
/// would look at all rows of b. What the condition asks of b alone is asked first. Nothing when the
/// join is not of this shape.
std::optional<std::string> Traductor::FiltrarOpcional(const Fuente& fuente, const Ambito& ambito) {
    const TablaAmbito& opcional = ambito.tablas.back();
    if (fuente.derecha->clase != Fuente::Clase::Tabla || !opcional.tabla) return std::nullopt;
    std::vector<ExprPtr> partes;
    Conjunciones(fuente.condicion, partes);
    const auto por_indice = [&](const ExprPtr& parte) {
        return parte->clase == ClaseExpr::EnConsulta && !parte->negado &&
               EncabezaIndice(*opcional.tabla, *parte->hijos[0]);
    };
    const auto ya_sirve = [&](const ExprPtr& parte) {
        return EsIgualdad(*parte) && (EncabezaIndice(*opcional.tabla, *parte->hijos[0]) ||
                                      EncabezaIndice(*opcional.tabla, *parte->hijos[1]));
    };
    if (std::none_of(partes.begin(), partes.end(), por_indice)) return std::nullopt;
    Ambito sola;
    sola.clausula = Clausula::Union;
    sola.tablas.push_back(opcional);
    Ambito todas = ambito;
    std::string dentro;
    std::string fuera;
    for (const ExprPtr& parte : partes) {
        const std::size_t ranuras = ranuras_.size();
        auto termino = Valor(parte, sola);
        const bool suya = termino.has_value();
        if (!suya) {
            if (ya_sirve(parte)) return std::nullopt;
            ranuras_.resize(ranuras);
            termino = Valor(parte, todas);
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
