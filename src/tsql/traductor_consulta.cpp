#include <algorithm>
#include <utility>

#include "tsql/texto.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

std::string NombreQ(std::size_t indice) { return "\"q" + std::to_string(indice + 1) + "\""; }

/// A query's columns by their places, some of them converted or put into the text order.
std::string Envolver(const std::vector<std::string>& columnas, const std::string& sql) {
    std::string lista;
    for (std::size_t i = 0; i < columnas.size(); ++i) {
        lista += (i > 0 ? "," : "") + columnas[i] + " AS " + NombreQ(i);
    }
    return "SELECT " + lista + " FROM (" + sql + ")";
}

bool Agrega(const Seleccion& seleccion, const std::vector<OrdenItem>& orden) {
    const auto tiene = [](const ExprPtr& expr) { return expr && TieneAgregado(*expr); };
    return !seleccion.grupos.empty() || seleccion.teniendo ||
           std::any_of(seleccion.items.begin(), seleccion.items.end(),
                       [&](const ItemSeleccion& item) { return tiene(item.expr); }) ||
           std::any_of(orden.begin(), orden.end(),
                       [&](const OrdenItem& item) { return tiene(item.expr); });
}

bool TieneVentana(const Expr& expr) {
    return expr.ventana != nullptr ||
           std::any_of(expr.hijos.begin(), expr.hijos.end(),
                       [](const ExprPtr& hijo) { return hijo && TieneVentana(*hijo); });
}

/// One row per value of one key, and nothing that looks beyond its group.
bool EsGrupoSencillo(const Consulta& consulta) {
    const Seleccion& seleccion = *consulta.simple;
    return seleccion.grupos.size() == 1 && !seleccion.fuentes.empty() && !seleccion.distinto &&
           !seleccion.tope && !seleccion.teniendo && consulta.orden.empty() &&
           std::none_of(seleccion.items.begin(), seleccion.items.end(),
                        [](const ItemSeleccion& item) { return TieneVentana(*item.expr); });
}

}  // namespace

std::string Traductor::ClaveDeOrden(const Termino& termino) {
    return termino.tipo.EsAncho() ? "q_clave(" + termino.sql + ",0)" : Cotejada(termino);
}

Resultado<ConsultaSql> Traductor::ConsultaEn(const Consulta& consulta, Ambito* padre) {
    if (++niveles_ > 1000) return CrearError(191);
    const bool comunes = !consulta.comunes.empty();
    if (comunes) comunes_.push_back(consulta.comunes);
    auto salida = consulta.combinacion == Combinacion::Simple ? Simple(consulta, padre)
                                                              : Combinada(consulta, padre);
    if (comunes) comunes_.pop_back();
    --niveles_;
    return salida;
}

Resultado<ConsultaSql> Traductor::Combinada(const Consulta& consulta, Ambito* padre) {
    QUIMO_TRY(ConsultaSql a, ConsultaEn(*consulta.izquierda, padre));
    QUIMO_TRY(const ConsultaSql b, ConsultaEn(*consulta.derecha, padre));
    if (a.columnas.size() != b.columnas.size()) return CrearError(205);
    if (!a.variables.empty() || !b.variables.empty()) return CrearError(141);
    const bool iguala = consulta.combinacion != Combinacion::UnionTodo;
    std::vector<std::string> izquierda;
    std::vector<std::string> derecha;
    for (std::size_t i = 0; i < a.columnas.size(); ++i) {
        Tipo tipo = TipoComun(a.columnas[i].tipo, b.columnas[i].tipo);
        if (tipo.clase == Clase::Nulo) tipo = TipoEntero(Clase::Int);
        const auto llevar = [&](const ColumnaSalida& columna) -> Resultado<std::string> {
            Termino termino{NombreQ(i), columna.tipo};
            termino.nulo = columna.tipo.clase == Clase::Nulo;
            QUIMO_TRY(termino, Convertir(std::move(termino), tipo));
            termino.tipo = tipo;
            return iguala ? Cotejada(termino) : termino.sql;
        };
        QUIMO_TRY(std::string x, llevar(a.columnas[i]));
        QUIMO_TRY(std::string y, llevar(b.columnas[i]));
        izquierda.push_back(std::move(x));
        derecha.push_back(std::move(y));
        a.columnas[i].tipo = tipo;
        a.columnas[i].admite_nulos = a.columnas[i].admite_nulos || b.columnas[i].admite_nulos;
    }
    std::string operador = " UNION ALL ";
    if (consulta.combinacion == Combinacion::Union) operador = " UNION ";
    if (consulta.combinacion == Combinacion::Excepto) operador = " EXCEPT ";
    if (consulta.combinacion == Combinacion::Interseccion) operador = " INTERSECT ";
    a.sql = Envolver(izquierda, a.sql) + operador + Envolver(derecha, b.sql);
    a.una_fila = false;
    if (consulta.orden.empty()) return a;
    Ambito ambito;
    Ambito fuera;
    TablaAmbito tabla;
    std::vector<Termino> terminos;
    std::vector<std::string> todas;
    for (std::size_t i = 0; i < a.columnas.size(); ++i) {
        todas.push_back(NombreQ(i));
        Termino termino{NombreQ(i), a.columnas[i].tipo};
        tabla.columnas.push_back({a.columnas[i].nombre, NombreQ(i), a.columnas[i].tipo});
        terminos.push_back(std::move(termino));
    }
    ambito.tablas.push_back(std::move(tabla));
    a.sql = Envolver(todas, a.sql);
    Consulta orden;
    orden.orden = consulta.orden;
    orden.simple.emplace();
    QUIMO_TRY(const std::string sql, Ordenar(orden, terminos, a, ambito));
    a.sql += sql;
    return a;
}

