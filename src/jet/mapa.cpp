#include "jet/mapa.h"

#include <algorithm>
#include <bit>
#include <string>

#include "jet/pagina_datos.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kCabeceraEnLinea = 5;
constexpr std::size_t kCabeceraBits = 4;
constexpr std::uint32_t kBitsPorPagina = (kTamPagina - kCabeceraBits) * 8;
constexpr Puntero kMapaGlobal{1, 0};
constexpr std::uint32_t kPrimeraReutilizable = 6;

bool Bit(const std::uint8_t* bits, std::size_t k) { return (bits[k / 8] >> (k % 8) & 1) != 0; }

void PonerBit(std::uint8_t* bits, std::size_t k, bool valor) {
    const auto mascara = static_cast<std::uint8_t>(1U << (k % 8));
    bits[k / 8] = static_cast<std::uint8_t>(valor ? bits[k / 8] | mascara : bits[k / 8] & ~mascara);
}

/// A map row, checked: inline or a list of bitmap pages.
struct FilaDeMapa {
    FilaCruda fila;
    bool por_referencia = false;
    std::uint32_t inicio = 0;  // inline: first page
    std::size_t cuantos = 0;   // inline: bits; else: references

    const std::uint8_t* Datos() const { return fila.Bytes().data(); }
    const std::uint8_t* BitsEnLinea() const { return Datos() + kCabeceraEnLinea; }
    bool Alcanza(std::uint32_t pagina) const {
        return !por_referencia && pagina >= inicio && pagina - inicio < cuantos;
    }
    /// 0 = no such bitmap page.
    std::uint32_t Referencia(std::size_t i) const {
        if (i >= cuantos) return 0;
        const std::uint32_t pagina = U32(Datos() + 1 + 4 * i);
        return (pagina & 0x80000000U) != 0 ? 0 : pagina;
    }
};

Result<FilaDeMapa> LeerMapa(Almacen& almacen, Puntero lugar) {
    QUIMO_TRY(FilaCruda fila, LeerFilaCruda(almacen, lugar));
    const std::uint32_t dueno = Dueno(*fila.pagina);
    FilaDeMapa mapa;
    mapa.fila = std::move(fila);
    const auto bytes = mapa.fila.Bytes();
    if (bytes.size() < kCabeceraEnLinea || bytes[0] > 1 || mapa.fila.ranura.banderas != 0 ||
        dueno != (lugar == kMapaGlobal ? 1U : 0U)) {
        return almacen.Danado("no hay un mapa de páginas en " + lugar.ATexto());
    }
    mapa.por_referencia = bytes[0] == 1;
    mapa.inicio = mapa.por_referencia ? 0 : U32(bytes.data() + 1);
    mapa.cuantos =
        mapa.por_referencia ? (bytes.size() - 1) / 4 : (bytes.size() - kCabeceraEnLinea) * 8;
    return mapa;
}

Result<std::uint8_t*> EscribirMapa(Almacen& almacen, const FilaDeMapa& mapa) {
    QUIMO_TRY(Pagina * pagina, almacen.Escribir(mapa.fila.lugar.pagina));
    return pagina->data() + mapa.fila.ranura.inicio;
}

Result<PaginaLeida> LeerBits(Almacen& almacen, std::uint32_t numero) {
    QUIMO_TRY(PaginaLeida pagina, almacen.Leer(numero));
    if (pagina->bytes[0] != kPaginaMapa) {
        return almacen.Danado("la página " + std::to_string(numero) + " no es de mapa");
    }
    return pagina;
}

Result<void> PonerEnPaginaDeBits(Almacen& almacen, std::uint32_t numero, std::size_t k,
                                 bool valor) {
    QUIMO_TRY_VOID(LeerBits(almacen, numero));
    QUIMO_TRY(Pagina * pagina, almacen.Escribir(numero));
    PonerBit(pagina->data() + kCabeceraBits, k, valor);
    return {};
}

void FormatearBits(Pagina& pagina, std::uint8_t relleno) {
    pagina.bytes.fill(relleno);
    PonerU32(pagina.data(), kPaginaMapa | 0x100U);
}

/// Calls f(page) for every set bit, ascending, also past the end of the file as far as the bits of
/// the last page in it go. f returns false to stop.
template <typename Funcion>
Result<void> RecorrerBits(Almacen& almacen, const FilaDeMapa& mapa, Funcion f) {
    if (!mapa.por_referencia) {
        for (std::size_t k = 0; k < mapa.cuantos; ++k) {
            if (Bit(mapa.BitsEnLinea(), k) && !f(std::uint64_t{mapa.inicio} + k)) break;
        }
        return {};
    }
    for (std::size_t i = 0; i < mapa.cuantos && i * kBitsPorPagina < almacen.Paginas(); ++i) {
        if (mapa.Referencia(i) == 0) continue;
        QUIMO_TRY(const PaginaLeida pagina, LeerBits(almacen, mapa.Referencia(i)));
        const std::uint8_t* bits = pagina->data() + kCabeceraBits;
        for (std::size_t octeto = 0; octeto < kBitsPorPagina / 8; ++octeto) {
            for (unsigned resto = bits[octeto]; resto != 0; resto &= resto - 1) {
                const auto k = octeto * 8 + static_cast<std::size_t>(std::countr_zero(resto));
                if (!f(std::uint64_t{i} * kBitsPorPagina + k)) return {};
            }
        }
    }
    return {};
}

