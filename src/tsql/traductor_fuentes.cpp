#include <algorithm>
#include <utility>

#include "tsql/texto.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

bool TieneExterna(const Fuente& fuente) {
    if (fuente.clase != Fuente::Clase::Join) return false;
    return fuente.join == TipoJoin::Derecha || fuente.join == TipoJoin::Completa ||
           TieneExterna(*fuente.izquierda) || TieneExterna(*fuente.derecha);
}

}  // namespace

Resultado<std::string> Traductor::Desde(const std::vector<FuentePtr>& fuentes, Ambito& ambito) {
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

Resultado<std::string> Traductor::FuenteSql(const Fuente& fuente, Ambito& ambito) {
    if (fuente.clase == Fuente::Clase::Tabla) return TablaSql(fuente, ambito);
    if (fuente.clase == Fuente::Clase::Join) return JoinSql(fuente, ambito);
    return DerivadaSql(*fuente.consulta, fuente.alias, fuente.columnas, ambito, ambito.padre);
}

Hecho Traductor::Exponer(TablaAmbito tabla, Ambito& ambito) const {
    for (const TablaAmbito& otra : ambito.tablas) {
        if (MismoNombre(otra.expuesto, tabla.expuesto)) {
            return CrearError(1013, otra.expuesto, tabla.expuesto);
        }
    }
    ambito.tablas.push_back(std::move(tabla));
    return {};
}

TablaAmbito Traductor::AmbitoDe(const TablaPtr& tabla, const std::string& expuesto) {
    TablaAmbito ambito;
    ambito.expuesto = expuesto;
    ambito.alias_sql = "\"t" + std::to_string(siguiente_tabla_++) + "\"";
    ambito.tabla = tabla;
    ambito.columnas.reserve(tabla->columnas.size());
    const std::string punto = ambito.alias_sql + ".";
    for (const ColumnaTabla& columna : tabla->columnas) {
        ambito.columnas.push_back({columna.nombre, punto + EntreComillas(columna.nombre),
                                   columna.tipo, columna.admite_nulos});
    }
    usadas_.push_back(tabla);
    return ambito;
}

Resultado<std::string> Traductor::TablaSql(const Fuente& fuente, Ambito& ambito) {
    const NombreObjeto& nombre = fuente.nombre;
    const std::string expuesto = fuente.alias.empty() ? nombre.objeto : fuente.alias;
    for (std::size_t f = comunes_.size(); f > 0 && nombre.esquema.empty(); --f) {
        const auto& marco = comunes_[f - 1];
        for (std::size_t i = 0; i < marco.size(); ++i) {
            if (!MismoNombre(marco[i].nombre, nombre.objeto)) continue;
            const ExpresionComun comun = marco[i];
            // It sees only those declared before it.
            auto visibles = comunes_;
            visibles.resize(f);
            visibles.back().resize(i);
            std::swap(visibles, comunes_);
            auto sql = DerivadaSql(*comun.consulta, expuesto, comun.columnas, ambito, nullptr);
            std::swap(visibles, comunes_);
            return sql;
        }
    }
    if (const TablaPtr tabla = entorno_.catalogo->BuscarTabla(nombre)) {
        TablaAmbito nueva = AmbitoDe(tabla, expuesto);
        const std::string sql = tabla->sql + " AS " + nueva.alias_sql;
        QUIMO_TRY_VOID(Exponer(std::move(nueva), ambito));
        return sql;
    }
    const ModuloPtr modulo = entorno_.catalogo->BuscarModulo(nombre);
    if (!modulo || modulo->clase != CrearModulo::Clase::Vista)
        return CrearError(208, nombre.Completo());
    if (vistas_ > 32) return CrearError(217, "32");
    ++vistas_;
    std::vector<std::vector<ExpresionComun>> ninguna;
    std::swap(ninguna, comunes_);
    auto sql = DerivadaSql(*modulo->consulta, expuesto, modulo->columnas, ambito, nullptr);
    std::swap(ninguna, comunes_);
    --vistas_;
    return sql;
}

Resultado<TablaAmbito> Traductor::TablaDerivada(const ConsultaSql& dentro,
                                                const std::string& nombre,
                                                const std::vector<std::string>& columnas) {
    if (!dentro.variables.empty()) return CrearError(141);
    if (!columnas.empty() && columnas.size() != dentro.columnas.size()) {
        return CrearError(columnas.size() < dentro.columnas.size() ? 8158 : 8159, nombre);
    }
    TablaAmbito tabla;
    tabla.expuesto = nombre;
    tabla.alias_sql = "\"t" + std::to_string(siguiente_tabla_++) + "\"";
    for (std::size_t i = 0; i < dentro.columnas.size(); ++i) {
        ColumnaAmbito columna;
        columna.nombre = columnas.empty() ? dentro.columnas[i].nombre : columnas[i];
        if (columna.nombre.empty()) return CrearError(8155, std::to_string(i + 1), nombre);
        for (const ColumnaAmbito& otra : tabla.columnas) {
            if (MismoNombre(otra.nombre, columna.nombre))
                return CrearError(8156, columna.nombre, nombre);
        }
        columna.sql = tabla.alias_sql + ".\"q" + std::to_string(i + 1) + "\"";
        columna.tipo = dentro.columnas[i].tipo;
        if (columna.tipo.clase == Clase::Nulo) columna.tipo = TipoEntero(Clase::Int);
        columna.admite_nulos = dentro.columnas[i].admite_nulos;
        tabla.columnas.push_back(std::move(columna));
    }
    return tabla;
}

Resultado<std::string> Traductor::DerivadaSql(const Consulta& consulta, const std::string& nombre,
                                              const std::vector<std::string>& columnas,
                                              Ambito& ambito, Ambito* padre) {
    QUIMO_TRY(const ConsultaSql dentro, ConsultaEn(consulta, padre));
    QUIMO_TRY(TablaAmbito tabla, TablaDerivada(dentro, nombre, columnas));
    const std::string sql = "(" + dentro.sql + ") AS " + tabla.alias_sql;
    QUIMO_TRY_VOID(Exponer(std::move(tabla), ambito));
    return sql;
}

}  // namespace quimo::tsql
