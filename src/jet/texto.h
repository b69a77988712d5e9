#pragma once

#include <string>
#include <string_view>

namespace quimo::jet {

/// UTF-16 to UTF-8. A surrogate without its other half becomes U+FFFD.
std::string AUtf8(std::u16string_view texto);
/// UTF-8 to UTF-16. What is not valid UTF-8 becomes U+FFFD, byte by byte.
std::u16string AUtf16(std::string_view texto);

/// Whether two names (UTF-8) are the same to the file: without case, also for accented letters of
/// Windows-1252.
bool MismoNombre(std::string_view a, std::string_view b);
/// A name in the form in which equal names are equal strings.
std::string Plegado(std::string_view nombre);

}  // namespace quimo::jet