Result<std::vector<std::uint32_t>> Referencias(Almacen& almacen, Puntero lugar) {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(almacen, lugar));
    std::vector<std::uint32_t> paginas;
    for (std::size_t i = 0; mapa.por_referencia && i < mapa.cuantos; ++i) {
        if (mapa.Referencia(i) != 0) paginas.push_back(mapa.Referencia(i));
    }
    return paginas;
}

/// Bitmap page i of the global map: everything free but the pages that exist already.
Result<void> AgregarBitsGlobales(Almacen& almacen, std::size_t i) {
    QUIMO_TRY(const std::uint32_t nueva, almacen.Agregar());
    QUIMO_TRY(Pagina * bits, almacen.Escribir(nueva));
    FormatearBits(*bits, 0xFF);
    const std::size_t primera = i * kBitsPorPagina;
    const std::size_t existen = almacen.Paginas();
    for (std::size_t p = primera; p < existen && p < primera + kBitsPorPagina; ++p) {
        PonerBit(bits->data() + kCabeceraBits, p - primera, false);
    }
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(almacen, kMapaGlobal));
    if (!mapa.por_referencia || i >= mapa.cuantos) {
        return almacen.Danado("el mapa global de páginas es demasiado corto");
    }
    QUIMO_TRY(std::uint8_t * fila, EscribirMapa(almacen, mapa));
    PonerU32(fila + 1 + 4 * i, nueva);
    return {};
}

Result<void> ConvertirMapaGlobal(Almacen& almacen) {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(almacen, kMapaGlobal));
    std::vector<std::uint32_t> libres;
    const std::uint32_t existen = almacen.Paginas();
    QUIMO_TRY_VOID(RecorrerBits(almacen, mapa, [&](std::uint64_t p) {
        if (p < existen) libres.push_back(static_cast<std::uint32_t>(p));
        return true;
    }));
    QUIMO_TRY(std::uint8_t * fila, EscribirMapa(almacen, mapa));
    std::fill_n(fila, mapa.fila.ranura.Largo(), std::uint8_t{0});
    fila[0] = 1;
    for (std::size_t i = 0; i * kBitsPorPagina < almacen.Paginas(); ++i) {
        QUIMO_TRY_VOID(AgregarBitsGlobales(almacen, i));
    }
    QUIMO_TRY(const FilaDeMapa nuevo, LeerMapa(almacen, kMapaGlobal));
    for (const std::uint32_t p : libres) {
        QUIMO_TRY_VOID(PonerEnPaginaDeBits(almacen, nuevo.Referencia(p / kBitsPorPagina),
                                           p % kBitsPorPagina, true));
    }
    return {};
}

Result<void> MarcarGlobal(Almacen& almacen, std::uint32_t pagina, bool libre) {
    QUIMO_TRY(FilaDeMapa mapa, LeerMapa(almacen, kMapaGlobal));
    if (mapa.Alcanza(pagina)) {
        QUIMO_TRY(std::uint8_t * fila, EscribirMapa(almacen, mapa));
        PonerBit(fila + kCabeceraEnLinea, pagina - mapa.inicio, libre);
        return {};
    }
    if (!mapa.por_referencia) QUIMO_TRY_VOID(ConvertirMapaGlobal(almacen));
    QUIMO_TRY(mapa, LeerMapa(almacen, kMapaGlobal));
    const std::size_t i = pagina / kBitsPorPagina;
    if (i >= mapa.cuantos) return almacen.Danado("el mapa global de páginas es demasiado corto");
    if (mapa.Referencia(i) == 0) {
        QUIMO_TRY_VOID(AgregarBitsGlobales(almacen, i));
        QUIMO_TRY(mapa, LeerMapa(almacen, kMapaGlobal));
        // The new bitmap page may be the first one of the range after.
        const std::uint32_t bits = mapa.Referencia(i);
        if (bits / kBitsPorPagina != i) QUIMO_TRY_VOID(MarcarGlobal(almacen, bits, false));
    }
    return PonerEnPaginaDeBits(almacen, mapa.Referencia(i), pagina % kBitsPorPagina, libre);
}

