#include <algorithm>
#include <array>

#include "tsql/lectura/parser_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr int kAlturaMaxima = 400;

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

Resultado<ExprPtr> Cerrar(Expr expr) {
    for (const ExprPtr& hijo : expr.hijos) {
        if (hijo) expr.altura = std::max(expr.altura, hijo->altura + 1);
    }
    if (expr.altura > kAlturaMaxima) return DemasiadoAnidado();
    return ExprPtr(std::make_shared<const Expr>(std::move(expr)));
}

Resultado<ExprPtr> ParserExpresiones::Valor(ExprPtr expr) const {
    if (expr->EsCondicion()) return cursor_.Sintaxis();
    return expr;
}

Resultado<ExprPtr> ParserExpresiones::Expresion() {
    QUIMO_TRY(ExprPtr expr, Binaria(kSuma));
    return Valor(std::move(expr));
}

Resultado<ExprPtr> ParserExpresiones::Condicion() {
    const std::size_t antes = cursor_.Indice();
    QUIMO_TRY(ExprPtr expr, Binaria(0));
    if (!expr->EsCondicion()) {
        if (cursor_.Indice() == antes) return cursor_.Sintaxis();
        const Token& token = cursor_.Actual();
        if (token.clase == Token::Clase::Signo && token.texto.size() == 2)
            return cursor_.Sintaxis();
        const Token& cerca = cursor_.Fin() && cursor_.Indice() > 0
                                 ? cursor_.En(cursor_.Indice() - 1)
                                 : cursor_.Actual();
        return CondicionEsperada(std::string(cerca.texto));
    }
    return expr;
}

Resultado<ExprPtr> ParserExpresiones::ValorOCondicion() { return Binaria(0); }

Resultado<ExprPtr> ParserExpresiones::Binaria(int minimo) {
    const Cursor::Nivel nivel(cursor_);
    QUIMO_TRY_VOID(cursor_.Profundo());
    ExprPtr izquierda;
    if (minimo <= kNo && cursor_.EsPalabra("NOT")) {
        QUIMO_TRY(izquierda, Negada());
    } else {
        QUIMO_TRY(izquierda, Unaria());
    }
    while (true) {
        if (minimo <= kComparacion && !izquierda->EsCondicion()) {
            const std::size_t antes = cursor_.Indice();
            QUIMO_TRY(izquierda, Predicado(std::move(izquierda)));
            if (cursor_.Indice() != antes) continue;
        }
        const int fuerza = NivelBinario(cursor_.Actual());
        if (fuerza == 0 || fuerza < minimo) return izquierda;
        const bool logico = fuerza == kO || fuerza == kY;
        if (izquierda->EsCondicion() != logico) return cursor_.Sintaxis();
        Expr unida{ClaseExpr::Binaria};
        unida.texto = AMayusculas(cursor_.Actual().texto);
        cursor_.Avanzar();
        const std::size_t antes = cursor_.Indice();
        QUIMO_TRY(ExprPtr derecha, Binaria(fuerza + 1));
        if (derecha->EsCondicion() != logico) {
            if (logico)
                return CondicionEsperada(
                    std::string((cursor_.Fin() ? cursor_.En(antes) : cursor_.Actual()).texto));
            return cursor_.Sintaxis();
        }
        unida.hijos = {std::move(izquierda), std::move(derecha)};
        QUIMO_TRY(izquierda, Cerrar(std::move(unida)));
    }
}

Resultado<ExprPtr> ParserExpresiones::Negada() {
    Expr no{ClaseExpr::Unaria};
    cursor_.Avanzar();
    no.texto = "NOT";
    const std::size_t antes = cursor_.Indice();
    QUIMO_TRY(ExprPtr hijo, Binaria(kNo));
    if (!hijo->EsCondicion()) return CondicionEsperada(std::string(cursor_.En(antes).texto));
    no.hijos.push_back(std::move(hijo));
    return Cerrar(std::move(no));
}

Resultado<ExprPtr> ParserExpresiones::Unaria() {
    if (!cursor_.EsSigno("-") && !cursor_.EsSigno("+") && !cursor_.EsSigno("~")) return Primario();
    const Cursor::Nivel nivel(cursor_);
    QUIMO_TRY_VOID(cursor_.Profundo());
    Expr expr{ClaseExpr::Unaria};
    expr.texto = cursor_.Actual().texto;
    cursor_.Avanzar();
    QUIMO_TRY(ExprPtr hijo, Unaria());
    QUIMO_TRY(hijo, Valor(std::move(hijo)));
    expr.hijos.push_back(std::move(hijo));
    return Cerrar(std::move(expr));
}

