#include <algorithm>
#include <array>

#include "tsql/parser_interno.h"
#include "tsql/texto.h"

namespace quimo::tsql {

namespace {

// Levels of binding, from weak to strong.
constexpr int kO = 1;
constexpr int kY = 2;
constexpr int kNo = 3;
constexpr int kComparacion = 4;
constexpr int kSuma = 5;
constexpr int kProducto = 6;

constexpr auto kComparadores =
    std::to_array<std::string_view>({"=", "<>", "<", ">", "<=", ">=", "!=", "!<", "!>"});

int NivelBinario(const Token& token) {
    if (token.clase == Token::Clase::Palabra) {
        if (MismoNombre(token.texto, "OR")) return kO;
        if (MismoNombre(token.texto, "AND")) return kY;
        return 0;
    }
    if (token.clase != Token::Clase::Signo || token.texto.size() != 1) return 0;
    const char c = token.texto[0];
    if (c == '+' || c == '-' || c == '&' || c == '|' || c == '^') return kSuma;
    if (c == '*' || c == '/' || c == '%') return kProducto;
    return 0;
}

std::string Normalizar(std::string operador) {
    if (operador == "!=") return "<>";
    if (operador == "!<") return ">=";
    if (operador == "!>") return "<=";
    return operador;
}

}  // namespace

Resultado<ExprPtr> Parser::Cerrar(Expr expr) const {
    for (const ExprPtr& hijo : expr.hijos) {
        if (hijo) expr.altura = std::max(expr.altura, hijo->altura + 1);
    }
    if (expr.altura > kAlturaMaxima) return DemasiadoAnidado();
    return ExprPtr(std::make_shared<const Expr>(std::move(expr)));
}

Resultado<ExprPtr> Parser::Valor(ExprPtr expr) const {
    if (expr->EsCondicion()) return Sintaxis();
    return expr;
}

Resultado<ExprPtr> Parser::Expresion() {
    QUIMO_TRY(ExprPtr expr, Binaria(kSuma));
    return Valor(std::move(expr));
}

Resultado<ExprPtr> Parser::Condicion() {
    const std::size_t antes = i_;
    QUIMO_TRY(ExprPtr expr, Binaria(0));
    if (!expr->EsCondicion()) {
        if (i_ == antes) return Sintaxis();
        const Token& token = Actual();
        if (token.clase == Token::Clase::Signo && token.texto.size() == 2) return Sintaxis();
        const Token& cerca = Fin() && i_ > 0 ? tokens_[i_ - 1] : Actual();
        return CondicionEsperada(std::string(cerca.texto));
    }
    return expr;
}

Resultado<ExprPtr> Parser::Binaria(int minimo) {
    const Nivel nivel(niveles_);
    QUIMO_TRY_VOID(Profundo());
    ExprPtr izquierda;
    if (minimo <= kNo && EsPalabra("NOT")) {
        Expr no{ClaseExpr::Unaria, Actual().desde};
        ++i_;
        no.texto = "NOT";
        const std::size_t antes = i_;
        QUIMO_TRY(ExprPtr hijo, Binaria(kNo));
        if (!hijo->EsCondicion()) return CondicionEsperada(std::string(tokens_[antes].texto));
        no.hijos.push_back(std::move(hijo));
        QUIMO_TRY(izquierda, Cerrar(std::move(no)));
    } else {
        QUIMO_TRY(izquierda, Unaria());
    }
    while (true) {
        if (minimo <= kComparacion && !izquierda->EsCondicion()) {
            const std::size_t antes = i_;
            QUIMO_TRY(izquierda, Predicado(std::move(izquierda)));
            if (i_ != antes) continue;
        }
        const int fuerza = NivelBinario(Actual());
        if (fuerza == 0 || fuerza < minimo) return izquierda;
        const bool logico = fuerza == kO || fuerza == kY;
        if (izquierda->EsCondicion() != logico) return Sintaxis();
        Expr union_{ClaseExpr::Binaria, Actual().desde};
        union_.texto = AMayusculas(Actual().texto);
        ++i_;
        const std::size_t antes = i_;
        QUIMO_TRY(ExprPtr derecha, Binaria(fuerza + 1));
        if (derecha->EsCondicion() != logico) {
            if (logico)
                return CondicionEsperada(std::string((Fin() ? tokens_[antes] : Actual()).texto));
            return Sintaxis();
        }
        union_.hijos = {std::move(izquierda), std::move(derecha)};
        QUIMO_TRY(izquierda, Cerrar(std::move(union_)));
    }
}

Resultado<ExprPtr> Parser::Unaria() {
    if (!EsSigno("-") && !EsSigno("+") && !EsSigno("~")) return Primario();
    const Nivel nivel(niveles_);
    QUIMO_TRY_VOID(Profundo());
    Expr expr{ClaseExpr::Unaria, Actual().desde};
    expr.texto = Actual().texto;
    ++i_;
    QUIMO_TRY(ExprPtr hijo, Unaria());
    QUIMO_TRY(hijo, Valor(std::move(hijo)));
    expr.hijos.push_back(std::move(hijo));
    return Cerrar(std::move(expr));
}

/// IS NULL, [NOT] IN, BETWEEN, LIKE or a comparison behind a value; the value itself otherwise.
Resultado<ExprPtr> Parser::Predicado(ExprPtr izquierda) {
    Expr expr{ClaseExpr::EsNulo, Actual().desde};
    if (Aceptar("IS")) {
        expr.negado = Aceptar("NOT");
        QUIMO_TRY_VOID(Exigir("NULL"));
        expr.hijos.push_back(std::move(izquierda));
        return Cerrar(std::move(expr));
    }
    for (const std::string_view operador : kComparadores) {
        if (EsSigno(operador)) {
            ++i_;
            return Comparacion(std::move(izquierda), Normalizar(std::string(operador)));
        }
    }
    const bool con_not = EsPalabra("NOT");
    const std::size_t cual = con_not ? 1 : 0;
    if (!EsPalabra("IN", cual) && !EsPalabra("BETWEEN", cual) && !EsPalabra("LIKE", cual)) {
        return izquierda;
    }
    if (con_not) ++i_;
    expr.negado = con_not;
    expr.hijos.push_back(std::move(izquierda));
    if (Aceptar("BETWEEN")) {
        expr.clase = ClaseExpr::Entre;
        QUIMO_TRY(ExprPtr desde, Expresion());
        QUIMO_TRY_VOID(Exigir("AND"));
        QUIMO_TRY(ExprPtr hasta, Expresion());
        expr.hijos.push_back(std::move(desde));
        expr.hijos.push_back(std::move(hasta));
    } else if (Aceptar("LIKE")) {
        expr.clase = ClaseExpr::Como;
        QUIMO_TRY(ExprPtr patron, Expresion());
        expr.hijos.push_back(std::move(patron));
        if (Aceptar("ESCAPE")) {
            QUIMO_TRY(ExprPtr escape, Expresion());
            expr.hijos.push_back(std::move(escape));
        }
    } else {
        ++i_;
        QUIMO_TRY_VOID(Exigir("("));
        if (EmpiezaConsulta()) {
            expr.clase = ClaseExpr::EnConsulta;
            QUIMO_TRY(expr.consulta, LeerConsulta());
        } else {
            expr.clase = ClaseExpr::EnLista;
            QUIMO_TRY(std::vector<ExprPtr> lista, ListaDeExpresiones());
            expr.hijos.insert(expr.hijos.end(), lista.begin(), lista.end());
        }
        QUIMO_TRY_VOID(Exigir(")"));
    }
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> Parser::Comparacion(ExprPtr izquierda, std::string operador) {
    Expr expr{ClaseExpr::Binaria, Actual().desde};
    expr.texto = std::move(operador);
    expr.hijos.push_back(std::move(izquierda));
    const bool todos = EsPalabra("ALL");
    if (todos || EsPalabra("ANY") || EsPalabra("SOME")) {
        ++i_;
        expr.clase = ClaseExpr::Cuantificada;
        expr.distinto = todos;
        QUIMO_TRY_VOID(Exigir("("));
        QUIMO_TRY(expr.consulta, LeerConsulta());
        QUIMO_TRY_VOID(Exigir(")"));
        return Cerrar(std::move(expr));
    }
    QUIMO_TRY(ExprPtr derecha, Expresion());
    expr.hijos.push_back(std::move(derecha));
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> Parser::DeToken(ClaseExpr clase) {
    Expr expr{clase, Actual().desde};
    const Token& token = Actual();
    if (clase == ClaseExpr::Variable) expr.texto = AMinusculas(token.texto);
    if (clase == ClaseExpr::Global) expr.texto = AMayusculas(token.texto);
    if (clase == ClaseExpr::Parametro) expr.indice = token.literal;
    if (clase == ClaseExpr::Literal) {
        const auto indice = static_cast<std::size_t>(token.literal);
        expr.tipo = lote_.literales[indice].tipo;
        if (constantes_ == Constantes::EnElArbol) {
            expr.literal = lote_.literales[indice];
        } else {
            expr.indice = token.literal;
        }
    }
    ++i_;
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> Parser::Primario() {
    const Token& token = Actual();
    if (token.clase == Token::Clase::Literal) return DeToken(ClaseExpr::Literal);
    if (token.clase == Token::Clase::Variable) return DeToken(ClaseExpr::Variable);
    if (token.clase == Token::Clase::Global) return DeToken(ClaseExpr::Global);
    if (token.clase == Token::Clase::Parametro) return DeToken(ClaseExpr::Parametro);
    if (EsSigno("(")) return Parentesis();
    if (EsPalabra("NULL")) return DeToken(ClaseExpr::Nulo);
    if (EsPalabra("CASE")) return Caso();
    if (EsPalabra("EXISTS")) {
        Expr expr{ClaseExpr::Existe, token.desde};
        ++i_;
        QUIMO_TRY_VOID(Exigir("("));
        QUIMO_TRY(expr.consulta, LeerConsulta());
        QUIMO_TRY_VOID(Exigir(")"));
        return Cerrar(std::move(expr));
    }
    const bool parentesis = EsSigno("(", 1);
    if ((EsPalabra("CAST") || EsPalabra("CONVERT")) && parentesis) return Conversion();
    return ColumnaOFuncion();
}

Resultado<ExprPtr> Parser::Parentesis() {
    const Nivel nivel(niveles_);
    QUIMO_TRY_VOID(Profundo());
    Expr expr{ClaseExpr::Subconsulta, Actual().desde};
    ++i_;
    if (EmpiezaConsulta()) {
        QUIMO_TRY(expr.consulta, LeerConsulta());
        QUIMO_TRY_VOID(Exigir(")"));
        return Cerrar(std::move(expr));
    }
    QUIMO_TRY(ExprPtr dentro, Binaria(0));
    QUIMO_TRY_VOID(Exigir(")"));
    return dentro;
}

Resultado<ExprPtr> Parser::Caso() {
    Expr expr{ClaseExpr::Caso, Actual().desde};
    ++i_;
    expr.simple = !EsPalabra("WHEN");
    if (expr.simple) {
        QUIMO_TRY(ExprPtr operando, Expresion());
        expr.hijos.push_back(std::move(operando));
    }
    if (!EsPalabra("WHEN")) return Sintaxis();
    while (Aceptar("WHEN")) {
        QUIMO_TRY(ExprPtr cuando, expr.simple ? Expresion() : Condicion());
        QUIMO_TRY_VOID(Exigir("THEN"));
        QUIMO_TRY(ExprPtr entonces, Expresion());
        expr.hijos.push_back(std::move(cuando));
        expr.hijos.push_back(std::move(entonces));
    }
    expr.con_sino = Aceptar("ELSE");
    if (expr.con_sino) {
        QUIMO_TRY(ExprPtr sino, Expresion());
        expr.hijos.push_back(std::move(sino));
    }
    QUIMO_TRY_VOID(Exigir("END"));
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> Parser::Conversion() {
    Expr expr{ClaseExpr::Conversion, Actual().desde};
    const bool cast = EsPalabra("CAST");
    expr.texto = cast ? "CAST" : "CONVERT";
    i_ += 2;
    if (cast) {
        QUIMO_TRY(ExprPtr valor, Expresion());
        expr.hijos.push_back(std::move(valor));
        QUIMO_TRY_VOID(Exigir("AS"));
        QUIMO_TRY(expr.tipo, LeerTipo(true));
    } else {
        QUIMO_TRY(expr.tipo, LeerTipo(true));
        QUIMO_TRY_VOID(Exigir(","));
        QUIMO_TRY(ExprPtr valor, Expresion());
        expr.hijos.push_back(std::move(valor));
        if (Aceptar(",")) {
            QUIMO_TRY(ExprPtr estilo, Expresion());
            expr.hijos.push_back(std::move(estilo));
        }
    }
    QUIMO_TRY_VOID(Exigir(")"));
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> Parser::ColumnaOFuncion() {
    const std::size_t posicion = Actual().desde;
    // Functions that are reserved words.
    constexpr auto kFunciones =
        std::to_array<std::string_view>({"LEFT", "RIGHT", "COALESCE", "NULLIF"});
    for (const std::string_view funcion : kFunciones) {
        if (EsPalabra(funcion) && EsSigno("(", 1)) {
            i_ += 1;
            return Llamada({std::string(funcion)}, posicion);
        }
    }
    if (Aceptar("CURRENT_TIMESTAMP")) {
        Expr expr{ClaseExpr::Funcion, posicion};
        expr.texto = "GETDATE";
        return Cerrar(std::move(expr));
    }
    std::vector<std::string> partes;
    do {
        if (EsSigno("*") && !partes.empty()) {
            ++i_;
            Expr todas{ClaseExpr::Asterisco, posicion};
            todas.partes = std::move(partes);
            return Cerrar(std::move(todas));
        }
        if (EsSigno(".") && !partes.empty()) {
            partes.emplace_back();
            continue;
        }
        QUIMO_TRY(std::string parte, Nombre());
        partes.push_back(std::move(parte));
        if (partes.size() > 4) return Sintaxis();
    } while (Aceptar("."));
    if (EsSigno("(")) return Llamada(std::move(partes), posicion);
    Expr columna{ClaseExpr::Columna, posicion};
    columna.partes = std::move(partes);
    return Cerrar(std::move(columna));
}

Resultado<ExprPtr> Parser::Llamada(std::vector<std::string> partes, std::size_t posicion) {
    const Nivel nivel(niveles_);
    QUIMO_TRY_VOID(Profundo());
    Expr expr{ClaseExpr::Funcion, posicion};
    expr.texto = AMayusculas(partes.back());
    if (partes.size() > 1) expr.partes = std::move(partes);
    QUIMO_TRY_VOID(Exigir("("));
    if (!Aceptar(")")) {
        if (Aceptar("DISTINCT")) {
            expr.distinto = true;
        } else {
            Aceptar("ALL");
        }
        if (EsSigno("*")) {
            QUIMO_TRY(ExprPtr todas, DeToken(ClaseExpr::Asterisco));
            expr.hijos.push_back(std::move(todas));
        } else {
            QUIMO_TRY(expr.hijos, ListaDeExpresiones());
        }
        QUIMO_TRY_VOID(Exigir(")"));
    }
    if (EsPalabra("OVER")) {
        QUIMO_TRY(expr.ventana, Sobre());
    }
    return Cerrar(std::move(expr));
}

Resultado<std::shared_ptr<const Ventana>> Parser::Sobre() {
    Ventana ventana;
    ++i_;
    QUIMO_TRY_VOID(Exigir("("));
    if (Aceptar("PARTITION")) {
        QUIMO_TRY_VOID(Exigir("BY"));
        QUIMO_TRY(ventana.particion, ListaDeExpresiones());
    }
    if (EsPalabra("ORDER")) {
        QUIMO_TRY(ventana.orden, Orden());
    }
    QUIMO_TRY_VOID(Exigir(")"));
    return std::make_shared<const Ventana>(std::move(ventana));
}

Resultado<std::vector<ExprPtr>> Parser::ListaDeExpresiones() {
    std::vector<ExprPtr> lista;
    do {
        QUIMO_TRY(ExprPtr expr, Expresion());
        lista.push_back(std::move(expr));
    } while (Aceptar(","));
    return lista;
}

Resultado<Tipo> Parser::LeerTipo(bool en_conversion) {
    if (EsPalabra("DOUBLE") && EsPalabra("PRECISION", 1)) ++i_;
    const bool nacional = Aceptar("NATIONAL");
    if (!HayNombre()) return Sintaxis();
    const std::string nombre(Actual().texto);
    const auto clase = MismoNombre(nombre, "PRECISION") ? Clase::Float : ClasePorNombre(nombre);
    if (!clase) return TipoDesconocido(nombre);
    ++i_;
    Clase elegida = *clase;
    if (Aceptar("VARYING") && elegida == Clase::Char) elegida = Clase::VarChar;
    if (nacional) elegida = elegida == Clase::Char ? Clase::NChar : Clase::NVarChar;
    return ConLongitud(elegida, en_conversion);
}

Resultado<Tipo> Parser::ConLongitud(Clase clase, bool en_conversion) {
    Tipo tipo{clase};
    std::vector<std::int64_t> numeros;
    bool maximo = false;
    if (Aceptar("(")) {
        maximo = Aceptar("MAX");
        while (!maximo) {
            QUIMO_TRY(const std::int64_t numero, EnteroFijo());
            numeros.push_back(numero);
            if (numeros.size() == 2 || !Aceptar(",")) break;
        }
        QUIMO_TRY_VOID(Exigir(")"));
    }
    if (tipo.EsEntero()) tipo = TipoEntero(clase);
    if (tipo.EsMoneda()) tipo = clase == Clase::Money ? TipoMoneda() : Tipo{clase, 0, 10, 4};
    if (clase == Clase::Numeric) {
        tipo = TipoNumerico(18, 0);
        if (!numeros.empty()) {
            if (numeros[0] > kDigitosMaximos) return PrecisionExcesiva(std::to_string(numeros[0]));
            tipo.precision = static_cast<int>(numeros[0]);
            tipo.escala =
                numeros.size() > 1 ? static_cast<int>(std::min<std::int64_t>(numeros[1], 99)) : 0;
        }
        if (tipo.escala > tipo.precision || tipo.precision < 1) {
            return EscalaExcesiva(std::to_string(tipo.escala), std::to_string(tipo.precision));
        }
    }
    if (clase == Clase::Float && !numeros.empty() && numeros[0] <= 24) tipo.clase = Clase::Real;
    const bool de_largo = (tipo.EsTexto() && clase != Clase::Text && clase != Clase::NText) ||
                          clase == Clase::Binary || clase == Clase::VarBinary;
    if (de_largo) {
        const int limite = tipo.EsNacional() ? kLongitudMaxima / 2 : kLongitudMaxima;
        tipo.longitud = maximo ? -1 : en_conversion ? 30 : 1;
        if (!numeros.empty()) {
            if (numeros[0] < 1 || numeros[0] > limite) return SintaxisEn(i_ - 2);
            tipo.longitud = static_cast<int>(numeros[0]);
        }
    } else if (clase == Clase::Text || clase == Clase::NText || clase == Clase::Image) {
        tipo.longitud = -1;
    }
    return tipo;
}

}  // namespace quimo::tsql
