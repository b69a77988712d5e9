#include <algorithm>
#include <utility>

#include "tsql/reescritura/producto.h"
#include "tsql/reescritura/rangos_prefijo.h"
#include "tsql/traduccion/consultas_interno.h"
#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr int kNivelesMaximos = 1000;

/// A query's columns by their places, some of them converted or put into the text order.
std::string Envolver(const std::vector<std::string>& columnas, const std::string& sql) {
    std::string lista;
    for (std::size_t i = 0; i < columnas.size(); ++i) {
        lista += (i > 0 ? "," : "") + columnas[i] + " AS " + NombreQ(i);
    }
    return "SELECT " + lista + " FROM (" + sql + ")";
}

std::string OperadorDe(Combinacion combinacion) {
    if (combinacion == Combinacion::Union) return " UNION ";
    if (combinacion == Combinacion::Excepto) return " EXCEPT ";
    if (combinacion == Combinacion::Interseccion) return " INTERSECT ";
    return " UNION ALL ";
}

std::string SelectSql(bool distinto, const std::vector<Termino>& terminos) {
    std::string sql = distinto ? "SELECT DISTINCT " : "SELECT ";
    for (std::size_t i = 0; i < terminos.size(); ++i) {
        sql += (i > 0 ? "," : "") + (distinto ? Cotejada(terminos[i]) : terminos[i].sql) + " AS " +
               NombreQ(i);
    }
    return sql;
}

bool Agrega(const Seleccion& seleccion, const std::vector<OrdenItem>& orden) {
    const auto tiene = [](const ExprPtr& expr) { return expr && TieneAgregado(*expr); };
    return !seleccion.grupos.empty() || seleccion.teniendo ||
           std::any_of(seleccion.items.begin(), seleccion.items.end(),
                       [&](const ItemSeleccion& item) { return tiene(item.expr); }) ||
           std::any_of(orden.begin(), orden.end(),
                       [&](const OrdenItem& item) { return tiene(item.expr); });
}

/// One row per value of one key, and nothing that looks beyond its group.
bool EsGrupoSencillo(const Consulta& consulta) {
    const Seleccion& seleccion = *consulta.simple;
    return seleccion.grupos.size() == 1 && !seleccion.fuentes.empty() && !seleccion.distinto &&
           !seleccion.tope && !seleccion.teniendo && consulta.orden.empty() &&
           std::none_of(seleccion.items.begin(), seleccion.items.end(),
                        [](const ItemSeleccion& item) { return TieneVentana(*item.expr); });
}

/// The columns that * or t.* stands for.
Hecho Expandir(const Expr& asterisco, const Ambito& ambito, std::vector<Termino>& terminos,
               ConsultaSql& salida) {
    bool hallada = false;
    for (const TablaAmbito& tabla : ambito.tablas) {
        if (!asterisco.partes.empty() && !MismoNombre(asterisco.partes.back(), tabla.expuesto)) {
            continue;
        }
        hallada = true;
        for (const ColumnaAmbito& columna : tabla.columnas) {
            if (ambito.agrupado) {
                return ColumnaFueraDelGrupo(tabla.expuesto + "." + columna.nombre, "select list");
            }
            terminos.push_back(TerminoDe(columna));
            salida.columnas.push_back({columna.nombre, columna.tipo, columna.admite_nulos});
        }
    }
    if (hallada) return {};
    if (!asterisco.partes.empty()) return PrefijoDesconocido(asterisco.partes.back());
    return SinTablaQueListar();
}

}  // namespace

Resultado<ConsultaSql> TraductorConsultas::ConsultaEn(const Consulta& consulta, Ambito* padre) {
    const Nivel nivel(contexto_);
    if (nivel.Pasa(kNivelesMaximos)) return DemasiadoAnidado();
    const bool comunes = !consulta.comunes.empty();
    if (comunes) contexto_.comunes.push_back(consulta.comunes);
    auto salida = consulta.combinacion == Combinacion::Simple ? Simple(consulta, padre)
                                                              : Combinada(consulta, padre);
    if (comunes) contexto_.comunes.pop_back();
    return salida;
}

