#include <algorithm>
#include <utility>

#include "tsql/reescritura/filtro_opcional.h"
#include "tsql/traduccion/fuentes_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr int kNivelesMaximos = 1000;
constexpr int kVistasMaximas = 32;

bool TieneExterna(const Fuente& fuente) {
    if (fuente.clase != Fuente::Clase::Join) return false;
    return fuente.join == TipoJoin::Derecha || fuente.join == TipoJoin::Completa ||
           TieneExterna(*fuente.izquierda) || TieneExterna(*fuente.derecha);
}

std::string VerboDe(TipoJoin join) {
    if (join == TipoJoin::Izquierda) return " LEFT JOIN ";
    if (join == TipoJoin::Completa) return " FULL JOIN ";
    // The engine puts the two sides of any other join in the order that it thinks best.
    if (join == TipoJoin::Delante) return " CROSS JOIN ";
    return " JOIN ";
}

}  // namespace

Resultado<std::string> TraductorFuentes::Desde(const std::vector<FuentePtr>& fuentes,
                                               Ambito& ambito) {
    std::string sql;
    for (const FuentePtr& fuente : fuentes) {
        QUIMO_TRY(std::string parte, FuenteSql(*fuente, ambito));
        // The engine joins from left to right, commas included: a join that keeps the rows of its
        // right side must not see what stands before it.
        if (!sql.empty() && TieneExterna(*fuente)) parte = "(" + parte + ")";
        sql += (sql.empty() ? "" : ",") + parte;
    }
    return sql;
}

Resultado<std::string> TraductorFuentes::FuenteSql(const Fuente& fuente, Ambito& ambito) {
    if (fuente.clase == Fuente::Clase::Tabla) return TablaSql(fuente, ambito);
    if (fuente.clase == Fuente::Clase::Join) return JoinSql(fuente, ambito);
    return DerivadaSql(*fuente.consulta, fuente.alias, fuente.columnas, ambito, ambito.padre);
}

Resultado<std::string> TraductorFuentes::JoinSql(const Fuente& fuente, Ambito& ambito) {
    QUIMO_TRY(Lados lados, LadosSql(fuente, ambito));
    if (lados.enteros) return std::move(lados.izquierda);
    std::string condicion;
    if (fuente.condicion) {
        const Clausula antes = ambito.clausula;
        ambito.clausula = Clausula::Union;
        const std::size_t marca = valores_.Marca();
        QUIMO_TRY(const Termino termino, valores_.Valor(fuente.condicion, ambito));
        condicion = " ON " + termino.sql;
        const auto filtrada = OpcionalFiltrada(fuente, ambito, marca);
        ambito.clausula = antes;
        if (filtrada) return lados.izquierda + " LEFT JOIN " + *filtrada;
    }
    const auto parentesis = [](const Fuente& lado, const std::string& sql) {
        return lado.clase == Fuente::Clase::Join ? "(" + sql + ")" : sql;
    };
    if (fuente.join == TipoJoin::Derecha) {
        return lados.derecha + " LEFT JOIN " + parentesis(*fuente.izquierda, lados.izquierda) +
               condicion;
    }
    return lados.izquierda + VerboDe(fuente.join) + parentesis(*fuente.derecha, lados.derecha) +
           condicion;
}

Resultado<TraductorFuentes::Lados> TraductorFuentes::LadosSql(const Fuente& fuente,
                                                              Ambito& ambito) {
    const Nivel nivel(contexto_);
    if (nivel.Pasa(kNivelesMaximos)) return DemasiadoAnidado();
    const Fuente* const opcional = OpcionalDerivada(fuente);
    if (opcional != nullptr) return ConGrupos(fuente, *opcional, ambito);
    Lados lados;
    QUIMO_TRY(lados.izquierda, FuenteSql(*fuente.izquierda, ambito));
    QUIMO_TRY(lados.derecha, FuenteSql(*fuente.derecha, ambito));
    return lados;
}

