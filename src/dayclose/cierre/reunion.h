#pragma once

#include "dayclose/cierre/contexto_cierre.h"

namespace quimo::dayclose {

/// Fetches every active terminal's file (into the archive first), counts what each holds, compares
/// it with the central figures for the closing date and remembers which tables are to be copied.
ResultadoCierre<void> ReunirTerminales(ContextoCierre& contexto, CierrePendiente& cierre);

/// Before a close goes on that was interrupted while sales were copied: the local copies must be
/// the ones that were counted. A terminal that sold on in the meantime is fetched again, and what
/// is new in it is copied as well.
ResultadoCierre<void> RevisarCopias(ContextoCierre& contexto, CierrePendiente& cierre);

/// Whether the terminals that are to be left out are terminals at all.
ResultadoCierre<void> RevisarOmitidas(const ContextoCierre& contexto);

/// Sets aside the terminals that are to be left out and, in a close that goes on, those that are no
/// longer active.
ResultadoCierre<void> ApartarOmitidas(ContextoCierre& contexto, CierrePendiente& cierre);

/// Drops the two reconciliation tables, if they are there.
ResultadoCierre<void> BorrarTemporales(foundation::ClsAdo& ado);

/// The central figures of a working date, as the close compares them.
ResultadoCierre<ValoresCifras> CifrasCentrales(foundation::ClsAdo& ado, const QString& fecha);

/// The same for the reader of a summary: the day's checks are counted by their own orders here.
ResultadoCierre<ValoresCifras> CifrasDelDia(foundation::ClsAdo& ado, const QString& fecha);

}  // namespace quimo::dayclose
