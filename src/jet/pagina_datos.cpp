#include "jet/pagina_datos.h"

#include <cstring>
#include <string>

#include "base/check.h"

namespace quimo::jet {

namespace {

std::uint16_t Entrada(const Pagina& pagina, std::size_t fila) {
    return U16(pagina.data() + kCabeceraDatos + 2 * fila);
}

void PonerEntrada(Pagina& pagina, std::size_t fila, std::size_t posicion, std::uint16_t banderas) {
    PonerU16(pagina.data() + kCabeceraDatos + 2 * fila, posicion | banderas);
}

void ContarLibres(Pagina& pagina) { PonerU16(pagina.data() + 2, BytesLibres(pagina)); }

}  // namespace

std::optional<Ranura> LeerRanura(const Pagina& pagina, std::size_t fila) {
    const std::size_t n = NumeroDeRanuras(pagina);
    if (fila >= n || n > kRanurasMax) return std::nullopt;
    const std::uint16_t entrada = Entrada(pagina, fila);
    Ranura ranura;
    ranura.inicio = entrada & kRanuraPosicion;
    ranura.fin = fila == 0 ? kTamPagina : Entrada(pagina, fila - 1) & kRanuraPosicion;
    ranura.banderas = entrada & kRanuraBorrada;
    if (ranura.inicio < kCabeceraDatos + 2 * n || ranura.inicio > ranura.fin ||
        ranura.fin > kTamPagina) {
        return std::nullopt;
    }
    return ranura;
}

bool RanurasSanas(const Pagina& pagina) {
    const std::size_t n = NumeroDeRanuras(pagina);
    if (n > kRanurasMax) return false;
    std::size_t anterior = kTamPagina;
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t posicion = Entrada(pagina, i) & kRanuraPosicion;
        if (posicion > anterior) return false;
        anterior = posicion;
    }
    return anterior >= kCabeceraDatos + 2 * n;
}

std::size_t BytesLibres(const Pagina& pagina) {
    const std::size_t n = NumeroDeRanuras(pagina);
    const std::size_t bajo = n == 0 ? kTamPagina : Entrada(pagina, n - 1) & kRanuraPosicion;
    return bajo - kCabeceraDatos - 2 * n;
}

void FormatearPaginaDatos(Pagina& pagina, std::uint32_t dueno) {
    pagina.bytes.fill(0);
    pagina.bytes[0] = kPaginaDatos;
    pagina.bytes[1] = 1;
    PonerU32(pagina.data() + 4, dueno);
    ContarLibres(pagina);
}

bool CabeFila(const Pagina& pagina, std::size_t largo) {
    return NumeroDeRanuras(pagina) < kRanurasMax && largo + 2 <= BytesLibres(pagina);
}

std::uint8_t PonerFila(Pagina& pagina, std::span<const std::uint8_t> bytes,
                       std::uint16_t banderas) {
    QUIMO_CHECK(CabeFila(pagina, bytes.size()));
    const std::size_t n = NumeroDeRanuras(pagina);
    const std::size_t fin = n == 0 ? kTamPagina : Entrada(pagina, n - 1) & kRanuraPosicion;
    const std::size_t inicio = fin - bytes.size();
    if (!bytes.empty()) std::memcpy(pagina.data() + inicio, bytes.data(), bytes.size());
    PonerEntrada(pagina, n, inicio, banderas);
    PonerU16(pagina.data() + 12, n + 1);
    ContarLibres(pagina);
    return static_cast<std::uint8_t>(n);
}

bool CambiarLargo(Pagina& pagina, std::size_t fila, std::size_t largo) {
    const auto ranura = LeerRanura(pagina, fila);
    QUIMO_CHECK(ranura.has_value());
    const std::size_t n = NumeroDeRanuras(pagina);
    const std::size_t bajo = Entrada(pagina, n - 1) & kRanuraPosicion;
    if (largo > ranura->Largo() + BytesLibres(pagina)) return false;
    // The kept head of the row moves with its start; the rows after it move by the difference.
    const std::size_t inicio = ranura->fin - largo;
    const std::size_t cabeza = largo < ranura->Largo() ? largo : ranura->Largo();
    const std::size_t menores = ranura->inicio - bajo;
    const std::size_t bajo_nuevo = inicio - menores;
    if (inicio > ranura->inicio) {
        std::memmove(pagina.data() + inicio, pagina.data() + ranura->inicio, cabeza);
        std::memmove(pagina.data() + bajo_nuevo, pagina.data() + bajo, menores);
    } else {
        std::memmove(pagina.data() + bajo_nuevo, pagina.data() + bajo, menores);
        std::memmove(pagina.data() + inicio, pagina.data() + ranura->inicio, cabeza);
    }
    for (std::size_t i = fila; i < n; ++i) {
        const std::uint16_t entrada = Entrada(pagina, i);
        const std::size_t posicion = (entrada & kRanuraPosicion) + ranura->Largo() - largo;
        PonerEntrada(pagina, i, posicion, entrada & kRanuraBorrada);
    }
    ContarLibres(pagina);
    return true;
}

void PonerBanderas(Pagina& pagina, std::size_t fila, std::uint16_t banderas) {
    PonerEntrada(pagina, fila, Entrada(pagina, fila) & kRanuraPosicion, banderas);
}

void BorrarRanura(Pagina& pagina, std::size_t fila) {
    QUIMO_CHECK(CambiarLargo(pagina, fila, 0));
    PonerBanderas(pagina, fila, kRanuraBorrada);
}

Result<FilaCruda> LeerFilaCruda(Almacen& almacen, Puntero lugar) {
    QUIMO_TRY(PaginaLeida pagina, almacen.Leer(lugar.pagina));
    if (!EsDeDatos(*pagina)) return almacen.Danado(lugar.ATexto() + ", no es de datos");
    const auto ranura = LeerRanura(*pagina, lugar.fila);
    if (!ranura) return almacen.Danado(lugar.ATexto() + ", no existe");
    return FilaCruda{std::move(pagina), lugar, *ranura};
}

Result<Pagina*> EscribirPaginaDatos(Almacen& almacen, std::uint32_t numero, std::uint32_t dueno) {
    QUIMO_TRY(Pagina * pagina, almacen.Escribir(numero));
    if (!EsDeDatos(*pagina) || Dueno(*pagina) != dueno || !RanurasSanas(*pagina)) {
        return almacen.Danado("la página " + std::to_string(numero) +
                              " no es la página de datos que debía ser");
    }
    return pagina;
}

}  // namespace quimo::jet