Resultado<ConsultaSql> TraductorConsultas::Combinada(const Consulta& consulta, Ambito* padre) {
    QUIMO_TRY(ConsultaSql a, ConsultaEn(*consulta.izquierda, padre));
    QUIMO_TRY(const ConsultaSql b, ConsultaEn(*consulta.derecha, padre));
    if (a.columnas.size() != b.columnas.size()) return ListasDesiguales();
    if (!a.variables.empty() || !b.variables.empty()) return AsignacionConLectura();
    const bool iguala = consulta.combinacion != Combinacion::UnionTodo;
    std::vector<std::string> izquierda;
    std::vector<std::string> derecha;
    for (std::size_t i = 0; i < a.columnas.size(); ++i) {
        Tipo tipo = TipoComun(a.columnas[i].tipo, b.columnas[i].tipo);
        if (tipo.clase == Clase::Nulo) tipo = TipoEntero(Clase::Int);
        const auto llevar = [&](const ColumnaSalida& columna) -> Resultado<std::string> {
            Termino termino{NombreQ(i), columna.tipo};
            termino.nulo = columna.tipo.clase == Clase::Nulo;
            QUIMO_TRY(termino, Convertir(std::move(termino), tipo, contexto_.entorno.orden));
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
    a.sql =
        Envolver(izquierda, a.sql) + OperadorDe(consulta.combinacion) + Envolver(derecha, b.sql);
    a.una_fila = false;
    if (consulta.orden.empty()) return a;
    std::vector<std::string> todas;
    for (std::size_t i = 0; i < a.columnas.size(); ++i)
        todas.push_back(NombreQ(i));
    a.sql = Envolver(todas, a.sql);
    QUIMO_TRY(const std::string orden, OrdenDeCombinada(consulta.orden, a));
    a.sql += orden;
    return a;
}

Resultado<std::string> TraductorConsultas::OrdenDeCombinada(const std::vector<OrdenItem>& orden,
                                                            const ConsultaSql& combinada) {
    Ambito ambito;
    TablaAmbito tabla;
    std::vector<Termino> terminos;
    for (std::size_t i = 0; i < combinada.columnas.size(); ++i) {
        const ColumnaSalida& columna = combinada.columnas[i];
        tabla.columnas.push_back({columna.nombre, NombreQ(i), columna.tipo});
        terminos.push_back({NombreQ(i), columna.tipo});
    }
    ambito.tablas.push_back(std::move(tabla));
    return Ordenar(orden, false, terminos, combinada, ambito);
}

Resultado<ConsultaSql> TraductorConsultas::Simple(const Consulta& consulta, Ambito* padre) {
    Ambito ambito;
    ambito.padre = padre;
    const std::size_t marca = expresiones_.Marca();
    QUIMO_TRY(const std::string fuentes, fuentes_.Desde(consulta.simple->fuentes, ambito));
    auto otra = SinProducto(consulta, ambito);
    if (!otra) otra = ExtremoPorRangos(consulta, ambito, contexto_.entorno.lote);
    if (!otra) return SimpleDesde(consulta, fuentes, ambito);
    expresiones_.Volver(marca);
    QUIMO_TRY(ConsultaSql repartida, Simple(*otra, padre));
    repartida.una_fila = true;
    return repartida;
}

Resultado<ConsultaSql> TraductorConsultas::SimpleDesde(const Consulta& consulta,
                                                       const std::string& fuentes, Ambito& ambito) {
    const Seleccion& seleccion = *consulta.simple;
    ConsultaSql salida;
    std::string cola = fuentes.empty() ? "" : " FROM " + fuentes;
    std::string donde;
    if (seleccion.donde) {
        ambito.clausula = Clausula::Donde;
        QUIMO_TRY(const Termino termino, expresiones_.Valor(seleccion.donde, ambito));
        donde = termino.sql;
        cola += " WHERE " + donde;
    }
    std::vector<Termino> claves;
    if (Agrega(seleccion, consulta.orden)) {
        QUIMO_TRY(claves, Agrupar(seleccion, ambito));
    }
    for (std::size_t i = 0; i < claves.size(); ++i)
        cola += (i == 0 ? " GROUP BY " : ",") + Cotejada(claves[i]);
    ambito.clausula = Clausula::Lista;
    QUIMO_TRY(const std::vector<Termino> terminos, Lista(seleccion, ambito, salida));
    if (seleccion.teniendo) {
        ambito.clausula = Clausula::Teniendo;
        QUIMO_TRY(const Termino teniendo, expresiones_.Valor(seleccion.teniendo, ambito));
        cola += " HAVING " + teniendo.sql;
    }
    salida.sql = SelectSql(seleccion.distinto, terminos) + cola;
    QUIMO_TRY(const std::string limite, Limite(seleccion, salida.sql));
    if (!consulta.orden.empty()) {
        QUIMO_TRY(const std::string orden,
                  Ordenar(consulta.orden, seleccion.distinto, terminos, salida, ambito));
        salida.sql += orden;
    }
    salida.sql += limite;
    if (EsGrupoSencillo(consulta)) {
        salida.grupo = PiezasDeGrupo{{}, fuentes, donde, claves[0]};
        for (const Termino& termino : terminos)
            salida.grupo->lista.push_back(termino.sql);
    }
    const bool un_grupo = ambito.agrupado && seleccion.grupos.empty();
    const bool sin_tabla = seleccion.fuentes.empty();
    salida.una_fila = un_grupo || sin_tabla;
    if (seleccion.tope && !salida.una_fila) {
        const auto tope = contexto_.Constante(*seleccion.tope);
        salida.una_fila =
            tope && tope->tipo.EsEntero() && tope->valor.exacto == 1 && !seleccion.tope_porciento;
    }
    return salida;
}

Resultado<std::vector<Termino>> TraductorConsultas::Lista(const Seleccion& seleccion,
                                                          Ambito& ambito, ConsultaSql& salida) {
    std::vector<Termino> terminos;
    for (const ItemSeleccion& item : seleccion.items) {
        if (item.variable.empty() != seleccion.items[0].variable.empty())
            return AsignacionConLectura();
        if (item.expr->clase == ClaseExpr::Asterisco) {
            QUIMO_TRY_VOID(Expandir(*item.expr, ambito, terminos, salida));
            continue;
        }
        QUIMO_TRY(Termino termino, expresiones_.Valor(item.expr, ambito));
        if (!item.variable.empty()) {
            const auto tipo = contexto_.TipoDeVariable(item.variable);
            if (!tipo) return VariableSinDeclarar(item.variable);
            QUIMO_TRY(termino, Convertir(std::move(termino), *tipo, contexto_.entorno.orden));
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

Resultado<std::vector<Termino>> TraductorConsultas::Agrupar(const Seleccion& seleccion,
                                                            Ambito& ambito) {
    ambito.clausula = Clausula::Grupo;
    std::vector<Termino> claves;
    for (const ExprPtr& grupo : seleccion.grupos) {
        if (TieneAgregado(*grupo)) return AgregadoEnGrupo();
        QUIMO_TRY(Termino termino, expresiones_.Valor(grupo, ambito));
        if (termino.constante) return GrupoSinColumna();
        claves.push_back(std::move(termino));
    }
    ambito.agrupado = true;
    ambito.grupos = seleccion.grupos;
    return claves;
}

Resultado<std::string> TraductorConsultas::Ordenar(const std::vector<OrdenItem>& orden,
                                                   bool distinto,
                                                   const std::vector<Termino>& terminos,
                                                   const ConsultaSql& salida, Ambito& ambito) {
    ambito.clausula = Clausula::Orden;
    std::string sql;
    for (const OrdenItem& item : orden) {
        QUIMO_TRY(const std::string clave, ItemDeOrden(item, distinto, terminos, salida, ambito));
        sql += (sql.empty() ? " ORDER BY " : ",") + clave + (item.descendente ? " DESC" : "");
    }
    return sql;
}

Resultado<std::string> TraductorConsultas::ItemDeOrden(const OrdenItem& item, bool distinto,
                                                       const std::vector<Termino>& terminos,
                                                       const ConsultaSql& salida, Ambito& ambito) {
    const auto por_lugar = [&](std::size_t lugar) {
        const Termino& termino = terminos[lugar];
        if (termino.tipo.EsAncho()) return ClaveDeOrden(termino);
        const std::string numero = std::to_string(lugar + 1);
        return termino.tipo.EsTexto() ? numero + " COLLATE QUIMO" : numero;
    };
    if (item.expr->clase == ClaseExpr::Literal) {
        const auto literal = contexto_.Constante(*item.expr);
        if (!literal || !literal->tipo.EsEntero()) return LugarDeOrdenFueraDeRango("0");
        const std::int64_t lugar = literal->valor.Entero();
        if (lugar < 1 || lugar > static_cast<std::int64_t>(terminos.size())) {
            return LugarDeOrdenFueraDeRango(std::to_string(lugar));
        }
        return por_lugar(static_cast<std::size_t>(lugar - 1));
    }
    if (item.expr->clase == ClaseExpr::Columna && item.expr->partes.size() == 1) {
        std::vector<std::size_t> lugares;
        for (std::size_t i = 0; i < salida.columnas.size(); ++i) {
            if (MismoNombre(salida.columnas[i].nombre, item.expr->partes[0])) lugares.push_back(i);
        }
        const auto otro = [&](std::size_t i) {
            return terminos[i].sql != terminos[lugares[0]].sql;
        };
        if (std::any_of(lugares.begin(), lugares.end(), otro)) {
            return ColumnaAmbigua(item.expr->partes[0]);
        }
        if (!lugares.empty()) return por_lugar(lugares[0]);
    }
    QUIMO_TRY(const Termino termino, expresiones_.Valor(item.expr, ambito));
    for (std::size_t i = 0; i < terminos.size(); ++i) {
        if (terminos[i].sql == termino.sql) return por_lugar(i);
    }
    if (distinto) return OrdenFueraDeLaLista();
    return ClaveDeOrden(termino);
}

Resultado<std::string> TraductorConsultas::Limite(const Seleccion& seleccion,
                                                  const std::string& sql) {
    if (!seleccion.tope) return std::string();
    Ambito vacio;
    QUIMO_TRY(Termino tope, expresiones_.Valor(seleccion.tope, vacio));
    if (!seleccion.tope_porciento) {
        QUIMO_TRY(tope,
                  Convertir(std::move(tope), TipoEntero(Clase::BigInt), contexto_.entorno.orden));
        return " LIMIT " + tope.sql;
    }
    QUIMO_TRY(tope, Convertir(std::move(tope), TipoReal(), contexto_.entorno.orden));
    return " LIMIT (SELECT CAST(count(*)*" + Par(tope, Fuerza::Atomo) +
           "/100.0+0.9999999999 AS INTEGER) FROM (" + sql + "))";
}

}  // namespace quimo::tsql
