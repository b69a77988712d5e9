#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "tsql/reescritura/ambito.h"
#include "tsql/reescritura/termino.h"

namespace quimo::tsql {

/// From and to, both included.
using Rangos = std::vector<std::pair<std::int64_t, std::int64_t>>;

/// The numbers of a type whose text is LIKE 'digits%', which an index finds; no range when no
/// number is written so. Nothing for other patterns and types.
std::optional<Rangos> RangosDePrefijo(const Expr& como, const Tipo& tipo, Lote* lote);
/// The condition that a number lies in one of the ranges, of which there is at least one.
Termino EnRangos(const Termino& numero, const Rangos& rangos, bool negado);

/// SELECT MAX(x) FROM t WHERE x LIKE '1%': the extreme of each range, each found in the index.
/// Nothing when the query is not of this shape.
std::optional<Consulta> ExtremoPorRangos(const Consulta& consulta, const Ambito& ambito,
                                         Lote* lote);

}  // namespace quimo::tsql
