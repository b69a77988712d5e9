#include <algorithm>
#include <utility>

#include "tsql/texto.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

constexpr std::string_view kNumerar = "q_identidad()";

}  // namespace

Resultado<TablaPtr> Traductor::TablaEscrita(const NombreObjeto& nombre) {
    TablaPtr tabla = entorno_.catalogo->BuscarTabla(nombre);
    if (!tabla) {
        if (entorno_.catalogo->BuscarModulo(nombre)) return CrearError(4406, nombre.objeto);
        return CrearError(208, nombre.Completo());
    }
    if (tabla->del_sistema) return CrearError(208, nombre.Completo());
    usadas_.push_back(tabla);
    return tabla;
}

Resultado<Traductor::Destinos> Traductor::DestinosDe(const Insertar& insertar, Plan& plan) {
    const Tabla& tabla = *plan.tabla;
    Destinos destinos;
    const bool explicita = MismoNombre(entorno_.identity_insert, tabla.nombre);
    for (const std::string& nombre : insertar.columnas) {
        const int columna = tabla.Columna(nombre);
        if (columna < 0) return CrearError(207, nombre);
        const auto& destino = tabla.columnas[static_cast<std::size_t>(columna)];
        if (!destino.calculada.empty()) return CrearError(271, destino.nombre);
        if (std::find(destinos.columnas.begin(), destinos.columnas.end(), columna) !=
            destinos.columnas.end()) {
            return CrearError(264, destino.nombre);
        }
        if (destino.identidad && !explicita) return CrearError(544, tabla.nombre);
        plan.identidad_explicita = plan.identidad_explicita || destino.identidad;
        destinos.columnas.push_back(columna);
    }
    for (std::size_t i = 0; insertar.columnas.empty() && i < tabla.columnas.size(); ++i) {
        const ColumnaTabla& columna = tabla.columnas[i];
        if (columna.calculada.empty() && !columna.identidad) {
            destinos.columnas.push_back(static_cast<int>(i));
        }
    }
    if (insertar.por_defecto) destinos.columnas.clear();
    for (const int columna : destinos.columnas) {
        destinos.nombres += (destinos.nombres.empty() ? "" : ",") +
                            EntreComillas(tabla.columnas[static_cast<std::size_t>(columna)].nombre);
    }
    for (std::size_t i = 0; i < tabla.columnas.size(); ++i) {
        const ColumnaTabla& columna = tabla.columnas[i];
        const bool dada = std::find(destinos.columnas.begin(), destinos.columnas.end(),
                                    static_cast<int>(i)) != destinos.columnas.end();
        if (dada || !columna.calculada.empty()) continue;
        std::string valor;
        if (columna.identidad) {
            if (explicita) return CrearError(545, tabla.nombre);
            plan.identidad_automatica = true;
            valor = kNumerar;
        } else {
            QUIMO_TRY(const Termino defecto, Defecto(columna, tabla));
            valor = defecto.sql;
        }
        destinos.defectos.push_back(valor);
        destinos.nombres += (destinos.nombres.empty() ? "" : ",") + EntreComillas(columna.nombre);
    }
    return destinos;
}

Resultado<Termino> Traductor::Defecto(const ColumnaTabla& columna, const Tabla& tabla) {
    Termino termino{"NULL", Tipo{}};
    termino.nulo = true;
    if (!columna.defecto.empty()) {
        QUIMO_TRY(const ExprPtr expr, LeerExpresion(columna.defecto));
        Ambito vacio;
        QUIMO_TRY(termino, Valor(expr, vacio));
        termino.expr = nullptr;
    }
    return Asignar(std::move(termino), columna, tabla, "INSERT");
}

Resultado<std::string> Traductor::FilaDeValores(const Insertar& insertar,
                                                const std::vector<ExprPtr>& fila,
                                                const Destinos& destinos, const Tabla& tabla) {
    if (fila.size() != destinos.columnas.size()) {
        if (insertar.columnas.empty()) return CrearError(213);
        return CrearError(fila.size() < destinos.columnas.size() ? 109 : 110);
    }
    std::string sql;
    Ambito vacio;
    vacio.clausula = Clausula::Donde;
    for (std::size_t i = 0; i < fila.size(); ++i) {
        const ColumnaTabla& columna =
            tabla.columnas[static_cast<std::size_t>(destinos.columnas[i])];
        Termino termino;
        if (fila[i]) {
            QUIMO_TRY(termino, ValorSuelto(fila[i], vacio));
            QUIMO_TRY(termino, Asignar(std::move(termino), columna, tabla, "INSERT"));
        } else {
            QUIMO_TRY(termino, Defecto(columna, tabla));
        }
        if (columna.identidad) termino.sql = "q_numero_dado(" + termino.sql + ")";
        sql += (sql.empty() ? "" : ",") + termino.sql;
    }
    for (const std::string& defecto : destinos.defectos)
        sql += (sql.empty() ? "" : ",") + defecto;
    return sql;
}

