#pragma once

#include <optional>

#include <QString>
#include <QStringList>

#include "jet/base_datos.h"

namespace quimo::dayclose {

/// What a terminal's own table of parameters says of its numbers. What is not there is 0 or empty.
struct ParametrosTerminal {
    QString fecha_trabajo;     ///< ddmmyyyy
    qint64 terminal = 0;       ///< the terminal's own number
    qint64 folio_comanda = 0;  ///< the next order
    qint64 folio_pago = 0;     ///< the next payment
};

base::Result<ParametrosTerminal> LeerParametrosTerminal(const jet::BaseDatos& base);

/// The working dates of a file's orders, oldest first, each once.
base::Result<QStringList> FechasDeOrdenes(const jet::BaseDatos& base);

/// A whole number out of a terminal's column of any numeric type; nothing for NULL, for another
/// type or for a number that is not whole.
std::optional<qint64> EnteroDeTerminal(const jet::Valor& valor);

}  // namespace quimo::dayclose
