#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/esquema.h"
#include "jet/fila.h"
#include "jet/tipos_fila.h"

namespace quimo::jet {

/// Changes the rows of a table, system tables included. Each operation happens whole or not at all.
class Escritor {
public:
    Escritor(Almacen& almacen, const Esquema& esquema) : almacen_(almacen), esquema_(esquema) {}

    /// Whether this library can keep everything about the table right.
    Result<void> PuedeEscribir() const;
    Result<IdFila> Insertar(std::span<const Valor> valores);
    Result<void> Actualizar(IdFila id, std::span<const Cambio> cambios);
    Result<void> Borrar(IdFila id);
    Result<void> Vaciar();

private:
    using Bytes = std::vector<std::uint8_t>;
    /// One per real index; nothing for those the row has no entry in.
    using Claves = std::vector<std::optional<Bytes>>;

    Result<std::optional<Bytes>> ClaveDe(std::size_t real, const Fila& fila) const;
    Result<void> ComprobarRequerido(std::size_t real, const Fila& fila) const;
    Result<void> ComprobarUnico(std::size_t real, const Fila& fila, const Bytes& clave) const;
    bool UsaAlguna(std::size_t real, const std::vector<bool>& columnas) const;
    Result<void> PonerAutonumerico(Fila& fila) const;
    Result<Bytes> AlojarFila(std::vector<Celda>& celdas);
    Result<void> Reescribir(IdFila id, const FilaCruda& contenido, std::span<const Puntero> paso,
                            const Bytes& bytes);
    Result<void> BorrarRanuras(std::span<const Puntero> lugares);
    Result<void> BorrarLargoDe(std::size_t columna, const Celda& celda);
    Result<void> Contar(std::int32_t filas, const Fila* fila);
    Result<void> VaciarPaginas(Puntero propias, Puntero libres, std::uint32_t dueno);
    MapasDeLargos MapasDeFilas() const { return {esquema_.propias, esquema_.libres}; }
    std::optional<MapasDeLargos> MapasDe(std::size_t columna) const;

    Almacen& almacen_;
    const Esquema& esquema_;
};

}  // namespace quimo::jet
