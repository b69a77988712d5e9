#include <algorithm>
#include <utility>

#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/traduccion/escritura_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

/// The call that numbers a row, when the engine does.
constexpr std::string_view kNumerar = "q_identidad()";

bool Contiene(const std::vector<int>& columnas, int columna) {
    return std::find(columnas.begin(), columnas.end(), columna) != columnas.end();
}

void Agregar(std::string& lista, const std::string& otro) {
    lista += (lista.empty() ? "" : ",") + otro;
}

/// The value of an identity column is told to whoever asks for the last number.
std::string ValorDado(const ColumnaTabla& columna, const Termino& termino) {
    return columna.identidad ? "q_numero_dado(" + termino.sql + ")" : termino.sql;
}

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

Resultado<TablaPtr> TraductorEscritura::TablaEscrita(const NombreObjeto& nombre) {
    TablaPtr tabla = contexto_.entorno.catalogo->BuscarTabla(nombre);
    if (!tabla) {
        if (contexto_.entorno.catalogo->BuscarModulo(nombre)) return VistaNoEditable(nombre.objeto);
        return ObjetoDesconocido(nombre.Completo());
    }
    if (tabla->del_sistema) return ObjetoDesconocido(nombre.Completo());
    contexto_.usadas.push_back(tabla);
    return tabla;
}

Resultado<std::vector<int>> TraductorEscritura::ColumnasDadas(const Insertar& insertar,
                                                              Plan& plan) const {
    const Tabla& tabla = *plan.tabla;
    const bool explicita = MismoNombre(contexto_.entorno.identity_insert, tabla.nombre);
    std::vector<int> dadas;
    for (const std::string& nombre : insertar.columnas) {
        const int columna = tabla.Columna(nombre);
        if (columna < 0) return ColumnaDesconocida(nombre);
        const ColumnaTabla& destino = tabla.columnas[static_cast<std::size_t>(columna)];
        if (!destino.calculada.empty()) return ColumnaCalculada(destino.nombre);
        if (Contiene(dadas, columna)) return ColumnaRepetida(destino.nombre);
        if (destino.identidad && !explicita) return IdentidadNoPermitida(tabla.nombre);
        plan.identidad_explicita = plan.identidad_explicita || destino.identidad;
        dadas.push_back(columna);
    }
    if (insertar.por_defecto) return std::vector<int>{};
    for (std::size_t i = 0; insertar.columnas.empty() && i < tabla.columnas.size(); ++i) {
        const ColumnaTabla& columna = tabla.columnas[i];
        if (columna.calculada.empty() && !columna.identidad) dadas.push_back(static_cast<int>(i));
    }
    return dadas;
}

Resultado<TraductorEscritura::Destinos> TraductorEscritura::DestinosDe(const Insertar& insertar,
                                                                       Plan& plan) {
    const Tabla& tabla = *plan.tabla;
    Destinos destinos;
    QUIMO_TRY(destinos.columnas, ColumnasDadas(insertar, plan));
    for (const int columna : destinos.columnas) {
        Agregar(destinos.nombres,
                EntreComillas(tabla.columnas[static_cast<std::size_t>(columna)].nombre));
    }
    for (std::size_t i = 0; i < tabla.columnas.size(); ++i) {
        const ColumnaTabla& columna = tabla.columnas[i];
        if (Contiene(destinos.columnas, static_cast<int>(i)) || !columna.calculada.empty()) {
            continue;
        }
        std::string valor;
        if (columna.identidad) {
            if (MismoNombre(contexto_.entorno.identity_insert, tabla.nombre)) {
                return IdentidadRequerida(tabla.nombre);
            }
            plan.identidad_automatica = true;
            valor = kNumerar;
        } else {
            QUIMO_TRY(const Termino defecto, Defecto(columna, tabla));
            valor = defecto.sql;
        }
        destinos.defectos.push_back(valor);
        Agregar(destinos.nombres, EntreComillas(columna.nombre));
    }
    return destinos;
}

