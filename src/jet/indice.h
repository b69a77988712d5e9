#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/esquema.h"
#include "jet/pagina_indice.h"
#include "jet/tipos_fila.h"

namespace quimo::jet {

/// The tree of one real index, to be changed. Keys are complete (see clave.h).
class Indice {
public:
    Indice(Almacen& almacen, const Esquema& esquema, std::size_t real)
        : almacen_(&almacen), esquema_(&esquema), numero_(real) {}

    Result<bool> ExisteClave(std::span<const std::uint8_t> clave) const;
    Result<void> Agregar(std::span<const std::uint8_t> clave, IdFila id);
    /// Formato when the entry is not there.
    Result<void> Quitar(std::span<const std::uint8_t> clave, IdFila id);
    /// Leaves an empty root and frees all other pages.
    Result<void> Vaciar();

private:
    /// A page on the way from the root to a leaf.
    struct Nivel {
        std::uint32_t pagina = 0;
        PaginaIndice contenido;
        std::size_t hijo = 0;  // the child taken; Entradas() is the one in the tail
        bool hijos_son_nodos = false;
        bool cambiado = false;
    };
    using Camino = std::vector<Nivel>;

    const IndiceReal& Real() const { return esquema_->reales[numero_]; }
    Error Danado(const char* que) const;
    Result<Camino> Bajar(std::span<const std::uint8_t> entrada) const;
    Result<bool> TieneVecina(const PaginaIndice& hoja, std::size_t i,
                             std::span<const std::uint8_t> clave) const;
    Result<void> ContarDistinta();
    static void CorregirSeparadores(Camino& camino, std::size_t nivel,
                                    std::span<const std::uint8_t> entrada);
    Result<void> EscribirCamino(Camino& camino, bool al_final);
    Result<void> PartirRaiz(Camino& camino);
    Result<void> Partir(Camino& camino, std::size_t k, bool al_final);
    Result<void> CortarHermanos(const PaginaIndice& izquierda, const PaginaIndice& derecha);
    Result<void> QuitarPaginaVacia(Camino& camino);
    Result<void> SoltarPagina(const Nivel& nivel);
    Result<std::vector<std::uint8_t>> UltimaDebajo(std::uint32_t pagina) const;

    Almacen* almacen_;
    const Esquema* esquema_;
    std::size_t numero_;
};

/// Meets the entries of an index in order.
class LectorIndice {
public:
    LectorIndice(Almacen& almacen, const Esquema& esquema, std::size_t real)
        : almacen_(&almacen), esquema_(&esquema), numero_(real) {}
    /// Keeps what it reads from alive.
    void Retener(std::shared_ptr<void> nucleo, std::shared_ptr<const Esquema> esquema) {
        nucleo_ = std::move(nucleo);
        esquema_propio_ = std::move(esquema);
    }

    /// Begins at the first key not before `desde` and ends after the last one that begins with
    /// `hasta` or is before it. Empty: from the first, to the last.
    Result<void> Situar(std::span<const std::uint8_t> desde, std::vector<std::uint8_t> hasta);
    Result<bool> Siguiente();
    IdFila Id() const { return id_; }
    /// The entry gone to, key and row.
    std::span<const std::uint8_t> Entrada() const { return hoja_.Entrada(posicion_ - 1); }

private:
    std::shared_ptr<void> nucleo_;
    std::shared_ptr<const Esquema> esquema_propio_;
    Almacen* almacen_;
    const Esquema* esquema_;
    std::size_t numero_;
    std::vector<std::uint8_t> hasta_;
    PaginaIndice hoja_;
    std::size_t posicion_ = 0;
    std::uint32_t hojas_ = 0;
    std::uint64_t generacion_ = 0;
    bool acabado_ = true;
    IdFila id_;
};

/// The entry of a key: key and row.
std::vector<std::uint8_t> EntradaDe(std::span<const std::uint8_t> clave, IdFila id);
IdFila FilaDeEntrada(std::span<const std::uint8_t> entrada);

}  // namespace quimo::jet
