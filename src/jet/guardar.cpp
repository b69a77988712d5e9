// Saving: a complete new file beside the old one, made durable, then put in its place.

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/check.h"
#include "base/reemplazo.h"
#include "jet/almacen.h"

namespace quimo::jet {

using base::Reemplazo;

namespace {

constexpr std::size_t kBloque = 64 * kTamPagina;  // written at once
constexpr int kNombresTemporalesMax = 1000;

Error ErrorAlGuardar(int numero, const std::string& ruta) {
    if (numero == ENOSPC || numero == EDQUOT) {
        return {Error::Codigo::DiscoLleno, "No hay lugar en el disco para guardar " + ruta + ".",
                std::strerror(numero)};
    }
    return {Error::Codigo::Archivo, "No se puede guardar el archivo " + ruta + ".",
            std::strerror(numero)};
}

Error YaExiste(const std::string& ruta) {
    return {Error::Codigo::Restriccion, "El archivo " + ruta + " ya existe."};
}

/// The process that a temporary file's name belongs to: "NAME.PID-N.tmp", where NAME has the
/// extension of what is saved. Nothing for any other name.
std::optional<pid_t> ProcesoDe(const std::string& nombre, const std::filesystem::path& guardado) {
    std::filesystem::path resto(nombre);
    if (resto.extension() != ".tmp") return std::nullopt;
    resto.replace_extension();
    const std::string numeros = resto.extension().string();
    if (resto.stem().extension() != guardado.extension()) return std::nullopt;
    int proceso = 0;
    int veces = 0;
    int leidos = 0;
    if (std::sscanf(numeros.c_str(), ".%d-%d%n", &proceso, &veces, &leidos) != 2 || proceso <= 1 ||
        static_cast<std::size_t>(leidos) != numeros.size()) {
        return std::nullopt;
    }
    return proceso;
}

/// Removes what runs that were killed while they saved have left in the folder. A file of a process
/// that lives stays, also of one on another machine: its lock is seen where the share passes locks
/// on. Nothing depends on it, so that a failure is not told.
void BarrerTemporales(const std::filesystem::path& guardado) {
    const auto carpeta = guardado.has_parent_path() ? guardado.parent_path() : ".";
    std::error_code fallo;
    for (std::filesystem::directory_iterator i(carpeta, fallo); !fallo && i != end(i);
         i.increment(fallo)) {
        const auto proceso = ProcesoDe(i->path().filename().string(), guardado);
        if (!proceso || ::kill(*proceso, 0) == 0 || errno != ESRCH) continue;
        const base::Descriptor fd(
            ::open(i->path().c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
        if (fd.Fd() >= 0 && ::flock(fd.Fd(), LOCK_EX | LOCK_NB) == 0) ::unlink(i->path().c_str());
    }
}

/// Creates a file of a name nobody has, beside `ruta`, locked from the first moment on.
Result<Reemplazo> CrearTemporal(const std::string& ruta) {
    BarrerTemporales(ruta);
    for (int i = 0; i < kNombresTemporalesMax; ++i) {
        auto nuevo = Reemplazo::Crear(
            ruta, ruta + "." + std::to_string(::getpid()) + "-" + std::to_string(i) + ".tmp",
            Reemplazo::Restos::Respetar, 0666);
        if (nuevo) {
            ::flock(nuevo->Fd(), LOCK_EX | LOCK_NB);  // ours alone, and kept for the next save
            return std::move(nuevo).value();
        }
        if (nuevo.error().error != EEXIST) return ErrorAlGuardar(nuevo.error().error, ruta);
    }
    return ErrorAlGuardar(EEXIST, ruta);
}

Result<void> Traducido(const Result<void, base::FalloSistema>& hecho, const std::string& ruta) {
    if (!hecho) return ErrorAlGuardar(hecho.error().error, ruta);
    return {};
}

}  // namespace

/// The page as it is now, without keeping it in memory.
Result<void> Almacen::Extraer(std::uint32_t numero, std::uint8_t* destino) const {
    const Entrada& entrada = entradas_[numero];
    if (entrada.pagina == nullptr) return LeerDeArchivo(numero, destino);
    std::memcpy(destino, entrada.pagina->data(), kTamPagina);
    return {};
}

Result<void> Almacen::Copiar(Reemplazo& nuevo) const {
    std::vector<std::uint8_t> bloque;
    for (std::uint32_t n = 0; n < Paginas(); ++n) {
        bloque.resize(bloque.size() + kTamPagina);
        QUIMO_TRY_VOID(Extraer(n, bloque.data() + bloque.size() - kTamPagina));
        if (bloque.size() < kBloque && n + 1 < Paginas()) continue;
        QUIMO_TRY_VOID(Traducido(nuevo.Escribir(bloque.data(), bloque.size()), nuevo.Destino()));
        bloque.clear();
    }
    return {};
}

Result<void> Almacen::ComprobarDestino(const std::string& ruta) const {
    struct stat datos {};
    const bool existe = ::stat(ruta.c_str(), &datos) == 0;
    if (debe_ser_nuevo_ && ruta == ruta_ && existe) {
        return YaExiste(ruta);
    }
    if (archivo_.Fd() < 0 || ruta != ruta_) return {};
    if (!existe || HuellaArchivo::De(datos) != huella_) {
        return Error{Error::Codigo::Bloqueado,
                     "Otro programa cambió el archivo " + ruta + " mientras estaba abierto."};
    }
    return {};
}

Result<void> Almacen::Sustituir(Reemplazo& nuevo) {
    const bool debe_faltar = debe_ser_nuevo_ && nuevo.Destino() == ruta_;
    const auto hecho = debe_faltar ? nuevo.ColocarSiFalta() : nuevo.Colocar();
    if (debe_faltar && !hecho && hecho.error().error == EEXIST) return YaExiste(nuevo.Destino());
    return Traducido(hecho, nuevo.Destino());
}

Result<void> Almacen::GuardarEn(const std::string& ruta_pedida) {
    QUIMO_CHECK(profundidad_ == 0);
    std::error_code fallo;
    std::string ruta = std::filesystem::canonical(ruta_pedida, fallo).string();
    if (fallo) ruta = ruta_pedida;  // it is to be made
    QUIMO_TRY_VOID(ComprobarDestino(ruta));
    QUIMO_TRY(Reemplazo nuevo, CrearTemporal(ruta));
    struct stat viejo {};
    if (::stat(ruta.c_str(), &viejo) == 0 && ::fchmod(nuevo.Fd(), viejo.st_mode & 07777) != 0) {
        return ErrorAlGuardar(errno, ruta);
    }
    QUIMO_TRY_VOID(Copiar(nuevo));
    QUIMO_TRY_VOID(Traducido(nuevo.Asegurar(), ruta));
    struct stat datos {};
    if (::fstat(nuevo.Fd(), &datos) != 0) return ErrorAlGuardar(errno, ruta);
    QUIMO_TRY_VOID(Sustituir(nuevo));

    std::filesystem::path absoluta = std::filesystem::canonical(ruta, fallo);
    ruta_ = fallo ? ruta : absoluta.string();
    debe_ser_nuevo_ = false;
    archivo_ = nuevo.SoltarArchivo();
    huella_ = HuellaArchivo::De(datos);
    limpias_.clear();
    for (std::uint32_t n = 0; n < Paginas(); ++n) {
        entradas_[n].sucia = false;
        if (entradas_[n].pagina != nullptr) limpias_.push_back(n);
    }
    hay_cambios_ = false;
    aviso_.reset();
    if (const auto asegurada = base::AsegurarNombre(ruta_); !asegurada) {
        aviso_ = ErrorAlGuardar(asegurada.error().error, ruta_);
        aviso_->mensaje =
            "El archivo " + ruta_ +
            " quedó guardado, pero el sistema no asegura su carpeta: tras un corte de "
            "luz podría volver a estar el anterior.";
    }
    return {};
}

Result<std::vector<std::uint8_t>> Almacen::Imagen() const {
    std::vector<std::uint8_t> imagen(static_cast<std::size_t>(Paginas()) * kTamPagina);
    for (std::uint32_t n = 0; n < Paginas(); ++n) {
        QUIMO_TRY_VOID(Extraer(n, imagen.data() + static_cast<std::size_t>(n) * kTamPagina));
    }
    return imagen;
}

}  // namespace quimo::jet
