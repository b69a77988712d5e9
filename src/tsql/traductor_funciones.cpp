#include <algorithm>
#include <array>
#include <utility>

#include "tsql/decimales.h"
#include "tsql/texto.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

/// A function whose translation is its arguments put into a template. Arguments: t text, i INT,
/// f FLOAT, d DATETIME, x as it is. Result: I INT, F FLOAT, V text as long as the first argument,
/// M text up to the limit, C one character, A as the first argument, U unique identifier.
struct Sencilla {
    std::string_view nombre;
    std::size_t minimo;
    std::size_t maximo;
    std::string_view plantilla;
    std::string_view argumentos;
    char resultado;
};

constexpr auto kSencillas = std::to_array<Sencilla>({
    {"ASCII", 1, 1, "q_ascii(%*)", "t", 'I'},
    {"CHAR", 1, 1, "q_char(%*)", "i", 'C'},
    {"NCHAR", 1, 1, "q_char(%*)", "i", 'C'},
    {"UNICODE", 1, 1, "q_unicode(%*)", "t", 'I'},
    {"CHARINDEX", 2, 3, "q_posicion(%*)", "tti", 'I'},
    {"PATINDEX", 2, 2, "q_patron(%*)", "tt", 'I'},
    {"LEFT", 2, 2, "q_izquierda(%*)", "ti", 'V'},
    {"RIGHT", 2, 2, "q_derecha(%*)", "ti", 'V'},
    {"LEN", 1, 1, "length(rtrim(%*))", "t", 'I'},
    {"LOWER", 1, 1, "q_minusculas(%*)", "t", 'V'},
    {"UPPER", 1, 1, "q_mayusculas(%*)", "t", 'V'},
    {"LTRIM", 1, 1, "ltrim(%*)", "t", 'V'},
    {"RTRIM", 1, 1, "rtrim(%*)", "t", 'V'},
    {"REPLACE", 3, 3, "q_reemplazar(%*)", "ttt", 'M'},
    {"REPLICATE", 2, 2, "q_repetir(%*)", "ti", 'M'},
    {"SPACE", 1, 1, "q_repetir(' ',%*)", "i", 'M'},
    {"REVERSE", 1, 1, "q_invertir(%*)", "t", 'V'},
    {"STUFF", 4, 4, "q_injertar(%*)", "tiit", 'M'},
    {"STR", 1, 3, "q_str(%*)", "fii", 'M'},
    {"QUOTENAME", 1, 2, "q_citar(%*)", "tt", 'M'},
    {"SQRT", 1, 1, "q_raiz(%*)", "f", 'F'},
    {"SQUARE", 1, 1, "q_potencia(%*,2.0)", "f", 'F'},
    {"EXP", 1, 1, "q_exp(%*)", "f", 'F'},
    {"LOG", 1, 1, "q_log(%*)", "f", 'F'},
    {"LOG10", 1, 1, "q_log10(%*)", "f", 'F'},
    {"SIN", 1, 1, "q_seno(%*)", "f", 'F'},
    {"COS", 1, 1, "q_coseno(%*)", "f", 'F'},
    {"TAN", 1, 1, "q_tangente(%*)", "f", 'F'},
    {"PI", 0, 0, "3.141592653589793", "", 'F'},
    {"NEWID", 0, 0, "q_nuevo_id()", "", 'U'},
    {"OBJECT_ID", 1, 2, "q_objeto(%*)", "tt", 'I'},
    {"OBJECT_NAME", 1, 1, "q_nombre_objeto(%*)", "i", 'M'},
    {"APPLOCK_MODE", 3, 3, "q_candado(%*)", "ttt", 'M'},
    {"ISDATE", 1, 1, "q_es_fecha(%*)", "t", 'I'},
    {"CONCAT", 2, 250, "q_concatenar(%*)", "t", 'M'},
});

