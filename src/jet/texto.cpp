#include "jet/texto.h"

#include <cstdint>

namespace quimo::jet {

namespace {

constexpr char16_t kReemplazo = 0xFFFD;

/// The character that begins at i, and moves i past it; kReemplazo for what is no UTF-8.
char32_t TomarUtf8(std::string_view texto, std::size_t& i) {
    const auto primero = static_cast<std::uint8_t>(texto[i++]);
    if (primero < 0x80) return primero;
    const int mas = primero >= 0xF0 ? 3 : primero >= 0xE0 ? 2 : 1;
    static constexpr char32_t kMinimo[] = {0, 0x80, 0x800, 0x10000};
    if (primero < 0xC2 || primero > 0xF4 || texto.size() - i < static_cast<std::size_t>(mas)) {
        return kReemplazo;
    }
    char32_t c = primero & (0x3FU >> mas);
    for (int k = 0; k < mas; ++k) {
        const auto otro = static_cast<std::uint8_t>(texto[i + static_cast<std::size_t>(k)]);
        if ((otro & 0xC0) != 0x80) return kReemplazo;
        c = c << 6 | (otro & 0x3FU);
    }
    if (c < kMinimo[mas] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return kReemplazo;
    i += static_cast<std::size_t>(mas);
    return c;
}

char32_t Minuscula(char32_t c) {
    if ((c >= U'A' && c <= U'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7)) return c + 0x20;
    switch (c) {
        case 0x0160:
        case 0x0152:
        case 0x017D:
            return c + 1;
        case 0x0178:
            return 0xFF;
        default:
            return c;
    }
}

}  // namespace

void AgregarUtf8(std::string& destino, char32_t caracter) {
    if (caracter < 0x80) {
        destino.push_back(static_cast<char>(caracter));
        return;
    }
    if (caracter < 0x800) {
        destino.push_back(static_cast<char>(0xC0 | (caracter >> 6)));
    } else {
        if (caracter < 0x10000) {
            destino.push_back(static_cast<char>(0xE0 | (caracter >> 12)));
        } else {
            destino.push_back(static_cast<char>(0xF0 | (caracter >> 18)));
            destino.push_back(static_cast<char>(0x80 | ((caracter >> 12) & 0x3F)));
        }
        destino.push_back(static_cast<char>(0x80 | ((caracter >> 6) & 0x3F)));
    }
    destino.push_back(static_cast<char>(0x80 | (caracter & 0x3F)));
}

std::string AUtf8(std::u16string_view texto) {
    std::string destino;
    destino.reserve(texto.size());
    for (std::size_t i = 0; i < texto.size(); ++i) {
        const char16_t c = texto[i];
        if (EsSustitutaAlta(c) && i + 1 < texto.size() && EsSustitutaBaja(texto[i + 1])) {
            AgregarUtf8(destino, UnirSustitutas(c, texto[++i]));
        } else {
            AgregarUtf8(destino, EsSustitutaAlta(c) || EsSustitutaBaja(c) ? kReemplazo : c);
        }
    }
    return destino;
}

std::u16string AUtf16(std::string_view texto) {
    std::u16string destino;
    destino.reserve(texto.size());
    for (std::size_t i = 0; i < texto.size();) {
        const char32_t c = TomarUtf8(texto, i);
        if (c < 0x10000) {
            destino.push_back(static_cast<char16_t>(c));
        } else {
            destino.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            destino.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        }
    }
    return destino;
}

std::string Plegado(std::string_view nombre) {
    std::string destino;
    destino.reserve(nombre.size());
    for (std::size_t i = 0; i < nombre.size();)
        AgregarUtf8(destino, Minuscula(TomarUtf8(nombre, i)));
    return destino;
}

bool MismoNombre(std::string_view a, std::string_view b) {
    if (a == b) return true;
    return Plegado(a) == Plegado(b);
}

}  // namespace quimo::jet
