#include <algorithm>
#include <array>

#include "tsql/traduccion/agregados_interno.h"
#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

/// What SUM and AVG of a type yield, NUMERIC apart.
Tipo TipoDeSuma(const Tipo& tipo) {
    if (tipo.EsEntero() && tipo.clase != Clase::BigInt) return TipoEntero(Clase::Int);
    if (tipo.clase == Clase::SmallMoney) return TipoMoneda();
    if (tipo.EsReal()) return TipoReal();
    return tipo;
}

std::string SumaSql(const Termino& dentro, const std::string& distinto, const std::string& sobre) {
    return (dentro.tipo.EsAncho() ? "q_suma(" : "sum(") + distinto + dentro.sql + ")" + sobre;
}

Termino Promedio(const Termino& dentro, const std::string& distinto, const std::string& sobre) {
    const Tipo& tipo = dentro.tipo;
    const std::string suma = SumaSql(dentro, distinto, sobre);
    const std::string cuenta = "count(" + distinto + dentro.sql + ")" + sobre;
    if (tipo.clase != Clase::Numeric) {
        return {suma + "/" + cuenta, TipoDeSuma(tipo), Fuerza::Producto};
    }
    const Tipo media = TipoNumerico(kDigitosMaximos, std::max(tipo.escala, 6));
    return {"q_entre(" + suma + "," + cuenta + "," + std::to_string(tipo.escala) + ",0," +
                TipoSqlTexto(media) + ")",
            media};
}

}  // namespace

bool EsDeVentana(std::string_view funcion) {
    constexpr auto kDeVentana =
        std::to_array<std::string_view>({"ROW_NUMBER", "RANK", "DENSE_RANK", "NTILE"});
    return std::find(kDeVentana.begin(), kDeVentana.end(), funcion) != kDeVentana.end();
}

Resultado<Termino> TraductorAgregados::Agregado(const Expr& expr, Ambito& ambito) {
    if (expr.ventana) {
        if (ambito.clausula == Clausula::Donde || ambito.clausula == Clausula::Union) {
            return AgregadoFueraDeLugar();
        }
        return Cuerpo(expr, ambito);
    }
    if (ambito.clausula == Clausula::Asignacion) return AgregadoEnAsignacion();
    if (!ambito.agrupado) return AgregadoFueraDeLugar();
    if (ambito.libre) return AgregadoDentroDeAgregado();
    ambito.libre = true;
    auto termino = Cuerpo(expr, ambito);
    ambito.libre = false;
    return termino;
}

Resultado<Termino> TraductorAgregados::Cuerpo(const Expr& expr, Ambito& ambito) {
    const std::string& nombre = expr.texto;
    std::string sobre;
    if (expr.ventana) {
        QUIMO_TRY(sobre, Sobre(*expr.ventana, ambito));
    }
    if (EsDeVentana(nombre)) return DeVentana(expr, sobre, ambito);
    if (expr.hijos.size() != 1) return ArgumentosExactos(nombre, "1");
    const Tipo entero = TipoEntero(nombre == "COUNT_BIG" ? Clase::BigInt : Clase::Int);
    const bool cuenta = nombre == "COUNT" || nombre == "COUNT_BIG";
    if (expr.hijos[0]->clase == ClaseExpr::Asterisco) {
        if (!cuenta) return SintaxisIncorrecta("*");
        return Termino{"count(*)" + sobre, entero, Fuerza::Atomo, false};
    }
    QUIMO_TRY(const Termino dentro, valores_.Valor(expr.hijos[0], ambito));
    const std::string distinto = expr.distinto ? "DISTINCT " : "";
    if (cuenta) {
        return Termino{"count(" + distinto + Cotejada(dentro) + ")" + sobre, entero, Fuerza::Atomo,
                       false};
    }
    return Estadistica(nombre, dentro, distinto, sobre);
}

Resultado<Termino> TraductorAgregados::DeVentana(const Expr& expr, const std::string& sobre,
                                                 Ambito& ambito) {
    std::string dentro;
    for (std::size_t i = 0; i < expr.hijos.size(); ++i) {
        QUIMO_TRY(const Termino termino, valores_.Valor(expr.hijos[i], ambito));
        if (i == 0) dentro = termino.sql;
    }
    return Termino{AMinusculas(expr.texto) + "(" + dentro + ")" + sobre, TipoEntero(Clase::BigInt)};
}

Resultado<Termino> TraductorAgregados::Estadistica(const std::string& nombre, const Termino& dentro,
                                                   const std::string& distinto,
                                                   const std::string& sobre) const {
    const Tipo& tipo = dentro.tipo;
    const bool extremo = nombre == "MIN" || nombre == "MAX";
    const bool sirve = extremo ? tipo.clase != Clase::Bit && tipo.clase != Clase::Nulo
                               : tipo.EsNumero() && tipo.clase != Clase::Bit;
    if (!sirve) {
        return OperandoDeTipoInvalido(std::string(NombreClase(tipo.clase)), AMinusculas(nombre));
    }
    if (extremo) {
        const std::string funcion = (tipo.EsAncho() ? "q_" : "") + AMinusculas(nombre);
        return Termino{funcion + "(" + Cotejada(dentro) + ")" + sobre, tipo};
    }
    if (nombre == "AVG") return Promedio(dentro, distinto, sobre);
    if (nombre == "SUM") {
        const Tipo suma = tipo.clase == Clase::Numeric ? TipoNumerico(kDigitosMaximos, tipo.escala)
                                                       : TipoDeSuma(tipo);
        return Termino{SumaSql(dentro, distinto, sobre), suma};
    }
    QUIMO_TRY(const Termino real, Convertir(dentro, TipoReal(), contexto_.entorno.orden));
    return Termino{"q_" + AMinusculas(nombre) + "(" + distinto + real.sql + ")" + sobre,
                   TipoReal()};
}

Resultado<std::string> TraductorAgregados::Sobre(const Ventana& ventana, Ambito& ambito) {
    std::string sql;
    for (const ExprPtr& expr : ventana.particion) {
        QUIMO_TRY(const Termino termino, valores_.Valor(expr, ambito));
        sql += (sql.empty() ? "PARTITION BY " : ",") + Cotejada(termino);
    }
    std::string orden;
    for (const OrdenItem& item : ventana.orden) {
        QUIMO_TRY(const Termino termino, valores_.Valor(item.expr, ambito));
        orden += (orden.empty() ? " ORDER BY " : ",") + ClaveDeOrden(termino) +
                 (item.descendente ? " DESC" : "");
    }
    return " OVER (" + sql + orden + ")";
}

}  // namespace quimo::tsql
