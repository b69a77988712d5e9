#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/formato.h"

/// Long values: what Memo and OLE columns keep outside the row.
namespace quimo::jet {

constexpr std::size_t kLargoDescriptor = 12;
constexpr std::size_t kLargoEnFilaMax = 64;  // bytes kept in the row itself

/// Limits the bytes that one walk takes out of a file. Every row and every piece of a long value
/// belongs to one place, so more bytes than the file has means that something leads in circles.
class Presupuesto {
public:
    explicit Presupuesto(const Almacen& almacen)
        : resto_(static_cast<std::uint64_t>(almacen.Paginas()) * kTamPagina) {}
    bool Gastar(std::uint64_t bytes) {
        if (bytes > resto_) return false;
        resto_ -= bytes;
        return true;
    }

private:
    std::uint64_t resto_ = 0;
};

/// Reads the value of a descriptor, as stored in the row, into `destino`. A
/// descriptor of length 0 stands for an empty value. `piezas`, if given, takes the rows it lies in.
Result<void> LeerLargo(Almacen& almacen, std::span<const std::uint8_t> descriptor,
                       Presupuesto& presupuesto, std::vector<std::uint8_t>& destino,
                       std::vector<Puntero>* piezas = nullptr);

/// The descriptor with the value in it, for kLargoEnFilaMax bytes or fewer.
std::vector<std::uint8_t> LargoEnFila(std::span<const std::uint8_t> valor);
/// Stores a value in rows of its own and returns its descriptor. `mapas`: owned and free-space map.
struct MapasDeLargos {
    Puntero propias;
    Puntero libres;
};
Result<std::vector<std::uint8_t>> GuardarLargo(Almacen& almacen, const MapasDeLargos& mapas,
                                               std::span<const std::uint8_t> valor);
/// Deletes the rows of a descriptor's value, if it has any.
Result<void> BorrarLargo(Almacen& almacen, const std::optional<MapasDeLargos>& mapas,
                         std::span<const std::uint8_t> descriptor);

/// Puts a row on a page of the maps with room for it, or on a new one of that owner.
Result<Puntero> ColocarFila(Almacen& almacen, const MapasDeLargos& mapas, std::uint32_t dueno,
                            std::span<const std::uint8_t> bytes, std::uint16_t banderas);
/// Enters a page that lost bytes into the free-space map, if it has room worth it.
Result<void> AnotarLugar(Almacen& almacen, Puntero libres, std::uint32_t pagina);

}  // namespace quimo::jet