Resultado<Plan> Traductor::InsertarEn(const Insertar& insertar) {
    Plan plan;
    QUIMO_TRY(plan.tabla, TablaEscrita(insertar.tabla));
    const Tabla& tabla = *plan.tabla;
    QUIMO_TRY(const Destinos destinos, DestinosDe(insertar, plan));
    std::string sql = "INSERT INTO " + tabla.sql + "(" + destinos.nombres + ") ";
    if (insertar.por_defecto) {
        QUIMO_TRY(const std::string fila, FilaDeValores(insertar, {}, destinos, tabla));
        sql += "VALUES (" + fila + ")";
    } else if (insertar.consulta) {
        QUIMO_TRY(const ConsultaSql consulta, ConsultaEn(*insertar.consulta, nullptr));
        const std::size_t dadas = consulta.columnas.size();
        if (dadas != destinos.columnas.size()) {
            if (insertar.columnas.empty()) return CrearError(213);
            return CrearError(dadas < destinos.columnas.size() ? 120 : 121);
        }
        std::string lista;
        for (std::size_t i = 0; i < dadas; ++i) {
            const ColumnaTabla& columna =
                tabla.columnas[static_cast<std::size_t>(destinos.columnas[i])];
            Termino termino{"\"q" + std::to_string(i + 1) + "\"", consulta.columnas[i].tipo,
                            Fuerza::Atomo, consulta.columnas[i].admite_nulos};
            termino.nulo = termino.tipo.clase == Clase::Nulo;
            QUIMO_TRY(termino, Asignar(std::move(termino), columna, tabla, "INSERT"));
            if (columna.identidad) termino.sql = "q_numero_dado(" + termino.sql + ")";
            lista += (i > 0 ? "," : "") + termino.sql;
        }
        for (const std::string& defecto : destinos.defectos)
            lista += (lista.empty() ? "" : ",") + defecto;
        sql += "SELECT " + lista + " FROM (" + consulta.sql + ") WHERE 1";
    } else {
        std::string filas;
        for (const std::vector<ExprPtr>& fila : insertar.filas) {
            QUIMO_TRY(const std::string valores, FilaDeValores(insertar, fila, destinos, tabla));
            filas += (filas.empty() ? "VALUES (" : ",(") + valores + ")";
        }
        sql += filas;
    }
    plan.sql = std::move(sql);
    plan.ranuras = std::move(ranuras_);
    plan.usadas = std::move(usadas_);
    return plan;
}

Resultado<Plan> Traductor::InsertarFila(const Insertar& insertar, const std::vector<Tipo>& tipos) {
    Insertar fila = insertar;
    fila.ejecutar = nullptr;
    fila.filas.emplace_back();
    for (std::size_t i = 0; i < tipos.size(); ++i) {
        Expr parametro{ClaseExpr::Parametro};
        parametro.indice = static_cast<int>(i);
        fila.filas[0].push_back(std::make_shared<const Expr>(std::move(parametro)));
    }
    return InsertarEn(fila);
}

Resultado<Traductor::Escritas> Traductor::Asignaciones(const Actualizar& actualizar,
                                                       const Tabla& tabla, Ambito& ambito) {
    Escritas escritas;
    ambito.clausula = Clausula::Asignacion;
    for (const Asignacion& asignacion : actualizar.asignaciones) {
        const int cual = tabla.Columna(asignacion.columna);
        if (cual < 0) return CrearError(207, asignacion.columna);
        const ColumnaTabla& columna = tabla.columnas[static_cast<std::size_t>(cual)];
        if (!columna.calculada.empty()) return CrearError(271, columna.nombre);
        if (columna.identidad) return CrearError(8102, columna.nombre);
        if (std::find(escritas.columnas.begin(), escritas.columnas.end(), cual) !=
            escritas.columnas.end()) {
            return CrearError(264, columna.nombre);
        }
        Termino termino;
        if (asignacion.expr) {
            QUIMO_TRY(termino, ValorSuelto(asignacion.expr, ambito));
            QUIMO_TRY(termino, Asignar(std::move(termino), columna, tabla, "UPDATE"));
        } else {
            QUIMO_TRY(termino, Defecto(columna, tabla));
        }
        escritas.columnas.push_back(cual);
        escritas.valores.push_back(termino.sql);
    }
    ambito.clausula = Clausula::Donde;
    return escritas;
}

