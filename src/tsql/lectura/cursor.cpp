#include <algorithm>
#include <array>

#include "tsql/lectura/cursor_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

Cursor::Cursor(std::string_view texto, Lexico lexico, Constantes constantes)
    : texto_(texto), tokens_(std::move(lexico.tokens)), constantes_(constantes) {
    lote_.literales = std::move(lexico.literales);
    lote_.fijos.assign(lote_.literales.size(), false);
    lote_.tipos_fijos.assign(lote_.literales.size(), false);
    lote_.parametros = lexico.parametros;
}

bool Cursor::EsPalabra(std::string_view palabra, std::size_t adelante) const {
    const Token& token = Mirar(adelante);
    return token.clase == Token::Clase::Palabra && MismoNombre(token.texto, palabra);
}

bool Cursor::EsSigno(std::string_view signo, std::size_t adelante) const {
    const Token& token = Mirar(adelante);
    return token.clase == Token::Clase::Signo && token.texto == signo;
}

bool Cursor::Aceptar(std::string_view cual) {
    if (!EsPalabra(cual) && !EsSigno(cual)) return false;
    ++i_;
    return true;
}

Hecho Cursor::Exigir(std::string_view cual) {
    if (!Aceptar(cual)) return Sintaxis();
    return {};
}

ErrorSql Cursor::SintaxisEn(std::size_t token) const {
    // At the end of the text the last word is the one to show.
    if (tokens_[token].clase == Token::Clase::Fin && token > 0) --token;
    const Token& t = tokens_[token];
    const std::string palabra(t.texto);
    const bool reservada = t.clase == Token::Clase::Palabra && EsReservada(palabra);
    const std::string lugar = Lugar(texto_, t.desde);
    return reservada ? PalabraClaveIncorrecta(palabra, lugar) : SintaxisIncorrecta(palabra, lugar);
}

bool Cursor::HayNombre(std::size_t adelante) const {
    const Token& token = Mirar(adelante);
    if (token.clase == Token::Clase::Delimitado) return true;
    return token.clase == Token::Clase::Palabra && !EsReservada(token.texto);
}

bool Cursor::EmpiezaConsulta(std::size_t adelante) const {
    const std::size_t limite = adelante + kNivelesMaximos;
    while (adelante < limite && EsSigno("(", adelante))
        ++adelante;
    return EsPalabra("SELECT", adelante);
}

Resultado<std::string> Cursor::Nombre() {
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

Resultado<NombreObjeto> Cursor::Objeto() {
    NombreObjeto nombre;
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

Resultado<NombreObjeto> Cursor::ObjetoOVariable() {
    if (Actual().clase != Token::Clase::Variable) return Objeto();
    NombreObjeto nombre;
    nombre.objeto = Variable();
    return nombre;
}

std::string Cursor::Variable() {
    std::string nombre = AMinusculas(Actual().texto);
    ++i_;
    return nombre;
}

Resultado<std::vector<std::string>> Cursor::ListaDeNombres() {
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

Resultado<std::int64_t> Cursor::EnteroFijo() {
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

Resultado<std::string> Cursor::TextoFijo() {
    if (!EsTextoConstante()) return Sintaxis();
    const auto indice = static_cast<std::size_t>(Actual().literal);
    lote_.fijos[indice] = true;
    ++i_;
    return lote_.literales[indice].valor.texto;
}

Resultado<std::string> Cursor::SignoDeAsignacion() {
    constexpr auto kCompuestas = std::to_array<std::string_view>({"+=", "-=", "*=", "/=", "%="});
    std::string operador;
    for (const std::string_view signo : kCompuestas) {
        if (EsSigno(signo)) operador = signo.substr(0, 1);
    }
    if (operador.empty() && !EsSigno("=")) return Sintaxis();
    ++i_;
    return operador;
}

const Literal& Cursor::LiteralActual() const {
    return lote_.literales[static_cast<std::size_t>(Actual().literal)];
}

bool Cursor::EsTextoConstante() const {
    return EsClase(Token::Clase::Literal) && LiteralActual().tipo.EsTexto();
}

std::string Cursor::Desde(std::size_t primer_token) const {
    if (primer_token >= i_) return {};
    const std::size_t desde = tokens_[primer_token].desde;
    return std::string(texto_.substr(desde, tokens_[i_ - 1].hasta - desde));
}

Hecho Cursor::Profundo() const {
    if (niveles_ > kNivelesMaximos) return DemasiadoAnidado();
    return {};
}

Lote Cursor::Terminar() {
    lote_.texto = texto_;
    return std::move(lote_);
}

}  // namespace quimo::tsql