Resultado<ConsultaSql> Traductor::Simple(const Consulta& consulta, Ambito* padre) {
    const Seleccion& seleccion = *consulta.simple;
    Ambito ambito;
    ambito.padre = padre;
    ConsultaSql salida;
    const std::size_t ranuras = ranuras_.size();
    QUIMO_TRY(const std::string fuentes, Desde(seleccion.fuentes, ambito));
    auto otra = SinProducto(consulta, ambito);
    if (!otra) otra = ExtremoPorRangos(consulta, ambito);
    if (otra) {
        ranuras_.resize(ranuras);
        QUIMO_TRY(ConsultaSql repartida, Simple(*otra, padre));
        repartida.una_fila = true;
        return repartida;
    }
    std::string cola = fuentes.empty() ? "" : " FROM " + fuentes;
    std::string donde;
    if (seleccion.donde) {
        ambito.clausula = Clausula::Donde;
        QUIMO_TRY(const Termino termino, Valor(seleccion.donde, ambito));
        donde = termino.sql;
        cola += " WHERE " + donde;
    }
    std::string grupos;
    if (Agrega(seleccion, consulta.orden)) {
        QUIMO_TRY_VOID(Agrupar(seleccion, ambito, grupos));
    }
    cola += grupos;
    ambito.clausula = Clausula::Lista;
    QUIMO_TRY(const std::vector<Termino> terminos, Lista(seleccion, ambito, salida));
    if (seleccion.teniendo) {
        ambito.clausula = Clausula::Teniendo;
        QUIMO_TRY(const Termino teniendo, Valor(seleccion.teniendo, ambito));
        cola += " HAVING " + teniendo.sql;
    }
    std::string lista;
    for (std::size_t i = 0; i < terminos.size(); ++i) {
        const std::string sql = seleccion.distinto ? Cotejada(terminos[i]) : terminos[i].sql;
        lista += (i > 0 ? "," : "") + sql + " AS " + NombreQ(i);
    }
    salida.sql = std::string(seleccion.distinto ? "SELECT DISTINCT " : "SELECT ") + lista + cola;
    QUIMO_TRY(const std::string limite, Limite(seleccion, salida.sql));
    if (!consulta.orden.empty()) {
        QUIMO_TRY(const std::string orden, Ordenar(consulta, terminos, salida, ambito));
        salida.sql += orden;
    }
    salida.sql += limite;
    if (EsGrupoSencillo(consulta)) {
        salida.grupo = PiezasDeGrupo{{}, fuentes, donde, ambito.claves[0]};
        for (const Termino& termino : terminos)
            salida.grupo->lista.push_back(termino.sql);
    }
    const bool un_grupo = ambito.agrupado && seleccion.grupos.empty();
    const bool sin_tabla = seleccion.fuentes.empty();
    salida.una_fila = un_grupo || sin_tabla;
    if (seleccion.tope && !salida.una_fila) {
        const auto tope = Fijar(*seleccion.tope);
        salida.una_fila =
            tope && tope->tipo.EsEntero() && tope->valor.exacto == 1 && !seleccion.tope_porciento;
    }
    return salida;
}