/// A join that keeps one side's rows, with a query in parentheses on the other. Either it becomes a
/// look-up of groups, and then the side that is kept is its whole SQL, or both sides stand as they
/// are. Each side is read once: joins of such queries stand inside one another.
Resultado<TraductorFuentes::Lados> TraductorFuentes::ConGrupos(const Fuente& fuente,
                                                               const Fuente& opcional,
                                                               Ambito& ambito) {
    const bool por_la_izquierda = fuente.join == TipoJoin::Izquierda;
    const Fuente& conservada = por_la_izquierda ? *fuente.izquierda : *fuente.derecha;
    const std::size_t tablas = ambito.tablas.size();
    QUIMO_TRY(std::string sql, FuenteSql(conservada, ambito));
    QUIMO_TRY(const ConsultaSql dentro, consultas_.ConsultaEn(*opcional.consulta, ambito.padre));
    QUIMO_TRY(TablaAmbito tabla, TablaDerivada(dentro, opcional.alias, opcional.columnas));
    const bool busqueda =
        dentro.grupo && BuscarGrupo(fuente, *dentro.grupo, tabla, ambito, valores_);
    std::string sql_opcional = "(" + dentro.sql + ") AS " + tabla.alias_sql;
    QUIMO_TRY_VOID(Exponer(std::move(tabla), ambito));
    if (!por_la_izquierda) {
        const auto primera = ambito.tablas.begin() + static_cast<std::ptrdiff_t>(tablas);
        std::rotate(primera, ambito.tablas.end() - 1, ambito.tablas.end());
    }
    if (busqueda) return Lados{std::move(sql), {}, true};
    if (por_la_izquierda) return Lados{std::move(sql), std::move(sql_opcional)};
    return Lados{std::move(sql_opcional), std::move(sql)};
}

/// `marca` is where the values stood before the join's condition was read.
std::optional<std::string> TraductorFuentes::OpcionalFiltrada(const Fuente& fuente,
                                                              const Ambito& ambito,
                                                              std::size_t marca) {
    // The condition is read anew for this: not inside another that is.
    if (fuente.join != TipoJoin::Izquierda || contexto_.filtrando) return std::nullopt;
    const std::vector<Ranura> todas = contexto_.ranuras;
    valores_.Volver(marca);
    contexto_.filtrando = true;
    auto filtrada = FiltrarOpcional(fuente, ambito, valores_);
    contexto_.filtrando = false;
    if (!filtrada) contexto_.ranuras = todas;
    return filtrada;
}

Resultado<std::string> TraductorFuentes::TablaSql(const Fuente& fuente, Ambito& ambito) {
    const NombreObjeto& nombre = fuente.nombre;
    const std::string expuesto = fuente.alias.empty() ? nombre.objeto : fuente.alias;
    for (std::size_t f = contexto_.comunes.size(); f > 0 && nombre.esquema.empty(); --f) {
        const auto& marco = contexto_.comunes[f - 1];
        for (std::size_t i = 0; i < marco.size(); ++i) {
            if (MismoNombre(marco[i].nombre, nombre.objeto)) {
                return ComunSql(f - 1, i, expuesto, ambito);
            }
        }
    }
    if (const TablaPtr tabla = contexto_.entorno.catalogo->BuscarTabla(nombre)) {
        TablaAmbito nueva = AmbitoDe(tabla, expuesto);
        const std::string sql = tabla->sql + " AS " + nueva.alias_sql;
        QUIMO_TRY_VOID(Exponer(std::move(nueva), ambito));
        return sql;
    }
    return VistaSql(nombre, expuesto, ambito);
}

Resultado<std::string> TraductorFuentes::ComunSql(std::size_t marco, std::size_t cual,
                                                  const std::string& expuesto, Ambito& ambito) {
    const ExpresionComun comun = contexto_.comunes[marco][cual];
    // It sees only those declared before it.
    auto visibles = contexto_.comunes;
    visibles.resize(marco + 1);
    visibles.back().resize(cual);
    std::swap(visibles, contexto_.comunes);
    auto sql = DerivadaSql(*comun.consulta, expuesto, comun.columnas, ambito, nullptr);
    std::swap(visibles, contexto_.comunes);
    return sql;
}

