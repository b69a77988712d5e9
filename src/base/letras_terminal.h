#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

/// The letters that a text index of a terminal's database can hold. Every name that reaches the
/// terminals is checked against them, and the index keys of jet/ are built from the same table.
namespace quimo::base {

/// All letters up to this one are in the table.
constexpr char32_t kLetraSeguidaMax = 0xFF;
/// The further ones, ascending: the rest of Windows-1252.
constexpr std::array<char16_t, 27> kLetrasTerminal = {
    0x0152, 0x0153, 0x0160, 0x0161, 0x0178, 0x017D, 0x017E, 0x0192, 0x02C6,
    0x02DC, 0x2013, 0x2014, 0x2018, 0x2019, 0x201A, 0x201C, 0x201D, 0x201E,
    0x2020, 0x2021, 0x2022, 0x2026, 0x2030, 0x2039, 0x203A, 0x20AC, 0x2122};
static_assert(std::is_sorted(kLetrasTerminal.begin(), kLetrasTerminal.end()));

/// Whether an index can hold it. A letter written as a base and a combining accent must have been
/// composed (NFC) before it is asked about.
constexpr bool EsLetraDeTerminal(char32_t letra) {
    return letra <= kLetraSeguidaMax ||
           std::binary_search(kLetrasTerminal.begin(), kLetrasTerminal.end(), letra);
}
/// Where the first letter begins that an index cannot hold. Half a surrogate pair is one.
std::optional<std::size_t> PrimeraLetraAjena(std::u16string_view texto);
/// The letter that begins there, both halves of a surrogate pair joined.
char32_t LetraEn(std::u16string_view texto, std::size_t lugar);

}  // namespace quimo::base