constexpr auto kGlobales = std::to_array<std::pair<std::string_view, Tipo>>({
    {"GETDATE", {Clase::DateTime, 0, 0, 0}},
    {"SYSDATETIME", {Clase::DateTime, 0, 0, 0}},
    {"DB_NAME", {Clase::NVarChar, 128, 0, 0}},
    {"HOST_NAME", {Clase::NVarChar, 128, 0, 0}},
    {"APP_NAME", {Clase::NVarChar, 128, 0, 0}},
    {"USER_NAME", {Clase::NVarChar, 128, 0, 0}},
    {"SUSER_SNAME", {Clase::NVarChar, 128, 0, 0}},
    {"SCOPE_IDENTITY", {Clase::Numeric, 0, kDigitosMaximos, 0}},
    {"RAND", {Clase::Float, 0, 0, 0}},
    {"ROWCOUNT_BIG", {Clase::BigInt, 0, 19, 0}},
});

Tipo TipoDeArgumento(char codigo) {
    if (codigo == 'i') return TipoEntero(Clase::Int);
    if (codigo == 'f') return TipoReal();
    if (codigo == 'd') return TipoFecha();
    return TipoTexto(Clase::VarChar, kLongitudMaxima);
}

Tipo TipoDeResultado(char codigo, const std::vector<Termino>& argumentos) {
    if (codigo == 'I') return TipoEntero(Clase::Int);
    if (codigo == 'F') return TipoReal();
    if (codigo == 'U') return {Clase::UniqueIdentifier};
    if (codigo == 'C') return TipoTexto(Clase::NVarChar, 1);
    const bool nacional = !argumentos.empty() && argumentos[0].tipo.EsNacional();
    const Clase clase = nacional ? Clase::NVarChar : Clase::VarChar;
    if (codigo == 'M') return TipoTexto(clase, nacional ? kLongitudMaxima / 2 : kLongitudMaxima);
    return TipoTexto(clase, argumentos[0].tipo.longitud);
}

int Usos(const Expr& expr, const std::string& variable) {
    int usos = expr.clase == ClaseExpr::Variable && expr.texto == variable ? 1 : 0;
    for (const ExprPtr& hijo : expr.hijos)
        usos += Usos(*hijo, variable);
    return usos;
}

}  // namespace

Resultado<std::vector<Termino>> Traductor::Argumentos(const Expr& expr, Ambito& ambito,
                                                      std::size_t desde) {
    std::vector<Termino> terminos;
    for (std::size_t i = desde; i < expr.hijos.size(); ++i) {
        QUIMO_TRY(Termino termino, Valor(expr.hijos[i], ambito));
        terminos.push_back(std::move(termino));
    }
    return terminos;
}

Resultado<Termino> Traductor::Funcion(const Expr& expr, Ambito& ambito) {
    if (!expr.partes.empty()) return FuncionPropia(expr, ambito);
    constexpr auto kDeVentana =
        std::to_array<std::string_view>({"ROW_NUMBER", "RANK", "DENSE_RANK", "NTILE"});
    const bool de_ventana =
        std::find(kDeVentana.begin(), kDeVentana.end(), expr.texto) != kDeVentana.end();
    if (EsAgregado(expr) || expr.ventana) return Agregado(expr, ambito);
    if (de_ventana) return CrearError(102, expr.texto);
    bool encontrada = false;
    auto especial = FuncionEspecial(expr, ambito, encontrada);
    if (encontrada) return especial;
    return FuncionDeTabla(expr, ambito);
}

