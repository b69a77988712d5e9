#pragma once

#include <vector>

#include "tsql/lectura/catalogo.h"

namespace quimo::data::embebido {

/// The few system views that scripts ask: INFORMATION_SCHEMA.TABLES and COLUMNS, sys.objects,
/// sys.tables, sysobjects. Permanent objects only.
std::vector<tsql::TablaPtr> VistasDelSistema();

}  // namespace quimo::data::embebido
