#pragma once

#include <string>
#include <vector>

#include "tsql/reescritura/ambito.h"
#include "tsql/reescritura/termino.h"

namespace quimo::tsql {

/// The pieces of a query with one key to group by, from which the row of one key can be asked for.
struct PiezasDeGrupo {
    std::vector<std::string> lista;
    std::string desde;
    std::string donde;
    Termino clave;
};

/// The side of a join that need not have a row, when it is a query in parentheses; null otherwise.
const Fuente* OpcionalDerivada(const Fuente& join);

/// t LEFT JOIN (SELECT k, SUM(x) AS s FROM ... GROUP BY k) d ON d.k = t.k: the engine would work
/// all the groups out before the first row of t. There is at most one row per key, so that d.s can
/// be asked for where it is used, which reads the rows of that key alone: the columns of `tabla`,
/// which stands for d, become those questions. `ambito` holds t. False, and nothing changed, when
/// the join is not of this shape.
bool BuscarGrupo(const Fuente& join, const PiezasDeGrupo& grupo, TablaAmbito& tabla, Ambito& ambito,
                 Valorador& valores);

}  // namespace quimo::tsql