Resultado<Termino> Traductor::FuncionDeTabla(const Expr& expr, Ambito& ambito) {
    for (const auto& [nombre, tipo] : kGlobales) {
        if (nombre != expr.texto) continue;
        if (expr.hijos.size() > (nombre == "RAND" ? 1U : 0U)) {
            return CrearError(174, AMinusculas(nombre), "0");
        }
        return Termino{Ranura({Ranura::Origen::Global, -1, expr.texto, tipo}), tipo};
    }
    const auto* const cual =
        std::find_if(kSencillas.begin(), kSencillas.end(),
                     [&](const Sencilla& s) { return s.nombre == expr.texto; });
    if (cual == kSencillas.end()) return CrearError(195, expr.texto, "built-in function name");
    const std::size_t cuantos = expr.hijos.size();
    if (cuantos < cual->minimo || cuantos > cual->maximo) {
        const int error = cual->minimo == cual->maximo ? 174 : 189;
        std::string rango = std::to_string(cual->minimo);
        if (error == 189) rango += " to " + std::to_string(cual->maximo);
        return CrearError(error, AMinusculas(expr.texto), rango);
    }
    QUIMO_TRY(std::vector<Termino> terminos, Argumentos(expr, ambito));
    std::string lista;
    bool admite_nulos = false;
    for (std::size_t i = 0; i < terminos.size(); ++i) {
        Termino& t = terminos[i];
        const char codigo = cual->argumentos[std::min(i, cual->argumentos.size() - 1)];
        admite_nulos = admite_nulos || t.admite_nulos;
        const bool ya = (codigo == 't' && t.tipo.EsTexto()) || codigo == 'x' || t.nulo;
        if (!ya) {
            QUIMO_TRY(t, Convertir(std::move(t), TipoDeArgumento(codigo)));
        }
        lista += (i > 0 ? "," : "") + t.sql;
    }
    std::string sql(cual->plantilla);
    const auto donde = sql.find("%*");
    if (donde != std::string::npos) sql.replace(donde, 2, lista);
    return Termino{sql, TipoDeResultado(cual->resultado, terminos), Fuerza::Atomo, admite_nulos};
}

Resultado<Termino> Traductor::FuncionEspecial(const Expr& expr, Ambito& ambito, bool& encontrada) {
    using Traduccion = Resultado<Termino> (Traductor::*)(const Expr&, Ambito&);
    struct Entrada {
        std::string_view nombre;
        std::size_t minimo;
        std::size_t maximo;
        Traduccion traduccion;
    };
    constexpr auto kEspeciales = std::to_array<Entrada>({
        {"ISNULL", 2, 2, &Traductor::IsNull},         {"COALESCE", 2, 250, &Traductor::Coalesce},
        {"NULLIF", 2, 2, &Traductor::NullIf},         {"SUBSTRING", 3, 3, &Traductor::Subcadena},
        {"ROUND", 2, 3, &Traductor::Redondear},       {"ABS", 1, 1, &Traductor::Redondear},
        {"CEILING", 1, 1, &Traductor::Redondear},     {"FLOOR", 1, 1, &Traductor::Redondear},
        {"SIGN", 1, 1, &Traductor::Redondear},        {"POWER", 2, 2, &Traductor::Redondear},
        {"DATEADD", 3, 3, &Traductor::FuncionFecha},  {"DATEDIFF", 3, 3, &Traductor::FuncionFecha},
        {"DATEPART", 2, 2, &Traductor::FuncionFecha}, {"DATENAME", 2, 2, &Traductor::FuncionFecha},
        {"YEAR", 1, 1, &Traductor::FuncionFecha},     {"MONTH", 1, 1, &Traductor::FuncionFecha},
        {"DAY", 1, 1, &Traductor::FuncionFecha},      {"ISNUMERIC", 1, 1, &Traductor::Redondear},
        {"DATALENGTH", 1, 1, &Traductor::Redondear},
    });
    for (const Entrada& entrada : kEspeciales) {
        if (entrada.nombre != expr.texto) continue;
        encontrada = true;
        const std::size_t cuantos = expr.hijos.size();
        if (cuantos < entrada.minimo || cuantos > entrada.maximo) {
            return CrearError(174, AMinusculas(expr.texto), std::to_string(entrada.minimo));
        }
        return (this->*entrada.traduccion)(expr, ambito);
    }
    return CrearError(195, expr.texto, "built-in function name");
}

Resultado<Termino> Traductor::IsNull(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino a, Valor(expr.hijos[0], ambito));
    QUIMO_TRY(Termino b, Valor(expr.hijos[1], ambito));
    if (a.nulo) a.tipo = b.nulo ? TipoEntero(Clase::Int) : b.tipo;
    QUIMO_TRY(b, Convertir(std::move(b), a.tipo));
    return Termino{"ifnull(" + a.sql + "," + b.sql + ")", a.tipo, Fuerza::Atomo, b.admite_nulos};
}

