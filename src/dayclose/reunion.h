#pragma once

#include "dayclose/contexto_cierre.h"

namespace quimo::dayclose {

/// Fetches every active terminal's file (into the archive first), counts what each holds, compares
/// it with the central figures for the closing date and remembers which tables are to be copied.
ResultadoCierre<void> ReunirTerminales(ContextoCierre& contexto, CierrePendiente& cierre);

/// Before a close goes on that was interrupted while sales were copied: the local copies must be
/// the ones that were counted. A terminal that sold on in the meantime is fetched again and copied
/// anew.
ResultadoCierre<void> RevisarCopias(ContextoCierre& contexto, CierrePendiente& cierre);

/// Drops the two reconciliation tables, if they are there.
ResultadoCierre<void> BorrarTemporales(foundation::ClsAdo& ado);

/// The central figures of a working date.
ResultadoCierre<ValoresCifras> CifrasCentrales(foundation::ClsAdo& ado, const QString& fecha);

}  // namespace quimo::dayclose
