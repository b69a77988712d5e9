#pragma once

#include "dayclose/contexto_cierre.h"

namespace quimo::app {

/// Prints what a close did: what each terminal held, what was copied, the day's totals in the
/// central database beside the terminals' sums, and what the manager should know.
void EscribirResumen(foundation::ClsAdo& ado, const dayclose::ResumenCierre& resumen);

}  // namespace quimo::app
