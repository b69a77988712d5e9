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

/// What is neither file nor folder is refused unopened: a pipe would wait for its writer for ever.
int AbrirParaLeer(const QString& ruta) {
    const QByteArray nombre = QFile::encodeName(ruta);
    struct stat cual {};
    if (::stat(nombre.constData(), &cual) == 0 && !S_ISREG(cual.st_mode) &&
        !S_ISDIR(cual.st_mode)) {
        errno = EISDIR;
        return -1;
    }
    return ::open(nombre.constData(), O_RDONLY | O_CLOEXEC);
}

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd), error_(fd_ < 0 ? errno : 0) {}
    Descriptor(const QString& ruta, int modo, mode_t permisos = 0)
        : Descriptor(::open(QFile::encodeName(ruta).constData(), modo | O_CLOEXEC, permisos)) {}
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

/// A local file that is read whole. It must be open before its reader writes anything anywhere.
class Origen {
public:
    explicit Origen(const QString& ruta) : ruta_(ruta), archivo_(AbrirParaLeer(ruta)) {}

    ResultadoArchivo<void> Revisar(Candados candados) {
        if (archivo_.Fd() < 0) return FalloDeErrno(archivo_.Error(), ruta_);
        if (candados == Candados::Respetar &&
            (HayCandado(archivo_.Fd(), F_RDLCK) || !TomarCompartido(archivo_.Fd()))) {
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        }
        if (::fstat(archivo_.Fd(), &antes_) != 0) return FalloDeErrno(errno, ruta_);
        if (!S_ISREG(antes_.st_mode)) return FalloDeErrno(EISDIR, ruta_);
        return {};
    }

    ResultadoArchivo<void> Recorrer(const Sumidero& sumidero) const {
        QByteArray trozo(kTrozo, Qt::Uninitialized);
        qint64 total = 0;
        while (true) {
            const ssize_t leidos =
                ::read(archivo_.Fd(), trozo.data(), static_cast<std::size_t>(trozo.size()));
            if (leidos < 0 && errno == EINTR) continue;
            if (leidos < 0) return FalloDeErrno(errno, ruta_);
            if (leidos == 0) break;
            QUIMO_TRY_VOID(sumidero(trozo.constData(), leidos));
            total += leidos;
        }
        struct stat despues {};
        if (::fstat(archivo_.Fd(), &despues) != 0) return FalloDeErrno(errno, ruta_);
        if (total != antes_.st_size || despues.st_size != antes_.st_size ||
            despues.st_mtim.tv_sec != antes_.st_mtim.tv_sec ||
            despues.st_mtim.tv_nsec != antes_.st_mtim.tv_nsec) {
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        }
        return {};
    }

private:
    QString ruta_;
    Descriptor archivo_;
    struct stat antes_ {};
};

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

ResultadoArchivo<Copiado> EscribirCon(const QString& destino, const Productor& producir) {
    Parcial parcial(NombreParcial(destino));
    Descriptor salida(parcial.Ruta(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (salida.Fd() < 0) {
        parcial.Conservar();
        return FalloAlCrear(salida.Error(), destino);
    }
    Copiado copiado;
    QCryptographicHash resumen(QCryptographicHash::Sha256);
    QUIMO_TRY_VOID(producir([&](const char* datos, qsizetype bytes) -> ResultadoArchivo<void> {
        resumen.addData(QByteArrayView(datos, bytes));
        copiado.bytes += bytes;
        const int fallo = EscribirTodo(salida.Fd(), datos, bytes);
        if (fallo != 0) return FalloDeErrno(fallo, destino);
        return {};
    }));
    QUIMO_TRY_VOID(Asentar(salida, parcial, destino));
    copiado.sha256 = QString::fromLatin1(resumen.result().toHex());
    return copiado;
}

ResultadoArchivo<void> RecorrerArchivo(const QString& ruta, const Sumidero& sumidero) {
    Origen origen(ruta);
    QUIMO_TRY_VOID(origen.Revisar(Candados::Ignorar));
    return origen.Recorrer(sumidero);
}

ResultadoArchivo<Copiado> CopiarEntero(const QString& origen, const QString& destino,
                                       Candados candados) {
    Origen entrada(origen);
    QUIMO_TRY_VOID(entrada.Revisar(candados));
    return EscribirCon(destino,
                       [&](const Sumidero& sumidero) { return entrada.Recorrer(sumidero); });
}

ResultadoArchivo<void> EscribirEntero(const QString& destino, const QByteArray& contenido) {
    QUIMO_TRY(const Copiado copiado, EscribirCon(destino, [&](const Sumidero& sumidero) {
                  return sumidero(contenido.constData(), contenido.size());
              }));
    static_cast<void>(copiado);
    return {};
}

ResultadoArchivo<QString> Sha256DeArchivo(const QString& ruta) {
    QCryptographicHash resumen(QCryptographicHash::Sha256);
    QUIMO_TRY_VOID(
        RecorrerArchivo(ruta, [&](const char* datos, qsizetype bytes) -> ResultadoArchivo<void> {
            resumen.addData(QByteArrayView(datos, bytes));
            return {};
        }));
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
    const Descriptor archivo(AbrirParaLeer(ruta));
    if (archivo.Fd() < 0) return false;
    return HayCandado(archivo.Fd(), F_WRLCK) ||
           (::flock(archivo.Fd(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK);
}

}  // namespace quimo::dayclose
