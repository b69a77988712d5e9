#include "jet/pagina_indice.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "base/check.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kPosMascara = 27;
constexpr std::size_t kPosEntradas = 480;
constexpr std::size_t kBytesMascara = kPosEntradas - kPosMascara;
constexpr std::size_t kLugar = kTamPagina - kPosEntradas;  // bytes for entries

bool EsDeIndice(const Pagina& pagina) {
    return pagina.bytes[0] == kPaginaNodo || pagina.bytes[0] == kPaginaHoja;
}

}  // namespace

int CompararBytes(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
    const std::size_t comun = std::min(a.size(), b.size());
    const int orden = comun == 0 ? 0 : std::memcmp(a.data(), b.data(), comun);
    if (orden != 0) return orden;
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

Result<void> PaginaIndice::Leer(Almacen& almacen, std::uint32_t numero,
                                std::uint32_t tabla_esperada) {
    QUIMO_TRY(const PaginaLeida pagina, almacen.Leer(numero));
    const std::uint8_t* p = pagina->data();
    const auto danado = [&](const char* que) {
        return almacen.Danado("la página de índice " + std::to_string(numero) + " " + que);
    };
    if (!EsDeIndice(*pagina) || U32(p + 4) != tabla_esperada) return danado("no es de su tabla");
    Limpiar();
    hoja = p[0] == kPaginaHoja;
    tabla = tabla_esperada;
    previa = U32(p + 12);
    siguiente = U32(p + 16);
    cola = hoja ? 0 : U32(p + 20);
    const std::size_t prefijo = U16(p + 24);
    const std::size_t final_minimo = kLargoFilaEnIndice + (hoja ? 0 : kLargoHijoEnIndice);
    std::size_t desde = 0;
    for (std::size_t octeto = 0; octeto < kBytesMascara; ++octeto) {
        for (unsigned resto = p[kPosMascara + octeto]; resto != 0; resto &= resto - 1) {
            const auto hasta = octeto * 8 + static_cast<std::size_t>(std::countr_zero(resto));
            // The first entry is whole: it has the prefix, and a key.
            const std::size_t minimo =
                final_minimo + (fines_.empty() ? std::max<std::size_t>(prefijo, 1) : 0);
            if (hasta > kLugar || hasta - desde < minimo)
                return danado("tiene entradas imposibles");
            fines_.push_back(static_cast<std::uint32_t>(hasta));
            desde = hasta;
        }
    }
    Completar(p + kPosEntradas, prefijo);
    return {};
}

/// Takes the entries from the page, whose ends there are in fines_: puts the prefix back and the
/// child pages apart.
void PaginaIndice::Completar(const std::uint8_t* entradas, std::size_t prefijo) {
    if (hoja && prefijo == 0) {
        bytes_.assign(entradas, entradas + (fines_.empty() ? 0 : fines_.back()));
        return;
    }
    bytes_.resize((fines_.empty() ? 0 : fines_.back()) + prefijo * fines_.size());
    std::uint8_t* destino = bytes_.data();
    std::size_t desde = 0;
    for (std::uint32_t& fin : fines_) {
        const std::size_t propios = fin - desde - (hoja ? 0 : kLargoHijoEnIndice);
        if (desde > 0) {
            std::memcpy(destino, bytes_.data(), prefijo);
            destino += prefijo;
        }
        std::memcpy(destino, entradas + desde, propios);
        destino += propios;
        desde = fin;
        if (!hoja) hijos_.push_back(U32Be(entradas + desde - kLargoHijoEnIndice));
        fin = static_cast<std::uint32_t>(destino - bytes_.data());
    }
    bytes_.resize(static_cast<std::size_t>(destino - bytes_.data()));
}

std::size_t PaginaIndice::PrefijoComun() const {
    if (fines_.size() < 2) return 0;
    const auto primera = Clave(0);
    const auto ultima = Clave(fines_.size() - 1);
    const std::size_t comun = std::min(primera.size(), ultima.size());
    return static_cast<std::size_t>(
        std::mismatch(primera.begin(), primera.begin() + static_cast<std::ptrdiff_t>(comun),
                      ultima.begin())
            .first -
        primera.begin());
}

/// The shared prefix to write the page with, -1 if it does not fit with any.
int PaginaIndice::PrefijoNecesario() const {
    const std::size_t n = fines_.size();
    const std::size_t total = bytes_.size() + (hoja ? 0 : n * kLargoHijoEnIndice);
    if (total <= kLugar) return 0;
    const std::size_t prefijo = PrefijoComun();
    if (n == 0 || total - prefijo * (n - 1) > kLugar) return -1;
    return static_cast<int>(prefijo);
}

Result<void> PaginaIndice::Escribir(Almacen& almacen, std::uint32_t numero) const {
    const int necesario = PrefijoNecesario();
    QUIMO_CHECK(necesario >= 0);
    const auto prefijo = static_cast<std::size_t>(necesario);
    QUIMO_TRY(Pagina * pagina, almacen.Escribir(numero));
    std::uint8_t* p = pagina->data();
    pagina->bytes.fill(0);
    p[0] = hoja ? kPaginaHoja : kPaginaNodo;
    p[1] = 1;
    PonerU32(p + 4, tabla);
    PonerU32(p + 12, previa);
    PonerU32(p + 16, siguiente);
    PonerU32(p + 20, hoja ? 0 : cola);
    PonerU16(p + 24, prefijo);
    std::size_t usados = 0;
    for (std::size_t i = 0; i < fines_.size(); ++i) {
        auto entrada = Entrada(i);
        if (i > 0) entrada = entrada.subspan(prefijo);
        std::memcpy(p + kPosEntradas + usados, entrada.data(), entrada.size());
        usados += entrada.size();
        if (!hoja) {
            PonerU32Be(p + kPosEntradas + usados, hijos_[i]);
            usados += kLargoHijoEnIndice;
        }
        std::uint8_t& octeto = p[kPosMascara + usados / 8];
        octeto = static_cast<std::uint8_t>(octeto | 1U << (usados % 8));
    }
    PonerU16(p + 2, kLugar - usados);
    return {};
}

std::size_t PaginaIndice::Buscar(std::span<const std::uint8_t> entrada) const {
    std::size_t bajo = 0;
    std::size_t alto = fines_.size();
    while (bajo < alto) {
        const std::size_t medio = (bajo + alto) / 2;
        if (CompararBytes(Entrada(medio), entrada) < 0) {
            bajo = medio + 1;
        } else {
            alto = medio;
        }
    }
    return bajo;
}

void PaginaIndice::Insertar(std::size_t i, std::span<const std::uint8_t> entrada,
                            std::uint32_t hijo) {
    const std::size_t desde = i == 0 ? 0 : fines_[i - 1];
    bytes_.insert(bytes_.begin() + static_cast<std::ptrdiff_t>(desde), entrada.begin(),
                  entrada.end());
    const auto largo = static_cast<std::uint32_t>(entrada.size());
    const auto lugar = static_cast<std::ptrdiff_t>(i);
    fines_.insert(fines_.begin() + lugar, static_cast<std::uint32_t>(desde));
    for (std::size_t k = i; k < fines_.size(); ++k)
        fines_[k] += largo;
    if (!hoja) hijos_.insert(hijos_.begin() + lugar, hijo);
}

void PaginaIndice::Cambiar(std::size_t i, std::span<const std::uint8_t> entrada) {
    const std::uint32_t hijo = hoja ? 0 : hijos_[i];
    const std::vector<std::uint8_t> copia(entrada.begin(), entrada.end());
    Quitar(i);
    Insertar(i, copia, hijo);
}

void PaginaIndice::Quitar(std::size_t i) {
    const std::size_t desde = i == 0 ? 0 : fines_[i - 1];
    const auto largo = static_cast<std::uint32_t>(fines_[i] - desde);
    bytes_.erase(bytes_.begin() + static_cast<std::ptrdiff_t>(desde),
                 bytes_.begin() + static_cast<std::ptrdiff_t>(desde + largo));
    const auto lugar = static_cast<std::ptrdiff_t>(i);
    fines_.erase(fines_.begin() + lugar);
    for (std::size_t k = i; k < fines_.size(); ++k)
        fines_[k] -= largo;
    if (!hoja) hijos_.erase(hijos_.begin() + lugar);
}

PaginaIndice PaginaIndice::Parte(std::size_t desde, std::size_t hasta) const {
    PaginaIndice parte;
    parte.hoja = hoja;
    parte.tabla = tabla;
    for (std::size_t i = desde; i < hasta; ++i) {
        parte.Insertar(parte.Entradas(), Entrada(i), hoja ? 0 : hijos_[i]);
    }
    return parte;
}

void PaginaIndice::Limpiar() {
    bytes_.clear();
    fines_.clear();
    hijos_.clear();
    previa = siguiente = cola = 0;
}

Result<void> EnlazarIndice(Almacen& almacen, std::uint32_t numero, const std::uint32_t* previa,
                           const std::uint32_t* siguiente) {
    QUIMO_TRY(const PaginaLeida leida, almacen.Leer(numero));
    if (!EsDeIndice(*leida)) {
        return almacen.Danado("la página " + std::to_string(numero) + " no es de índice");
    }
    QUIMO_TRY(Pagina * pagina, almacen.Escribir(numero));
    if (previa != nullptr) PonerU32(pagina->data() + 12, *previa);
    if (siguiente != nullptr) PonerU32(pagina->data() + 16, *siguiente);
    return {};
}

}  // namespace quimo::jet