Resultado<Termino> TraductorEscritura::Defecto(const ColumnaTabla& columna, const Tabla& tabla) {
    Termino termino{"NULL", Tipo{}};
    termino.nulo = true;
    if (!columna.defecto.empty()) {
        QUIMO_TRY(const ExprPtr expr, LeerExpresion(columna.defecto));
        Ambito vacio;
        QUIMO_TRY(termino, valores_.Valor(expr, vacio));
    }
    return ConvertirParaColumna(std::move(termino), columna, tabla, "INSERT",
                                contexto_.entorno.orden);
}

Resultado<std::string> TraductorEscritura::FilaDeValores(const Insertar& insertar,
                                                         const std::vector<ExprPtr>& fila,
                                                         const Destinos& destinos,
                                                         const Tabla& tabla) {
    if (fila.size() != destinos.columnas.size()) {
        if (insertar.columnas.empty()) return ValoresNoCorresponden();
        return fila.size() < destinos.columnas.size() ? MenosValoresQueColumnas()
                                                      : MasValoresQueColumnas();
    }
    std::string sql;
    Ambito vacio;
    vacio.clausula = Clausula::Donde;
    for (std::size_t i = 0; i < fila.size(); ++i) {
        const ColumnaTabla& columna =
            tabla.columnas[static_cast<std::size_t>(destinos.columnas[i])];
        Termino termino;
        if (fila[i]) {
            QUIMO_TRY(termino, valores_.ValorSuelto(fila[i], vacio));
            QUIMO_TRY(termino, ConvertirParaColumna(std::move(termino), columna, tabla, "INSERT",
                                                    contexto_.entorno.orden));
        } else {
            QUIMO_TRY(termino, Defecto(columna, tabla));
        }
        Agregar(sql, ValorDado(columna, termino));
    }
    for (const std::string& defecto : destinos.defectos)
        Agregar(sql, defecto);
    return sql;
}

/// SELECT ... of the rows that a query gives.
Resultado<std::string> TraductorEscritura::FilasDeConsulta(const Insertar& insertar,
                                                           const Destinos& destinos,
                                                           const Tabla& tabla) {
    QUIMO_TRY(const ConsultaSql consulta, consultas_.ConsultaEn(*insertar.consulta, nullptr));
    const std::size_t dadas = consulta.columnas.size();
    if (dadas != destinos.columnas.size()) {
        if (insertar.columnas.empty()) return ValoresNoCorresponden();
        return dadas < destinos.columnas.size() ? MenosItemsQueColumnas() : MasItemsQueColumnas();
    }
    std::string lista;
    for (std::size_t i = 0; i < dadas; ++i) {
        const ColumnaTabla& columna =
            tabla.columnas[static_cast<std::size_t>(destinos.columnas[i])];
        Termino termino{NombreQ(i), consulta.columnas[i].tipo, Fuerza::Atomo,
                        consulta.columnas[i].admite_nulos};
        termino.nulo = termino.tipo.clase == Clase::Nulo;
        QUIMO_TRY(termino, ConvertirParaColumna(std::move(termino), columna, tabla, "INSERT",
                                                contexto_.entorno.orden));
        Agregar(lista, ValorDado(columna, termino));
    }
    for (const std::string& defecto : destinos.defectos)
        Agregar(lista, defecto);
    return "SELECT " + lista + " FROM (" + consulta.sql + ") WHERE 1";
}

Resultado<Plan> TraductorEscritura::InsertarEn(const Insertar& insertar) {
    Plan plan;
    QUIMO_TRY(plan.tabla, TablaEscrita(insertar.tabla));
    const Tabla& tabla = *plan.tabla;
    QUIMO_TRY(const Destinos destinos, DestinosDe(insertar, plan));
    std::string filas;
    if (insertar.por_defecto) {
        QUIMO_TRY(const std::string fila, FilaDeValores(insertar, {}, destinos, tabla));
        filas = "VALUES (" + fila + ")";
    } else if (insertar.consulta) {
        QUIMO_TRY(filas, FilasDeConsulta(insertar, destinos, tabla));
    } else {
        for (const std::vector<ExprPtr>& fila : insertar.filas) {
            QUIMO_TRY(const std::string valores, FilaDeValores(insertar, fila, destinos, tabla));
            filas += (filas.empty() ? "VALUES (" : ",(") + valores + ")";
        }
    }
    plan.sql = "INSERT INTO " + tabla.sql + "(" + destinos.nombres + ") " + filas;
    return contexto_.Terminar(std::move(plan));
}

