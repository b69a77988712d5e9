#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/esquema.h"
#include "jet/fila.h"
#include "jet/pagina_datos.h"
#include "jet/tipos_fila.h"

namespace quimo::jet {

/// The walk behind a Cursor: every row of a table, page after page.
class RecorridoPaginas {
public:
    static Result<std::unique_ptr<RecorridoPaginas>> Empezar(
        Almacen& almacen, std::shared_ptr<const Esquema> esquema);
    /// Keeps what it reads from alive.
    void Retener(std::shared_ptr<void> nucleo) { nucleo_ = std::move(nucleo); }

    /// Goes to the next row without taking it apart; false past the last one.
    Result<bool> Avanzar();
    /// The bytes of the row gone to, where its content lies.
    std::span<const std::uint8_t> Bytes() const { return contenido_.Bytes(); }
    IdFila Id() const { return id_; }
    /// Takes the row apart.
    Result<void> Leer(Fila& fila) { return LeerValores(lectura_, *esquema_, Bytes(), fila); }
    Lectura& LecturaDeFila() { return lectura_; }
    const Esquema& EsquemaDeTabla() const { return *esquema_; }

    Fila valores;  // of the row gone to, when the user of the walk wants them

private:
    RecorridoPaginas(Almacen& almacen, std::shared_ptr<const Esquema> esquema)
        : almacen_(almacen), esquema_(std::move(esquema)), lectura_(almacen) {}
    Result<bool> BuscarFila();
    Result<bool> PasarPagina();
    Result<void> ComprobarCuenta() const;

    std::shared_ptr<void> nucleo_;
    Almacen& almacen_;
    std::shared_ptr<const Esquema> esquema_;
    Lectura lectura_;
    std::vector<std::uint32_t> paginas_;
    std::size_t proxima_ = 0;  // index into paginas_ of the page after the current one
    PaginaLeida pagina_;
    std::size_t fila_ = 0;
    FilaCruda contenido_;
    IdFila id_;
    std::uint64_t generacion_ = 0;
    bool cambio_ = false;
    bool acabado_ = false;
    std::uint32_t contadas_ = 0;
};

}  // namespace quimo::jet
