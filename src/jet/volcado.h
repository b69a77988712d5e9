#pragma once

#include <functional>
#include <ostream>
#include <string_view>

#include "base/result.h"
#include "jet/base_datos.h"

namespace quimo::jet {

/// Takes a piece of the output; false stops the dump (Archivo).
using Receptor = std::function<bool(std::string_view)>;

/// Writes all user tables as one JSON object, {"table": [{"column": value, ...}, ...], ...}, rows
/// in the order of a scan, UTF-8, one row per line. Currency and Numeric are strings with all their
/// decimals, dates "YYYY-MM-DDTHH:MM:SS", Binary and OLE lower-case hexadecimal, GUIDs in braces.
/// Values JSON has no form for (a Double that is not a number, a date out of range) are Formato.
base::Result<void> VolcarBase(const BaseDatos& base, const Receptor& receptor);
/// One table: {"table": [...]}.
base::Result<void> VolcarTabla(const BaseDatos& base, std::string_view tabla,
                               const Receptor& receptor);
/// One table as CSV with a line of names: fields in quotes where needed, NULL empty.
base::Result<void> VolcarCsv(const BaseDatos& base, std::string_view tabla,
                             const Receptor& receptor);
/// A receptor that writes to a stream. The stream must outlive it.
Receptor HaciaFlujo(std::ostream& flujo);

}  // namespace quimo::jet
