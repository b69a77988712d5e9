#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/formato.h"

/// Usage maps (sets of page numbers) and, by the global one, which pages are free.
namespace quimo::jet {

/// The set of pages of a table, an index or a long-value column. A light handle: everything is read
/// from and written to the file's pages.
class Mapa {
public:
    Mapa(Almacen& almacen, Puntero lugar) : almacen_(&almacen), lugar_(lugar) {}

    /// System tables may have long-value columns without maps.
    bool Existe() const { return lugar_.pagina != 0; }
    /// Ascending. Formato when a member lies outside the file.
    Result<std::vector<std::uint32_t>> Miembros() const;
    /// The same with those past the end of the file, for reading one that was cut.
    Result<std::vector<std::uint32_t>> Nombradas() const;
    Result<bool> Contiene(std::uint32_t pagina) const;
    /// The highest members, highest first, at most as many as `destino` holds; returns how many.
    Result<std::size_t> Ultimos(std::span<std::uint32_t> destino) const;
    Result<void> Poner(std::uint32_t pagina);
    Result<void> Quitar(std::uint32_t pagina);
    /// Leaves no members.
    Result<void> Vaciar();
    /// The pages that hold the bits, when the map is kept by reference.
    Result<std::vector<std::uint32_t>> PaginasDeBits() const;

private:
    Result<void> PonerFueraDeAlcance(std::uint32_t pagina);
    Result<void> PonerPorReferencia(std::uint32_t pagina);

    Almacen* almacen_;
    Puntero lugar_;
};

/// A page for new content, all zeros: one that this session freed, or a new one at the end.
Result<std::uint32_t> AsignarPagina(Almacen& almacen);
/// Clears a page and gives it back. Whoever owned it takes it out of his map.
Result<void> LiberarPagina(Almacen& almacen, std::uint32_t pagina);
/// The pages of the file that the global map calls free, one flag per page.
Result<std::vector<bool>> PaginasLibres(Almacen& almacen);
/// The pages that hold the bits of the global map, when it is kept by reference.
Result<std::vector<std::uint32_t>> PaginasDelMapaGlobal(Almacen& almacen);

}  // namespace quimo::jet
