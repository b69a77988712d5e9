#include "tsql/reescritura/termino.h"

#include <array>
#include <charconv>

#include "tsql/valores/decimales.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

std::string RealSql(double real) {
    std::array<char, 40> texto{};
    const auto fin = std::to_chars(texto.data(), texto.data() + texto.size(), real,
                                   std::chars_format::scientific, 17)
                         .ptr;
    return {texto.data(), fin};
}

std::string BinarioSql(std::string_view bytes) {
    constexpr std::string_view kCifras = "0123456789ABCDEF";
    std::string texto = "x'";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        texto.push_back(kCifras[byte >> 4U]);
        texto.push_back(kCifras[byte & 15U]);
    }
    return texto + "'";
}

}  // namespace

std::string Par(const Termino& termino, Fuerza minima) {
    return termino.fuerza >= minima ? termino.sql : "(" + termino.sql + ")";
}

Fuerza MasFuerte(Fuerza fuerza) { return static_cast<Fuerza>(static_cast<int>(fuerza) + 1); }

Termino Verdad(std::string sql, Fuerza fuerza) {
    return {std::move(sql), TipoEntero(Clase::Bit), fuerza};
}

std::string LiteralSql(const Literal& literal) {
    if (literal.valor.EsNulo()) return "NULL";
    if (literal.tipo.EsTexto()) return EntreApostrofes(literal.valor.texto);
    if (literal.tipo.EsReal()) return RealSql(literal.valor.real);
    if (literal.tipo.EsBinario()) return BinarioSql(literal.valor.texto);
    if (ContarCifras(literal.valor.exacto) <= kDigitosNativos) {
        return TextoDecimal(literal.valor.exacto, 0);
    }
    return "q_ancho('" + TextoDecimal(literal.valor.exacto, 0) + "')";
}

}  // namespace quimo::tsql