Resultado<std::vector<Termino>> Traductor::Lista(const Seleccion& seleccion, Ambito& ambito,
                                                 ConsultaSql& salida) {
    std::vector<Termino> terminos;
    for (const ItemSeleccion& item : seleccion.items) {
        if (item.variable.empty() != seleccion.items[0].variable.empty()) return CrearError(141);
        if (item.expr->clase == ClaseExpr::Asterisco) {
            QUIMO_TRY_VOID(Expandir(*item.expr, ambito, terminos, salida));
            continue;
        }
        QUIMO_TRY(Termino termino, Valor(item.expr, ambito));
        if (!item.variable.empty()) {
            const auto tipo =
                entorno_.tipo_variable ? entorno_.tipo_variable(item.variable) : std::nullopt;
            if (!tipo) return CrearError(137, item.variable);
            QUIMO_TRY(termino, Convertir(std::move(termino), *tipo));
            termino.tipo = *tipo;
            salida.variables.push_back(item.variable);
        }
        std::string nombre = item.alias;
        if (nombre.empty() && item.expr->clase == ClaseExpr::Columna) {
            QUIMO_TRY(const ColumnaAmbito* const columna, BuscarColumna(*item.expr, ambito));
            nombre = columna != nullptr ? columna->nombre : item.expr->partes.back();
        }
        salida.columnas.push_back({nombre, termino.tipo, termino.admite_nulos});
        terminos.push_back(std::move(termino));
    }
    return terminos;
}

Hecho Traductor::Expandir(const Expr& asterisco, const Ambito& ambito,
                          std::vector<Termino>& terminos, ConsultaSql& salida) const {
    bool hallada = false;
    for (const TablaAmbito& tabla : ambito.tablas) {
        if (!asterisco.partes.empty() && !MismoNombre(asterisco.partes.back(), tabla.expuesto)) {
            continue;
        }
        hallada = true;
        for (const ColumnaAmbito& columna : tabla.columnas) {
            if (ambito.agrupado) {
                return CrearError(8120, tabla.expuesto + "." + columna.nombre, "select list");
            }
            terminos.push_back(Columna(columna));
            salida.columnas.push_back({columna.nombre, columna.tipo, columna.admite_nulos});
        }
    }
    if (hallada) return {};
    if (!asterisco.partes.empty()) return CrearError(107, asterisco.partes.back());
    ErrorSql error = CrearError(102, "*");
    error.nativo = 263;
    error.mensaje = "Must specify table to select from.";
    return error;
}

Hecho Traductor::Agrupar(const Seleccion& seleccion, Ambito& ambito, std::string& sql) {
    ambito.clausula = Clausula::Grupo;
    for (const ExprPtr& grupo : seleccion.grupos) {
        if (TieneAgregado(*grupo)) {
            ErrorSql error = CrearError(147);
            error.nativo = 144;
            error.mensaje =
                "Cannot use an aggregate or a subquery in an expression used for the group by list "
                "of a GROUP BY clause.";
            return error;
        }
        QUIMO_TRY(const Termino termino, Valor(grupo, ambito));
        if (termino.constante) {
            ErrorSql error = CrearError(147);
            error.nativo = 164;
            error.mensaje =
                "Each GROUP BY expression must contain at least one column that is not an outer "
                "reference.";
            return error;
        }
        sql += (sql.empty() ? " GROUP BY " : ",") + Cotejada(termino);
        ambito.claves.push_back(termino);
    }
    ambito.agrupado = true;
    ambito.grupos = seleccion.grupos;
    return {};
}

Resultado<std::string> Traductor::Ordenar(const Consulta& consulta,
                                          const std::vector<Termino>& terminos,
                                          const ConsultaSql& salida, Ambito& ambito) {
    ambito.clausula = Clausula::Orden;
    std::string sql;
    for (const OrdenItem& item : consulta.orden) {
        QUIMO_TRY(const std::string clave,
                  ItemDeOrden(item, *consulta.simple, terminos, salida, ambito));
        sql += (sql.empty() ? " ORDER BY " : ",") + clave + (item.descendente ? " DESC" : "");
    }
    return sql;
}

