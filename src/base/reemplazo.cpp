#include "base/reemplazo.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quimo::base {

namespace {

constexpr int kInterrupcionesMax = 100;

Result<void, FalloSistema> Segun(int hecho) {
    if (hecho != 0) return FalloSistema{errno};
    return {};
}

/// The answers of a file system that does not know such a call.
bool NoSabe(int error) { return error == EINVAL || error == ENOSYS || error == ENOTSUP; }

}  // namespace

Result<Reemplazo, FalloSistema> Reemplazo::Crear(std::string destino, std::string temporal,
                                                 Restos restos, mode_t permisos) {
    const int como = restos == Restos::Pisar ? O_TRUNC : O_EXCL;
    const int fd = ::open(temporal.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | como, permisos);
    if (fd < 0) return FalloSistema{errno};
    return Reemplazo(std::move(destino), std::move(temporal), fd);
}

Reemplazo::Reemplazo(Reemplazo&& otro) noexcept
    : destino_(std::move(otro.destino_)),
      temporal_(std::exchange(otro.temporal_, std::string())),
      archivo_(std::move(otro.archivo_)) {}

Reemplazo::~Reemplazo() {
    if (!temporal_.empty()) ::unlink(temporal_.c_str());
}

Result<void, FalloSistema> Reemplazo::Escribir(const void* datos, std::size_t bytes) {
    const auto* resto = static_cast<const char*>(datos);
    int interrupciones = 0;
    while (bytes > 0) {
        const ssize_t escritos = ::write(archivo_.Fd(), resto, bytes);
        if (escritos < 0) {
            if (errno != EINTR || ++interrupciones == kInterrupcionesMax)
                return FalloSistema{errno};
            continue;
        }
        if (escritos == 0) return FalloSistema{ENOSPC};
        interrupciones = 0;
        resto += escritos;
        bytes -= static_cast<std::size_t>(escritos);
    }
    return {};
}

Result<void, FalloSistema> Reemplazo::Asegurar() { return Segun(::fsync(archivo_.Fd())); }

Result<void, FalloSistema> Reemplazo::Cerrar() {
    const int fallo = archivo_.Cerrar();
    if (fallo != 0) return FalloSistema{fallo};
    return {};
}

Result<void, FalloSistema> Reemplazo::Colocar() {
    QUIMO_TRY_VOID(Renombrar(temporal_, destino_));
    temporal_.clear();
    return {};
}

Result<void, FalloSistema> Reemplazo::ColocarSiFalta() {
    if (::renameat2(AT_FDCWD, temporal_.c_str(), AT_FDCWD, destino_.c_str(), RENAME_NOREPLACE) ==
        0) {
        temporal_.clear();
        return {};
    }
    if (!NoSabe(errno)) return FalloSistema{errno};
    // A link never replaces either; the temporary name goes with this object.
    if (::link(temporal_.c_str(), destino_.c_str()) == 0) return {};
    if (errno == EEXIST) return FalloSistema{errno};
    struct stat presente {};
    if (::lstat(destino_.c_str(), &presente) == 0) return FalloSistema{EEXIST};
    return Colocar();
}

Result<void, FalloSistema> Renombrar(const std::string& origen, const std::string& destino) {
    return Segun(std::rename(origen.c_str(), destino.c_str()));
}

Result<void, FalloSistema> AsegurarNombre(const std::string& ruta) {
    std::string carpeta = std::filesystem::path(ruta).parent_path().string();
    if (carpeta.empty()) carpeta = ".";
    const Descriptor fd(::open(carpeta.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.Fd() < 0) return FalloSistema{errno};
    if (::fsync(fd.Fd()) != 0 && !NoSabe(errno) && errno != EBADF) return FalloSistema{errno};
    return {};
}

}  // namespace quimo::base