Resultado<Termino> Traductor::Coalesce(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(std::vector<Termino> terminos, Argumentos(expr, ambito));
    Tipo tipo;
    bool admite_nulos = true;
    for (const Termino& t : terminos) {
        if (!t.nulo) tipo = TipoComun(tipo, t.tipo);
        admite_nulos = admite_nulos && t.admite_nulos;
    }
    if (tipo.clase == Clase::Nulo) {
        ErrorSql error = CrearError(8133);
        error.nativo = 4127;
        error.mensaje =
            "At least one of the arguments to COALESCE must be an expression that is not the NULL "
            "constant.";
        return error;
    }
    std::string sql;
    for (Termino& t : terminos) {
        QUIMO_TRY(t, Convertir(std::move(t), tipo));
        sql += (sql.empty() ? "coalesce(" : ",") + t.sql;
    }
    return Termino{sql + ")", tipo, Fuerza::Atomo, admite_nulos};
}

Resultado<Termino> Traductor::NullIf(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino a, Valor(expr.hijos[0], ambito));
    QUIMO_TRY(Termino b, Valor(expr.hijos[1], ambito));
    const Tipo tipo = a.nulo ? TipoEntero(Clase::Int) : a.tipo;
    QUIMO_TRY(const Termino igual, CompararTerminos("=", a, std::move(b)));
    return Termino{"CASE WHEN " + igual.sql + " THEN NULL ELSE " + a.sql + " END", tipo};
}

