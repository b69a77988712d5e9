#pragma once

#include <memory>

#include <QString>

#include "data/reloj.h"
#include "data/sql_connection.h"

namespace quimo::data {

/// The embedded engine: T-SQL over one SQLite file. The clock must outlive the connection.
/// `crear` makes the file when it is missing; without it a missing file is native 4060.
base::Result<std::unique_ptr<SqlConnection>, FalloSql> AbrirEmbebida(const QString& archivo,
                                                                     const Reloj& reloj,
                                                                     bool crear);

}  // namespace quimo::data
