#include <algorithm>
#include <array>

#include "tsql/texto.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

constexpr auto kAgregados = std::to_array<std::string_view>(
    {"COUNT", "COUNT_BIG", "SUM", "AVG", "MIN", "MAX", "STDEV", "STDEVP", "VAR", "VARP"});
constexpr auto kDeVentana =
    std::to_array<std::string_view>({"ROW_NUMBER", "RANK", "DENSE_RANK", "NTILE"});

}  // namespace

bool EsAgregado(const Expr& expr) {
    return expr.clase == ClaseExpr::Funcion && expr.partes.empty() && !expr.ventana &&
           std::find(kAgregados.begin(), kAgregados.end(), expr.texto) != kAgregados.end();
}

bool TieneAgregado(const Expr& expr) {
    if (EsAgregado(expr)) return true;
    return std::any_of(expr.hijos.begin(), expr.hijos.end(),
                       [](const ExprPtr& hijo) { return TieneAgregado(*hijo); });
}

/// An aggregate over the groups of the query that it belongs to.
Resultado<Termino> Traductor::Agregado(const Expr& expr, Ambito& ambito) {
    if (expr.ventana) {
        if (ambito.clausula == Clausula::Donde || ambito.clausula == Clausula::Union) {
            return CrearError(147);
        }
        return CuerpoDeAgregado(expr, ambito);
    }
    if (ambito.clausula == Clausula::Asignacion) return CrearError(157);
    if (!ambito.agrupado) return CrearError(147);
    if (ambito.libre) {
        ErrorSql error = CrearError(147);
        error.nativo = 130;
        error.mensaje =
            "Cannot perform an aggregate function on an expression containing an aggregate or a "
            "subquery.";
        return error;
    }
    ambito.libre = true;
    auto termino = CuerpoDeAgregado(expr, ambito);
    ambito.libre = false;
    return termino;
}

Resultado<Termino> Traductor::CuerpoDeAgregado(const Expr& expr, Ambito& ambito) {
    const std::string& nombre = expr.texto;
    std::string sobre;
    if (expr.ventana) {
        QUIMO_TRY(sobre, Sobre(*expr.ventana, ambito));
    }
    if (std::find(kDeVentana.begin(), kDeVentana.end(), nombre) != kDeVentana.end()) {
        QUIMO_TRY(const std::vector<Termino> terminos, Argumentos(expr, ambito));
        const std::string dentro = terminos.empty() ? "" : terminos[0].sql;
        return Termino{AMinusculas(nombre) + "(" + dentro + ")" + sobre, TipoEntero(Clase::BigInt)};
    }
    if (expr.hijos.size() != 1) return CrearError(174, nombre, "1");
    const Tipo entero = TipoEntero(nombre == "COUNT_BIG" ? Clase::BigInt : Clase::Int);
    const bool cuenta = nombre == "COUNT" || nombre == "COUNT_BIG";
    if (expr.hijos[0]->clase == ClaseExpr::Asterisco) {
        if (!cuenta) return CrearError(102, "*");
        return Termino{"count(*)" + sobre, entero, Fuerza::Atomo, false};
    }
    QUIMO_TRY(const Termino dentro, Valor(expr.hijos[0], ambito));
    const std::string distinto = expr.distinto ? "DISTINCT " : "";
    const Tipo& tipo = dentro.tipo;
    if (cuenta) {
        return Termino{"count(" + distinto + Cotejada(dentro) + ")" + sobre, entero, Fuerza::Atomo,
                       false};
    }
    const bool extremo = nombre == "MIN" || nombre == "MAX";
    const bool sirve = extremo ? tipo.clase != Clase::Bit && tipo.clase != Clase::Nulo
                               : tipo.EsNumero() && tipo.clase != Clase::Bit;
    if (!sirve) {
        return CrearError(8117, std::string(NombreClase(tipo.clase)), AMinusculas(nombre));
    }
    if (extremo) {
        const std::string funcion = (tipo.EsAncho() ? "q_" : "") + AMinusculas(nombre);
        return Termino{funcion + "(" + Cotejada(dentro) + ")" + sobre, tipo};
    }
    if (nombre == "AVG") return Promedio(dentro, distinto, sobre);
    if (nombre == "SUM") {
        Tipo suma = tipo;
        if (tipo.EsEntero() && tipo.clase != Clase::BigInt) suma = TipoEntero(Clase::Int);
        if (tipo.clase == Clase::SmallMoney) suma = TipoMoneda();
        if (tipo.clase == Clase::Numeric) suma = TipoNumerico(kDigitosMaximos, tipo.escala);
        if (tipo.EsReal()) suma = TipoReal();
        const std::string funcion = tipo.EsAncho() ? "q_suma(" : "sum(";
        return Termino{funcion + distinto + dentro.sql + ")" + sobre, suma};
    }
    QUIMO_TRY(const Termino real, Convertir(dentro, TipoReal()));
    return Termino{"q_" + AMinusculas(nombre) + "(" + distinto + real.sql + ")" + sobre,
                   TipoReal()};
}

Resultado<Termino> Traductor::Promedio(const Termino& dentro, const std::string& distinto,
                                       const std::string& sobre) {
    const Tipo& tipo = dentro.tipo;
    const std::string suma =
        (tipo.EsAncho() ? "q_suma(" : "sum(") + distinto + dentro.sql + ")" + sobre;
    const std::string cuenta = "count(" + distinto + dentro.sql + ")" + sobre;
    if (tipo.clase != Clase::Numeric) {
        Tipo media = tipo;
        if (tipo.EsEntero() && tipo.clase != Clase::BigInt) media = TipoEntero(Clase::Int);
        if (tipo.clase == Clase::SmallMoney) media = TipoMoneda();
        if (tipo.EsReal()) media = TipoReal();
        return Termino{suma + "/" + cuenta, media, Fuerza::Producto};
    }
    const Tipo media = TipoNumerico(kDigitosMaximos, std::max(tipo.escala, 6));
    return Termino{"q_entre(" + suma + "," + cuenta + "," + std::to_string(tipo.escala) + ",0," +
                       TipoSqlTexto(media) + ")",
                   media};
}

Resultado<std::string> Traductor::Sobre(const Ventana& ventana, Ambito& ambito) {
    std::string sql;
    for (const ExprPtr& expr : ventana.particion) {
        QUIMO_TRY(const Termino termino, Valor(expr, ambito));
        sql += (sql.empty() ? "PARTITION BY " : ",") + Cotejada(termino);
    }
    std::string orden;
    for (const OrdenItem& item : ventana.orden) {
        QUIMO_TRY(const Termino termino, Valor(item.expr, ambito));
        orden += (orden.empty() ? " ORDER BY " : ",") + ClaveDeOrden(termino) +
                 (item.descendente ? " DESC" : "");
    }
    return " OVER (" + sql + orden + ")";
}

}  // namespace quimo::tsql