namespace {

/// "col"=value, ... with each value by its place in the list of rows when there is one.
std::string ListaDeSet(const Tabla& tabla, const std::vector<int>& columnas,
                       const std::vector<std::string>& valores) {
    std::string sql;
    for (std::size_t i = 0; i < columnas.size(); ++i) {
        const std::string& nombre = tabla.columnas[static_cast<std::size_t>(columnas[i])].nombre;
        sql += (i > 0 ? "," : "") + EntreComillas(nombre) + "=" +
               (valores.empty() ? "\"s\".\"v" + std::to_string(i + 1) + "\"" : valores[i]);
    }
    return sql;
}

/// The numbers of the rows and their new values.
std::string ListaDeFilas(const std::string& alias, const std::vector<std::string>& valores) {
    std::string sql = "SELECT " + alias + ".rowid AS \"fila\"";
    for (std::size_t i = 0; i < valores.size(); ++i) {
        sql += "," + valores[i] + " AS \"v" + std::to_string(i + 1) + "\"";
    }
    return sql;
}

}  // namespace

Resultado<Plan> Traductor::ActualizarEn(const Actualizar& actualizar) {
    Plan plan;
    if (!actualizar.fuentes.empty()) return ActualizarDesde(actualizar, std::move(plan));
    QUIMO_TRY(plan.tabla, TablaEscrita(actualizar.tabla));
    Ambito ambito;
    ambito.tablas.push_back(AmbitoDe(plan.tabla, actualizar.tabla.objeto));
    const std::string alias = ambito.tablas[0].alias_sql;
    QUIMO_TRY(Escritas escritas, Asignaciones(actualizar, *plan.tabla, ambito));
    std::string donde;
    if (actualizar.donde) {
        QUIMO_TRY(const Termino termino, Valor(actualizar.donde, ambito));
        donde = " WHERE " + termino.sql;
    }
    const std::string blanco = plan.tabla->sql + " AS " + alias;
    if (actualizar.tope) {
        Ambito vacio;
        QUIMO_TRY(const Termino tope, Valor(actualizar.tope, vacio));
        donde = " WHERE " + alias + ".rowid IN (SELECT rowid FROM " + blanco + donde + " LIMIT " +
                tope.sql + ")";
    }
    plan.sql = "UPDATE " + blanco + " SET " +
               ListaDeSet(*plan.tabla, escritas.columnas, escritas.valores) + donde;
    plan.sql_filas = ListaDeFilas(alias, escritas.valores) + " FROM " + blanco + donde;
    plan.columnas_escritas = std::move(escritas.columnas);
    plan.ranuras = std::move(ranuras_);
    plan.usadas = std::move(usadas_);
    return plan;
}

/// Which of the tables of FROM is the one that is written to.
Resultado<std::size_t> Traductor::Blanco(const NombreObjeto& nombre, const Ambito& ambito) const {
    const TablaPtr tabla = entorno_.catalogo->BuscarTabla(nombre);
    std::size_t hallada = ambito.tablas.size();
    for (std::size_t i = 0; i < ambito.tablas.size(); ++i) {
        if (nombre.esquema.empty() && MismoNombre(ambito.tablas[i].expuesto, nombre.objeto))
            return i;
        if (tabla && ambito.tablas[i].tabla == tabla) hallada = i;
    }
    if (hallada == ambito.tablas.size()) return CrearError(208, nombre.Completo());
    return hallada;
}

/// Reads FROM and finds the table that is written to; one that FROM does not name is joined to it
/// by WHERE alone.
Resultado<std::size_t> Traductor::Escenario(const NombreObjeto& nombre,
                                            const std::vector<FuentePtr>& fuentes, Ambito& ambito,
                                            std::string& sql) {
    QUIMO_TRY(sql, Desde(fuentes, ambito));
    std::size_t cual = ambito.tablas.size();
    if (const auto blanco = Blanco(nombre, ambito)) {
        cual = *blanco;
    } else {
        QUIMO_TRY(const TablaPtr tabla, TablaEscrita(nombre));
        TablaAmbito nueva = AmbitoDe(tabla, nombre.objeto);
        sql += "," + tabla->sql + " AS " + nueva.alias_sql;
        QUIMO_TRY_VOID(Exponer(std::move(nueva), ambito));
    }
    const TablaPtr& tabla = ambito.tablas[cual].tabla;
    if (!tabla || tabla->del_sistema) return CrearError(4406, nombre.objeto);
    return cual;
}

