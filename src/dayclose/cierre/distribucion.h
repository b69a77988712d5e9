#pragma once

#include "dayclose/cierre/contexto_cierre.h"

namespace quimo::dayclose {

/// Builds the terminals' new databases and sends them. A terminal that sold on after its sales were
/// copied is copied once more before its database is replaced.
ResultadoCierre<void> DistribuirCatalogos(ContextoCierre& contexto, CierrePendiente& cierre);

/// Why a terminal's file, that was asked for again and again, could not be replaced. `presente` is
/// the digest of what lay there last, empty when nothing could be read.
Interrupcion SinReemplazo(const QString& terminal, const QString& remoto, const QString& presente);

/// Sets the central counters and forgets the pending close, at once.
ResultadoCierre<void> TerminarCierre(ContextoCierre& contexto, CierrePendiente& cierre);

}  // namespace quimo::dayclose
