#include "base/letras_terminal.h"

namespace quimo::base {

std::optional<std::size_t> PrimeraLetraAjena(std::u16string_view texto) {
    const auto* const ajena = std::find_if_not(texto.begin(), texto.end(), EsLetraDeTerminal);
    if (ajena == texto.end()) return std::nullopt;
    return static_cast<std::size_t>(ajena - texto.begin());
}

char32_t LetraEn(std::u16string_view texto, std::size_t lugar) {
    const char16_t primera = texto[lugar];
    const char16_t segunda = lugar + 1 < texto.size() ? texto[lugar + 1] : u'\0';
    if (primera < 0xD800 || primera > 0xDBFF || segunda < 0xDC00 || segunda > 0xDFFF) {
        return primera;
    }
    return 0x10000 + (static_cast<char32_t>(primera - 0xD800) << 10) +
           static_cast<char32_t>(segunda - 0xDC00);
}

}  // namespace quimo::base
