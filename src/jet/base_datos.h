#pragma once

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
#include "jet/tabla.h"

namespace quimo::jet {

enum class Modo { Lectura, Escritura };
enum class Sistema { No, Si };  ///< whether system tables are listed too

/// An open Jet 4 database (.mdb of Access 2000 to 2003). The file itself is never written to:
/// changes stay in memory until Guardar replaces it by a new file. Paths are UTF-8. One thread at a
/// time.
class BaseDatos {
public:
    /// Errors: NoEncontrado, Archivo, Bloqueado (somebody has it open for writing), Formato
    /// (damaged or no database at all), NoSoportado (Jet 3, a later format, enciphered, with a
    /// password). For a file that Access may have open look at MirarLdb first.
    static Result<BaseDatos> Abrir(const std::string& ruta, Modo modo = Modo::Lectura);
    /// The same for the bytes of a file; GuardarComo and Imagen take the result out.
    static Result<BaseDatos> AbrirImagen(std::vector<std::uint8_t> imagen,
                                         Modo modo = Modo::Lectura);
    /// The smallest database: system tables only. Refuses an existing file (Restriccion). The file
    /// comes into being with the first Guardar, which refuses it too.
    static Result<BaseDatos> Crear(const std::string& ruta);

    /// Names of the local tables, in the order in which the catalogue holds them.
    Result<std::vector<std::string>> Tablas(Sistema sistema = Sistema::No) const;
    /// Names compare without case. NoEncontrado names the table; a linked one is NoSoportado.
    Result<Tabla> AbrirTabla(std::string_view nombre) const;
    /// Datos when the definition is not a possible one, Restriccion when the name is taken.
    Result<Tabla> CrearTabla(const DefTabla& definicion);

    /// The relationships of the database, whether or not they are to be kept.
    Result<std::vector<Relacion>> Relaciones() const;
    /// The order that new texts take in Access. A column has its own; Tabla::SeEscribe tells
    /// whether those of a table can be written.
    Result<OrdenTexto> OrdenDeTexto() const;

    /// Writes a complete new file beside the old one, makes it durable and puts it in its place. On
    /// any error (DiscoLleno among them) the old file is as before and nothing is left beside it.
    /// Refuses (Bloqueado) when somebody has replaced or changed the file since it was opened.
    /// Without an error the new file is in place; AvisoAlGuardar tells what is not sure then. What
    /// killed runs left half written in the folder is removed.
    Result<void> Guardar();
    /// Of the last save: the new file is in place and whole, but the system could not make the
    /// change of the folder durable, so that a power cut may bring the old file back, whole as
    /// well. It is no error of Guardar, which by then cannot undo anything.
    const std::optional<Error>& AvisoAlGuardar() const;
    /// The same under another name, replacing what is there; further work goes on there.
    Result<void> GuardarComo(const std::string& ruta);
    /// The bytes that Guardar would write.
    Result<std::vector<std::uint8_t>> Imagen() const;
    bool HayCambios() const;
    const std::string& Ruta() const;

private:
    friend class Verificador;
    explicit BaseDatos(std::shared_ptr<Nucleo> nucleo) : nucleo_(std::move(nucleo)) {}
    std::shared_ptr<Nucleo> nucleo_;
};

enum class EstadoLdb { NoHay, SinUso, EnUso };

/// Looks at the .ldb file that Access keeps beside an open database. SinUso is one left behind: no
/// process holds a lock on it that this machine can see, which over a network is no proof. A .ldb
/// that is there and cannot be opened (no permission, an error of the disk) counts as EnUso.
EstadoLdb MirarLdb(const std::string& ruta_mdb);

}  // namespace quimo::jet
