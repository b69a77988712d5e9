#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quimo::tsql {

/// The types of the dialect, in ascending order of precedence: in a mixed operation the operand of
/// the lower one is converted to the higher one.
enum class Clase : std::uint8_t {
    Nulo,  ///< the NULL of a text, not yet of any type
    Binary,
    VarBinary,
    Char,
    VarChar,
    NChar,
    NVarChar,
    UniqueIdentifier,
    Image,
    Text,
    NText,
    Bit,
    TinyInt,
    SmallInt,
    Int,
    BigInt,
    SmallMoney,
    Money,
    Numeric,
    Real,
    Float,
    SmallDateTime,
    DateTime,
};

/// Digits that a NUMERIC may have and still be kept and computed as a 64-bit whole number.
constexpr int kDigitosNativos = 18;
constexpr int kDigitosMaximos = 38;
constexpr int kLongitudMaxima = 8000;

/// How values are kept: whole numbers and BIT as they are; MONEY and NUMERIC as a whole number
/// scaled by 10^escala; dates as milliseconds since 1900-01-01; FLOAT as a real; the rest as text.
struct Tipo {
    Clase clase = Clase::Nulo;
    int longitud = 0;   ///< characters of texts, bytes of binaries; -1 without limit
    int precision = 0;  ///< digits of exact numbers
    int escala = 0;     ///< decimals of MONEY and NUMERIC

    bool operator==(const Tipo&) const = default;

    bool EsEntero() const { return clase >= Clase::Bit && clase <= Clase::BigInt; }
    bool EsMoneda() const { return clase == Clase::Money || clase == Clase::SmallMoney; }
    /// Kept as a whole number, scaled or not.
    bool EsExacto() const { return clase >= Clase::Bit && clase <= Clase::Numeric; }
    bool EsReal() const { return clase == Clase::Real || clase == Clase::Float; }
    bool EsNumero() const { return clase >= Clase::Bit && clase <= Clase::Float; }
    bool EsFecha() const { return clase >= Clase::SmallDateTime; }
    bool EsTexto() const {
        return (clase >= Clase::Char && clase <= Clase::NVarChar) || clase == Clase::Text ||
               clase == Clase::NText;
    }
    bool EsBinario() const {
        return clase == Clase::Binary || clase == Clase::VarBinary || clase == Clase::Image;
    }
    bool EsNacional() const {
        return clase == Clase::NChar || clase == Clase::NVarChar || clase == Clase::NText;
    }
    bool LongitudFija() const {
        return clase == Clase::Char || clase == Clase::NChar || clase == Clase::Binary;
    }
    /// A NUMERIC of more digits than 64 bits hold.
    bool EsAncho() const { return clase == Clase::Numeric && precision > kDigitosNativos; }
};

Tipo TipoEntero(Clase clase);
Tipo TipoMoneda();
Tipo TipoNumerico(int precision, int escala);
Tipo TipoTexto(Clase clase, int longitud);
Tipo TipoReal();
Tipo TipoFecha();

/// "varchar", as error texts name the type.
std::string_view NombreClase(Clase clase);
/// The type of a declared name: "integer", "dec", "varchar". Without its default length or digits.
std::optional<Clase> ClasePorNombre(std::string_view nombre);

/// A type packed into a number, as it is written into the engine's own functions.
std::int64_t Empaquetar(const Tipo& tipo);
Tipo Desempaquetar(std::int64_t codigo);

/// An exact number's type as NUMERIC digits: INT is (10,0), MONEY (19,4).
Tipo ComoNumerico(const Tipo& tipo);

/// Result type of + - * / % over exact numbers, by the server's rules of digits and decimals.
Tipo TipoAritmetico(char operador, const Tipo& a, const Tipo& b);
/// The one type of values that must agree: branches of CASE, columns of UNION, COALESCE.
Tipo TipoComun(const Tipo& a, const Tipo& b);

}  // namespace quimo::tsql
