#pragma once

#include "dayclose/cierre/contexto_cierre.h"
#include "dayclose/cierre/trabajo_terminal.h"

namespace quimo::app {

/// Prints what a close did: what each terminal held, what was copied, the day's totals in the
/// central database beside the terminals' sums, and what the manager should know.
void EscribirResumen(foundation::ClsAdo& ado, const dayclose::ResumenCierre& resumen);

/// The same for a file that was brought in afterwards.
void EscribirTraida(foundation::ClsAdo& ado, const dayclose::ResumenTraida& traida);

}  // namespace quimo::app
