#include "dayclose/archivos.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

constexpr qsizetype kTrozo = 1 << 18;

class Descriptor {
public:
    Descriptor(const QString& ruta, int modo, mode_t permisos = 0)
        : fd_(::open(QFile::encodeName(ruta).constData(), modo | O_CLOEXEC, permisos)),
          error_(fd_ < 0 ? errno : 0) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { static_cast<void>(Cerrar()); }
    int Fd() const { return fd_; }
    int Error() const { return error_; }
    /// 0, or the errno: a network file may refuse its last bytes only here.
    int Cerrar() {
        if (fd_ < 0) return 0;
        const int fallo = ::close(fd_) != 0 ? errno : 0;
        fd_ = -1;
        return fallo;
    }

private:
    int fd_;
    int error_;
};

/// Removes the half-written file unless it was put in its place.
class Parcial {
public:
    explicit Parcial(QString ruta) : ruta_(std::move(ruta)) {}
    Parcial(const Parcial&) = delete;
    Parcial& operator=(const Parcial&) = delete;
    ~Parcial() {
        if (!ruta_.isEmpty()) ::unlink(QFile::encodeName(ruta_).constData());
    }
    const QString& Ruta() const { return ruta_; }
    void Conservar() { ruta_.clear(); }

private:
    QString ruta_;
};

/// True when another process holds a lock that `tipo` (F_RDLCK, F_WRLCK) would wait for.
bool HayCandado(int fd, short tipo) {
    struct flock candado {};
    candado.l_type = tipo;
    candado.l_whence = SEEK_SET;
    return ::fcntl(fd, F_OFD_GETLK, &candado) == 0 && candado.l_type != F_UNLCK;
}