/// IS NULL, [NOT] IN, BETWEEN, LIKE or a comparison behind a value; the value itself otherwise.
Resultado<ExprPtr> ParserExpresiones::Predicado(ExprPtr izquierda) {
    Expr expr{ClaseExpr::EsNulo};
    if (cursor_.Aceptar("IS")) {
        expr.negado = cursor_.Aceptar("NOT");
        QUIMO_TRY_VOID(cursor_.Exigir("NULL"));
        expr.hijos.push_back(std::move(izquierda));
        return Cerrar(std::move(expr));
    }
    for (const std::string_view operador : kComparadores) {
        if (cursor_.EsSigno(operador)) {
            cursor_.Avanzar();
            return Comparacion(std::move(izquierda), Normalizar(std::string(operador)));
        }
    }
    const bool con_not = cursor_.EsPalabra("NOT");
    const std::size_t cual = con_not ? 1 : 0;
    if (!cursor_.EsPalabra("IN", cual) && !cursor_.EsPalabra("BETWEEN", cual) &&
        !cursor_.EsPalabra("LIKE", cual)) {
        return izquierda;
    }
    if (con_not) cursor_.Avanzar();
    expr.negado = con_not;
    expr.hijos.push_back(std::move(izquierda));
    if (cursor_.Aceptar("BETWEEN")) {
        expr.clase = ClaseExpr::Entre;
        QUIMO_TRY(ExprPtr desde, Expresion());
        QUIMO_TRY_VOID(cursor_.Exigir("AND"));
        QUIMO_TRY(ExprPtr hasta, Expresion());
        expr.hijos.push_back(std::move(desde));
        expr.hijos.push_back(std::move(hasta));
    } else if (cursor_.Aceptar("LIKE")) {
        expr.clase = ClaseExpr::Como;
        QUIMO_TRY(ExprPtr patron, Expresion());
        expr.hijos.push_back(std::move(patron));
        if (cursor_.Aceptar("ESCAPE")) {
            QUIMO_TRY(ExprPtr escape, Expresion());
            expr.hijos.push_back(std::move(escape));
        }
    } else {
        cursor_.Avanzar();
        QUIMO_TRY_VOID(cursor_.Exigir("("));
        if (cursor_.EmpiezaConsulta()) {
            expr.clase = ClaseExpr::EnConsulta;
            QUIMO_TRY(expr.consulta, consultas_.LeerConsulta());
        } else {
            expr.clase = ClaseExpr::EnLista;
            QUIMO_TRY(std::vector<ExprPtr> lista, ListaDeExpresiones());
            expr.hijos.insert(expr.hijos.end(), lista.begin(), lista.end());
        }
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
    }
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> ParserExpresiones::Comparacion(ExprPtr izquierda, std::string operador) {
    Expr expr{ClaseExpr::Binaria};
    expr.texto = std::move(operador);
    expr.hijos.push_back(std::move(izquierda));
    const bool todos = cursor_.EsPalabra("ALL");
    if (todos || cursor_.EsPalabra("ANY") || cursor_.EsPalabra("SOME")) {
        cursor_.Avanzar();
        expr.clase = ClaseExpr::Cuantificada;
        expr.distinto = todos;
        QUIMO_TRY_VOID(cursor_.Exigir("("));
        QUIMO_TRY(expr.consulta, consultas_.LeerConsulta());
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
        return Cerrar(std::move(expr));
    }
    QUIMO_TRY(ExprPtr derecha, Expresion());
    expr.hijos.push_back(std::move(derecha));
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> ParserExpresiones::DeToken(ClaseExpr clase) {
    Expr expr{clase};
    const Token& token = cursor_.Actual();
    if (clase == ClaseExpr::Variable) expr.texto = AMinusculas(token.texto);
    if (clase == ClaseExpr::Global) expr.texto = AMayusculas(token.texto);
    if (clase == ClaseExpr::Parametro) expr.indice = token.literal;
    if (clase == ClaseExpr::Literal) {
        const Literal& literal = cursor_.LiteralActual();
        expr.tipo = literal.tipo;
        if (cursor_.ModoDeConstantes() == Constantes::EnElArbol) {
            expr.literal = literal;
        } else {
            expr.indice = token.literal;
        }
    }
    cursor_.Avanzar();
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> ParserExpresiones::Primario() {
    const Token& token = cursor_.Actual();
    if (token.clase == Token::Clase::Literal) return DeToken(ClaseExpr::Literal);
    if (token.clase == Token::Clase::Variable) return DeToken(ClaseExpr::Variable);
    if (token.clase == Token::Clase::Global) return DeToken(ClaseExpr::Global);
    if (token.clase == Token::Clase::Parametro) return DeToken(ClaseExpr::Parametro);
    if (cursor_.EsSigno("(")) return Parentesis();
    if (cursor_.EsPalabra("NULL")) return DeToken(ClaseExpr::Nulo);
    if (cursor_.EsPalabra("CASE")) return Caso();
    if (cursor_.EsPalabra("EXISTS")) {
        Expr expr{ClaseExpr::Existe};
        cursor_.Avanzar();
        QUIMO_TRY_VOID(cursor_.Exigir("("));
        QUIMO_TRY(expr.consulta, consultas_.LeerConsulta());
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
        return Cerrar(std::move(expr));
    }
    const bool parentesis = cursor_.EsSigno("(", 1);
    if ((cursor_.EsPalabra("CAST") || cursor_.EsPalabra("CONVERT")) && parentesis)
        return Conversion();
    return ColumnaOFuncion();
}

Resultado<ExprPtr> ParserExpresiones::Parentesis() {
    const Cursor::Nivel nivel(cursor_);
    QUIMO_TRY_VOID(cursor_.Profundo());
    Expr expr{ClaseExpr::Subconsulta};
    cursor_.Avanzar();
    if (cursor_.EmpiezaConsulta()) {
        QUIMO_TRY(expr.consulta, consultas_.LeerConsulta());
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
        return Cerrar(std::move(expr));
    }
    QUIMO_TRY(ExprPtr dentro, Binaria(0));
    QUIMO_TRY_VOID(cursor_.Exigir(")"));
    return dentro;
}

Resultado<ExprPtr> ParserExpresiones::Caso() {
    Expr expr{ClaseExpr::Caso};
    cursor_.Avanzar();
    expr.simple = !cursor_.EsPalabra("WHEN");
    if (expr.simple) {
        QUIMO_TRY(ExprPtr operando, Expresion());
        expr.hijos.push_back(std::move(operando));
    }
    if (!cursor_.EsPalabra("WHEN")) return cursor_.Sintaxis();
    while (cursor_.Aceptar("WHEN")) {
        QUIMO_TRY(ExprPtr cuando, expr.simple ? Expresion() : Condicion());
        QUIMO_TRY_VOID(cursor_.Exigir("THEN"));
        QUIMO_TRY(ExprPtr entonces, Expresion());
        expr.hijos.push_back(std::move(cuando));
        expr.hijos.push_back(std::move(entonces));
    }
    expr.con_sino = cursor_.Aceptar("ELSE");
    if (expr.con_sino) {
        QUIMO_TRY(ExprPtr sino, Expresion());
        expr.hijos.push_back(std::move(sino));
    }
    QUIMO_TRY_VOID(cursor_.Exigir("END"));
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> ParserExpresiones::Conversion() {
    Expr expr{ClaseExpr::Conversion};
    const bool cast = cursor_.EsPalabra("CAST");
    expr.texto = cast ? "CAST" : "CONVERT";
    cursor_.Avanzar(2);
    if (cast) {
        QUIMO_TRY(ExprPtr valor, Expresion());
        expr.hijos.push_back(std::move(valor));
        QUIMO_TRY_VOID(cursor_.Exigir("AS"));
        QUIMO_TRY(expr.tipo, LeerTipo(true));
    } else {
        QUIMO_TRY(expr.tipo, LeerTipo(true));
        QUIMO_TRY_VOID(cursor_.Exigir(","));
        QUIMO_TRY(ExprPtr valor, Expresion());
        expr.hijos.push_back(std::move(valor));
        if (cursor_.Aceptar(",")) {
            QUIMO_TRY(ExprPtr estilo, Expresion());
            expr.hijos.push_back(std::move(estilo));
        }
    }
    QUIMO_TRY_VOID(cursor_.Exigir(")"));
    return Cerrar(std::move(expr));
}

Resultado<ExprPtr> ParserExpresiones::ColumnaOFuncion() {
    // Functions that are reserved words.
    constexpr auto kFunciones =
        std::to_array<std::string_view>({"LEFT", "RIGHT", "COALESCE", "NULLIF"});
    for (const std::string_view funcion : kFunciones) {
        if (cursor_.EsPalabra(funcion) && cursor_.EsSigno("(", 1)) {
            cursor_.Avanzar(1);
            return Llamada({std::string(funcion)});
        }
    }
    if (cursor_.Aceptar("CURRENT_TIMESTAMP")) {
        Expr expr{ClaseExpr::Funcion};
        expr.texto = "GETDATE";
        return Cerrar(std::move(expr));
    }
    std::vector<std::string> partes;
    do {
        if (cursor_.EsSigno("*") && !partes.empty()) {
            cursor_.Avanzar();
            Expr todas{ClaseExpr::Asterisco};
            todas.partes = std::move(partes);
            return Cerrar(std::move(todas));
        }
        if (cursor_.EsSigno(".") && !partes.empty()) {
            partes.emplace_back();
            continue;
        }
        QUIMO_TRY(std::string parte, cursor_.Nombre());
        partes.push_back(std::move(parte));
        if (partes.size() > 4) return cursor_.Sintaxis();
    } while (cursor_.Aceptar("."));
    if (cursor_.EsSigno("(")) return Llamada(std::move(partes));
    Expr columna{ClaseExpr::Columna};
    columna.partes = std::move(partes);
    return Cerrar(std::move(columna));
}

Resultado<ExprPtr> ParserExpresiones::Llamada(std::vector<std::string> partes) {
    const Cursor::Nivel nivel(cursor_);
    QUIMO_TRY_VOID(cursor_.Profundo());
    Expr expr{ClaseExpr::Funcion};
    expr.texto = AMayusculas(partes.back());
    if (partes.size() > 1) expr.partes = std::move(partes);
    QUIMO_TRY_VOID(cursor_.Exigir("("));
    if (!cursor_.Aceptar(")")) {
        if (cursor_.Aceptar("DISTINCT")) {
            expr.distinto = true;
        } else {
            cursor_.Aceptar("ALL");
        }
        if (cursor_.EsSigno("*")) {
            QUIMO_TRY(ExprPtr todas, DeToken(ClaseExpr::Asterisco));
            expr.hijos.push_back(std::move(todas));
        } else {
            QUIMO_TRY(expr.hijos, ListaDeExpresiones());
        }
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
    }
    if (cursor_.EsPalabra("OVER")) {
        QUIMO_TRY(expr.ventana, Sobre());
    }
    return Cerrar(std::move(expr));
}

Resultado<std::shared_ptr<const Ventana>> ParserExpresiones::Sobre() {
    Ventana ventana;
    cursor_.Avanzar();
    QUIMO_TRY_VOID(cursor_.Exigir("("));
    if (cursor_.Aceptar("PARTITION")) {
        QUIMO_TRY_VOID(cursor_.Exigir("BY"));
        QUIMO_TRY(ventana.particion, ListaDeExpresiones());
    }
    if (cursor_.EsPalabra("ORDER")) {
        QUIMO_TRY(ventana.orden, Orden());
    }
    QUIMO_TRY_VOID(cursor_.Exigir(")"));
    return std::make_shared<const Ventana>(std::move(ventana));
}

Resultado<std::vector<ExprPtr>> ParserExpresiones::ListaDeExpresiones() {
    std::vector<ExprPtr> lista;
    do {
        QUIMO_TRY(ExprPtr expr, Expresion());
        lista.push_back(std::move(expr));
    } while (cursor_.Aceptar(","));
    return lista;
}

Resultado<std::vector<OrdenItem>> ParserExpresiones::Orden() {
    QUIMO_TRY_VOID(cursor_.Exigir("ORDER"));
    QUIMO_TRY_VOID(cursor_.Exigir("BY"));
    std::vector<OrdenItem> orden;
    do {
        OrdenItem item;
        QUIMO_TRY(item.expr, Expresion());
        item.descendente = cursor_.Aceptar("DESC");
        if (!item.descendente) cursor_.Aceptar("ASC");
        orden.push_back(std::move(item));
    } while (cursor_.Aceptar(","));
    return orden;
}

Resultado<Argumento> ParserExpresiones::LeerArgumento() {
    Argumento argumento;
    if (cursor_.EsClase(Token::Clase::Variable) && cursor_.EsSigno("=", 1)) {
        argumento.nombre = cursor_.Variable();
        cursor_.Avanzar();
    }
    if (cursor_.Aceptar("DEFAULT")) return argumento;
    if (cursor_.HayNombre()) {
        Expr palabra{ClaseExpr::Literal};
        QUIMO_TRY(std::string texto, cursor_.Nombre());
        palabra.tipo = TipoTexto(Clase::VarChar, std::max(1, ContarCaracteres(texto)));
        palabra.literal = Literal{palabra.tipo, tsql::Valor::DeTexto(std::move(texto))};
        QUIMO_TRY(argumento.valor, Cerrar(std::move(palabra)));
        return argumento;
    }
    QUIMO_TRY(argumento.valor, Unaria());
    argumento.salida = cursor_.Aceptar("OUTPUT") || cursor_.Aceptar("OUT");
    if (argumento.salida && argumento.valor->clase != ClaseExpr::Variable)
        return cursor_.SintaxisEn(cursor_.Indice() - 1);
    return argumento;
}

}  // namespace quimo::tsql
