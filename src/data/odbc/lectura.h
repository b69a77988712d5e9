#pragma once

#include "data/odbc/odbc_handle.h"
#include "data/sql_connection.h"

namespace quimo::data::odbc {

/// Why a set could not be read to its end: the statement's diagnostics tell more unless there is a
/// text of our own.
struct LecturaRota {
    QString motivo = {};
};

/// The columns of the result set that stands on the statement.
base::Result<QVector<Columna>, LecturaRota> LeerColumnas(SQLHSTMT sentencia);

/// The value of a column of the current row. Columns are read from left to right. Exact numbers
/// are read as text, long texts and binaries in pieces.
base::Result<QVariant, LecturaRota> LeerValor(SQLHSTMT sentencia, SQLUSMALLINT numero,
                                              const Columna& columna);

}  // namespace quimo::data::odbc