/// A shared lock of our own while a file is read. False when somebody holds an exclusive one; file
/// systems without such locks are read as they are.
bool TomarCompartido(int fd) { return ::flock(fd, LOCK_SH | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

int EscribirTodo(int fd, const char* datos, qsizetype bytes) {
    while (bytes > 0) {
        const ssize_t escritos = ::write(fd, datos, static_cast<std::size_t>(bytes));
        if (escritos < 0 && errno == EINTR) continue;
        if (escritos < 0) return errno;
        datos += escritos;
        bytes -= escritos;
    }
    return 0;
}

ResultadoArchivo<void> SincronizarCarpeta(const QString& archivo) {
    const QString carpeta = QFileInfo(archivo).absolutePath();
    const Descriptor descriptor(carpeta, O_RDONLY | O_DIRECTORY);
    if (descriptor.Fd() < 0) return FalloDeErrno(descriptor.Error(), carpeta);
    // Not every network file system can make a folder durable; those that cannot say so.
    if (::fsync(descriptor.Fd()) != 0 && errno != EINVAL && errno != ENOTSUP && errno != EBADF) {
        return FalloDeErrno(errno, carpeta);
    }
    return {};
}

/// Hands every piece of an open file to `usar`, which returns 0 or an errno of its own.
template <typename Usar>
ResultadoArchivo<qint64> LeerTodo(int fd, const QString& ruta, const QString& ruta_salida,
                                  Usar usar) {
    QByteArray trozo(kTrozo, Qt::Uninitialized);
    qint64 total = 0;
    while (true) {
        const ssize_t leidos = ::read(fd, trozo.data(), static_cast<std::size_t>(trozo.size()));
        if (leidos < 0 && errno == EINTR) continue;
        if (leidos < 0) return FalloDeErrno(errno, ruta);
        if (leidos == 0) return total;
        const int fallo = usar(trozo.constData(), leidos);
        if (fallo != 0) return FalloDeErrno(fallo, ruta_salida);
        total += leidos;
    }
}

ResultadoArchivo<void> Asentar(Descriptor& salida, Parcial& parcial, const QString& destino) {
    if (::fsync(salida.Fd()) != 0) return FalloDeErrno(errno, destino);
    const int al_cerrar = salida.Cerrar();
    if (al_cerrar != 0) return FalloDeErrno(al_cerrar, destino);
    QUIMO_TRY_VOID(Renombrar(parcial.Ruta(), destino));
    parcial.Conservar();
    return {};
}

QString NombreParcial(const QString& destino) { return destino + u".parcial"_s; }

/// The failure to make a new file: a missing folder is a path, not a file, that was not found.
FalloArchivo FalloAlCrear(int error, const QString& destino) {
    if (error == ENOENT) return FalloDeNumero(FalloArchivo::kRutaNoEncontrada, destino);
    return FalloDeErrno(error, destino);
}

}  // namespace

ResultadoArchivo<Copiado> CopiarEntero(const QString& origen, const QString& destino,
                                       Candados candados) {
    const Descriptor entrada(origen, O_RDONLY);
    if (entrada.Fd() < 0) return FalloDeErrno(entrada.Error(), origen);
    if (candados == Candados::Respetar &&
        (HayCandado(entrada.Fd(), F_RDLCK) || !TomarCompartido(entrada.Fd()))) {
        return FalloDeNumero(FalloArchivo::kPermisoDenegado, origen);
    }
    struct stat antes {};
    if (::fstat(entrada.Fd(), &antes) != 0) return FalloDeErrno(errno, origen);
    if (!S_ISREG(antes.st_mode)) return FalloDeErrno(EISDIR, origen);

    Parcial parcial(NombreParcial(destino));
    Descriptor salida(parcial.Ruta(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (salida.Fd() < 0) {
        parcial.Conservar();
        return FalloAlCrear(salida.Error(), destino);
    }
    QCryptographicHash resumen(QCryptographicHash::Sha256);
    QUIMO_TRY(const qint64 bytes,
              LeerTodo(entrada.Fd(), origen, destino, [&](const char* datos, qsizetype cuantos) {
                  resumen.addData(QByteArrayView(datos, cuantos));
                  return EscribirTodo(salida.Fd(), datos, cuantos);
              }));
    struct stat despues {};
    if (::fstat(entrada.Fd(), &despues) != 0) return FalloDeErrno(errno, origen);
    if (bytes != antes.st_size || despues.st_size != antes.st_size ||
        despues.st_mtim.tv_sec != antes.st_mtim.tv_sec ||
        despues.st_mtim.tv_nsec != antes.st_mtim.tv_nsec) {
        return FalloDeNumero(FalloArchivo::kPermisoDenegado, origen);
    }
    QUIMO_TRY_VOID(Asentar(salida, parcial, destino));
    return Copiado{bytes, QString::fromLatin1(resumen.result().toHex())};
}

ResultadoArchivo<void> EscribirEntero(const QString& destino, const QByteArray& contenido) {
    Parcial parcial(NombreParcial(destino));
    Descriptor salida(parcial.Ruta(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (salida.Fd() < 0) {
        parcial.Conservar();
        return FalloAlCrear(salida.Error(), destino);
    }
    const int fallo = EscribirTodo(salida.Fd(), contenido.constData(), contenido.size());
    if (fallo != 0) return FalloDeErrno(fallo, destino);
    return Asentar(salida, parcial, destino);
}

ResultadoArchivo<QString> Sha256DeArchivo(const QString& ruta) {
    const Descriptor entrada(ruta, O_RDONLY);
    if (entrada.Fd() < 0) return FalloDeErrno(entrada.Error(), ruta);
    QCryptographicHash resumen(QCryptographicHash::Sha256);
    QUIMO_TRY(const qint64 bytes,
              LeerTodo(entrada.Fd(), ruta, ruta, [&](const char* datos, qsizetype cuantos) {
                  resumen.addData(QByteArrayView(datos, cuantos));
                  return 0;
              }));
    static_cast<void>(bytes);
    return QString::fromLatin1(resumen.result().toHex());
}

ResultadoArchivo<void> CrearCarpeta(const QString& ruta) {
    if (QFileInfo(ruta).isDir()) return {};
    if (QFileInfo::exists(ruta)) return FalloDeNumero(FalloArchivo::kAccesoRuta, ruta);
    errno = 0;
    if (!QDir().mkpath(ruta)) return FalloAlCrear(errno == 0 ? EACCES : errno, ruta);
    return SincronizarCarpeta(ruta);
}

ResultadoArchivo<void> Renombrar(const QString& origen, const QString& destino) {
    if (std::rename(QFile::encodeName(origen).constData(),
                    QFile::encodeName(destino).constData()) != 0) {
        return FalloDeErrno(errno, destino);
    }
    return SincronizarCarpeta(destino);
}

bool EstaBloqueado(const QString& ruta) {
    const Descriptor archivo(ruta, O_RDONLY);
    if (archivo.Fd() < 0) return false;
    return HayCandado(archivo.Fd(), F_WRLCK) ||
           (::flock(archivo.Fd(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK);
}

}  // namespace quimo::dayclose
