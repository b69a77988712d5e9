#pragma once

#include <gtest/gtest.h>

#include "data/odbc/conexion_odbc.h"
#include "servidor_tds.h"

/// Lets failed comparisons show texts.
inline void PrintTo(const QString& texto, std::ostream* salida) { *salida << texto.toStdString(); }

namespace quimo::data::odbc {

/// Names the drivers of these tests in an odbcinst.ini of their own: "FreeTDS", the same as "Con
/// otro nombre", "PostgreSQL", "SQLite3" and "Sin biblioteca", whose library does not exist. Call
/// it before anything else.
void PrepararControladores();

/// Options that try this driver first, with a short time to connect.
OpcionesOdbc Con(const QString& controlador, const QString& opciones = {});

/// Answers out of an embedded database, one connection for each session.
ServidorTds::NuevaSesion DeEmbebida(const QString& archivo);

/// Always the same answer.
ServidorTds::NuevaSesion Siempre(const RespuestaSql& respuesta);

/// A value, a whole answer as text, so that two can be compared and shown.
QString Escrito(const QVariant& valor);
QString Escrito(const RespuestaSql& respuesta);

/// An open connection through FreeTDS to the test's server.
std::unique_ptr<SqlConnection> AbrirEn(const ServidorTds& servidor);

}  // namespace quimo::data::odbc