Result<bool> EstaLibre(Almacen& almacen, std::uint32_t pagina) {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(almacen, kMapaGlobal));
    if (!mapa.por_referencia) {
        return mapa.Alcanza(pagina) && Bit(mapa.BitsEnLinea(), pagina - mapa.inicio);
    }
    const std::uint32_t referencia = mapa.Referencia(pagina / kBitsPorPagina);
    if (referencia == 0) return false;
    QUIMO_TRY(const PaginaLeida bits, LeerBits(almacen, referencia));
    return Bit(bits->data() + kCabeceraBits, pagina % kBitsPorPagina);
}

}  // namespace

Result<std::vector<std::uint32_t>> Mapa::Miembros() const {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(*almacen_, lugar_));
    std::vector<std::uint32_t> miembros;
    bool fuera = false;
    QUIMO_TRY_VOID(RecorrerBits(*almacen_, mapa, [&](std::uint64_t p) {
        fuera = p >= almacen_->Paginas();
        if (!fuera) miembros.push_back(static_cast<std::uint32_t>(p));
        return !fuera;
    }));
    if (fuera) {
        return almacen_->Danado("el mapa de " + lugar_.ATexto() + " nombra páginas que no hay");
    }
    return miembros;
}

Result<std::vector<std::uint32_t>> Mapa::Nombradas() const {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(*almacen_, lugar_));
    std::vector<std::uint32_t> nombradas;
    QUIMO_TRY_VOID(RecorrerBits(*almacen_, mapa, [&](std::uint64_t p) {
        nombradas.push_back(static_cast<std::uint32_t>(std::min<std::uint64_t>(p, kPaginasMax)));
        return true;
    }));
    return nombradas;
}

Result<bool> Mapa::Contiene(std::uint32_t pagina) const {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(*almacen_, lugar_));
    if (!mapa.por_referencia) {
        return mapa.Alcanza(pagina) && Bit(mapa.BitsEnLinea(), pagina - mapa.inicio);
    }
    const std::uint32_t referencia = mapa.Referencia(pagina / kBitsPorPagina);
    if (referencia == 0) return false;
    QUIMO_TRY(const PaginaLeida bits, LeerBits(*almacen_, referencia));
    return Bit(bits->data() + kCabeceraBits, pagina % kBitsPorPagina);
}

Result<std::size_t> Mapa::Ultimos(std::span<std::uint32_t> destino) const {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(*almacen_, lugar_));
    std::size_t hallados = 0;
    const auto mirar = [&](const std::uint8_t* bits, std::size_t cuantos, std::uint64_t primera) {
        for (std::size_t k = cuantos; k > 0 && hallados < destino.size();) {
            if (k % 8 == 0 && bits[k / 8 - 1] == 0) {
                k -= 8;
                continue;
            }
            --k;
            if (Bit(bits, k) && primera + k < almacen_->Paginas()) {
                destino[hallados++] = static_cast<std::uint32_t>(primera + k);
            }
        }
    };
    if (!mapa.por_referencia) {
        mirar(mapa.BitsEnLinea(), mapa.cuantos, mapa.inicio);
        return hallados;
    }
    const std::size_t utiles =
        std::min<std::size_t>(mapa.cuantos, almacen_->Paginas() / kBitsPorPagina + 1);
    for (std::size_t i = utiles; i > 0 && hallados < destino.size(); --i) {
        if (mapa.Referencia(i - 1) == 0) continue;
        QUIMO_TRY(const PaginaLeida bits, LeerBits(*almacen_, mapa.Referencia(i - 1)));
        mirar(bits->data() + kCabeceraBits, kBitsPorPagina,
              (i - 1) * std::uint64_t{kBitsPorPagina});
    }
    return hallados;
}

Result<void> Mapa::Poner(std::uint32_t pagina) {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(*almacen_, lugar_));
    if (mapa.por_referencia) return PonerPorReferencia(pagina);
    if (!mapa.Alcanza(pagina)) return PonerFueraDeAlcance(pagina);
    QUIMO_TRY(std::uint8_t * fila, EscribirMapa(*almacen_, mapa));
    PonerBit(fila + kCabeceraEnLinea, pagina - mapa.inicio, true);
    return {};
}

Result<void> Mapa::PonerFueraDeAlcance(std::uint32_t pagina) {
    QUIMO_TRY(std::vector<std::uint32_t> miembros, Miembros());
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(*almacen_, lugar_));
    miembros.push_back(pagina);
    const auto [menor, mayor] = std::minmax_element(miembros.begin(), miembros.end());
    const std::uint32_t bajo = *menor & ~7U;
    const bool cabe = *mayor - bajo < mapa.cuantos;
    QUIMO_TRY(std::uint8_t * fila, EscribirMapa(*almacen_, mapa));
    std::fill_n(fila, mapa.fila.ranura.Largo(), std::uint8_t{0});
    fila[0] = cabe ? 0 : 1;
    if (cabe) {
        PonerU32(fila + 1, bajo);
        for (const std::uint32_t p : miembros)
            PonerBit(fila + kCabeceraEnLinea, p - bajo, true);
        return {};
    }
    for (const std::uint32_t p : miembros)
        QUIMO_TRY_VOID(PonerPorReferencia(p));
    return {};
}

