#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/definicion.h"
#include "jet/formato.h"

/// Making table definitions and the pages they name.
namespace quimo::jet {

enum class ClaseTabla { Usuario, Sistema };

/// Checks that a table can be made like that. Datos says what is wrong.
Result<void> ComprobarDefinicion(const DefTabla& tabla);

/// The places that a new table's definition names.
struct Plano {
    Puntero propias;
    Puntero libres;
    std::vector<std::pair<Puntero, Puntero>> largos;  // one per Memo or OLE column
    std::vector<Puntero> mapas;                       // one per index
    std::vector<std::uint32_t> raices;                // one per index
};

/// The bytes of a definition, not yet divided into pages.
std::vector<std::uint8_t> ArmarDefinicion(const DefTabla& tabla, const Plano& plano,
                                          ClaseTabla clase);
/// Writes them to a chain of pages that begins with `primera`; further ones are allocated.
Result<void> EscribirDefinicion(Almacen& almacen, std::uint32_t primera,
                                const std::vector<std::uint8_t>& definicion);
/// Columns that keep long values.
std::size_t ColumnasDeLargos(const DefTabla& tabla);

/// A usage map row without members.
std::vector<std::uint8_t> FilaDeMapaVacia();
/// A usage map row with one member, the root of an index.
std::vector<std::uint8_t> FilaDeMapaDe(std::uint32_t pagina);
/// Writes an empty leaf.
Result<void> EscribirRaizVacia(Almacen& almacen, std::uint32_t pagina, std::uint32_t tabla);

}  // namespace quimo::jet
