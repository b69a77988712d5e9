// The functions whose translation takes more than their arguments put into a template.

#include <algorithm>
#include <array>
#include <utility>

#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/traduccion/funciones_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

Resultado<Termino> TraductorFunciones::IsNull(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino a, valores_.Valor(expr.hijos[0], ambito));
    QUIMO_TRY(Termino b, valores_.Valor(expr.hijos[1], ambito));
    if (a.nulo) a.tipo = b.nulo ? TipoEntero(Clase::Int) : b.tipo;
    QUIMO_TRY(b, ConvertirA(std::move(b), a.tipo));
    return Termino{"ifnull(" + a.sql + "," + b.sql + ")", a.tipo, Fuerza::Atomo, b.admite_nulos};
}

Resultado<Termino> TraductorFunciones::Coalesce(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(std::vector<Termino> terminos, Argumentos(expr, ambito));
    Tipo tipo;
    bool admite_nulos = true;
    for (const Termino& t : terminos) {
        if (!t.nulo) tipo = TipoComun(tipo, t.tipo);
        admite_nulos = admite_nulos && t.admite_nulos;
    }
    if (tipo.clase == Clase::Nulo) return CoalesceSinTipo();
    std::string sql;
    for (Termino& t : terminos) {
        QUIMO_TRY(t, ConvertirA(std::move(t), tipo));
        sql += (sql.empty() ? "coalesce(" : ",") + t.sql;
    }
    return Termino{sql + ")", tipo, Fuerza::Atomo, admite_nulos};
}

Resultado<Termino> TraductorFunciones::NullIf(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino a, valores_.Valor(expr.hijos[0], ambito));
    QUIMO_TRY(Termino b, valores_.Valor(expr.hijos[1], ambito));
    const Tipo tipo = a.nulo ? TipoEntero(Clase::Int) : a.tipo;
    QUIMO_TRY(const Termino igual, CompararTerminos("=", a, std::move(b), contexto_.entorno.orden));
    return Termino{"CASE WHEN " + igual.sql + " THEN NULL ELSE " + a.sql + " END", tipo};
}

Resultado<Termino> TraductorFunciones::Subcadena(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(std::vector<Termino> t, Argumentos(expr, ambito));
    if (t[0].tipo.EsNumero() || t[0].tipo.EsFecha()) {
        return ArgumentoDeTipoInvalido(std::string(NombreClase(t[0].tipo.clase)), "1", "substring");
    }
    for (std::size_t i = 1; i < 3; ++i) {
        QUIMO_TRY(t[i], ConvertirA(std::move(t[i]), TipoEntero(Clase::Int)));
    }
    Tipo tipo = t[0].tipo.EsBinario()
                    ? TipoTexto(Clase::VarBinary, 0)
                    : TipoTexto(t[0].tipo.EsNacional() ? Clase::NVarChar : Clase::VarChar, 0);
    tipo.longitud = t[0].nulo ? 1 : t[0].tipo.longitud;
    const auto desde = contexto_.Constante(*expr.hijos[1]);
    const auto largo = contexto_.Constante(*expr.hijos[2]);
    const bool nulos = t[0].admite_nulos || t[1].admite_nulos || t[2].admite_nulos;
    if (desde && largo && desde->tipo.EsEntero() && largo->tipo.EsEntero() &&
        desde->valor.exacto >= 1 && largo->valor.exacto >= 0) {
        const int maximo = static_cast<int>(largo->valor.exacto);
        if (tipo.longitud < 0 || maximo < tipo.longitud) tipo.longitud = std::max(1, maximo);
        return Termino{
            "substr(" + t[0].sql + "," + LiteralSql(*desde) + "," + LiteralSql(*largo) + ")", tipo,
            Fuerza::Atomo, nulos};
    }
    return Termino{"q_trozo(" + t[0].sql + "," + t[1].sql + "," + t[2].sql + ")", tipo,
                   Fuerza::Atomo, nulos};
}

