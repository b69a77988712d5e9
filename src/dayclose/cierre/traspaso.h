#pragma once

#include "dayclose/cierre/contexto_cierre.h"

namespace quimo::dayclose {

/// Copies the sales that are still to be copied into the central tables, terminal by terminal, each
/// in one transaction together with the note that it is done. A terminal with a row that is refused
/// is set aside, if the user wants to go on, and nothing of it is copied.
ResultadoCierre<void> TransferirVentas(ContextoCierre& contexto, CierrePendiente& cierre);

/// Copies a file of a terminal that sold on after its sales were copied: what is new in it, and
/// what changed. `ruta` is its place in the archive.
ResultadoCierre<void> CopiarVersionNueva(ContextoCierre& contexto, CierrePendiente& cierre,
                                         const Terminal& terminal, const QString& ruta);

/// What a refused copy is told as: the database's own number and description, and below them which
/// row it was and what can be done.
Interrupcion ExplicarFalla(data::SqlConnection& conexion, FallaCopia falla,
                           const QString& terminal);

/// "insertadas;modificadas;iguales", as a close remembers it, and back.
QString DetalleDeCopia(const TablaCopiada& copiada);
TablaCopiada CopiaDeDetalle(const QString& terminal, const QString& tabla, const QString& detalle);

}  // namespace quimo::dayclose
