#pragma once

#include <QString>
#include <QVariant>

#include "base/result.h"
#include "foundation/sql_connection.h"

namespace quimo::catalog {

/// Why something written is refused, as the user is to read it.
struct Objecion {
    QString texto;
};

/// A text that somebody wrote, as the value that its column keeps: exact numbers as the database
/// counts them, an empty number as NULL. On error what to tell them, beginning with "El campo " and
/// the field's name: a text that is too long or has characters that the column does not keep, a
/// number that is none or does not fit.
base::Result<QVariant, Objecion> ValorParaColumna(const foundation::Columna& columna,
                                                  const QString& campo, const QString& texto);

/// A date as it is typed, d/m/yyyy with any sign between, as dd/mm/yyyy. On error what to tell.
base::Result<QString, Objecion> FechaEscrita(const QString& texto);

}  // namespace quimo::catalog
