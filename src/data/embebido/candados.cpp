#include "data/embebido/candados.h"

#include <cerrno>
#include <cstdint>

#include <fcntl.h>
#include <unistd.h>

#include <QFileInfo>

namespace quimo::data::embebido {

namespace {

constexpr mode_t kPermisos = 0660;

/// The byte that stands for a name, the same in every process.
off_t Lugar(const std::string& nombre) {
    std::uint64_t suma = 14695981039346656037U;
    for (const char c : nombre) {
        suma ^= static_cast<unsigned char>(c);
        suma *= 1099511628211U;
    }
    return static_cast<off_t>(suma >> 2);
}

int Cerrojo(int archivo, const std::string& nombre, short clase) {
    struct flock cerrojo = {};
    cerrojo.l_type = clase;
    cerrojo.l_whence = SEEK_SET;
    cerrojo.l_start = Lugar(nombre);
    cerrojo.l_len = 1;
    int codigo = -1;
    do {
        codigo = fcntl(archivo, F_OFD_SETLK, &cerrojo);
    } while (codigo != 0 && errno == EINTR);
    return codigo == 0 ? 0 : errno;
}

}  // namespace

Candados::Tomado Candados::Tomar(const std::string& archivo, const std::string& nombre) {
    if (archivo_ < 0) {
        // Two ways to one database are two ways to one lock.
        const QString real = QFileInfo(QString::fromStdString(archivo)).canonicalFilePath();
        if (real.isEmpty()) return Tomado::SinCerrojos;
        archivo_ = open((real.toStdString() + "-candado").c_str(), O_RDWR | O_CREAT | O_CLOEXEC,
                        kPermisos);
        if (archivo_ < 0) return Tomado::SinCerrojos;
    }
    if (const auto suyo = veces_.find(nombre); suyo != veces_.end()) {
        ++suyo->second;
        return Tomado::Si;
    }
    const int error = Cerrojo(archivo_, nombre, F_WRLCK);
    if (error == EAGAIN || error == EACCES) return Tomado::Ocupado;
    if (error != 0) return Tomado::SinCerrojos;
    veces_[nombre] = 1;
    return Tomado::Si;
}

bool Candados::Soltar(const std::string& nombre) {
    const auto suyo = veces_.find(nombre);
    if (suyo == veces_.end()) return false;
    if (--suyo->second > 0) return true;
    veces_.erase(suyo);
    // What the system does not give back now it gives back with the file.
    if (Cerrojo(archivo_, nombre, F_UNLCK) != 0 && veces_.empty()) Cerrar();
    return true;
}

void Candados::Cerrar() {
    if (archivo_ >= 0) close(archivo_);
    archivo_ = -1;
    veces_.clear();
}

}  // namespace quimo::data::embebido
