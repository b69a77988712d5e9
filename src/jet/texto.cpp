#include "jet/texto.h"

#include "base/texto.h"

namespace quimo::jet {

namespace {

constexpr char16_t kReemplazo = 0xFFFD;

/// The character that begins at i, and moves i past it; kReemplazo for what is no UTF-8.
char32_t TomarUtf8(std::string_view texto, std::size_t& i) {
    const bool largo = static_cast<unsigned char>(texto[i]) >= 0x80;
    if (!largo || !base::EsMalformado(texto, i)) return base::SiguienteCaracter(texto, i);
    ++i;
    return kReemplazo;
}

}  // namespace

std::string AUtf8(std::u16string_view texto) {
    std::string destino;
    destino.reserve(texto.size());
    for (std::size_t i = 0; i < texto.size(); ++i) {
        const char16_t c = texto[i];
        if (EsSustitutaAlta(c) && i + 1 < texto.size() && EsSustitutaBaja(texto[i + 1])) {
            base::AgregarCaracter(destino, UnirSustitutas(c, texto[++i]));
        } else {
            base::AgregarCaracter(destino,
                                  EsSustitutaAlta(c) || EsSustitutaBaja(c) ? kReemplazo : c);
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
        base::AgregarCaracter(destino, base::Minuscula(TomarUtf8(nombre, i)));
    return destino;
}

bool MismoNombre(std::string_view a, std::string_view b) {
    if (a == b) return true;
    return Plegado(a) == Plegado(b);
}

}  // namespace quimo::jet
