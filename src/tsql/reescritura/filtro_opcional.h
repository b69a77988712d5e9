#pragma once

#include <optional>
#include <string>

#include "tsql/reescritura/ambito.h"
#include "tsql/reescritura/termino.h"

namespace quimo::tsql {

/// a LEFT JOIN b ON b.x = a.x AND b.y IN (SELECT ...), with an index on y and none on x: the engine
/// would look at all rows of b. What the condition asks of b alone is asked first. What stands
/// behind LEFT JOIN; nothing when the join is not of this shape. `ambito` holds both sides, b last.
std::optional<std::string> FiltrarOpcional(const Fuente& join, const Ambito& ambito,
                                           Valorador& valores);

}  // namespace quimo::tsql
