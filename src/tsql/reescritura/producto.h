#pragma once

#include <optional>

#include "tsql/reescritura/ambito.h"

namespace quimo::tsql {

/// A query whose whole answer is one row of aggregates, over sources that no condition joins: the
/// same answer out of each part's own aggregates, so that the rows of the product are never made.
/// `ambito` holds the query's FROM. Nothing when the query is not of this shape.
std::optional<Consulta> SinProducto(const Consulta& consulta, const Ambito& ambito);

}  // namespace quimo::tsql
