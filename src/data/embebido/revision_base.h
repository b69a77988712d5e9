#pragma once

#include "data/embebido/salida.h"

namespace quimo::data::embebido {

/// DBCC CHECKDB: each finding as an error, and a message that counts them; with TABLERESULTS as the
/// rows of a result set.
Hecho RevisarBase(const tsql::RevisarBase& revisar, Sesion& sesion, Salida& salida);

}  // namespace quimo::data::embebido
