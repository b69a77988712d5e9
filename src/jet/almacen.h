#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/descriptor.h"
#include "base/result.h"
#include "jet/formato.h"

struct stat;

namespace quimo::base {
class Reemplazo;
}  // namespace quimo::base

namespace quimo::jet {

using base::Error;
using base::Result;

struct Catalogo;

/// By what a file is told from another one that somebody put under its name, and from itself as it
/// was before somebody wrote into it.
struct HuellaArchivo {
    static HuellaArchivo De(const struct stat& datos);
    std::uint64_t dispositivo = 0;
    std::uint64_t inodo = 0;
    std::int64_t modificado_ns = 0;
    bool operator==(const HuellaArchivo&) const = default;
};

/// The pages of one file. They are read when asked for; a page that was changed lives in memory
/// until the file is saved. The file is read with pread, so that one cut short by somebody else
/// is an error and not a signal.
class Almacen {
public:
    enum class Acceso { Lectura, Escritura };

    /// Opens a file; for writing it also locks it against a second writer. There is at least one
    /// page, and none is looked at yet.
    static Result<std::unique_ptr<Almacen>> DeArchivo(const std::string& ruta, Acceso acceso);
    static Result<std::unique_ptr<Almacen>> DeImagen(std::vector<std::uint8_t> imagen);
    /// No pages yet; the file must not exist when it is saved.
    static std::unique_ptr<Almacen> Nuevo(const std::string& ruta);

    /// Bytes past the last whole page: not 0 means that the file was cut.
    std::size_t Sobrante() const { return sobrante_; }
    /// Whether the pages come from memory and there is no file yet.
    bool SinArchivo() const { return archivo_.Fd() < 0 && !debe_ser_nuevo_; }
    std::uint32_t Paginas() const { return static_cast<std::uint32_t>(entradas_.size()); }
    /// The page as it is now. Held across a change of the same page it may or may not show it.
    Result<PaginaLeida> Leer(std::uint32_t numero);
    /// The page to be changed in place, inside a Transaccion. The pointer is valid until the end of
    /// the transaction.
    Result<Pagina*> Escribir(std::uint32_t numero);
    /// A new page of zeros at the end. Interno when the file would pass 2 GiB.
    Result<std::uint32_t> Agregar();

    /// Grows with every change of any page.
    std::uint64_t Generacion() const { return generacion_; }
    bool HayCambios() const { return hay_cambios_; }
    const std::string& Ruta() const { return ruta_; }

    /// See BaseDatos::Guardar.
    Result<void> GuardarEn(const std::string& ruta);
    const std::optional<Error>& AvisoAlGuardar() const { return aviso_; }
    Result<std::vector<std::uint8_t>> Imagen() const;

    /// What was read of the catalogue; nothing yet, or forgotten by an undone transaction. Whoever
    /// changes the catalogue keeps it right.
    std::shared_ptr<Catalogo>& CatalogoLeido() { return catalogo_; }

    /// Pages freed since the file was opened, to be used again before the file grows. The global
    /// map decides; this list only says which ones are safe to try.
    std::vector<std::uint32_t>& Liberadas() { return liberadas_; }

    /// The page that last had room for a row, by the free-space map that names it. Forgotten when
    /// any page is given back.
    std::map<std::uint32_t, std::uint32_t>& Pistas() { return pistas_; }

    /// "El archivo X está dañado: ...", Formato.
    Error Danado(std::string_view que) const;

private:
    friend class Transaccion;
    struct Entrada {
        std::shared_ptr<Pagina> pagina;
        bool sucia = false;
        std::uint64_t salvada_en = 0;  // the transaction that has its previous content
    };
    struct Anterior {
        std::uint32_t numero = 0;
        std::unique_ptr<Pagina> contenido;
    };

    Almacen() = default;
    Result<void> Cargar(Entrada& entrada, std::uint32_t numero);
    Result<void> LeerDeArchivo(std::uint32_t numero, std::uint8_t* destino) const;
    void Desalojar();
    void Empezar();
    void Terminar();
    void Deshacer();
    Result<void> Extraer(std::uint32_t numero, std::uint8_t* destino) const;
    Result<void> Copiar(base::Reemplazo& nuevo) const;
    Result<void> ComprobarDestino(const std::string& ruta) const;
    Result<void> Sustituir(base::Reemplazo& nuevo);

    std::string ruta_;
    bool debe_ser_nuevo_ = false;
    base::Descriptor archivo_;
    HuellaArchivo huella_;

    std::size_t sobrante_ = 0;
    std::vector<Entrada> entradas_;
    std::deque<std::uint32_t> limpias_;  // cached pages as in the file, oldest first
    std::vector<std::uint32_t> liberadas_;
    std::map<std::uint32_t, std::uint32_t> pistas_;
    std::shared_ptr<Catalogo> catalogo_;
    std::uint64_t generacion_ = 1;
    bool hay_cambios_ = false;
    std::optional<Error> aviso_;  // of the last save

    int profundidad_ = 0;
    std::uint64_t transaccion_ = 0;
    std::uint32_t paginas_antes_ = 0;
    bool cambios_antes_ = false;
    std::vector<Anterior> anteriores_;
    std::vector<std::unique_ptr<Pagina>> sobrantes_;  // to be used again
};

/// Makes the changes of one operation whole: unless Confirmar was reached, the destructor puts
/// every page back. Inside another one it leaves the decision to the outer one.
class Transaccion {
public:
    explicit Transaccion(Almacen& almacen) : almacen_(almacen) { almacen_.Empezar(); }
    ~Transaccion();
    Transaccion(const Transaccion&) = delete;
    Transaccion& operator=(const Transaccion&) = delete;
    void Confirmar() { confirmada_ = true; }

private:
    Almacen& almacen_;
    bool confirmada_ = false;
};

}  // namespace quimo::jet