/// Functions of numbers, whose result's type comes from their argument's.
Resultado<Termino> TraductorFunciones::DeNumero(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(std::vector<Termino> t, Argumentos(expr, ambito));
    Termino& x = t[0];
    const std::string& nombre = expr.texto;
    if (x.nulo) x.tipo = TipoEntero(Clase::Int);
    if (!x.tipo.EsNumero()) {
        QUIMO_TRY(x, ConvertirA(std::move(x), TipoReal()));
    }
    Tipo tipo = x.tipo;
    if (tipo.EsEntero() && tipo.clase != Clase::BigInt) tipo = TipoEntero(Clase::Int);
    const std::string origen = TipoSqlTexto(x.tipo);
    std::string sql = x.sql;
    if (nombre == "ROUND" || nombre == "POWER") {
        const Tipo segundo = nombre == "ROUND" ? TipoEntero(Clase::Int) : TipoReal();
        QUIMO_TRY(t[1], ConvertirA(std::move(t[1]), segundo));
        sql += "," + t[1].sql;
        if (nombre == "ROUND") {
            if (t.size() > 2) {
                QUIMO_TRY(t[2], ConvertirA(std::move(t[2]), TipoEntero(Clase::Int)));
            }
            sql += "," + (t.size() > 2 ? t[2].sql : "0");
        }
    }
    if ((nombre == "CEILING" || nombre == "FLOOR") && tipo.clase == Clase::Numeric) {
        tipo = TipoNumerico(std::max(1, tipo.precision - tipo.escala), 0);
    }
    if (nombre == "ABS" && !tipo.EsAncho()) {
        return Termino{"abs(" + sql + ")", tipo, Fuerza::Atomo, x.admite_nulos};
    }
    constexpr auto kNombres =
        std::to_array<std::pair<std::string_view, std::string_view>>({{"ROUND", "q_redondear("},
                                                                      {"ABS", "q_absoluto("},
                                                                      {"CEILING", "q_techo("},
                                                                      {"FLOOR", "q_piso("},
                                                                      {"SIGN", "q_signo("},
                                                                      {"POWER", "q_elevar("}});
    for (const auto& [de, a] : kNombres) {
        if (de == nombre) sql = std::string(a) + sql + "," + origen + ")";
    }
    return Termino{sql, tipo, Fuerza::Atomo, true};
}

/// ISNUMERIC and DATALENGTH, which look at how a value of that type is kept.
Resultado<Termino> TraductorFunciones::DelTipo(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(const Termino x, valores_.Valor(expr.hijos[0], ambito));
    const std::string funcion = expr.texto == "ISNUMERIC" ? "q_es_numero(" : "q_bytes(";
    return Termino{funcion + x.sql + "," + TipoSqlTexto(x.tipo) + ")", TipoEntero(Clase::Int)};
}

Resultado<Termino> TraductorFunciones::Fecha(const Expr& expr, Ambito& ambito) {
    const std::string& nombre = expr.texto;
    const bool corta = nombre == "YEAR" || nombre == "MONTH" || nombre == "DAY";
    std::optional<ParteFecha> parte;
    if (corta) {
        parte = ParteDeNombre(nombre);
    } else if (expr.hijos[0]->clase == ClaseExpr::Columna) {
        parte = ParteDeNombre(expr.hijos[0]->partes.back());
        if (!parte)
            return ParteDeFechaDesconocida(expr.hijos[0]->partes.back(), AMinusculas(nombre));
    } else {
        return ParametroInvalido("1", AMinusculas(nombre));
    }
    QUIMO_TRY(std::vector<Termino> t, Argumentos(expr, ambito, corta ? 0 : 1));
    bool nulos = false;
    for (std::size_t i = 0; i < t.size(); ++i) {
        const bool cantidad = nombre == "DATEADD" && i == 0;
        nulos = nulos || t[i].admite_nulos;
        QUIMO_TRY(t[i],
                  ConvertirA(std::move(t[i]), cantidad ? TipoEntero(Clase::Int) : TipoFecha()));
    }
    std::string lista = std::to_string(static_cast<int>(*parte));
    for (const Termino& termino : t)
        lista += "," + termino.sql;
    const auto hacer = [&](const std::string& funcion, const Tipo& tipo) {
        return Termino{funcion + "(" + lista + ")", tipo, Fuerza::Atomo, nulos};
    };
    if (nombre == "DATEADD") return hacer("q_sumar_fecha", TipoFecha());
    if (nombre == "DATEDIFF") return hacer("q_diferencia", TipoEntero(Clase::Int));
    if (nombre == "DATENAME") return hacer("q_nombre_parte", TipoTexto(Clase::NVarChar, 30));
    return hacer("q_parte", TipoEntero(Clase::Int));
}

}  // namespace quimo::tsql
