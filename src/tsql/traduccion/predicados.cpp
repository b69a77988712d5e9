#include <utility>

#include "tsql/reescritura/fecha_trabajo.h"
#include "tsql/reescritura/rangos_prefijo.h"
#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/traduccion/predicados_interno.h"

namespace quimo::tsql {

Resultado<Termino> TraductorPredicados::Comparacion(const Expr& expr, Ambito& ambito) {
    const OrdenFecha orden = contexto_.entorno.orden;
    std::optional<FechaIndexada> fecha;
    const auto operando = [&](const ExprPtr& hijo) -> Resultado<Termino> {
        if (!fecha) {
            fecha = FechaDeTrabajo(*hijo, ambito, orden, contexto_.entorno.lote);
            if (fecha) return fecha->fecha;
        }
        return valores_.ValorSuelto(hijo, ambito);
    };
    QUIMO_TRY(Termino a, operando(expr.hijos[0]));
    QUIMO_TRY(Termino b, operando(expr.hijos[1]));
    QUIMO_TRY(Termino igual, CompararTerminos(expr.texto, std::move(a), std::move(b), orden));
    return fecha ? fecha->ConControl(igual) : igual;
}

Resultado<Termino> TraductorPredicados::Entre(const Expr& expr, Ambito& ambito) {
    const OrdenFecha orden = contexto_.entorno.orden;
    const auto fecha = FechaDeTrabajo(*expr.hijos[0], ambito, orden, contexto_.entorno.lote);
    Termino valor;
    if (fecha) {
        valor = fecha->fecha;
    } else {
        QUIMO_TRY(valor, valores_.Valor(expr.hijos[0], ambito));
    }
    QUIMO_TRY(Termino desde, valores_.ValorSuelto(expr.hijos[1], ambito));
    QUIMO_TRY(Termino hasta, valores_.ValorSuelto(expr.hijos[2], ambito));
    Termino con_desde = valor;
    Termino con_hasta = valor;
    QUIMO_TRY_VOID(Igualar(con_desde, desde, orden));
    QUIMO_TRY_VOID(Igualar(con_hasta, hasta, orden));
    const auto hecho = [&fecha](const Termino& condicion) {
        return fecha ? fecha->ConControl(condicion) : condicion;
    };
    if (con_desde.sql == con_hasta.sql) {
        return hecho(Verdad(LadoComparado(con_desde) + (expr.negado ? " NOT" : "") + " BETWEEN " +
                                Par(desde, Fuerza::Orden) + " AND " + Par(hasta, Fuerza::Orden),
                            Fuerza::Igual));
    }
    QUIMO_TRY(const Termino minimo, CompararTerminos(">=", valor, std::move(desde), orden));
    QUIMO_TRY(const Termino maximo, CompararTerminos("<=", valor, std::move(hasta), orden));
    const Termino ambos = Verdad(minimo.sql + " AND " + maximo.sql, Fuerza::Y);
    return hecho(expr.negado ? Verdad("NOT (" + ambos.sql + ")", Fuerza::No) : ambos);
}

Resultado<Termino> TraductorPredicados::EnLista(const Expr& expr, Ambito& ambito) {
    const OrdenFecha orden = contexto_.entorno.orden;
    QUIMO_TRY(const Termino valor, valores_.Valor(expr.hijos[0], ambito));
    std::string lista;
    std::string alternativas;
    std::string izquierda;
    bool uniforme = true;
    for (std::size_t i = 1; i < expr.hijos.size(); ++i) {
        QUIMO_TRY(Termino item, valores_.ValorSuelto(expr.hijos[i], ambito));
        Termino convertido = valor;
        QUIMO_TRY_VOID(Igualar(convertido, item, orden));
        const std::string este = LadoComparado(convertido);
        if (i == 1) izquierda = este;
        uniforme = uniforme && este == izquierda;
        lista += (i > 1 ? "," : "") + item.sql;
        alternativas += (i > 1 ? " OR " : "") + este + "=" + Par(item, Fuerza::Orden);
    }
    if (uniforme) {
        return Verdad(izquierda + (expr.negado ? " NOT IN (" : " IN (") + lista + ")",
                      Fuerza::Igual);
    }
    return Verdad((expr.negado ? "NOT (" : "(") + alternativas + ")",
                  expr.negado ? Fuerza::No : Fuerza::Atomo);
}

Resultado<Termino> TraductorPredicados::EnConsulta(const Expr& expr, Ambito& ambito) {
    const OrdenFecha orden = contexto_.entorno.orden;
    QUIMO_TRY(Termino valor, valores_.Valor(expr.hijos[0], ambito));
    QUIMO_TRY(const ConsultaSql consulta, consultas_.ConsultaEn(*expr.consulta, &ambito));
    if (consulta.columnas.size() != 1) return UnaSolaExpresion();
    Termino columna{NombreQ(0), consulta.columnas[0].tipo};
    columna.columna = true;
    QUIMO_TRY_VOID(Igualar(valor, columna, orden));
    std::string sql = consulta.sql;
    if (columna.sql != NombreQ(0)) sql = "SELECT " + columna.sql + " FROM (" + sql + ")";
    return Verdad(LadoComparado(valor) + (expr.negado ? " NOT IN (" : " IN (") + sql + ")",
                  Fuerza::Igual);
}

Resultado<Termino> TraductorPredicados::Cuantificada(const Expr& expr, Ambito& ambito) {
    const OrdenFecha orden = contexto_.entorno.orden;
    QUIMO_TRY(Termino valor, valores_.Valor(expr.hijos[0], ambito));
    QUIMO_TRY(const ConsultaSql consulta, consultas_.ConsultaEn(*expr.consulta, &ambito));
    if (consulta.columnas.size() != 1) return UnaSolaExpresion();
    const std::string alias = contexto_.AliasNuevo();
    const Termino columna{alias + "." + NombreQ(0), consulta.columnas[0].tipo};
    QUIMO_TRY(const Termino cada, CompararTerminos(expr.texto, std::move(valor), columna, orden));
    const auto hay = [&](const std::string& prueba) {
        return "EXISTS (SELECT 1 FROM (" + consulta.sql + ") AS " + alias + " WHERE (" + cada.sql +
               ") IS " + prueba + ")";
    };
    // ALL is false as soon as one is false, ANY true as soon as one is true; unknown otherwise
    // when any comparison is unknown.
    const std::string decide = expr.distinto ? hay("FALSE") + " THEN 0" : hay("TRUE") + " THEN 1";
    return Verdad("CASE WHEN " + decide + " WHEN " + hay("NULL") + " THEN NULL ELSE " +
                      (expr.distinto ? "1" : "0") + " END",
                  Fuerza::Atomo);
}

Resultado<Termino> TraductorPredicados::Como(const Expr& expr, Ambito& ambito) {
    const OrdenFecha orden = contexto_.entorno.orden;
    if (expr.hijos[0]->clase == ClaseExpr::Columna) {
        QUIMO_TRY(const Termino numero, valores_.Valor(expr.hijos[0], ambito));
        const auto rangos = RangosDePrefijo(expr, numero.tipo, contexto_.entorno.lote);
        if (rangos && !rangos->empty()) return EnRangos(numero, *rangos, expr.negado);
    }
    std::string argumentos;
    for (const ExprPtr& hijo : expr.hijos) {
        QUIMO_TRY(Termino termino, valores_.Valor(hijo, ambito));
        if (!termino.tipo.EsTexto()) {
            QUIMO_TRY(termino, Convertir(std::move(termino),
                                         TipoTexto(Clase::VarChar, kLongitudMaxima), orden));
        }
        argumentos += (argumentos.empty() ? "" : ",") + termino.sql;
    }
    return Verdad((expr.negado ? "NOT q_como(" : "q_como(") + argumentos + ")",
                  expr.negado ? Fuerza::No : Fuerza::Atomo);
}

Resultado<Termino> TraductorPredicados::EsNulo(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(const Termino valor, valores_.Valor(expr.hijos[0], ambito));
    const std::string prueba = expr.negado ? " IS NOT NULL" : " IS NULL";
    return Verdad(Par(valor, Fuerza::Orden) + prueba, Fuerza::Igual);
}

}  // namespace quimo::tsql
