#pragma once

#include <optional>

#include <QString>

#include "data/sql_connection.h"

namespace quimo::app {

enum class FormatoSql { Tabla, Csv, Json };

/// "tabla", "csv" or "json".
std::optional<FormatoSql> FormatoDeTexto(const QString& texto);

/// A result set in one of the formats. JSON: {"columns":[..],"rows":[[..]]}, exact numbers as text,
/// dates as 2026-11-14T21:36:08, NULL as null. CSV: fields in quotes where needed, NULL empty.
QString Formatear(const data::Conjunto& conjunto, FormatoSql formato);

/// What one statement left as one JSON object on one line: the first result set, or
/// {"affected":n}, or {"error":{"native":n,"sqlstate":"..","message":".."}}.
QString JsonDeRespuesta(const data::RespuestaSql& respuesta);

}  // namespace quimo::app
