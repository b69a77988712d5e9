#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quimo::base {

/// Wide enough for every exact numeric of the database (38 digits).
__extension__ using Int128 = __int128;
__extension__ using UInt128 = unsigned __int128;

/// An exact decimal number, digits x 10^-escala, as the database's NUMERIC(p,s) keeps it.
struct Decimal {
    static constexpr int kDigitosMax = 38;

    Int128 digitos = 0;
    int escala = 0;  ///< decimals, 0 to 38

    /// From "-12.340", keeping the decimals as written. Nothing when the text is not such a number
    /// or has more than 38 digits.
    static std::optional<Decimal> DeTexto(std::string_view texto);
    /// All decimals of the scale, with a point: "12.340".
    std::string ATexto() const;
    /// The same value with another number of decimals, halves rounded away from zero. Nothing when
    /// the digits do not fit.
    std::optional<Decimal> ConEscala(int escala_nueva) const;
    /// Compares by value: 1.50 equals 1.5.
    bool operator==(const Decimal& otro) const;
};

}  // namespace quimo::base
