#pragma once

#include "dayclose/cierre/contexto_cierre.h"

namespace quimo::dayclose {

/// The next item counter of a terminal: one more than what follows the terminal's number in the
/// highest item identifier that begins with it, 1 without any.
ResultadoCierre<qint64> SiguienteFolioProductos(foundation::ClsAdo& ado, int terminal);

/// One more than the only value of a query's answer; 1 for NULL.
qint64 SiguienteDe(const QVector<data::Fila>& maximo);

/// What becomes of the central order and payment counters.
enum class Folios {
    AlSiguiente,  ///< one more than the highest number in the tables, whatever they were
    SinBajar,     ///< the same, unless they are further on already
};

/// Sets both counters by the tables, inside the caller's transaction.
ResultadoCierre<void> PonerFolios(foundation::ClsAdo& ado, Folios modo);

}  // namespace quimo::dayclose
