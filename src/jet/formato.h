#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

/// Sizes, offsets and byte orders of the file. Not for users of the library.
namespace quimo::jet {

constexpr std::size_t kTamPagina = 4096;
constexpr std::uint32_t kPaginasMax = 524288;  // 2 GiB
constexpr std::size_t kFilaMax = 4060;         // bytes of a row, long values elsewhere not counted
constexpr std::size_t kRanurasMax = 255;
constexpr std::size_t kClaveMax = 1800;  // bytes of an index key that is written
constexpr std::size_t kColumnasMax = 255;
constexpr std::size_t kIndicesMax = 32;
constexpr std::size_t kColumnasDeIndiceMax = 10;
constexpr std::size_t kNombreMax = 64;
constexpr std::uint32_t kPaginaCatalogo = 2;

constexpr std::uint8_t kPaginaLibre = 0;
constexpr std::uint8_t kPaginaDatos = 1;
constexpr std::uint8_t kPaginaDefinicion = 2;
constexpr std::uint8_t kPaginaNodo = 3;
constexpr std::uint8_t kPaginaHoja = 4;
constexpr std::uint8_t kPaginaMapa = 5;

constexpr std::uint32_t kDuenoLargos = 0x4C41564C;  // "LVAL", owner of long-value pages
constexpr std::uint32_t kMarcaObjeto = 1625;        // found in definitions, columns, indexes
constexpr std::uint32_t kMarcaIndice = 1923;
constexpr std::uint16_t kOrdenGeneral = 0x0409;

constexpr std::uint16_t kRanuraBorrada = 0xC000;  // both flags
constexpr std::uint16_t kRanuraOculta = 0x8000;
constexpr std::uint16_t kRanuraMovida = 0x4000;
constexpr std::uint16_t kRanuraPosicion = 0x1FFF;

struct alignas(16) Pagina {
    std::array<std::uint8_t, kTamPagina> bytes{};
    std::uint8_t* data() { return bytes.data(); }
    const std::uint8_t* data() const { return bytes.data(); }
};
using PaginaLeida = std::shared_ptr<const Pagina>;

inline std::uint16_t U16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}
inline std::uint32_t U32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
           static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}
inline std::uint64_t U64(const std::uint8_t* p) {
    return static_cast<std::uint64_t>(U32(p)) | static_cast<std::uint64_t>(U32(p + 4)) << 32;
}
inline std::uint32_t U32Be(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) << 24 | static_cast<std::uint32_t>(p[1]) << 16 |
           static_cast<std::uint32_t>(p[2]) << 8 | static_cast<std::uint32_t>(p[3]);
}
inline void PonerU16(std::uint8_t* p, std::size_t v) {
    p[0] = static_cast<std::uint8_t>(v);
    p[1] = static_cast<std::uint8_t>(v >> 8);
}
inline void PonerU32(std::uint8_t* p, std::uint32_t v) {
    PonerU16(p, v & 0xFFFF);
    PonerU16(p + 2, v >> 16);
}
inline void PonerU64(std::uint8_t* p, std::uint64_t v) {
    PonerU32(p, static_cast<std::uint32_t>(v));
    PonerU32(p + 4, static_cast<std::uint32_t>(v >> 32));
}
inline void PonerU32Be(std::uint8_t* p, std::uint32_t v) {
    p[0] = static_cast<std::uint8_t>(v >> 24);
    p[1] = static_cast<std::uint8_t>(v >> 16);
    p[2] = static_cast<std::uint8_t>(v >> 8);
    p[3] = static_cast<std::uint8_t>(v);
}

/// Where a row lies: the file keeps it as page << 8 | row.
struct Puntero {
    std::uint32_t pagina = 0;
    std::uint8_t fila = 0;

    static Puntero De(std::uint32_t crudo) {
        return {crudo >> 8, static_cast<std::uint8_t>(crudo & 0xFF)};
    }
    static Puntero Leer(const std::uint8_t* p) { return De(U32(p)); }
    std::uint32_t Crudo() const { return pagina << 8 | fila; }
    bool EsNulo() const { return pagina == 0 && fila == 0; }
    std::string ATexto() const {
        return "página " + std::to_string(pagina) + ", fila " + std::to_string(fila);
    }
    auto operator<=>(const Puntero&) const = default;  // NOLINT(modernize-use-nullptr)
};

}  // namespace quimo::jet
