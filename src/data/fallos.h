#pragma once

#include "data/sql_connection.h"

namespace quimo::data {

/// What a driver of the server puts before each description, in the one form that the program
/// knows: who shows a message of RAISERROR takes these 47 characters off.
inline constexpr QLatin1StringView kPrefijoDelServidor(
    "[Microsoft][ODBC SQL Server Driver][SQL Server]");
static_assert(kPrefijoDelServidor.size() == 47);

/// Kind of a statement's failure, told by its SQLSTATE: kIntegridad, kServidorAusente or, for all
/// others, kSentencia.
FalloSql::Numero ClaseDeFallo(QStringView sqlstate);

/// Something was asked of a connection that is closed. `origen` is who found it out.
FalloSql ConexionCerrada(QStringView origen);

}  // namespace quimo::data
