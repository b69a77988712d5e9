#pragma once

#include "dayclose/cierre/contexto_cierre.h"

namespace quimo::dayclose {

/// Completes what is told of a close with what earlier runs of it did, from what it remembers and
/// from the archive: the summary is always that of the whole close.
void CompletarResumen(ContextoCierre& contexto, const CierrePendiente& cierre);

/// A close's summary as cells and lines, for a screen or a text.
struct TextoResumen {
    QString titulo;
    QStringList sin_copiar;    ///< one line for each terminal whose sales are missing
    QStringList sin_entregar;  ///< one line for each terminal without its new database
    QStringList faltantes;     ///< what is to be done about both
};
TextoResumen RedactarResumen(const ResumenCierre& resumen);

}  // namespace quimo::dayclose