Resultado<std::string> TraductorFuentes::VistaSql(const NombreObjeto& nombre,
                                                  const std::string& expuesto, Ambito& ambito) {
    const ModuloPtr modulo = contexto_.entorno.catalogo->BuscarModulo(nombre);
    if (!modulo || modulo->clase != CrearModulo::Clase::Vista)
        return ObjetoDesconocido(nombre.Completo());
    if (contexto_.vistas > kVistasMaximas) {
        return VistasDemasiadoAnidadas(std::to_string(kVistasMaximas));
    }
    ++contexto_.vistas;
    std::vector<std::vector<ExpresionComun>> ninguna;
    std::swap(ninguna, contexto_.comunes);
    auto sql = DerivadaSql(*modulo->consulta, expuesto, modulo->columnas, ambito, nullptr);
    std::swap(ninguna, contexto_.comunes);
    --contexto_.vistas;
    return sql;
}

Resultado<std::string> TraductorFuentes::DerivadaSql(const Consulta& consulta,
                                                     const std::string& nombre,
                                                     const std::vector<std::string>& columnas,
                                                     Ambito& ambito, Ambito* padre) {
    QUIMO_TRY(const ConsultaSql dentro, consultas_.ConsultaEn(consulta, padre));
    QUIMO_TRY(TablaAmbito tabla, TablaDerivada(dentro, nombre, columnas));
    const std::string sql = "(" + dentro.sql + ") AS " + tabla.alias_sql;
    QUIMO_TRY_VOID(Exponer(std::move(tabla), ambito));
    return sql;
}

Resultado<TablaAmbito> TraductorFuentes::TablaDerivada(const ConsultaSql& dentro,
                                                       const std::string& nombre,
                                                       const std::vector<std::string>& columnas) {
    if (!dentro.variables.empty()) return AsignacionConLectura();
    if (!columnas.empty() && columnas.size() != dentro.columnas.size()) {
        return columnas.size() < dentro.columnas.size() ? ColumnasSinNombrar(nombre)
                                                        : NombresDeMas(nombre);
    }
    TablaAmbito tabla;
    tabla.expuesto = nombre;
    tabla.alias_sql = contexto_.AliasNuevo();
    for (std::size_t i = 0; i < dentro.columnas.size(); ++i) {
        ColumnaAmbito columna;
        columna.nombre = columnas.empty() ? dentro.columnas[i].nombre : columnas[i];
        if (columna.nombre.empty()) return ColumnaSinNombre(std::to_string(i + 1), nombre);
        for (const ColumnaAmbito& otra : tabla.columnas) {
            if (MismoNombre(otra.nombre, columna.nombre))
                return ColumnaDosVeces(columna.nombre, nombre);
        }
        columna.sql = tabla.alias_sql + "." + NombreQ(i);
        columna.tipo = dentro.columnas[i].tipo;
        if (columna.tipo.clase == Clase::Nulo) columna.tipo = TipoEntero(Clase::Int);
        columna.admite_nulos = dentro.columnas[i].admite_nulos;
        tabla.columnas.push_back(std::move(columna));
    }
    return tabla;
}

TablaAmbito TraductorFuentes::AmbitoDe(const TablaPtr& tabla, const std::string& expuesto) {
    TablaAmbito ambito;
    ambito.expuesto = expuesto;
    ambito.alias_sql = contexto_.AliasNuevo();
    ambito.tabla = tabla;
    ambito.columnas.reserve(tabla->columnas.size());
    const std::string punto = ambito.alias_sql + ".";
    for (const ColumnaTabla& columna : tabla->columnas) {
        ambito.columnas.push_back({columna.nombre, punto + EntreComillas(columna.nombre),
                                   columna.tipo, columna.admite_nulos});
    }
    contexto_.usadas.push_back(tabla);
    return ambito;
}

Hecho Exponer(TablaAmbito tabla, Ambito& ambito) {
    for (const TablaAmbito& otra : ambito.tablas) {
        if (MismoNombre(otra.expuesto, tabla.expuesto)) {
            return NombresExpuestosIguales(otra.expuesto, tabla.expuesto);
        }
    }
    ambito.tablas.push_back(std::move(tabla));
    return {};
}

}  // namespace quimo::tsql