Resultado<TraductorEscritura::Escritas> TraductorEscritura::Asignaciones(
    const Actualizar& actualizar, const Tabla& tabla, Ambito& ambito) {
    Escritas escritas;
    ambito.clausula = Clausula::Asignacion;
    for (const Asignacion& asignacion : actualizar.asignaciones) {
        const int cual = tabla.Columna(asignacion.columna);
        if (cual < 0) return ColumnaDesconocida(asignacion.columna);
        const ColumnaTabla& columna = tabla.columnas[static_cast<std::size_t>(cual)];
        if (!columna.calculada.empty()) return ColumnaCalculada(columna.nombre);
        if (columna.identidad) return IdentidadNoSeCambia(columna.nombre);
        if (Contiene(escritas.columnas, cual)) return ColumnaRepetida(columna.nombre);
        Termino termino;
        if (asignacion.expr) {
            QUIMO_TRY(termino, valores_.ValorSuelto(asignacion.expr, ambito));
            QUIMO_TRY(termino, ConvertirParaColumna(std::move(termino), columna, tabla, "UPDATE",
                                                    contexto_.entorno.orden));
        } else {
            QUIMO_TRY(termino, Defecto(columna, tabla));
        }
        escritas.columnas.push_back(cual);
        escritas.valores.push_back(termino.sql);
    }
    ambito.clausula = Clausula::Donde;
    return escritas;
}

Resultado<std::string> TraductorEscritura::DondeSql(const ExprPtr& donde, Ambito& ambito) {
    if (!donde) return std::string();
    ambito.clausula = Clausula::Donde;
    QUIMO_TRY(const Termino termino, valores_.Valor(donde, ambito));
    return " WHERE " + termino.sql;
}

Resultado<std::string> TraductorEscritura::TopeSql(const ExprPtr& tope) {
    if (!tope) return std::string();
    Ambito vacio;
    QUIMO_TRY(const Termino termino, valores_.Valor(tope, vacio));
    return " LIMIT " + termino.sql;
}

Resultado<Plan> TraductorEscritura::ActualizarEn(const Actualizar& actualizar) {
    return actualizar.fuentes.empty() ? ActualizarUna(actualizar) : ActualizarDesde(actualizar);
}

Resultado<Plan> TraductorEscritura::ActualizarUna(const Actualizar& actualizar) {
    Plan plan;
    QUIMO_TRY(plan.tabla, TablaEscrita(actualizar.tabla));
    Ambito ambito;
    ambito.tablas.push_back(consultas_.Fuentes().AmbitoDe(plan.tabla, actualizar.tabla.objeto));
    const std::string alias = ambito.tablas[0].alias_sql;
    QUIMO_TRY(Escritas escritas, Asignaciones(actualizar, *plan.tabla, ambito));
    QUIMO_TRY(std::string donde, DondeSql(actualizar.donde, ambito));
    QUIMO_TRY(const std::string limite, TopeSql(actualizar.tope));
    const std::string blanco = plan.tabla->sql + " AS " + alias;
    if (!limite.empty()) {
        donde = " WHERE " + alias + ".rowid IN (SELECT rowid FROM " + blanco + donde + limite + ")";
    }
    plan.sql = "UPDATE " + blanco + " SET " +
               ListaDeSet(*plan.tabla, escritas.columnas, escritas.valores) + donde;
    plan.sql_filas = ListaDeFilas(alias, escritas.valores) + " FROM " + blanco + donde;
    plan.columnas_escritas = std::move(escritas.columnas);
    return contexto_.Terminar(std::move(plan));
}

/// Which of the tables of FROM is the one that is written to.
Resultado<std::size_t> TraductorEscritura::Blanco(const NombreObjeto& nombre,
                                                  const Ambito& ambito) const {
    const TablaPtr tabla = contexto_.entorno.catalogo->BuscarTabla(nombre);
    std::size_t hallada = ambito.tablas.size();
    for (std::size_t i = 0; i < ambito.tablas.size(); ++i) {
        if (nombre.esquema.empty() && MismoNombre(ambito.tablas[i].expuesto, nombre.objeto))
            return i;
        if (tabla && ambito.tablas[i].tabla == tabla) hallada = i;
    }
    if (hallada == ambito.tablas.size()) return ObjetoDesconocido(nombre.Completo());
    return hallada;
}

