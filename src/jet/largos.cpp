#include "jet/largos.h"

#include <algorithm>
#include <array>
#include <string>

#include "jet/mapa.h"
#include "jet/pagina_datos.h"

namespace quimo::jet {

namespace {

constexpr std::uint32_t kMascaraLargo = 0x3FFFFFFF;
constexpr std::uint32_t kEnFila = 0x80000000;
constexpr std::uint32_t kUnaFila = 0x40000000;
constexpr std::size_t kUnaFilaMax = 4076;
constexpr std::size_t kPiezaMax = 4072;
constexpr std::size_t kPaginasPorProbar = 4;
constexpr std::size_t kLibresMin = 80;  // a page with less room is not worth trying again

/// One row of a long value, checked to be one.
Result<FilaCruda> LeerPieza(Almacen& almacen, Puntero lugar) {
    QUIMO_TRY(FilaCruda fila, LeerFilaCruda(almacen, lugar));
    if (Dueno(*fila.pagina) != kDuenoLargos || fila.ranura.banderas != 0) {
        return almacen.Danado("no hay un valor largo en " + lugar.ATexto());
    }
    return fila;
}

/// Whether a page is worth naming as one with room.
bool ValeLaPena(const Pagina& pagina) {
    return BytesLibres(pagina) >= kLibresMin && NumeroDeRanuras(pagina) < kRanurasMax;
}

Error Circular(const Almacen& almacen, Puntero lugar) {
    return almacen.Danado("el valor largo de " + lugar.ATexto() + " es más largo que el archivo");
}

}  // namespace

Result<void> AnotarLugar(Almacen& almacen, Puntero libres, std::uint32_t pagina) {
    QUIMO_TRY(const PaginaLeida leida, almacen.Leer(pagina));
    if (!ValeLaPena(*leida)) return {};
    return Mapa(almacen, libres).Poner(pagina);
}

Result<void> LeerLargo(Almacen& almacen, std::span<const std::uint8_t> descriptor,
                       Presupuesto& presupuesto, std::vector<std::uint8_t>& destino,
                       std::vector<Puntero>* piezas) {
    destino.clear();
    if (descriptor.size() < kLargoDescriptor) {
        return almacen.Danado("un valor largo tiene un descriptor cortado");
    }
    const std::uint32_t palabra = U32(descriptor.data());
    const std::size_t largo = palabra & kMascaraLargo;
    const Puntero primero = Puntero::Leer(descriptor.data() + 4);
    if (largo == 0) return {};
    if ((palabra & kEnFila) != 0) {
        if (largo > descriptor.size() - kLargoDescriptor) {
            return almacen.Danado("un valor largo dentro de la fila está cortado");
        }
        const auto datos = descriptor.subspan(kLargoDescriptor, largo);
        destino.assign(datos.begin(), datos.end());
        return {};
    }
    if (!presupuesto.Gastar(largo)) return Circular(almacen, primero);
    const bool cadena = (palabra & kUnaFila) == 0;
    Puntero lugar = primero;
    do {
        QUIMO_TRY(const FilaCruda fila, LeerPieza(almacen, lugar));
        auto datos = fila.Bytes();
        if (piezas != nullptr) piezas->push_back(lugar);
        Puntero siguiente;
        if (cadena) {
            // A piece without data would let a chain go on for ever.
            if (datos.size() < 5) return almacen.Danado("una pieza vacía en " + lugar.ATexto());
            siguiente = Puntero::Leer(datos.data());
            datos = datos.subspan(4);
        }
        datos = datos.first(std::min(datos.size(), largo - destino.size()));
        destino.insert(destino.end(), datos.begin(), datos.end());
        lugar = siguiente;
    } while (!lugar.EsNulo() && destino.size() < largo);
    if (destino.size() < largo) {
        return almacen.Danado("el valor largo de " + primero.ATexto() + " está cortado");
    }
    return {};
}

std::vector<std::uint8_t> LargoEnFila(std::span<const std::uint8_t> valor) {
    std::vector<std::uint8_t> descriptor(kLargoDescriptor, 0);
    PonerU32(descriptor.data(), kEnFila | static_cast<std::uint32_t>(valor.size()));
    descriptor.insert(descriptor.end(), valor.begin(), valor.end());
    return descriptor;
}

Result<std::vector<std::uint8_t>> GuardarLargo(Almacen& almacen, const MapasDeLargos& mapas,
                                               std::span<const std::uint8_t> valor) {
    std::vector<std::uint8_t> descriptor(kLargoDescriptor, 0);
    const auto largo = static_cast<std::uint32_t>(valor.size());
    if (valor.size() <= kUnaFilaMax) {
        QUIMO_TRY(const Puntero lugar, ColocarFila(almacen, mapas, kDuenoLargos, valor, 0));
        PonerU32(descriptor.data(), kUnaFila | largo);
        PonerU32(descriptor.data() + 4, lugar.Crudo());
        return descriptor;
    }
    // From the last piece to the first, so that each knows the next.
    Puntero siguiente;
    std::vector<std::uint8_t> pieza;
    for (std::size_t desde = (valor.size() - 1) / kPiezaMax * kPiezaMax;; desde -= kPiezaMax) {
        const auto datos = valor.subspan(desde, std::min(kPiezaMax, valor.size() - desde));
        pieza.assign(4, 0);
        PonerU32(pieza.data(), siguiente.Crudo());
        pieza.insert(pieza.end(), datos.begin(), datos.end());
        QUIMO_TRY(siguiente, ColocarFila(almacen, mapas, kDuenoLargos, pieza, 0));
        if (desde == 0) break;
    }
    PonerU32(descriptor.data(), largo);
    PonerU32(descriptor.data() + 4, siguiente.Crudo());
    return descriptor;
}

Result<void> BorrarLargo(Almacen& almacen, const std::optional<MapasDeLargos>& mapas,
                         std::span<const std::uint8_t> descriptor) {
    Presupuesto presupuesto(almacen);
    std::vector<std::uint8_t> valor;
    std::vector<Puntero> piezas;
    QUIMO_TRY_VOID(LeerLargo(almacen, descriptor, presupuesto, valor, &piezas));
    for (const Puntero lugar : piezas) {
        // Read again: two descriptors that name one row are damage, not a second deletion.
        QUIMO_TRY_VOID(LeerPieza(almacen, lugar));
        QUIMO_TRY(Pagina * pagina, EscribirPaginaDatos(almacen, lugar.pagina, kDuenoLargos));
        BorrarRanura(*pagina, lugar.fila);
        if (mapas) QUIMO_TRY_VOID(AnotarLugar(almacen, mapas->libres, lugar.pagina));
    }
    return {};
}

Result<Puntero> ColocarFila(Almacen& almacen, const MapasDeLargos& mapas, std::uint32_t dueno,
                            std::span<const std::uint8_t> bytes, std::uint16_t banderas) {
    std::array<std::uint32_t, kPaginasPorProbar + 1> candidatas{};
    Mapa libres(almacen, mapas.libres);
    std::uint32_t& pista = almacen.Pistas()[mapas.libres.Crudo()];
    std::size_t cuantas = 0;
    if (pista != 0) candidatas.at(cuantas++) = pista;
    QUIMO_TRY(const std::size_t altas, libres.Ultimos(std::span(candidatas).subspan(cuantas)));
    for (std::size_t i = 0; i < cuantas + altas; ++i) {
        const std::uint32_t numero = candidatas.at(i);
        QUIMO_TRY(const PaginaLeida leida, almacen.Leer(numero));
        if (!EsDeDatos(*leida) || Dueno(*leida) != dueno || !RanurasSanas(*leida)) {
            return almacen.Danado("el mapa de páginas con lugar nombra la página ajena " +
                                  std::to_string(numero));
        }
        if (CabeFila(*leida, bytes.size())) {
            QUIMO_TRY(Pagina * pagina, EscribirPaginaDatos(almacen, numero, dueno));
            pista = numero;
            return Puntero{numero, PonerFila(*pagina, bytes, banderas)};
        }
        if (!ValeLaPena(*leida)) {
            QUIMO_TRY_VOID(libres.Quitar(numero));
        }
    }
    QUIMO_TRY(const std::uint32_t nueva, AsignarPagina(almacen));
    QUIMO_TRY(Pagina * pagina, almacen.Escribir(nueva));
    FormatearPaginaDatos(*pagina, dueno);
    const Puntero lugar{nueva, PonerFila(*pagina, bytes, banderas)};
    QUIMO_TRY_VOID(Mapa(almacen, mapas.propias).Poner(nueva));
    QUIMO_TRY_VOID(libres.Poner(nueva));
    pista = nueva;
    return lugar;
}

}  // namespace quimo::jet
