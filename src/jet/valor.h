#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/decimal.h"
#include "base/dinero.h"

namespace quimo::jet {

/// Bytes of a Binary or OLE column.
using Binario = std::vector<std::uint8_t>;

/// A GUID; the bytes stand in the order in which they are displayed.
struct Guid {
    std::array<std::uint8_t, 16> bytes{};

    /// From "{AABBCCDD-EEFF-0011-2233-445566778899}", the braces optional, any case.
    static std::optional<Guid> DeTexto(std::string_view texto);
    /// In braces and upper case.
    std::string ATexto() const;
    bool operator==(const Guid&) const = default;
};

/// A Date/Time value as the file keeps it: days since 1899-12-30, local time without zone. The
/// fraction's absolute value is the time of day, also before that date. Compare ACivil() rather
/// than `dias`: the same second can have two neighbouring doubles.
struct Fecha {
    struct Civil {
        int ano = 1899;
        int mes = 12;
        int dia = 30;
        int hora = 0;
        int minuto = 0;
        int segundo = 0;
        int milisegundo = 0;
        bool operator==(const Civil&) const = default;
    };

    double dias = 0;

    /// Nothing unless it is a date of the years 100 to 9999 that exists and a time of day.
    static std::optional<Fecha> DeCivil(const Civil& civil);
    /// Rounded to the millisecond. Nothing outside the years 100 to 9999.
    std::optional<Civil> ACivil() const;
    bool operator==(const Fecha&) const = default;
};

/// One value of a row. monostate is NULL. By column type: Yes/No bool (never NULL: no value reads
/// as false); Byte, Integer and Long int32; Currency Dinero; Single float; Double double; Date/Time
/// Fecha; Text and Memo u16string; Binary and OLE Binario; GUID Guid; Numeric Decimal with the
/// column's scale. On writing, an int32 is also taken by Currency, Single, Double and Numeric
/// columns when it is exact there; NULL is taken by Yes/No as false.
using Valor = std::variant<std::monostate, bool, std::int32_t, float, double, base::Dinero, Fecha,
                           std::u16string, Binario, Guid, base::Decimal>;

inline bool EsNulo(const Valor& valor) { return valor.index() == 0; }

}  // namespace quimo::jet
