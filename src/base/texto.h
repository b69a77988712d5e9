#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quimo::base {

/// Texts are UTF-8. What a text is when its case does not count ("folded"), for names and
/// comparisons: Latin letters up to U+017F, Greek and Cyrillic ones.

/// The character of several bytes that begins at `posicion`, which moves behind it. A byte that
/// begins no well-formed character stands for itself.
char32_t SiguienteLargo(std::string_view texto, std::size_t& posicion);

/// Whether the byte at `posicion` begins no well-formed character.
bool EsMalformado(std::string_view texto, std::size_t posicion);

/// The character that begins at `posicion`, which moves behind it. A malformed byte counts as one
/// character of its own.
inline char32_t SiguienteCaracter(std::string_view texto, std::size_t& posicion) {
    const auto primero = static_cast<unsigned char>(texto[posicion]);
    if (primero >= 0x80) return SiguienteLargo(texto, posicion);
    ++posicion;
    return primero;
}
/// Appends a character of several bytes.
void AgregarLargo(std::string& texto, char32_t caracter);

/// `caracter` is no surrogate.
inline void AgregarCaracter(std::string& texto, char32_t caracter) {
    if (caracter >= 0x80) return AgregarLargo(texto, caracter);
    texto.push_back(static_cast<char>(caracter));
}

/// Of a character beyond ASCII.
char32_t MinusculaLarga(char32_t caracter);

inline char32_t Minuscula(char32_t caracter) {
    if (caracter >= 0x80) return MinusculaLarga(caracter);
    return caracter >= U'A' && caracter <= U'Z' ? caracter + 32 : caracter;
}
char32_t Mayuscula(char32_t caracter);
std::string AMinusculas(std::string_view texto);
std::string AMayusculas(std::string_view texto);

}  // namespace quimo::base