Resultado<Plan> Traductor::ActualizarDesde(const Actualizar& actualizar, Plan plan) {
    Ambito ambito;
    std::string fuentes;
    QUIMO_TRY(const std::size_t cual,
              Escenario(actualizar.tabla, actualizar.fuentes, ambito, fuentes));
    plan.tabla = ambito.tablas[cual].tabla;
    QUIMO_TRY(Escritas escritas, Asignaciones(actualizar, *plan.tabla, ambito));
    plan.sql_filas =
        ListaDeFilas(ambito.tablas[cual].alias_sql, escritas.valores) + " FROM " + fuentes;
    if (actualizar.donde) {
        QUIMO_TRY(const Termino termino, Valor(actualizar.donde, ambito));
        plan.sql_filas += " WHERE " + termino.sql;
    }
    if (actualizar.tope) {
        Ambito vacio;
        QUIMO_TRY(const Termino tope, Valor(actualizar.tope, vacio));
        plan.sql_filas += " LIMIT " + tope.sql;
    }
    plan.sql = "UPDATE " + plan.tabla->sql + " AS \"d\" SET " +
               ListaDeSet(*plan.tabla, escritas.columnas, {}) + " FROM (" + plan.sql_filas +
               ") AS \"s\" WHERE \"d\".rowid=\"s\".\"fila\"";
    plan.columnas_escritas = std::move(escritas.columnas);
    plan.ranuras = std::move(ranuras_);
    plan.usadas = std::move(usadas_);
    return plan;
}

Resultado<Plan> Traductor::BorrarDe(const Borrar& borrar) {
    Plan plan;
    Ambito ambito;
    std::string fuentes;
    std::size_t cual = 0;
    if (borrar.fuentes.empty()) {
        QUIMO_TRY(const TablaPtr tabla, TablaEscrita(borrar.tabla));
        ambito.tablas.push_back(AmbitoDe(tabla, borrar.tabla.objeto));
    } else {
        QUIMO_TRY(cual, Escenario(borrar.tabla, borrar.fuentes, ambito, fuentes));
    }
    plan.tabla = ambito.tablas[cual].tabla;
    const std::string alias = ambito.tablas[cual].alias_sql;
    std::string donde;
    if (borrar.donde) {
        ambito.clausula = Clausula::Donde;
        QUIMO_TRY(const Termino termino, Valor(borrar.donde, ambito));
        donde = " WHERE " + termino.sql;
    }
    if (fuentes.empty() && !borrar.tope) {
        plan.sql = "DELETE FROM " + plan.tabla->sql + " AS " + alias + donde;
    } else {
        if (fuentes.empty()) fuentes = plan.tabla->sql + " AS " + alias;
        std::string limite;
        if (borrar.tope) {
            Ambito vacio;
            QUIMO_TRY(const Termino tope, Valor(borrar.tope, vacio));
            limite = " LIMIT " + tope.sql;
        }
        plan.sql = "DELETE FROM " + plan.tabla->sql + " WHERE rowid IN (SELECT " + alias +
                   ".rowid FROM " + fuentes + donde + limite + ")";
    }
    plan.ranuras = std::move(ranuras_);
    plan.usadas = std::move(usadas_);
    return plan;
}

Resultado<ExpresionDeTabla> Traductor::DeTabla(const std::string& texto, const Tabla& tabla) {
    QUIMO_TRY(const ExprPtr expr, LeerExpresion(texto));
    Ambito ambito;
    ambito.clausula = Clausula::Donde;
    TablaAmbito fila;
    fila.expuesto = tabla.nombre;
    for (const ColumnaTabla& columna : tabla.columnas) {
        if (columna.tipo.clase == Clase::Nulo) continue;
        fila.columnas.push_back(
            {columna.nombre, EntreComillas(columna.nombre), columna.tipo, columna.admite_nulos});
    }
    ambito.tablas.push_back(std::move(fila));
    QUIMO_TRY(const Termino termino, Valor(expr, ambito));
    return ExpresionDeTabla{termino.sql, termino.tipo, termino.admite_nulos};
}

}  // namespace quimo::tsql
