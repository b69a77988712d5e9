#include "dayclose/terminales/archivos.h"

#include <cerrno>
#include <chrono>
#include <string>
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

#include "base/descriptor.h"
#include "base/sha256.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

constexpr qsizetype kTrozo = 1 << 18;
constexpr std::chrono::milliseconds kTic{20};  // longer than that of any kernel

std::string Nativa(const QString& ruta) { return QFile::encodeName(ruta).toStdString(); }

using Abierto = base::Result<base::Descriptor, base::FalloSistema>;

Abierto Abrir(const QByteArray& nombre, int modo) {
    base::Descriptor abierto(::open(nombre.constData(), modo | O_CLOEXEC));
    if (abierto.Fd() < 0) return base::FalloSistema{errno};
    return abierto;
}

/// What is neither file nor folder is refused unopened: a pipe would wait for its writer for ever.
Abierto AbrirParaLeer(const QString& ruta) {
    const QByteArray nombre = QFile::encodeName(ruta);
    struct stat cual {};
    if (::stat(nombre.constData(), &cual) == 0 && !S_ISREG(cual.st_mode) &&
        !S_ISDIR(cual.st_mode)) {
        return base::FalloSistema{EISDIR};
    }
    return Abrir(nombre, O_RDONLY);
}

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

/// Hands the rest of an open file to a sink.
ResultadoArchivo<void> LeerTodo(int fd, const QString& ruta, Disco disco,
                                const Sumidero& sumidero) {
    QByteArray trozo(kTrozo, Qt::Uninitialized);
    while (true) {
        const ssize_t leidos = ::read(fd, trozo.data(), static_cast<std::size_t>(trozo.size()));
        if (leidos < 0 && errno == EINTR) continue;
        if (leidos < 0) return FalloEnDisco(disco, errno, ruta);
        if (leidos == 0) return {};
        QUIMO_TRY_VOID(sumidero(trozo.constData(), leidos));
    }
}

/// A local file that is read whole. It must be open before its reader writes anything anywhere.
class Origen {
public:
    explicit Origen(const QString& ruta) : ruta_(ruta), archivo_(AbrirParaLeer(ruta)) {}

    ResultadoArchivo<void> Revisar(Candados candados) {
        disco_ = candados == Candados::Ignorar ? Disco::Propio : Disco::Terminal;
        if (!archivo_) return FalloEnDisco(disco_, archivo_.error().error, ruta_);
        if (candados == Candados::Respetar &&
            (HayCandado(archivo_->Fd(), F_RDLCK) || !TomarCompartido(archivo_->Fd()))) {
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        }
        if (::fstat(archivo_->Fd(), &antes_) != 0) return FalloEnDisco(disco_, errno, ruta_);
        // Times move in ticks: a sale within the tick of the one before would not be seen.
        if (candados == Candados::Respetar && AcabaDeCambiar(antes_)) {
            std::this_thread::sleep_for(kTic);
            if (::fstat(archivo_->Fd(), &antes_) != 0) return FalloEnDisco(disco_, errno, ruta_);
        }
        if (!S_ISREG(antes_.st_mode)) return FalloDeErrno(EISDIR, ruta_);
        return {};
    }

    ResultadoArchivo<void> Recorrer(const Sumidero& sumidero) const {
        qint64 total = 0;
        QUIMO_TRY_VOID(LeerTodo(archivo_->Fd(), ruta_, disco_,
                                [&](const char* datos, qsizetype bytes) -> ResultadoArchivo<void> {
                                    total += bytes;
                                    return sumidero(datos, bytes);
                                }));
        struct stat despues {};
        if (::fstat(archivo_->Fd(), &despues) != 0) return FalloEnDisco(disco_, errno, ruta_);
        if (total != antes_.st_size || !SonIguales(antes_, despues))
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        return {};
    }

private:
    QString ruta_;
    Abierto archivo_;
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
    explicit Retenido(const QString& ruta)
        : ruta_(ruta), archivo_(Abrir(QFile::encodeName(ruta), O_RDWR)) {}

