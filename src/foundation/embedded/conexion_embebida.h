#pragma once

#include <memory>

#include <QString>

#include "foundation/reloj.h"
#include "foundation/sql_connection.h"

namespace quimo::foundation {

/// The embedded engine: T-SQL over one SQLite file. The clock must outlive the connection.
/// `crear` makes the file when it is missing; without it a missing file is native 4060.
base::Result<std::unique_ptr<SqlConnection>, FalloSql> AbrirEmbebida(const QString& archivo,
                                                                     const Reloj& reloj,
                                                                     bool crear);

}  // namespace quimo::foundation
