#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "jet/valor.h"

namespace quimo::jet {

/// A row's identity. It does not change as long as the row exists, whatever is written to it.
struct IdFila {
    std::uint32_t pagina = 0;
    std::uint8_t fila = 0;
    auto operator<=>(const IdFila&) const = default;  // NOLINT(modernize-use-nullptr)
};

/// The values of a row, one per column in the order of DefTabla::columnas.
using Fila = std::vector<Valor>;

/// A new value for one column of a row.
struct Cambio {
    std::size_t columna = 0;
    Valor valor;
};

}  // namespace quimo::jet