    ResultadoArchivo<void> Tomar() {
        if (!archivo_) {
            const int error = archivo_.error().error;
            return error == ENOENT ? Cambiado() : FalloDeErrno(error, ruta_);
        }
        montado_ = EsMontajeSmb(archivo_->Fd());
        // Over SMB both kinds are one, and the second would wait for the first.
        if (!montado_ && ::flock(archivo_->Fd(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        struct flock candado {};
        candado.l_type = F_WRLCK;
        candado.l_whence = SEEK_SET;
        if (::fcntl(archivo_->Fd(), F_OFD_SETLK, &candado) != 0 &&
            (errno == EAGAIN || errno == EACCES)) {
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
        }
        if (::fstat(archivo_->Fd(), &tomado_) != 0) return FalloDeErrno(errno, ruta_);
        return {};
    }

    ResultadoArchivo<QString> Sha256() const {
        QUIMO_TRY(const Copiado leido, Resumir([&](const Sumidero& sumidero) {
                      return LeerTodo(archivo_->Fd(), ruta_, Disco::Terminal, sumidero);
                  }));
        if (leido.bytes != tomado_.st_size) return Cambiado();
        return leido.sha256;
    }

    /// `kCambiado` unless the file still is what it was when it was taken, and still has its name.
    ResultadoArchivo<void> ExigirIntacto() {
        struct stat ahora {};
        // A computer that speaks SMB does not let anybody replace a file that is open, not even us.
        if (montado_ && archivo_->Cerrar() != 0) return FalloDeErrno(EIO, ruta_);
        if (::stat(QFile::encodeName(ruta_).constData(), &ahora) != 0) return Cambiado();
        const bool mismo = montado_ || ahora.st_ino == tomado_.st_ino;
        return mismo && SonIguales(ahora, tomado_) ? ResultadoArchivo<void>() : Cambiado();
    }

private:
    FalloArchivo Cambiado() const { return FalloDeNumero(FalloArchivo::kCambiado, ruta_); }

    QString ruta_;
    Abierto archivo_;
    bool montado_ = false;
    struct stat tomado_ {};
};

/// The failure to make a new file: a missing folder is a path, not a file, that was not found.
FalloArchivo FalloAlCrear(Disco disco, int error, const QString& destino) {
    if (error == ENOENT) return FalloDeNumero(FalloArchivo::kRutaNoEncontrada, destino);
    return FalloEnDisco(disco, error, destino);
}

}  // namespace

ResultadoArchivo<ArchivoNuevo> ArchivoNuevo::Escribir(const QString& destino,
                                                      const Productor& producir, Disco disco) {
    auto creado = base::Reemplazo::Crear(Nativa(destino), Nativa(destino + u".parcial"_s),
                                         base::Reemplazo::Restos::Pisar, 0644);
    if (!creado) return FalloAlCrear(disco, creado.error().error, destino);
    ArchivoNuevo nuevo(destino, disco, std::move(creado).value());
    QUIMO_TRY(nuevo.contenido_,
              Resumir([&](const Sumidero& sumidero) { return producir(sumidero); },
                      [&](const char* datos, qsizetype bytes) {
                          return nuevo.Segun(
                              nuevo.nuevo_.Escribir(datos, static_cast<std::size_t>(bytes)));
                      }));
    QUIMO_TRY_VOID(nuevo.Segun(nuevo.nuevo_.Asegurar()));
    QUIMO_TRY_VOID(nuevo.Segun(nuevo.nuevo_.Cerrar()));
    return nuevo;
}

ResultadoArchivo<ArchivoNuevo> ArchivoNuevo::CopiaDe(const QString& origen, const QString& destino,
                                                     Disco disco) {
    Origen entrada(origen);
    QUIMO_TRY_VOID(entrada.Revisar(Candados::Ignorar));
    return Escribir(
        destino, [&](const Sumidero& sumidero) { return entrada.Recorrer(sumidero); }, disco);
}

ResultadoArchivo<void> ArchivoNuevo::Segun(
    const base::Result<void, base::FalloSistema>& hecho) const {
    if (!hecho) return FalloEnDisco(disco_, hecho.error().error, destino_);
    return {};
}

ResultadoArchivo<void> ArchivoNuevo::Colocar() {
    QUIMO_TRY_VOID(Segun(nuevo_.Colocar()));
    return AsentarNombre(destino_, disco_);
}

ResultadoArchivo<void> ArchivoNuevo::ColocarSiFalta() {
    const auto colocado = nuevo_.ColocarSiFalta();
    if (!colocado && colocado.error().error == EEXIST)
        return FalloDeNumero(FalloArchivo::kCambiado, destino_);
    QUIMO_TRY_VOID(Segun(colocado));
    return AsentarNombre(destino_, disco_);
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

ResultadoArchivo<Copiado> Resumir(const Productor& producir, const Sumidero& sumidero) {
    base::Sha256 resumen;
    Copiado pasado;
    QUIMO_TRY_VOID(producir([&](const char* datos, qsizetype bytes) -> ResultadoArchivo<void> {
        resumen.Agregar(datos, static_cast<std::size_t>(bytes));
        pasado.bytes += bytes;
        return sumidero ? sumidero(datos, bytes) : ResultadoArchivo<void>();
    }));
    pasado.sha256 = QString::fromStdString(resumen.Terminar());
    return pasado;
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
    QUIMO_TRY(const Copiado leido,
              Resumir([&](const Sumidero& sumidero) { return RecorrerArchivo(ruta, sumidero); }));
    return leido.sha256;
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
    const auto asentado = base::AsegurarNombre(Nativa(ruta));
    if (!asentado)
        return FalloEnDisco(disco, asentado.error().error, QFileInfo(ruta).absolutePath());
    return {};
}

ResultadoArchivo<void> Renombrar(const QString& origen, const QString& destino) {
    const auto hecho = base::Renombrar(Nativa(origen), Nativa(destino));
    if (!hecho) return FalloEnDisco(Disco::Propio, hecho.error().error, destino);
    return AsentarNombre(destino);
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
    const Abierto archivo = AbrirParaLeer(ruta);
    if (!archivo) return false;
    return HayCandado(archivo->Fd(), F_WRLCK) ||
           (::flock(archivo->Fd(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK);
}

}  // namespace quimo::dayclose
