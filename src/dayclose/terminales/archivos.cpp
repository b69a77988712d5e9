#include "dayclose/terminales/archivos.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "base/sha256.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

constexpr qsizetype kTrozo = 1 << 18;
constexpr std::chrono::milliseconds kTic{20};  // longer than that of any kernel

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

/// The same size and time of change.
bool SonIguales(const struct stat& uno, const struct stat& otro) {
    return uno.st_size == otro.st_size && uno.st_mtim.tv_sec == otro.st_mtim.tv_sec &&
           uno.st_mtim.tv_nsec == otro.st_mtim.tv_nsec;
}

bool AcabaDeCambiar(const struct stat& estado) {
    const auto cambio = std::chrono::seconds(estado.st_mtim.tv_sec) +
                        std::chrono::nanoseconds(estado.st_mtim.tv_nsec);
    const auto pasado = std::chrono::system_clock::now().time_since_epoch() - cambio;
    return pasado >= std::chrono::nanoseconds::zero() && pasado < kTic;
}

/// Hands the rest of an open file to a sink; how many bytes it was.
ResultadoArchivo<qint64> LeerTodo(int fd, const QString& ruta, Disco disco,
                                  const Sumidero& sumidero) {
    QByteArray trozo(kTrozo, Qt::Uninitialized);
    qint64 total = 0;
    while (true) {
        const ssize_t leidos = ::read(fd, trozo.data(), static_cast<std::size_t>(trozo.size()));
        if (leidos < 0 && errno == EINTR) continue;
        if (leidos < 0) return FalloEnDisco(disco, errno, ruta);
        if (leidos == 0) return total;
        QUIMO_TRY_VOID(sumidero(trozo.constData(), leidos));
        total += leidos;
    }
}

/// A local file that is read whole. It must be open before its reader writes anything anywhere.
class Origen {
public:
    explicit Origen(const QString& ruta) : ruta_(ruta), archivo_(AbrirParaLeer(ruta)) {}

    ResultadoArchivo<void> Revisar(Candados candados) {
        disco_ = candados == Candados::Ignorar ? Disco::Propio : Disco::Terminal;
        if (archivo_.Fd() < 0) return FalloEnDisco(disco_, archivo_.Error(), ruta_);
        if (candados == Candados::Respetar &&
            (HayCandado(archivo_.Fd(), F_RDLCK) || !TomarCompartido(archivo_.Fd()))) {
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        }
        if (::fstat(archivo_.Fd(), &antes_) != 0) return FalloEnDisco(disco_, errno, ruta_);
        // Times move in ticks: a sale within the tick of the one before would not be seen.
        if (candados == Candados::Respetar && AcabaDeCambiar(antes_)) {
            std::this_thread::sleep_for(kTic);
            if (::fstat(archivo_.Fd(), &antes_) != 0) return FalloEnDisco(disco_, errno, ruta_);
        }
        if (!S_ISREG(antes_.st_mode)) return FalloDeErrno(EISDIR, ruta_);
        return {};
    }

    ResultadoArchivo<void> Recorrer(const Sumidero& sumidero) const {
        QUIMO_TRY(const qint64 total, LeerTodo(archivo_.Fd(), ruta_, disco_, sumidero));
        struct stat despues {};
        if (::fstat(archivo_.Fd(), &despues) != 0) return FalloEnDisco(disco_, errno, ruta_);
        if (total != antes_.st_size || !SonIguales(antes_, despues))
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        return {};
    }

private:
    QString ruta_;
    Descriptor archivo_;
    Disco disco_ = Disco::Propio;
    struct stat antes_ {};
};

/// Whether a descriptor's file lies on another computer, mounted by the system's own SMB client.
bool EsMontajeSmb(int fd) {
    constexpr auto kCifs = 0xFF534D42U;
    constexpr auto kSmb2 = 0xFE534D42U;
    struct statfs sistema {};
    if (::fstatfs(fd, &sistema) != 0) return false;
    const auto tipo = static_cast<unsigned>(sistema.f_type);
    return tipo == kCifs || tipo == kSmb2;
}

/// The file that is about to be replaced, locked for us alone from `Tomar` on.
class Retenido {
public:
    explicit Retenido(const QString& ruta) : ruta_(ruta), archivo_(ruta, O_RDWR) {}

