#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quimo::base {

/// An amount of money, exact to the ten-thousandth, as the database's MONEY and the terminals'
/// Currency keep it. The operators end the program when a result leaves the range (about 922
/// million million), so that a wrong total is never shown: they are for amounts that this program
/// made. Amounts from outside are added with Mas and its like, which say so instead.
class Dinero {
public:
    constexpr Dinero() = default;
    /// From ten-thousandths: DeDiezmilesimas(12500) is 1.25.
    static constexpr Dinero DeDiezmilesimas(std::int64_t diezmilesimas) {
        Dinero d;
        d.diezmilesimas_ = diezmilesimas;
        return d;
    }
    static constexpr Dinero DeEntero(std::int32_t pesos) {
        return DeDiezmilesimas(static_cast<std::int64_t>(pesos) * kUno);
    }
    /// From "1234.5", "-0.0001"; more than four decimals are rounded, halves away from zero.
    /// Nothing when the text is not such a number or does not fit.
    static std::optional<Dinero> DeTexto(std::string_view texto);

    constexpr std::int64_t Diezmilesimas() const { return diezmilesimas_; }
    /// Four decimals and a point, as it is written into statements: "1234.5000".
    std::string ATexto() const;
    /// Two decimals, thousands apart, for people: "$1,234.50".
    std::string AMoneda() const;

    /// The result, or nothing when it does not fit.
    std::optional<Dinero> Mas(Dinero otro) const;
    std::optional<Dinero> Menos(Dinero otro) const;
    std::optional<Dinero> Por(std::int64_t veces) const;

    Dinero operator+(Dinero otro) const;
    Dinero operator-(Dinero otro) const;
    Dinero operator*(std::int64_t veces) const;
    Dinero& operator+=(Dinero otro) { return *this = *this + otro; }
    Dinero& operator-=(Dinero otro) { return *this = *this - otro; }
    Dinero operator-() const { return Dinero() - *this; }
    auto operator<=>(const Dinero&) const = default;

    /// The given fraction in ten-thousandths of this amount (1600 is 16 %), rounded half away from
    /// zero to the ten-thousandth.
    Dinero Fraccion(std::int64_t diezmilesimas) const;
    /// This amount rounded half away from zero to whole cents.
    Dinero ACentavos() const;

private:
    static constexpr std::int64_t kUno = 10000;
    std::int64_t diezmilesimas_ = 0;
};

}  // namespace quimo::base
