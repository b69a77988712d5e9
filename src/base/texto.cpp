#include "base/texto.h"

#include <cstdint>

namespace quimo::base {

namespace {

/// Bytes of the well-formed character that begins at `posicion`, and the character; 0 for none.
int Leer(std::string_view texto, std::size_t posicion, char32_t& caracter) {
    static constexpr char32_t kMinimo[] = {0, 0x80, 0x800, 0x10000};
    const auto primero = static_cast<std::uint8_t>(texto[posicion]);
    caracter = primero;
    if (primero < 0x80) return 1;
    const int mas = primero >= 0xF0 ? 3 : primero >= 0xE0 ? 2 : 1;
    if (primero < 0xC2 || primero > 0xF4) return 0;
    if (texto.size() - posicion <= static_cast<std::size_t>(mas)) return 0;
    char32_t c = primero & (0x3FU >> mas);
    for (int k = 1; k <= mas; ++k) {
        const auto otro = static_cast<std::uint8_t>(texto[posicion + static_cast<std::size_t>(k)]);
        if ((otro & 0xC0) != 0x80) return 0;
        c = c << 6 | (otro & 0x3FU);
    }
    if (c < kMinimo[mas] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return 0;
    caracter = c;
    return mas + 1;
}

}  // namespace

char32_t SiguienteLargo(std::string_view texto, std::size_t& posicion) {
    char32_t caracter = 0;
    const int bytes = Leer(texto, posicion, caracter);
    posicion += bytes == 0 ? 1 : static_cast<std::size_t>(bytes);
    return caracter;
}

bool EsMalformado(std::string_view texto, std::size_t posicion) {
    char32_t caracter = 0;
    return Leer(texto, posicion, caracter) == 0;
}

void AgregarLargo(std::string& texto, char32_t caracter) {
    const auto poner = [&](char32_t byte) { texto.push_back(static_cast<char>(byte)); };
    const auto cola = [&](int bits) { poner(0x80 | ((caracter >> bits) & 0x3F)); };
    if (caracter < 0x800) {
        poner(0xC0 | (caracter >> 6));
        cola(0);
    } else if (caracter < 0x10000) {
        poner(0xE0 | (caracter >> 12));
        cola(6);
        cola(0);
    } else {
        poner(0xF0 | (caracter >> 18));
        cola(12);
        cola(6);
        cola(0);
    }
}

char32_t MinusculaLarga(char32_t c) {
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;
    if (c == 0x178) return 0xFF;
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return c % 2 == 1 ? c + 1 : c;
    if (c >= 0x100 && c <= 0x177 && c != 0x130 && c != 0x131 && c != 0x138) return c | 1U;
    if (c >= 0x391 && c <= 0x3A9 && c != 0x3A2) return c + 32;
    if (c >= 0x410 && c <= 0x42F) return c + 32;
    return c;
}

char32_t Mayuscula(char32_t c) {
    if (c < 0x80) return c >= U'a' && c <= U'z' ? c - 32 : c;
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 32;
    if (c == 0xFF) return 0x178;
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return c % 2 == 0 ? c - 1 : c;
    if (c >= 0x100 && c <= 0x177 && c != 0x130 && c != 0x131 && c != 0x138) return c & ~1U;
    if (c >= 0x3B1 && c <= 0x3C9 && c != 0x3C2) return c - 32;
    if (c >= 0x430 && c <= 0x44F) return c - 32;
    return c;
}

std::string AMinusculas(std::string_view texto) {
    std::string salida;
    salida.reserve(texto.size());
    for (std::size_t i = 0; i < texto.size();) {
        AgregarCaracter(salida, Minuscula(SiguienteCaracter(texto, i)));
    }
    return salida;
}

std::string AMayusculas(std::string_view texto) {
    std::string salida;
    salida.reserve(texto.size());
    for (std::size_t i = 0; i < texto.size();) {
        AgregarCaracter(salida, Mayuscula(SiguienteCaracter(texto, i)));
    }
    return salida;
}

}  // namespace quimo::base
