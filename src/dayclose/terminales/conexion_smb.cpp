#include "dayclose/terminales/conexion_smb.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include <QUrl>

#include "dayclose/terminales/biblioteca_smb.h"
#include "dayclose/terminales/equipo_red.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

constexpr qsizetype kTrozo = 1 << 18;

/// Of a connection, which there is none of without the library.
const BibliotecaSmb& Smb() { return *BibliotecaSmb::Cargar(); }

/// The number for an errno of the library, and in brackets what it means here.
FalloArchivo FalloDeSmb(int error, const QString& ruta) {
    int numero = FalloArchivo::kNombreIncorrecto;
    QString motivo = u"se perdió la comunicación con el equipo"_s;
    switch (error) {
        case ENOENT:
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
        case ENOTDIR:
            return FalloDeErrno(error, ruta);
        case EBUSY:
        case ETXTBSY:
        case EAGAIN:
            numero = FalloArchivo::kPermisoDenegado;
            motivo = u"otro programa lo tiene abierto"_s;
            break;
        case EACCES:
        case EPERM:
            numero = FalloArchivo::kAccesoRuta;
            motivo = u"el equipo no acepta al usuario o su clave, o no le da permiso"_s;
            break;
        case EROFS:
        case EISDIR:
            return FalloDeErrno(error, ruta);
        case ETIMEDOUT:
            motivo = u"el equipo no contesta"_s;
            break;
        default:
            break;
    }
    return FalloDeNumero(numero, ruta, motivo);
}

bool EsNombreDeRed(const QString& nombre) {
    return std::all_of(nombre.begin(), nombre.end(), [](QChar letra) {
        return letra.isLetterOrNumber() || letra == u'-' || letra == u'_' || letra == u'.';
    });
}

/// Characters that no file or share has in its name; some the library takes as wildcards.
bool EsParteDeRuta(const QString& parte) {
    return parte != u".."_s && parte != u"."_s &&
           std::none_of(parte.begin(), parte.end(), [](QChar letra) {
               return letra.unicode() < 32 || u"<>:\"|?*"_s.contains(letra);
           });
}

EstadoRemoto EstadoDe(const struct stat& estado) {
    return {estado.st_size, S_ISDIR(estado.st_mode),
            static_cast<qint64>(estado.st_mtim.tv_sec) * 1'000'000'000 + estado.st_mtim.tv_nsec};
}

smbc_share_mode Modo(Compartir compartir) {
    switch (compartir) {
        case Compartir::SoloLectura:
            return SMBC_SHAREMODE_DENY_WRITE;
        case Compartir::Nada:
            return SMBC_SHAREMODE_DENY_ALL;
        case Compartir::Todo:
            break;
    }
    return SMBC_SHAREMODE_DENY_NONE;
}

void Callar(void* /*privado*/, int /*nivel*/, const char* /*texto*/) {}

}  // namespace

ResultadoArchivo<RutaRed> RutaRed::Leer(const QString& remoto) {
    QString resto = remoto;
    resto.replace(u'\\', u'/');
    const bool de_red = resto.startsWith(u"//"_s) && !resto.startsWith(u"///"_s);
    const QStringList partes = resto.split(u'/', Qt::SkipEmptyParts);
    if (!de_red || partes.size() < 3 || !EsNombreDeRed(partes.first()) ||
        !std::all_of(partes.begin(), partes.end(), EsParteDeRuta)) {
        return FalloDeNumero(FalloArchivo::kNombreIncorrecto, remoto);
    }
    return RutaRed{partes[0], partes[1], partes.mid(2)};
}

QString RutaRed::Texto() const {
    return u"\\\\"_s + (QStringList{equipo, recurso} + partes).join(u'\\');
}

RutaRed RutaRed::Junto(const QString& sufijo) const {
    RutaRed otra = *this;
    otra.partes.last() += sufijo;
    return otra;
}

RutaRed RutaRed::ConExtension(const QString& extension) const {
    RutaRed otra = *this;
    QString& nombre = otra.partes.last();
    const qsizetype punto = nombre.lastIndexOf(u'.');
    if (punto > 0) nombre.truncate(punto);
    nombre += extension;
    return otra;
}

