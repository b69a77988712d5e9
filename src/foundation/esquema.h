#pragma once

#include <QStringList>

#include "foundation/sql_connection.h"

namespace quimo::foundation {

/// The batches of a script: a line that says only GO ends one, as with SQL Server's own tools.
/// Batches without a statement are left out.
QStringList PartirLotes(const QString& texto);

/// Creates the schema and the procedures in an empty database, in one transaction: all of it or
/// nothing.
base::Result<void, FalloSql> CrearEsquema(SqlConnection& conexion);

/// Runs a script with one statement a line; empty lines and lines that begin with -- are passed
/// over. All of it or nothing. The failure's first description tells the line.
base::Result<void, FalloSql> EjecutarPorLineas(SqlConnection& conexion, const QString& texto);

}  // namespace quimo::foundation
