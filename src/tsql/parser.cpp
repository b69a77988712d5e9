#include <algorithm>

#include "tsql/parser_interno.h"
#include "tsql/texto.h"

namespace quimo::tsql {

Parser::Parser(std::string_view texto, Lexico lexico, Constantes constantes)
    : texto_(texto), tokens_(std::move(lexico.tokens)), constantes_(constantes) {
    lote_.literales = std::move(lexico.literales);
    lote_.fijos.assign(lote_.literales.size(), false);
    lote_.tipos_fijos.assign(lote_.literales.size(), false);
    lote_.parametros = lexico.parametros;
}

bool Parser::EsPalabra(std::string_view palabra, std::size_t adelante) const {
    const Token& token = Mirar(adelante);
    return token.clase == Token::Clase::Palabra && MismoNombre(token.texto, palabra);
}

bool Parser::EsSigno(std::string_view signo, std::size_t adelante) const {
    const Token& token = Mirar(adelante);
    return token.clase == Token::Clase::Signo && token.texto == signo;
}

bool Parser::Aceptar(std::string_view cual) {
    if (!EsPalabra(cual) && !EsSigno(cual)) return false;
    ++i_;
    return true;
}

Hecho Parser::Exigir(std::string_view cual) {
    if (!Aceptar(cual)) return Sintaxis();
    return {};
}

ErrorSql Parser::Sintaxis() const { return SintaxisEn(i_); }

ErrorSql Parser::SintaxisEn(std::size_t token) const {
    // At the end of the text the last word is the one to show.
    if (tokens_[token].clase == Token::Clase::Fin && token > 0) --token;
    const Token& t = tokens_[token];
    const std::string palabra(t.texto);
    const bool reservada = t.clase == Token::Clase::Palabra && EsReservada(palabra);
    const std::string lugar = Lugar(texto_, t.desde);
    return reservada ? PalabraClaveIncorrecta(palabra, lugar) : SintaxisIncorrecta(palabra, lugar);
}

bool Parser::HayNombre(std::size_t adelante) const {
    const Token& token = Mirar(adelante);
    if (token.clase == Token::Clase::Delimitado) return true;
    return token.clase == Token::Clase::Palabra && !EsReservada(token.texto);
}

Resultado<std::string> Parser::Nombre() {
    constexpr int kLargoMaximo = 128;
    if (!HayNombre()) return Sintaxis();
    std::string nombre(Actual().texto);
    if (Actual().clase == Token::Clase::Delimitado) {
        const char cierre = texto_[Actual().desde] == '[' ? ']' : '"';
        const std::string doble(2, cierre);
        for (auto k = nombre.find(doble); k != std::string::npos; k = nombre.find(doble, k + 1)) {
            nombre.erase(k, 1);
        }
    }
    if (nombre.empty() || ContarCaracteres(nombre) > kLargoMaximo) return Sintaxis();
    ++i_;
    return nombre;
}

Resultado<NombreObjeto> Parser::Objeto() {
    NombreObjeto nombre;
    nombre.posicion = Actual().desde;
    std::vector<std::string> partes;
    while (true) {
        if (!partes.empty() && EsSigno(".")) {  // database..table
            partes.emplace_back();
        } else {
            QUIMO_TRY(std::string parte, Nombre());
            partes.push_back(std::move(parte));
        }
        if (partes.size() > 3) return Sintaxis();
        if (!Aceptar(".")) break;
    }
    nombre.objeto = partes.back();
    if (partes.size() > 1) nombre.esquema = partes[partes.size() - 2];
    if (partes.size() > 2) nombre.base = partes[0];
    return nombre;
}

Resultado<std::vector<std::string>> Parser::ListaDeNombres() {
    QUIMO_TRY_VOID(Exigir("("));
    std::vector<std::string> nombres;
    do {
        QUIMO_TRY(std::string nombre, Nombre());
        nombres.push_back(std::move(nombre));
        if (!Aceptar("ASC")) Aceptar("DESC");
    } while (Aceptar(","));
    QUIMO_TRY_VOID(Exigir(")"));
    return nombres;
}

Resultado<std::int64_t> Parser::EnteroFijo() {
    const bool negativo = Aceptar("-");
    const Token& token = Actual();
    if (token.clase != Token::Clase::Literal) return Sintaxis();
    const auto indice = static_cast<std::size_t>(token.literal);
    const Literal& literal = lote_.literales[indice];
    if (!literal.tipo.EsExacto() || literal.tipo.escala != 0 || literal.tipo.precision > 18) {
        return Sintaxis();
    }
    lote_.fijos[indice] = true;
    ++i_;
    return negativo ? -literal.valor.Entero() : literal.valor.Entero();
}

std::string Parser::Desde(std::size_t primer_token) const {
    if (primer_token >= i_) return {};
    const std::size_t desde = tokens_[primer_token].desde;
    return std::string(texto_.substr(desde, tokens_[i_ - 1].hasta - desde));
}

Hecho Parser::Profundo() const {
    if (niveles_ > kNivelesMaximos) return DemasiadoAnidado();
    return {};
}

Resultado<Lote> Parser::LeerTodo() {
    while (true) {
        while (Aceptar(";")) {
        }
        if (Fin()) break;
        if (lote_.sentencias.size() >= kSentenciasMaximas) return DemasiadoAnidado();
        const bool primera = lote_.sentencias.empty();
        const bool llamada = primera && HayNombre();
        QUIMO_TRY(SentenciaPtr sentencia, llamada ? LeerLlamada() : LeerSentencia());
        lote_.sentencias.push_back(std::move(sentencia));
    }
    lote_.texto = texto_;
    return std::move(lote_);
}

Resultado<ExprPtr> Parser::LeerSuelta() {
    QUIMO_TRY(ExprPtr expr, Binaria(0));
    if (!Fin()) return Sintaxis();
    return expr;
}

Resultado<Lote> LeerLote(const std::string& texto, Lexico lexico, Constantes constantes) {
    return Parser(texto, std::move(lexico), constantes).LeerTodo();
}

Resultado<Lote> LeerLote(const std::string& texto, Constantes constantes) {
    QUIMO_TRY(Lexico lexico, Analizar(texto));
    return LeerLote(texto, std::move(lexico), constantes);
}

Resultado<ExprPtr> LeerExpresion(const std::string& texto) {
    QUIMO_TRY(Lexico lexico, Analizar(texto));
    return Parser(texto, std::move(lexico), Constantes::EnElArbol).LeerSuelta();
}

}  // namespace quimo::tsql