Resultado<Termino> Traductor::Subcadena(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(std::vector<Termino> t, Argumentos(expr, ambito));
    if (t[0].tipo.EsNumero() || t[0].tipo.EsFecha()) {
        return CrearError(8116, std::string(NombreClase(t[0].tipo.clase)), "1", "substring");
    }
    for (std::size_t i = 1; i < 3; ++i) {
        QUIMO_TRY(t[i], Convertir(std::move(t[i]), TipoEntero(Clase::Int)));
    }
    Tipo tipo = t[0].tipo.EsBinario()
                    ? TipoTexto(Clase::VarBinary, 0)
                    : TipoTexto(t[0].tipo.EsNacional() ? Clase::NVarChar : Clase::VarChar, 0);
    tipo.longitud = t[0].nulo ? 1 : t[0].tipo.longitud;
    const auto desde = Fijar(*expr.hijos[1]);
    const auto largo = Fijar(*expr.hijos[2]);
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
Resultado<Termino> Traductor::Redondear(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(std::vector<Termino> t, Argumentos(expr, ambito));
    Termino& x = t[0];
    const std::string& nombre = expr.texto;
    if (nombre == "ISNUMERIC" || nombre == "DATALENGTH") {
        const std::string funcion = nombre == "ISNUMERIC" ? "q_es_numero(" : "q_bytes(";
        return Termino{funcion + x.sql + "," + TipoSqlTexto(x.tipo) + ")", TipoEntero(Clase::Int)};
    }
    if (x.nulo) x.tipo = TipoEntero(Clase::Int);
    if (!x.tipo.EsNumero()) {
        QUIMO_TRY(x, Convertir(std::move(x), TipoReal()));
    }
    Tipo tipo = x.tipo;
    if (tipo.EsEntero() && tipo.clase != Clase::BigInt) tipo = TipoEntero(Clase::Int);
    const std::string origen = TipoSqlTexto(x.tipo);
    std::string sql = x.sql;
    if (nombre == "ROUND" || nombre == "POWER") {
        const Tipo segundo = nombre == "ROUND" ? TipoEntero(Clase::Int) : TipoReal();
        QUIMO_TRY(t[1], Convertir(std::move(t[1]), segundo));
        sql += "," + t[1].sql;
        if (nombre == "ROUND") {
            if (t.size() > 2) {
                QUIMO_TRY(t[2], Convertir(std::move(t[2]), TipoEntero(Clase::Int)));
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

Resultado<Termino> Traductor::FuncionFecha(const Expr& expr, Ambito& ambito) {
    const std::string& nombre = expr.texto;
    const bool corta = nombre == "YEAR" || nombre == "MONTH" || nombre == "DAY";
    std::optional<ParteFecha> parte;
    if (corta) {
        parte = ParteDeNombre(nombre);
    } else if (expr.hijos[0]->clase == ClaseExpr::Columna) {
        parte = ParteDeNombre(expr.hijos[0]->partes.back());
        if (!parte) return CrearError(155, expr.hijos[0]->partes.back(), AMinusculas(nombre));
    } else {
        return CrearError(1023, "1", AMinusculas(nombre));
    }
    QUIMO_TRY(std::vector<Termino> t, Argumentos(expr, ambito, corta ? 0 : 1));
    bool nulos = false;
    for (std::size_t i = 0; i < t.size(); ++i) {
        const bool cantidad = nombre == "DATEADD" && i == 0;
        nulos = nulos || t[i].admite_nulos;
        QUIMO_TRY(t[i],
                  Convertir(std::move(t[i]), cantidad ? TipoEntero(Clase::Int) : TipoFecha()));
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

/// A function written in T-SQL. One that only returns an expression is put in place of its call.
Resultado<Termino> Traductor::FuncionPropia(const Expr& expr, Ambito& ambito) {
    NombreObjeto nombre;
    nombre.objeto = expr.partes.back();
    nombre.esquema = expr.partes[expr.partes.size() - 2];
    const ModuloPtr modulo = entorno_.catalogo->BuscarModulo(nombre);
    if (!modulo || modulo->clase != CrearModulo::Clase::Funcion) {
        return CrearError(4121, nombre.esquema, nombre.Completo());
    }
    if (expr.hijos.size() > modulo->parametros.size()) return CrearError(8144, nombre.Completo());
    if (expr.hijos.size() < modulo->parametros.size()) {
        ErrorSql error = CrearError(8144, nombre.Completo());
        error.nativo = 313;
        error.mensaje =
            "An insufficient number of arguments were supplied for the procedure or "
            "function " +
            nombre.Completo() + ".";
        return error;
    }
    QUIMO_TRY(std::vector<Termino> terminos, Argumentos(expr, ambito));
    for (std::size_t i = 0; i < terminos.size(); ++i) {
        QUIMO_TRY(terminos[i], Convertir(std::move(terminos[i]), modulo->parametros[i].tipo));
        terminos[i].tipo = modulo->parametros[i].tipo;
    }
    const auto* const bloque = std::get_if<Bloque>(&modulo->cuerpo[0]->que);
    const Regresar* regresar = nullptr;
    if (bloque != nullptr && bloque->sentencias.size() == 1 && modulo->cuerpo.size() == 1) {
        regresar = std::get_if<Regresar>(&bloque->sentencias[0]->que);
    }
    bool en_sitio = regresar != nullptr && regresar->expr && sustituciones_.size() < 16;
    for (std::size_t i = 0; en_sitio && i < terminos.size(); ++i) {
        en_sitio = terminos[i].columna || terminos[i].constante ||
                   Usos(*regresar->expr, modulo->parametros[i].nombre) <= 1;
    }
    if (en_sitio) {
        std::map<std::string, Termino> valores;
        for (std::size_t i = 0; i < terminos.size(); ++i) {
            valores.emplace(modulo->parametros[i].nombre, terminos[i]);
        }
        sustituciones_.push_back(std::move(valores));
        Ambito vacio;
        auto cuerpo = Valor(regresar->expr, vacio);
        sustituciones_.pop_back();
        QUIMO_TRY(Termino valor, std::move(cuerpo));
        return Convertir(std::move(valor), modulo->retorno);
    }
    std::string lista = EntreApostrofes(nombre.Completo());
    for (const Termino& t : terminos)
        lista += "," + t.sql;
    return Termino{"q_fn(" + lista + ")", modulo->retorno};
}

}  // namespace quimo::tsql
