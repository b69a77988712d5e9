#pragma once

#include "dayclose/contexto_cierre.h"

namespace quimo::dayclose {

/// Copies the sales that are still to be copied into the central tables, terminal by terminal: a
/// row that is there is updated, a missing one inserted. What was copied stays, whatever comes
/// after, and a later run goes on with the next row.
ResultadoCierre<void> TransferirVentas(ContextoCierre& contexto, CierrePendiente& cierre);

}  // namespace quimo::dayclose
