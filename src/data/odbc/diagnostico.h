#pragma once

#include "data/odbc/odbc_handle.h"
#include "data/sql_connection.h"

namespace quimo::data::odbc {

/// Every diagnostic record of a handle, in its order, descriptions with the prefix of
/// ConPrefijoComun. `origen` is what the records are told to come from (the driver's name).
QVector<ErrorProveedor> LeerDiagnosticos(SQLSMALLINT tipo, SQLHANDLE handle, const QString& origen);

/// What the server says comes behind a prefix in brackets that is each driver's own: it becomes
/// the one of 47 characters that whoever shows a raised message takes off. The name of the table in
/// a refused reference stands between single quotes and without its schema. What a driver says
/// about itself stays.
QString ConPrefijoComun(const QString& descripcion, const QString& sqlstate, int nativo);

/// Whether these records tell that there is no connection any more.
bool EsConexionPerdida(const QVector<ErrorProveedor>& errores);

/// The failure of a statement: messages are not among the records.
FalloSql FalloDeSentencia(QVector<ErrorProveedor> errores, bool conexion_perdida);

/// The failure of an attempt to connect. The record that tells the kind comes first.
FalloSql FalloAlAbrir(QVector<ErrorProveedor> errores);

/// Whether a record is a message (PRINT, a warning) and no error.
bool EsMensaje(const ErrorProveedor& registro);

}  // namespace quimo::data::odbc
