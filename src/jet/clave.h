#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/result.h"
#include "jet/esquema.h"
#include "jet/tipos_fila.h"

/// Index keys: bytes that sort as the values do.
namespace quimo::jet {

/// Whether the key of a row can be computed at all, before its values are looked at: NoSoportado
/// for texts in a sort order other than General.
Result<void> ComprobarOrden(const Esquema& esquema, const IndiceReal& indice);
/// Appends the key of one column's value to `clave`. NoSoportado names a character without a
/// weight.
Result<void> AgregarClave(const Esquema& esquema, const IndiceReal::Columna& columna,
                          const Valor& valor, std::vector<std::uint8_t>& clave);
/// The key of the first `cuantas` columns of an index, from the values of those columns in the
/// order of the index.
Result<std::vector<std::uint8_t>> ClaveDeValores(const Esquema& esquema, const IndiceReal& indice,
                                                 std::span<const Valor> valores);
/// The key of a whole row.
Result<std::vector<std::uint8_t>> ClaveDeFila(const Esquema& esquema, const IndiceReal& indice,
                                              const Fila& fila);
/// How many of the index's columns are NULL in the row.
std::size_t NulosDeClave(const Esquema& esquema, const IndiceReal& indice, const Fila& fila);

/// Appends the weights of a text in sort order General, up to and with the closing 00. Returns the
/// letter that has none, if there is one (see base/letras_terminal.h); then nothing is appended.
std::optional<char32_t> AgregarPesos(std::u16string_view texto, std::vector<std::uint8_t>& clave);

}  // namespace quimo::jet
