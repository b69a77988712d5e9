#pragma once

#include "data/sql_connection.h"

namespace quimo::data::odbc {

// Failures found on this side of the connection, told in Spanish, by what they say.

/// Native number of a failure that has none: 0 would be told as a data source that does not exist.
constexpr int kSinNumero = -1;
/// Native numbers that the program shows as "the server was not found" and "no such data source".
constexpr int kServidorNoHallado = 6;
constexpr int kFuenteNoHallada = 0;

/// SQLSTATEs of a driver that odbcinst.ini does not name, or whose library is not there.
constexpr QLatin1StringView kSinControlador("IM002");
constexpr QLatin1StringView kSinBiblioteca("IM003");

FalloSql AdministradorSinRespuesta();
FalloSql SinControladores(const QStringList& buscados);
FalloSql ServidorSinNombre();
FalloSql BaseSinNombre();
/// The connection text has no way to write the value of this word. The value is not told: it may be
/// the password.
FalloSql ValorNoSeEscribe(const QString& palabra);
FalloSql TransaccionPerdida();
/// A parameter of a kind that the database knows nothing of.
FalloSql ParametroSinTipo(const char* tipo);
/// Told as the server tells it.
FalloSql TablaDesconocida(const QString& tabla);

/// Records for what the driver does not explain itself: a failure without a word, and a value that
/// came and cannot be read.
ErrorProveedor SinExplicacion();
ErrorProveedor ValorIlegible(const QString& origen, const QString& motivo);

/// Whether there is no savepoint of the name that was asked for.
bool EsPuntoDesconocido(const FalloSql& fallo);

}  // namespace quimo::data::odbc
