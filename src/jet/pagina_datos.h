#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/formato.h"

/// Rows on a data page: slots count from the front, rows are packed from the end.
namespace quimo::jet {

constexpr std::size_t kCabeceraDatos = 14;

/// A slot that was checked: kCabeceraDatos + 2n <= inicio <= fin <= kTamPagina.
struct Ranura {
    std::size_t inicio = 0;
    std::size_t fin = 0;
    std::uint16_t banderas = 0;

    std::size_t Largo() const { return fin - inicio; }
    bool Borrada() const { return banderas == kRanuraBorrada; }
    bool Oculta() const { return (banderas & kRanuraOculta) != 0; }
    bool Movida() const { return banderas == kRanuraMovida; }
};

inline std::size_t NumeroDeRanuras(const Pagina& pagina) { return U16(pagina.data() + 12); }
inline std::uint32_t Dueno(const Pagina& pagina) { return U32(pagina.data() + 4); }
inline bool EsDeDatos(const Pagina& pagina) { return pagina.bytes[0] == kPaginaDatos; }

/// The slot of a row. Nothing when there is no such row or the slot table is damaged there.
std::optional<Ranura> LeerRanura(const Pagina& pagina, std::size_t fila);
/// Whether the whole slot table can be believed; asked before anything is written to the page.
bool RanurasSanas(const Pagina& pagina);
/// Bytes between slot table and lowest row of a page with a sound slot table.
std::size_t BytesLibres(const Pagina& pagina);

void FormatearPaginaDatos(Pagina& pagina, std::uint32_t dueno);
/// Whether a row of that length can be appended.
bool CabeFila(const Pagina& pagina, std::size_t largo);
/// Appends a row that fits and returns its number.
std::uint8_t PonerFila(Pagina& pagina, std::span<const std::uint8_t> bytes, std::uint16_t banderas);
/// Gives a row another length, moving the rows after it. Its first bytes stay, as far as the new
/// length goes. False, and nothing done, when the page has no room.
bool CambiarLargo(Pagina& pagina, std::size_t fila, std::size_t largo);
void PonerBanderas(Pagina& pagina, std::size_t fila, std::uint16_t banderas);
/// Marks a row deleted and takes its bytes back. Its number is never used again.
void BorrarRanura(Pagina& pagina, std::size_t fila);

/// The page of a row and its place there.
struct FilaCruda {
    PaginaLeida pagina;
    Puntero lugar;
    Ranura ranura;
    std::span<const std::uint8_t> Bytes() const {
        return {pagina->data() + ranura.inicio, ranura.Largo()};
    }
};

/// Any row of any data page, slot flags as they are. An error names what was looked for.
Result<FilaCruda> LeerFilaCruda(Almacen& almacen, Puntero lugar);
/// The page to write to, as a data page of that owner with a sound slot table.
Result<Pagina*> EscribirPaginaDatos(Almacen& almacen, std::uint32_t numero, std::uint32_t dueno);

}  // namespace quimo::jet