ConexionSmb::ConexionSmb(QString direccion, const AccesoRed& acceso)
    : direccion_(std::move(direccion)) {
    // A user of this name exists nowhere: computers that let guests in take it for one.
    acceso_.usuario = acceso.usuario.isEmpty() ? QByteArray("guest") : acceso.usuario.toUtf8();
    if (!acceso.usuario.isEmpty()) acceso_.clave = acceso.clave.toUtf8();
    acceso_.dominio = acceso.dominio.toUtf8();
}

ConexionSmb::~ConexionSmb() {
    if (contexto_ != nullptr) Smb().free_context(contexto_, 1);
}

ResultadoArchivo<std::unique_ptr<ConexionSmb>> ConexionSmb::Abrir(const RutaRed& ruta,
                                                                  const AccesoRed& acceso) {
    if (BibliotecaSmb::Cargar() == nullptr) {
        return FalloDeNumero(FalloArchivo::kErrorDispositivo, ruta.Texto(),
                             u"en este equipo falta la biblioteca libsmbclient"_s);
    }
    QUIMO_TRY(const QString direccion, LocalizarEquipo(ruta.equipo, acceso, ruta.Texto()));
    std::unique_ptr<ConexionSmb> conexion(new ConexionSmb(direccion, acceso));
    if (!conexion->Preparar(acceso)) {
        return FalloDeNumero(FalloArchivo::kErrorDispositivo, ruta.Texto());
    }
    return conexion;
}

bool ConexionSmb::Preparar(const AccesoRed& acceso) {
    contexto_ = Smb().new_context();
    if (contexto_ == nullptr) return false;
    Smb().setDebug(contexto_, 0);
    Smb().setOptionUserData(contexto_, this);
    Smb().setFunctionAuthDataWithContext(contexto_, &ConexionSmb::Identificar);
    Smb().setTimeout(contexto_, acceso.plazo_s * 1000);
    // Always one port: without it the library would try the oldest protocol's as well.
    Smb().setPort(contexto_, acceso.puerto);
    Smb().setOptionUseKerberos(contexto_, 0);
    Smb().setOptionUseCCache(contexto_, 0);
    // A wrong password must be told, not replaced by a nameless login that sees less.
    Smb().setOptionNoAutoAnonymousLogin(contexto_, 1);
    // The library would look whether a connection is alive only now and then, and make a lost one
    // again within an operation, with waits of its own.
    Smb().setFunctionCheckServer(contexto_, [](SMBCCTX*, SMBCSRV*) { return 0; });
    if (Smb().init_context(contexto_) == nullptr) {
        Smb().free_context(contexto_, 1);
        contexto_ = nullptr;
        return false;
    }
    // What the library would print is no text for the user: each failure is told in Spanish.
    Smb().setLogCallback(contexto_, nullptr, Callar);
    // After the library has read the system's settings, which these replace.
    return Smb().setOptionProtocols(contexto_, "SMB2", "SMB3") != 0;
}

void ConexionSmb::Identificar(_SMBCCTX* contexto, const char* /*servidor*/, const char* /*recurso*/,
                              char* dominio, int dominio_max, char* usuario, int usuario_max,
                              char* clave, int clave_max) {
    const auto* esta = static_cast<const ConexionSmb*>(Smb().getOptionUserData(contexto));
    const auto poner = [](char* destino, int maximo, const QByteArray& texto) {
        qstrncpy(destino, texto.constData(), static_cast<size_t>(maximo));
    };
    if (!esta->acceso_.dominio.isEmpty()) poner(dominio, dominio_max, esta->acceso_.dominio);
    poner(usuario, usuario_max, esta->acceso_.usuario);
    poner(clave, clave_max, esta->acceso_.clave);
}

QByteArray ConexionSmb::Url(const RutaRed& ruta) const {
    QByteArray url = "smb://" + direccion_.toLatin1();
    for (const QString& parte : QStringList{ruta.recurso} + ruta.partes) {
        url += '/' + QUrl::toPercentEncoding(parte);
    }
    return url;
}