    ResultadoArchivo<void> Tomar() {
        if (archivo_.Fd() < 0) {
            return archivo_.Error() == ENOENT ? Cambiado() : FalloDeErrno(archivo_.Error(), ruta_);
        }
        montado_ = EsMontajeSmb(archivo_.Fd());
        // Over SMB both kinds are one, and the second would wait for the first.
        if (!montado_ && ::flock(archivo_.Fd(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        struct flock candado {};
        candado.l_type = F_WRLCK;
        candado.l_whence = SEEK_SET;
        if (::fcntl(archivo_.Fd(), F_OFD_SETLK, &candado) != 0 &&
            (errno == EAGAIN || errno == EACCES)) {
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        }
        if (::fstat(archivo_.Fd(), &tomado_) != 0) return FalloDeErrno(errno, ruta_);
        return {};
    }

    ResultadoArchivo<QString> Sha256() const {
        base::Sha256 resumen;
        QUIMO_TRY(const qint64 bytes,
                  LeerTodo(archivo_.Fd(), ruta_, Disco::Terminal,
                           [&](const char* datos, qsizetype cuantos) -> ResultadoArchivo<void> {
                               resumen.Agregar(datos, static_cast<std::size_t>(cuantos));
                               return {};
                           }));
        if (bytes != tomado_.st_size) return Cambiado();
        return QString::fromStdString(resumen.Terminar());
    }

    /// `kCambiado` unless the file still is what it was when it was taken, and still has its name.
    ResultadoArchivo<void> ExigirIntacto() {
        struct stat ahora {};
        // A computer that speaks SMB does not let anybody replace a file that is open, not even us.
        if (montado_ && archivo_.Cerrar() != 0) return FalloDeErrno(EIO, ruta_);
        if (::stat(QFile::encodeName(ruta_).constData(), &ahora) != 0) return Cambiado();
        const bool mismo = montado_ || ahora.st_ino == tomado_.st_ino;
        return mismo && SonIguales(ahora, tomado_) ? ResultadoArchivo<void>() : Cambiado();
    }

private:
    FalloArchivo Cambiado() const { return FalloDeNumero(FalloArchivo::kCambiado, ruta_); }

    QString ruta_;
    Descriptor archivo_;
    bool montado_ = false;
    struct stat tomado_ {};
};

/// The failure to make a new file: a missing folder is a path, not a file, that was not found.
FalloArchivo FalloAlCrear(Disco disco, int error, const QString& destino) {
    if (error == ENOENT) return FalloDeNumero(FalloArchivo::kRutaNoEncontrada, destino);
    return FalloEnDisco(disco, error, destino);
}

}  // namespace

ArchivoNuevo::ArchivoNuevo(ArchivoNuevo&& otro) noexcept
    : destino_(std::move(otro.destino_)),
      parcial_(std::exchange(otro.parcial_, QString())),
      disco_(otro.disco_),
      contenido_(std::move(otro.contenido_)) {}

ArchivoNuevo::~ArchivoNuevo() {
    if (!parcial_.isEmpty()) ::unlink(QFile::encodeName(parcial_).constData());
}

ResultadoArchivo<ArchivoNuevo> ArchivoNuevo::Escribir(const QString& destino,
                                                      const Productor& producir, Disco disco) {
    const QString parcial = destino + u".parcial"_s;
    Descriptor salida(parcial, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (salida.Fd() < 0) return FalloAlCrear(disco, salida.Error(), destino);
    ArchivoNuevo nuevo(destino, parcial, disco);
    base::Sha256 resumen;
    QUIMO_TRY_VOID(producir([&](const char* datos, qsizetype bytes) -> ResultadoArchivo<void> {
        resumen.Agregar(datos, static_cast<std::size_t>(bytes));
        nuevo.contenido_.bytes += bytes;
        const int fallo = EscribirTodo(salida.Fd(), datos, bytes);
        if (fallo != 0) return FalloEnDisco(disco, fallo, destino);
        return {};
    }));
    if (::fsync(salida.Fd()) != 0) return FalloEnDisco(disco, errno, destino);
    const int al_cerrar = salida.Cerrar();
    if (al_cerrar != 0) return FalloEnDisco(disco, al_cerrar, destino);
    nuevo.contenido_.sha256 = QString::fromStdString(resumen.Terminar());
    return nuevo;
}

ResultadoArchivo<ArchivoNuevo> ArchivoNuevo::CopiaDe(const QString& origen, const QString& destino,
                                                     Disco disco) {
    Origen entrada(origen);
    QUIMO_TRY_VOID(entrada.Revisar(Candados::Ignorar));
    return Escribir(
        destino, [&](const Sumidero& sumidero) { return entrada.Recorrer(sumidero); }, disco);
}

ResultadoArchivo<void> ArchivoNuevo::Colocar() {
    QUIMO_TRY_VOID(Renombrar(parcial_, destino_, disco_));
    parcial_.clear();
    return {};
}

ResultadoArchivo<void> ArchivoNuevo::ColocarSiFalta() {
    if (::renameat2(AT_FDCWD, QFile::encodeName(parcial_).constData(), AT_FDCWD,
                    QFile::encodeName(destino_).constData(), RENAME_NOREPLACE) == 0) {
        parcial_.clear();
        return AsentarNombre(destino_, disco_);
    }
    if (errno == EEXIST) return FalloDeNumero(FalloArchivo::kCambiado, destino_);
    // A file system that cannot tell: most network ones.
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        return FalloEnDisco(disco_, errno, destino_);
    if (QFileInfo::exists(destino_)) return FalloDeNumero(FalloArchivo::kCambiado, destino_);
    return Colocar();
}

ResultadoArchivo<void> ArchivoNuevo::ColocarSi(
    const QString& sha256, const std::function<ResultadoArchivo<void>()>& revisar) {
    Retenido presente(destino_);
    QUIMO_TRY_VOID(presente.Tomar());
    QUIMO_TRY_VOID(revisar());
    QUIMO_TRY(const QString resumen, presente.Sha256());
    if (resumen != sha256) return FalloDeNumero(FalloArchivo::kCambiado, destino_);
    QUIMO_TRY_VOID(presente.ExigirIntacto());
    return Colocar();
}

ArchivoTemporal::~ArchivoTemporal() { QFile::remove(ruta_); }

ResultadoArchivo<Copiado> EscribirCon(const QString& destino, const Productor& producir) {
    QUIMO_TRY(ArchivoNuevo nuevo, ArchivoNuevo::Escribir(destino, producir));
    QUIMO_TRY_VOID(nuevo.Colocar());
    return nuevo.Contenido();
}

ResultadoArchivo<void> RecorrerArchivo(const QString& ruta, const Sumidero& sumidero,
                                       Candados candados) {
    Origen origen(ruta);
    QUIMO_TRY_VOID(origen.Revisar(candados));
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
    base::Sha256 resumen;
    QUIMO_TRY_VOID(
        RecorrerArchivo(ruta, [&](const char* datos, qsizetype bytes) -> ResultadoArchivo<void> {
            resumen.Agregar(datos, static_cast<std::size_t>(bytes));
            return {};
        }));
    return QString::fromStdString(resumen.Terminar());
}

ResultadoArchivo<void> CrearCarpeta(const QString& ruta) {
    const QFileInfo carpeta(ruta);
    if (!carpeta.isDir()) {
        if (carpeta.exists()) return FalloDeNumero(FalloArchivo::kAccesoRuta, ruta);
        const QString madre = carpeta.absolutePath();
        if (!QFileInfo(madre).isDir()) QUIMO_TRY_VOID(CrearCarpeta(madre));
        if (::mkdir(QFile::encodeName(ruta).constData(), 0777) != 0)
            return FalloAlCrear(Disco::Propio, errno, ruta);
    }
    return AsentarNombre(ruta);
}

ResultadoArchivo<void> AsentarNombre(const QString& ruta, Disco disco) {
    const QString carpeta = QFileInfo(ruta).absolutePath();
    const Descriptor descriptor(carpeta, O_RDONLY | O_DIRECTORY);
    if (descriptor.Fd() < 0) return FalloEnDisco(disco, descriptor.Error(), carpeta);
    // Not every network file system can make a folder durable; those that cannot say so.
    if (::fsync(descriptor.Fd()) != 0 && errno != EINVAL && errno != ENOTSUP && errno != EBADF) {
        return FalloEnDisco(disco, errno, carpeta);
    }
    return {};
}

ResultadoArchivo<void> Renombrar(const QString& origen, const QString& destino, Disco disco) {
    if (std::rename(QFile::encodeName(origen).constData(),
                    QFile::encodeName(destino).constData()) != 0) {
        return FalloEnDisco(disco, errno, destino);
    }
    return AsentarNombre(destino, disco);
}

void BorrarRestos(const QString& carpeta) {
    const QStringList restos = {u"Quimo_Terminal.mdb.parcial"_s, u"Quimo_Terminal.mdb.*-*.tmp"_s,
                                u"revision.tmp*"_s, u"recibido.tmp*"_s, u"resumen.tmp*"_s};
    QStringList carpetas = QDir(carpeta).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    carpetas.prepend(u"."_s);
    for (const QString& nombre : carpetas) {
        QDir una(carpeta + u'/' + nombre);
        for (const QString& resto : una.entryList(restos, QDir::Files))
            una.remove(resto);
    }
}

bool EstaBloqueado(const QString& ruta) {
    const Descriptor archivo(AbrirParaLeer(ruta));
    if (archivo.Fd() < 0) return false;
    return HayCandado(archivo.Fd(), F_WRLCK) ||
           (::flock(archivo.Fd(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK);
}

}  // namespace quimo::dayclose
