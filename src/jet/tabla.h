#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/result.h"
#include "jet/definicion.h"
#include "jet/tipos_fila.h"
#include "jet/valor.h"

namespace quimo::jet {

using base::Error;
using base::Result;

struct Nucleo;   // what all objects of one open database share
struct Esquema;  // a parsed table definition
class LectorIndice;
class RecorridoPaginas;

/// Meets every row of a table once, in the order of the file. The row under the cursor may be
/// changed or deleted, and the walk goes on; a row inserted meanwhile may be met or not. At the end
/// of a table that nobody changed meanwhile the number of rows met is compared with the one the
/// definition holds: a difference is damage (Formato), never a silent loss. Not so for system
/// tables, whose counts are known to deviate.
class Cursor {
public:
    Cursor(Cursor&&) noexcept;
    Cursor& operator=(Cursor&&) noexcept;
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;
    ~Cursor();

    /// Goes to the next row; false past the last one. After an error the walk is over.
    Result<bool> Siguiente();
    /// The row gone to. Valid until the next call of Siguiente.
    const Fila& Valores() const;
    IdFila Id() const;

private:
    friend class Tabla;
    explicit Cursor(std::unique_ptr<RecorridoPaginas> recorrido);
    std::unique_ptr<RecorridoPaginas> recorrido_;
};

/// Which part of an index to walk. The bounds are values of the leading columns of the index, as
/// many as wanted; both ends belong to the range; an absent one is open.
struct Rango {
    std::optional<std::vector<Valor>> desde = std::nullopt;
    std::optional<std::vector<Valor>> hasta = std::nullopt;
};

/// Meets row identities in the order of an index. Any change to the table ends the walk: the next
/// call of Siguiente returns an error (Interno).
class CursorIndice {
public:
    CursorIndice(CursorIndice&&) noexcept;
    CursorIndice& operator=(CursorIndice&&) noexcept;
    CursorIndice(const CursorIndice&) = delete;
    CursorIndice& operator=(const CursorIndice&) = delete;
    ~CursorIndice();

    Result<bool> Siguiente();
    IdFila Id() const;

private:
    friend class Tabla;
    explicit CursorIndice(std::unique_ptr<LectorIndice> lector);
    std::unique_ptr<LectorIndice> lector_;
};

/// One table of an open database: a light handle, which keeps the database's memory alive. Every
/// change keeps all indexes, long values, maps and counters right, and either happens whole or not
/// at all; it reaches the disk with BaseDatos::Guardar. Common errors: Formato (the file is
/// damaged), NoSoportado (opened for reading; a table with relationships, a text key in another
/// sort order, a key character without a known weight, a column type that is not written),
/// Restriccion (unique or required index), Datos (a value that does not fit its column),
/// NoEncontrado.
class Tabla {
public:
    const DefTabla& Definicion() const;
    const std::string& Nombre() const { return Definicion().nombre; }
    bool EsDeSistema() const;
    /// The position of a column in rows and definition. Names compare without case.
    Result<std::size_t> Columna(std::string_view nombre) const;
    /// The number of rows, as the definition keeps it.
    Result<std::uint32_t> Cuantas() const;
    /// The last autonumber given out, 0 if none.
    Result<std::int32_t> UltimoAutonumerico() const;

    /// Whether this library can change the table, asked before anything is changed: NoSoportado
    /// names the relationship, the sort order of an indexed text column or the column type that it
    /// cannot keep right. Does not mind that the file was opened for reading.
    Result<void> SeEscribe() const;

    Result<Cursor> Recorrer() const;
    Result<Fila> Leer(IdFila id) const;

    /// One value per column. NULL in an autonumber column takes the next number.
    Result<IdFila> Insertar(std::span<const Valor> valores);
    /// Columns not named keep their values.
    Result<void> Actualizar(IdFila id, std::span<const Cambio> cambios);
    Result<void> Borrar(IdFila id);
    /// Deletes all rows and gives their pages back. The autonumber goes on counting.
    Result<void> Vaciar();

    /// The rows whose leading index columns equal `clave`, in the order of the index. Texts compare
    /// as the index does: without case and trailing spaces. `indice` is a logical name, without
    /// case.
    Result<std::vector<IdFila>> Buscar(std::string_view indice, std::span<const Valor> clave) const;
    /// The same for the one row of a primary key: nothing if there is none.
    Result<std::optional<IdFila>> BuscarClave(std::span<const Valor> clave) const;
    Result<CursorIndice> RecorrerIndice(std::string_view indice, const Rango& rango = {}) const;

private:
    friend class BaseDatos;
    Tabla(std::shared_ptr<Nucleo> nucleo, std::shared_ptr<const Esquema> esquema)
        : nucleo_(std::move(nucleo)), esquema_(std::move(esquema)) {}
    std::shared_ptr<Nucleo> nucleo_;
    std::shared_ptr<const Esquema> esquema_;
};

}  // namespace quimo::jet
