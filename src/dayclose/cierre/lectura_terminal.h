#pragma once

#include <optional>

#include "dayclose/cierre/contexto_cierre.h"
#include "dayclose/terminales/base_terminal.h"

namespace quimo::dayclose {

/// Opens a terminal's file that is here already, checks it whole and counts it. A damaged one whose
/// rows can all be read is mended in a copy, after telling and asking: then the file at `ruta` is
/// the mended one, which is in the archive beside the damaged original. Other damage, another
/// format or a missing table is a failure that names the terminal. `sha256` is the file's, where it
/// is known from having just been written.
struct ArchivoContado {
    ValoresCifras cifras;
    QString sha256;    ///< of the file that was counted
    QString recibido;  ///< of the file as it came, which may have been damaged
    bool reparada = false;
};
ResultadoCierre<ArchivoContado> ContarArchivo(foundation::ClsAdo& ado, const ArchivoVentas& archivo,
                                              const QString& ruta, const QString& fecha,
                                              const QString& terminal, const QString& sha256 = {});

/// What came of fetching one terminal's file.
struct Traida {
    Apartada apartada = Apartada::No;  ///< why there is no file to count
    QString sha256;                    ///< of the file in the archive; empty without one
    QString copia;                     ///< of the local copy; empty when it is one of before
};

/// Fetches a terminal's file into the archive and makes the local copy from there. A terminal that
/// does not let go of its file is worked with the local copy that this close has, if any.
ResultadoCierre<Traida> TraerTerminal(ContextoCierre& contexto, const QString& fecha,
                                      const QString& terminal);

}  // namespace quimo::dayclose
