#pragma once

#include <QString>

#include "dayclose/cierre/renglon_rechazado.h"

namespace quimo::dayclose {

/// Why a terminal's row was refused and what can be done, in words for a manager: short lines that
/// stand below the database's own number and description. Looks the central row up on `conexion`
/// when its transaction is over; what cannot be looked up is left out, so that it never fails.
QString ExplicarRechazo(data::SqlConnection& conexion, const RenglonRechazado& renglon);

/// How to end the day without one terminal: the last lines of every message about one.
QString SalidaSinTerminal(const QString& terminal);

}  // namespace quimo::dayclose
