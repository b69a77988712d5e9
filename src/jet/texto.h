#pragma once

#include <string>
#include <string_view>

namespace quimo::jet {

/// UTF-16 to UTF-8. A surrogate without its other half becomes U+FFFD.
std::string AUtf8(std::u16string_view texto);
/// UTF-8 to UTF-16. What is not valid UTF-8 becomes U+FFFD, byte by byte.
std::u16string AUtf16(std::string_view texto);

constexpr bool EsSustitutaAlta(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool EsSustitutaBaja(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
/// The character of a pair of surrogates.
constexpr char32_t UnirSustitutas(char16_t alta, char16_t baja) {
    return 0x10000 + (static_cast<char32_t>(alta - 0xD800) << 10) +
           static_cast<char32_t>(baja - 0xDC00);
}

/// Whether two names (UTF-8) are the same to the file: without case, also for accented letters.
bool MismoNombre(std::string_view a, std::string_view b);
/// A name in the form in which equal names are equal strings.
std::string Plegado(std::string_view nombre);

}  // namespace quimo::jet