Resultado<std::string> Traductor::ItemDeOrden(const OrdenItem& item, const Seleccion& seleccion,
                                              const std::vector<Termino>& terminos,
                                              const ConsultaSql& salida, Ambito& ambito) {
    const auto por_lugar = [&](std::size_t lugar) {
        const Termino& termino = terminos[lugar];
        if (termino.tipo.EsAncho()) return ClaveDeOrden(termino);
        const std::string numero = std::to_string(lugar + 1);
        return termino.tipo.EsTexto() ? numero + " COLLATE QUIMO" : numero;
    };
    if (item.expr->clase == ClaseExpr::Literal) {
        const auto literal = Fijar(*item.expr);
        if (!literal || !literal->tipo.EsEntero()) return CrearError(108, "0");
        const std::int64_t lugar = literal->valor.Entero();
        if (lugar < 1 || lugar > static_cast<std::int64_t>(terminos.size())) {
            return CrearError(108, std::to_string(lugar));
        }
        return por_lugar(static_cast<std::size_t>(lugar - 1));
    }
    if (item.expr->clase == ClaseExpr::Columna && item.expr->partes.size() == 1) {
        std::vector<std::size_t> lugares;
        for (std::size_t i = 0; i < salida.columnas.size(); ++i) {
            if (MismoNombre(salida.columnas[i].nombre, item.expr->partes[0])) lugares.push_back(i);
        }
        const auto distinto = [&](std::size_t i) {
            return terminos[i].sql != terminos[lugares[0]].sql;
        };
        if (std::any_of(lugares.begin(), lugares.end(), distinto)) {
            return CrearError(209, item.expr->partes[0]);
        }
        if (!lugares.empty()) return por_lugar(lugares[0]);
    }
    QUIMO_TRY(const Termino termino, Valor(item.expr, ambito));
    for (std::size_t i = 0; i < terminos.size(); ++i) {
        if (terminos[i].sql == termino.sql) return por_lugar(i);
    }
    if (seleccion.distinto) return CrearError(145);
    return ClaveDeOrden(termino);
}

Resultado<std::string> Traductor::Limite(const Seleccion& seleccion, const std::string& sql) {
    if (!seleccion.tope) return std::string();
    Ambito vacio;
    QUIMO_TRY(Termino tope, Valor(seleccion.tope, vacio));
    if (!seleccion.tope_porciento) {
        QUIMO_TRY(tope, Convertir(std::move(tope), TipoEntero(Clase::BigInt)));
        return " LIMIT " + tope.sql;
    }
    QUIMO_TRY(tope, Convertir(std::move(tope), TipoReal()));
    return " LIMIT (SELECT CAST(count(*)*" + Par(tope, Fuerza::Atomo) +
           "/100.0+0.9999999999 AS INTEGER) FROM (" + sql + "))";
}

Plan Traductor::Terminar(ConsultaSql consulta) {
    Plan plan;
    plan.sql = std::move(consulta.sql);
    plan.columnas = std::move(consulta.columnas);
    plan.variables = std::move(consulta.variables);
    plan.ranuras = std::move(ranuras_);
    plan.usadas = std::move(usadas_);
    for (ColumnaSalida& columna : plan.columnas) {
        if (columna.tipo.clase == Clase::Nulo) columna.tipo = TipoEntero(Clase::Int);
    }
    return plan;
}

Resultado<Plan> Traductor::Consultar(const Consulta& consulta) {
    QUIMO_TRY(ConsultaSql salida, ConsultaEn(consulta, nullptr));
    return Terminar(std::move(salida));
}

Resultado<Plan> Traductor::Evaluar(const Expr& expr) {
    Ambito vacio;
    vacio.clausula = Clausula::Donde;
    const ExprPtr sin_dueno(std::shared_ptr<void>(), &expr);
    QUIMO_TRY(Termino termino, Valor(sin_dueno, vacio));
    if (expr.EsCondicion()) termino.sql = "CASE WHEN " + termino.sql + " THEN 1 ELSE 0 END";
    ConsultaSql salida;
    salida.sql = "SELECT " + termino.sql;
    salida.columnas.push_back({"", termino.tipo, termino.admite_nulos});
    return Terminar(std::move(salida));
}

Resultado<Plan> TraducirConsulta(const Consulta& consulta, const Entorno& entorno) {
    return Traductor(entorno).Consultar(consulta);
}
Resultado<Plan> TraducirValor(const Expr& expr, const Entorno& entorno) {
    return Traductor(entorno).Evaluar(expr);
}
Resultado<Plan> TraducirInsertar(const Insertar& insertar, const Entorno& entorno) {
    return Traductor(entorno).InsertarEn(insertar);
}
Resultado<Plan> TraducirInsertarFila(const Insertar& insertar, const std::vector<Tipo>& tipos,
                                     const Entorno& entorno) {
    return Traductor(entorno).InsertarFila(insertar, tipos);
}
Resultado<Plan> TraducirActualizar(const Actualizar& actualizar, const Entorno& entorno) {
    return Traductor(entorno).ActualizarEn(actualizar);
}
Resultado<Plan> TraducirBorrar(const Borrar& borrar, const Entorno& entorno) {
    return Traductor(entorno).BorrarDe(borrar);
}
Resultado<ExpresionDeTabla> TraducirDeTabla(const std::string& texto, const Tabla& tabla,
                                            const Entorno& entorno) {
    return Traductor(entorno).DeTabla(texto, tabla);
}

}  // namespace quimo::tsql
