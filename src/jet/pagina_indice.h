#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/formato.h"

namespace quimo::jet {

/// Compares as the file sorts: byte by byte, unsigned, a prefix before what it begins.
int CompararBytes(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b);

constexpr std::size_t kLargoFilaEnIndice = 4;  // row pointer behind the key of an entry
constexpr std::size_t kLargoHijoEnIndice = 4;  // child page behind the entry of a node

/// An index page taken apart: entries in full (shared prefix put back), without the child pages
/// that nodes keep behind them.
class PaginaIndice {
public:
    bool hoja = true;
    std::uint32_t tabla = 0;
    std::uint32_t previa = 0;
    std::uint32_t siguiente = 0;
    std::uint32_t cola = 0;  // nodes: page of the last child, which has no entry; 0 = none

    /// Reads and checks a page of the index of that table.
    Result<void> Leer(Almacen& almacen, std::uint32_t numero, std::uint32_t tabla_esperada);
    /// Writes the whole page; it must fit.
    Result<void> Escribir(Almacen& almacen, std::uint32_t numero) const;
    bool Cabe() const { return PrefijoNecesario() >= 0; }

    std::size_t Entradas() const { return fines_.size(); }
    /// Key and row pointer.
    std::span<const std::uint8_t> Entrada(std::size_t i) const {
        const std::size_t desde = i == 0 ? 0 : fines_[i - 1];
        return std::span(bytes_).subspan(desde, fines_[i] - desde);
    }
    std::span<const std::uint8_t> Clave(std::size_t i) const {
        const auto entrada = Entrada(i);
        return entrada.first(entrada.size() - kLargoFilaEnIndice);
    }
    std::uint32_t Hijo(std::size_t i) const { return hijos_[i]; }
    /// Children of a node, the one in the tail included; entries of a leaf.
    std::size_t Cuantos() const { return Entradas() + (cola != 0 ? 1 : 0); }

    /// The first entry not less than that; Entradas() if none.
    std::size_t Buscar(std::span<const std::uint8_t> entrada) const;
    void Insertar(std::size_t i, std::span<const std::uint8_t> entrada, std::uint32_t hijo = 0);
    void Cambiar(std::size_t i, std::span<const std::uint8_t> entrada);
    void Quitar(std::size_t i);
    /// A page of the same kind with the entries [desde, hasta) of this one; no links, no tail.
    PaginaIndice Parte(std::size_t desde, std::size_t hasta) const;
    void Limpiar();

private:
    void Completar(const std::uint8_t* entradas, std::size_t prefijo);
    int PrefijoNecesario() const;
    std::size_t PrefijoComun() const;

    std::vector<std::uint8_t> bytes_;   // entries back to back
    std::vector<std::uint32_t> fines_;  // where each ends
    std::vector<std::uint32_t> hijos_;  // nodes: one per entry
};

/// Changes only the links of an index page, 0 for none. The page must be one.
Result<void> EnlazarIndice(Almacen& almacen, std::uint32_t numero, const std::uint32_t* previa,
                           const std::uint32_t* siguiente);

}  // namespace quimo::jet
