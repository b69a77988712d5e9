#pragma once

#include "data/embebido/sesion.h"

namespace quimo::data::embebido {

/// SET option, and USE. Those whose other value would change what statements mean are refused with
/// it; those that change nothing here are taken as they come.
Hecho PonerOpcion(const tsql::Opcion& opcion, Sesion& sesion);

}  // namespace quimo::data::embebido
