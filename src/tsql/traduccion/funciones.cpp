#include <algorithm>
#include <array>
#include <utility>

#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/traduccion/funciones_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr std::size_t kLlamadasEnSitio = 16;

/// A function whose translation is its arguments put into a template. Arguments: t text, i INT,
/// f FLOAT. Result: I INT, F FLOAT, V text as long as the first argument,
/// M text up to the limit, C one character, A as the first argument, U unique identifier.
struct Plantilla {
    std::string_view nombre;
    std::size_t minimo;
    std::size_t maximo;
    std::string_view sql;
    std::string_view argumentos;
    char resultado;
};

constexpr auto kSencillas = std::to_array<Plantilla>({
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

/// The expression of a function that does nothing but return one; null for any other.
ExprPtr CuerpoSencillo(const CrearModulo& funcion) {
    const auto* const bloque = std::get_if<Bloque>(&funcion.cuerpo[0]->que);
    if (bloque == nullptr || bloque->sentencias.size() != 1 || funcion.cuerpo.size() != 1) {
        return nullptr;
    }
    const auto* const regresar = std::get_if<Regresar>(&bloque->sentencias[0]->que);
    return regresar == nullptr ? nullptr : regresar->expr;
}

/// No argument that takes work is worked out twice.
bool CabeEnSitio(const CrearModulo& funcion, const Expr& cuerpo,
                 const std::vector<Termino>& argumentos) {
    for (std::size_t i = 0; i < argumentos.size(); ++i) {
        if (!argumentos[i].columna && !argumentos[i].constante &&
            Usos(cuerpo, funcion.parametros[i].nombre) > 1) {
            return false;
        }
    }
    return true;
}

}  // namespace

Resultado<Termino> TraductorFunciones::Funcion(const Expr& expr, Ambito& ambito) {
    using Traduccion = Resultado<Termino> (TraductorFunciones::*)(const Expr&, Ambito&);
    struct Especial {
        std::string_view nombre;
        std::size_t minimo;
        std::size_t maximo;
        Traduccion traduccion;
    };
    constexpr auto kEspeciales = std::to_array<Especial>({
        {"ISNULL", 2, 2, &TraductorFunciones::IsNull},
        {"COALESCE", 2, 250, &TraductorFunciones::Coalesce},
        {"NULLIF", 2, 2, &TraductorFunciones::NullIf},
        {"SUBSTRING", 3, 3, &TraductorFunciones::Subcadena},
        {"ROUND", 2, 3, &TraductorFunciones::DeNumero},
        {"ABS", 1, 1, &TraductorFunciones::DeNumero},
        {"CEILING", 1, 1, &TraductorFunciones::DeNumero},
        {"FLOOR", 1, 1, &TraductorFunciones::DeNumero},
        {"SIGN", 1, 1, &TraductorFunciones::DeNumero},
        {"POWER", 2, 2, &TraductorFunciones::DeNumero},
        {"DATEADD", 3, 3, &TraductorFunciones::Fecha},
        {"DATEDIFF", 3, 3, &TraductorFunciones::Fecha},
        {"DATEPART", 2, 2, &TraductorFunciones::Fecha},
        {"DATENAME", 2, 2, &TraductorFunciones::Fecha},
        {"YEAR", 1, 1, &TraductorFunciones::Fecha},
        {"MONTH", 1, 1, &TraductorFunciones::Fecha},
        {"DAY", 1, 1, &TraductorFunciones::Fecha},
        {"ISNUMERIC", 1, 1, &TraductorFunciones::DelTipo},
        {"DATALENGTH", 1, 1, &TraductorFunciones::DelTipo},
    });
    if (!expr.partes.empty()) return Propia(expr, ambito);
    if (EsAgregado(expr) || expr.ventana) return agregados_.Agregado(expr, ambito);
    if (EsDeVentana(expr.texto)) return SintaxisIncorrecta(expr.texto);
    for (const Especial& especial : kEspeciales) {
        if (especial.nombre != expr.texto) continue;
        const std::size_t cuantos = expr.hijos.size();
        if (cuantos < especial.minimo || cuantos > especial.maximo) {
            return ArgumentosExactos(AMinusculas(expr.texto), std::to_string(especial.minimo));
        }
        return (this->*especial.traduccion)(expr, ambito);
    }
    return Sencilla(expr, ambito);
}

Resultado<std::vector<Termino>> TraductorFunciones::Argumentos(const Expr& expr, Ambito& ambito,
                                                               std::size_t desde) {
    std::vector<Termino> terminos;
    for (std::size_t i = desde; i < expr.hijos.size(); ++i) {
        QUIMO_TRY(Termino termino, valores_.Valor(expr.hijos[i], ambito));
        terminos.push_back(std::move(termino));
    }
    return terminos;
}

Resultado<Termino> TraductorFunciones::Sencilla(const Expr& expr, Ambito& ambito) {
    for (const auto& [nombre, tipo] : kGlobales) {
        if (nombre != expr.texto) continue;
        if (expr.hijos.size() > (nombre == "RAND" ? 1U : 0U)) {
            return ArgumentosExactos(AMinusculas(nombre), "0");
        }
        return Termino{contexto_.RanuraSql({Ranura::Origen::Global, -1, expr.texto, tipo}), tipo};
    }
    const auto* const cual =
        std::find_if(kSencillas.begin(), kSencillas.end(),
                     [&](const Plantilla& s) { return s.nombre == expr.texto; });
    if (cual == kSencillas.end()) return FuncionDesconocida(expr.texto);
    const std::size_t cuantos = expr.hijos.size();
    if (cuantos < cual->minimo || cuantos > cual->maximo) {
        const std::string minimo = std::to_string(cual->minimo);
        if (cual->minimo == cual->maximo) {
            return ArgumentosExactos(AMinusculas(expr.texto), minimo);
        }
        return ArgumentosEntre(AMinusculas(expr.texto),
                               minimo + " to " + std::to_string(cual->maximo));
    }
    QUIMO_TRY(std::vector<Termino> terminos, Argumentos(expr, ambito));
    std::string lista;
    bool admite_nulos = false;
    for (std::size_t i = 0; i < terminos.size(); ++i) {
        Termino& t = terminos[i];
        const char codigo = cual->argumentos[std::min(i, cual->argumentos.size() - 1)];
        admite_nulos = admite_nulos || t.admite_nulos;
        const bool ya = (codigo == 't' && t.tipo.EsTexto()) || t.nulo;
        if (!ya) {
            QUIMO_TRY(t, ConvertirA(std::move(t), TipoDeArgumento(codigo)));
        }
        lista += (i > 0 ? "," : "") + t.sql;
    }
    std::string sql(cual->sql);
    const auto donde = sql.find("%*");
    if (donde != std::string::npos) sql.replace(donde, 2, lista);
    return Termino{sql, TipoDeResultado(cual->resultado, terminos), Fuerza::Atomo, admite_nulos};
}

/// A function written in T-SQL. One that only returns an expression is put in place of its call.
Resultado<Termino> TraductorFunciones::Propia(const Expr& expr, Ambito& ambito) {
    NombreObjeto nombre;
    nombre.objeto = expr.partes.back();
    nombre.esquema = expr.partes[expr.partes.size() - 2];
    const ModuloPtr modulo = contexto_.entorno.catalogo->BuscarModulo(nombre);
    if (!modulo || modulo->clase != CrearModulo::Clase::Funcion) {
        return FuncionPropiaDesconocida(nombre.esquema, nombre.Completo());
    }
    if (expr.hijos.size() > modulo->parametros.size()) return ParametrosDeMas(nombre.Completo());
    if (expr.hijos.size() < modulo->parametros.size()) {
        return ArgumentosInsuficientes(nombre.Completo());
    }
    QUIMO_TRY(std::vector<Termino> terminos, Argumentos(expr, ambito));
    for (std::size_t i = 0; i < terminos.size(); ++i) {
        QUIMO_TRY(terminos[i], ConvertirA(std::move(terminos[i]), modulo->parametros[i].tipo));
        terminos[i].tipo = modulo->parametros[i].tipo;
    }
    const ExprPtr cuerpo = CuerpoSencillo(*modulo);
    const bool en_sitio = cuerpo && contexto_.sustituciones.size() < kLlamadasEnSitio &&
                          CabeEnSitio(*modulo, *cuerpo, terminos);
    if (en_sitio) return EnSitio(*modulo, cuerpo, terminos);
    std::string lista = EntreApostrofes(nombre.Completo());
    for (const Termino& t : terminos)
        lista += "," + t.sql;
    return Termino{"q_fn(" + lista + ")", modulo->retorno};
}

Resultado<Termino> TraductorFunciones::EnSitio(const CrearModulo& funcion, const ExprPtr& cuerpo,
                                               const std::vector<Termino>& argumentos) {
    std::map<std::string, Termino> valores;
    for (std::size_t i = 0; i < argumentos.size(); ++i) {
        valores.emplace(funcion.parametros[i].nombre, argumentos[i]);
    }
    contexto_.sustituciones.push_back(std::move(valores));
    Ambito vacio;
    auto valor = valores_.Valor(cuerpo, vacio);
    contexto_.sustituciones.pop_back();
    QUIMO_TRY(Termino termino, std::move(valor));
    return ConvertirA(std::move(termino), funcion.retorno);
}

Resultado<Termino> TraductorFunciones::ConvertirA(Termino termino, const Tipo& tipo) const {
    return Convertir(std::move(termino), tipo, contexto_.entorno.orden);
}

}  // namespace quimo::tsql