/// Reads FROM and finds the table that is written to; one that FROM does not name is joined to it
/// by WHERE alone.
Resultado<TraductorEscritura::Escenario> TraductorEscritura::EscenarioDe(
    const NombreObjeto& nombre, const std::vector<FuentePtr>& fuentes, Ambito& ambito) {
    Escenario escenario;
    QUIMO_TRY(escenario.sql, consultas_.Fuentes().Desde(fuentes, ambito));
    escenario.cual = ambito.tablas.size();
    if (const auto blanco = Blanco(nombre, ambito)) {
        escenario.cual = *blanco;
    } else {
        QUIMO_TRY(const TablaPtr tabla, TablaEscrita(nombre));
        TablaAmbito nueva = consultas_.Fuentes().AmbitoDe(tabla, nombre.objeto);
        escenario.sql += "," + tabla->sql + " AS " + nueva.alias_sql;
        QUIMO_TRY_VOID(Exponer(std::move(nueva), ambito));
    }
    const TablaPtr& tabla = ambito.tablas[escenario.cual].tabla;
    if (!tabla || tabla->del_sistema) return VistaNoEditable(nombre.objeto);
    return escenario;
}

Resultado<Plan> TraductorEscritura::ActualizarDesde(const Actualizar& actualizar) {
    Plan plan;
    Ambito ambito;
    QUIMO_TRY(const Escenario escenario, EscenarioDe(actualizar.tabla, actualizar.fuentes, ambito));
    const TablaAmbito& blanco = ambito.tablas[escenario.cual];
    plan.tabla = blanco.tabla;
    QUIMO_TRY(Escritas escritas, Asignaciones(actualizar, *plan.tabla, ambito));
    QUIMO_TRY(const std::string donde, DondeSql(actualizar.donde, ambito));
    QUIMO_TRY(const std::string limite, TopeSql(actualizar.tope));
    plan.sql_filas = ListaDeFilas(blanco.alias_sql, escritas.valores) + " FROM " + escenario.sql +
                     donde + limite;
    plan.sql = "UPDATE " + plan.tabla->sql + " AS \"d\" SET " +
               ListaDeSet(*plan.tabla, escritas.columnas, {}) + " FROM (" + plan.sql_filas +
               ") AS \"s\" WHERE \"d\".rowid=\"s\".\"fila\"";
    plan.columnas_escritas = std::move(escritas.columnas);
    return contexto_.Terminar(std::move(plan));
}

Resultado<Plan> TraductorEscritura::BorrarDe(const Borrar& borrar) {
    Plan plan;
    Ambito ambito;
    Escenario escenario;
    if (borrar.fuentes.empty()) {
        QUIMO_TRY(const TablaPtr tabla, TablaEscrita(borrar.tabla));
        ambito.tablas.push_back(consultas_.Fuentes().AmbitoDe(tabla, borrar.tabla.objeto));
    } else {
        QUIMO_TRY(escenario, EscenarioDe(borrar.tabla, borrar.fuentes, ambito));
    }
    plan.tabla = ambito.tablas[escenario.cual].tabla;
    const std::string alias = ambito.tablas[escenario.cual].alias_sql;
    QUIMO_TRY(const std::string donde, DondeSql(borrar.donde, ambito));
    QUIMO_TRY(const std::string limite, TopeSql(borrar.tope));
    const std::string blanco = plan.tabla->sql + " AS " + alias;
    if (borrar.fuentes.empty() && limite.empty()) {
        plan.sql = "DELETE FROM " + blanco + donde;
    } else {
        const std::string& fuentes = borrar.fuentes.empty() ? blanco : escenario.sql;
        plan.sql = "DELETE FROM " + plan.tabla->sql + " WHERE rowid IN (SELECT " + alias +
                   ".rowid FROM " + fuentes + donde + limite + ")";
    }
    return contexto_.Terminar(std::move(plan));
}

}  // namespace quimo::tsql
