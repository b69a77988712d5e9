#pragma once

#include <QStringList>

#include "data/sql_connection.h"

namespace quimo::data {

/// The batches of a script: a line that says only GO ends one, as with SQL Server's own tools.
/// Batches without a statement are left out.
QStringList PartirLotes(const QString& texto);

/// Creates the schema and the procedures in an empty database and then runs `datos`, a script with
/// one statement a line (empty lines and lines that begin with -- are passed over), in one
/// transaction: all of it or nothing. A database that holds tables is refused. The failure's first
/// description tells the line.
base::Result<void, FalloSql> CrearBase(SqlConnection& conexion, const QString& datos = {});

}  // namespace quimo::data
