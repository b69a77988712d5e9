#pragma once

#include "data/sql_connection.h"

namespace quimo::data::odbc {

/// The text that asks the server for the columns of a table, temporary ones included: name, type,
/// bytes, digits, decimals, whether it is numbered by the database, place in the primary key or 0.
/// The table's own name stands in the first column.
QString ConsultaDeTabla(const QString& tabla);

/// The definition out of the answer to ConsultaDeTabla; native 208 when there is no such table.
base::Result<DefinicionTabla, FalloSql> LeerDefinicion(const QString& tabla,
                                                       const RespuestaSql& respuesta);

}  // namespace quimo::data::odbc