Result<void> Mapa::PonerPorReferencia(std::uint32_t pagina) {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(*almacen_, lugar_));
    const std::size_t i = pagina / kBitsPorPagina;
    if (i >= mapa.cuantos) {
        return almacen_->Danado("el mapa de " + lugar_.ATexto() + " es demasiado corto");
    }
    std::uint32_t referencia = mapa.Referencia(i);
    if (referencia == 0) {
        QUIMO_TRY(referencia, AsignarPagina(*almacen_));
        QUIMO_TRY(Pagina * bits, almacen_->Escribir(referencia));
        FormatearBits(*bits, 0);
        QUIMO_TRY(std::uint8_t * fila, EscribirMapa(*almacen_, mapa));
        PonerU32(fila + 1 + 4 * i, referencia);
    }
    return PonerEnPaginaDeBits(*almacen_, referencia, pagina % kBitsPorPagina, true);
}

Result<void> Mapa::Quitar(std::uint32_t pagina) {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(*almacen_, lugar_));
    if (mapa.Alcanza(pagina)) {
        QUIMO_TRY(std::uint8_t * fila, EscribirMapa(*almacen_, mapa));
        PonerBit(fila + kCabeceraEnLinea, pagina - mapa.inicio, false);
        return {};
    }
    const std::uint32_t referencia =
        mapa.por_referencia ? mapa.Referencia(pagina / kBitsPorPagina) : 0;
    if (referencia == 0) return {};
    return PonerEnPaginaDeBits(*almacen_, referencia, pagina % kBitsPorPagina, false);
}

Result<void> Mapa::Vaciar() {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(*almacen_, lugar_));
    if (!mapa.por_referencia) {
        QUIMO_TRY(std::uint8_t * fila, EscribirMapa(*almacen_, mapa));
        std::fill_n(fila, mapa.fila.ranura.Largo(), std::uint8_t{0});
        return {};
    }
    for (std::size_t i = 0; i < mapa.cuantos; ++i) {
        if (mapa.Referencia(i) == 0) continue;
        QUIMO_TRY_VOID(LeerBits(*almacen_, mapa.Referencia(i)));
        QUIMO_TRY(Pagina * bits, almacen_->Escribir(mapa.Referencia(i)));
        FormatearBits(*bits, 0);
    }
    return {};
}

Result<std::vector<std::uint32_t>> Mapa::PaginasDeBits() const {
    return Referencias(*almacen_, lugar_);
}

Result<std::uint32_t> AsignarPagina(Almacen& almacen) {
    std::vector<std::uint32_t>& candidatas = almacen.Liberadas();
    while (!candidatas.empty()) {
        const std::uint32_t pagina = candidatas.back();
        candidatas.pop_back();
        if (pagina < kPrimeraReutilizable || pagina >= almacen.Paginas()) continue;
        QUIMO_TRY(const bool libre, EstaLibre(almacen, pagina));
        if (!libre) continue;
        QUIMO_TRY_VOID(MarcarGlobal(almacen, pagina, false));
        QUIMO_TRY(Pagina * contenido, almacen.Escribir(pagina));
        contenido->bytes.fill(0);
        return pagina;
    }
    QUIMO_TRY(const std::uint32_t pagina, almacen.Agregar());
    QUIMO_TRY_VOID(MarcarGlobal(almacen, pagina, false));
    return pagina;
}

Result<void> LiberarPagina(Almacen& almacen, std::uint32_t pagina) {
    QUIMO_TRY(Pagina * contenido, almacen.Escribir(pagina));
    contenido->bytes.fill(0);
    QUIMO_TRY_VOID(MarcarGlobal(almacen, pagina, true));
    almacen.Liberadas().push_back(pagina);
    almacen.Pistas().clear();
    return {};
}

Result<std::vector<bool>> PaginasLibres(Almacen& almacen) {
    QUIMO_TRY(const FilaDeMapa mapa, LeerMapa(almacen, kMapaGlobal));
    std::vector<bool> libres(almacen.Paginas(), false);
    QUIMO_TRY_VOID(RecorrerBits(almacen, mapa, [&](std::uint64_t p) {
        if (p < libres.size()) libres[p] = true;
        return true;
    }));
    return libres;
}

Result<std::vector<std::uint32_t>> PaginasDelMapaGlobal(Almacen& almacen) {
    return Referencias(almacen, kMapaGlobal);
}

}  // namespace quimo::jet