bool ConexionSmb::Viva(const RutaRed& ruta) {
    const auto raiz = Mirar(ruta.Raiz());
    return raiz || raiz.error().numero != FalloArchivo::kNombreIncorrecto;
}

ResultadoArchivo<std::optional<EstadoRemoto>> ConexionSmb::Mirar(const RutaRed& ruta) {
    struct stat estado {};
    if (Smb().getFunctionStat(contexto_)(contexto_, Url(ruta).constData(), &estado) == 0) {
        return std::optional(EstadoDe(estado));
    }
    if (errno == ENOENT || errno == ENOTDIR) return std::optional<EstadoRemoto>();
    return FalloDeSmb(errno, ruta.Texto());
}

ResultadoArchivo<ArchivoSmb> ConexionSmb::AbrirArchivo(const RutaRed& ruta, int modo,
                                                       Compartir compartir) {
    Smb().setOptionOpenShareMode(contexto_, Modo(compartir));
    SMBCFILE* archivo =
        Smb().getFunctionOpen(contexto_)(contexto_, Url(ruta).constData(), modo, 0644);
    if (archivo == nullptr) return FalloDeSmb(errno, ruta.Texto());
    return ArchivoSmb(contexto_, archivo, ruta.Texto());
}

ResultadoArchivo<void> ConexionSmb::Renombrar(const RutaRed& ruta, const RutaRed& nueva) {
    if (Smb().getFunctionRename(contexto_)(contexto_, Url(ruta).constData(), contexto_,
                                           Url(nueva).constData()) != 0) {
        return FalloDeSmb(errno, ruta.Texto());
    }
    return {};
}

ResultadoArchivo<void> ConexionSmb::Borrar(const RutaRed& ruta) {
    if (Smb().getFunctionUnlink(contexto_)(contexto_, Url(ruta).constData()) != 0) {
        return FalloDeSmb(errno, ruta.Texto());
    }
    return {};
}

ArchivoSmb::~ArchivoSmb() {
    if (archivo_ != nullptr) Smb().getFunctionClose(contexto_)(contexto_, archivo_);
}

ResultadoArchivo<EstadoRemoto> ArchivoSmb::Mirar() {
    struct stat estado {};
    if (Smb().getFunctionFstat(contexto_)(contexto_, archivo_, &estado) != 0) {
        return FalloDeSmb(errno, ruta_);
    }
    return EstadoDe(estado);
}

ResultadoArchivo<void> ArchivoSmb::Recorrer(const Sumidero& sumidero) {
    QUIMO_TRY(const EstadoRemoto antes, Mirar());
    if (antes.es_carpeta) return FalloDeErrno(EISDIR, ruta_);
    QByteArray trozo(kTrozo, Qt::Uninitialized);
    qint64 total = 0;
    while (total <= antes.bytes) {
        const ssize_t leidos = Smb().getFunctionRead(contexto_)(
            contexto_, archivo_, trozo.data(), static_cast<std::size_t>(trozo.size()));
        if (leidos < 0) return FalloDeSmb(errno, ruta_);
        if (leidos == 0) break;
        QUIMO_TRY_VOID(sumidero(trozo.constData(), leidos));
        total += leidos;
    }
    QUIMO_TRY(const EstadoRemoto despues, Mirar());
    if (total != antes.bytes || despues != antes) {
        return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta_);
    }
    return {};
}

ResultadoArchivo<void> ArchivoSmb::Escribir(const char* datos, qsizetype bytes) {
    while (bytes > 0) {
        const ssize_t escritos = Smb().getFunctionWrite(contexto_)(contexto_, archivo_, datos,
                                                                   static_cast<std::size_t>(bytes));
        if (escritos < 0) return FalloDeSmb(errno, ruta_);
        if (escritos == 0) return FalloDeSmb(EIO, ruta_);
        datos += escritos;
        bytes -= escritos;
    }
    return {};
}

ResultadoArchivo<void> ArchivoSmb::Cerrar() {
    SMBCFILE* archivo = std::exchange(archivo_, nullptr);
    if (Smb().getFunctionClose(contexto_)(contexto_, archivo) != 0) return FalloDeSmb(errno, ruta_);
    return {};
}

}  // namespace quimo::dayclose
