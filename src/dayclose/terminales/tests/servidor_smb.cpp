#include "servidor_smb.h"

#include <atomic>
#include <csignal>
#include <cstring>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {

namespace {

sockaddr Loopback(quint16 puerto) {
    sockaddr_in direccion{};
    direccion.sin_family = AF_INET;
    direccion.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    direccion.sin_port = htons(puerto);
    sockaddr generica{};
    std::memcpy(&generica, &direccion, sizeof generica);
    return generica;
}

}  // namespace

int SocketEnLoopback() {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr direccion = Loopback(0);
    ::bind(fd, &direccion, sizeof direccion);
    return fd;
}

quint16 PuertoDe(int fd) {
    sockaddr generica{};
    socklen_t largo = sizeof generica;
    ::getsockname(fd, &generica, &largo);
    sockaddr_in direccion{};
    std::memcpy(&direccion, &generica, sizeof direccion);
    return ntohs(direccion.sin_port);
}

int LlamarALoopback(quint16 puerto) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr direccion = Loopback(puerto);
    static_cast<void>(::connect(fd, &direccion, sizeof direccion));
    return fd;
}

namespace {

constexpr int kEspera_ms = 20000;

constexpr char kConfiguracion[] = R"([global]
server role = standalone server
workgroup = PRUEBA
netbios name = PRUEBA
smb ports = @PUERTO@
interfaces = 127.0.0.1/8
bind interfaces only = yes
map to guest = bad user
guest account = @USUARIO@
passdb backend = tdbsam:@DIR@/interno/passdb.tdb
lock directory = @DIR@/interno
state directory = @DIR@/interno
cache directory = @DIR@/interno
private dir = @DIR@/interno
pid directory = @DIR@/interno
ncalrpc dir = @DIR@/interno/ncalrpc
log file = @DIR@/interno/log
load printers = no
printing = bsd
printcap name = /dev/null
disable spoolss = yes
rpc start on demand helpers = no
usershare max shares = 0
[quimo]
path = @DIR@/quimo
guest ok = yes
read only = no
force user = @USUARIO@
[clave]
path = @DIR@/clave
read only = no
)";

QString Programa(const QString& nombre) {
    const QString del_usuario = QStandardPaths::findExecutable(nombre);
    return del_usuario.isEmpty() ? u"/usr/sbin/"_s + nombre : del_usuario;
}

bool Contesta(quint16 puerto) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr direccion = Loopback(puerto);
    const bool contesta = ::connect(fd, &direccion, sizeof direccion) == 0;
    ::close(fd);
    return contesta;
}

}  // namespace

QString ServidorSmb::Usuario() const {
    const passwd* cuenta = ::getpwuid(::geteuid());
    return cuenta == nullptr ? QString() : QString::fromLocal8Bit(cuenta->pw_name);
}

bool ServidorSmb::Preparar() {
    for (const QString& nombre : {u"interno/ncalrpc"_s, u"quimo"_s, u"clave"_s}) {
        QDir().mkpath(carpeta_.filePath(nombre));
    }
    const int reservado = SocketEnLoopback();
    puerto_ = PuertoDe(reservado);
    ::close(reservado);
    QByteArray texto(kConfiguracion);
    texto.replace("@PUERTO@", QByteArray::number(puerto_));
    texto.replace("@USUARIO@", Usuario().toUtf8());
    texto.replace("@DIR@", QFile::encodeName(carpeta_.path()));
    EscribirArchivo(carpeta_.filePath(u"smb.conf"_s), texto);
    QProcess claves;
    claves.start(Programa(u"pdbedit"_s),
                 {u"-s"_s, carpeta_.filePath(u"smb.conf"_s), u"-a"_s, u"-t"_s, u"-u"_s, Usuario()});
    claves.write((QByteArray(kClave) + '\n').repeated(2));
    claves.closeWriteChannel();
    if (claves.waitForFinished(kEspera_ms) && claves.exitCode() == 0) return true;
    qWarning("pdbedit: %s %s", qPrintable(claves.errorString()),
             claves.readAllStandardError().constData());
    return false;
}

bool ServidorSmb::Arrancar() {
    if (puerto_ == 0 && !Preparar()) return false;
    proceso_.setProcessChannelMode(QProcess::MergedChannels);
    proceso_.setStandardOutputFile(QProcess::nullDevice());
    proceso_.setChildProcessModifier([] {
        // Its own group, so that it ends together with the processes of its connections.
        ::setpgid(0, 0);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limite{kBytesMax, kBytesMax};
        ::setrlimit(RLIMIT_FSIZE, &limite);
    });
    proceso_.start(Programa(u"smbd"_s), {u"--foreground"_s, u"--no-process-group"_s, u"-s"_s,
                                         carpeta_.filePath(u"smb.conf"_s)});
    QElapsedTimer reloj;
    reloj.start();
    while (proceso_.waitForStarted(kEspera_ms) && reloj.elapsed() < kEspera_ms) {
        if (Contesta(puerto_)) return true;
        if (proceso_.waitForFinished(50)) break;
    }
    qWarning("smbd: %s", qPrintable(proceso_.errorString()));
    return false;
}

void ServidorSmb::Matar() {
    const auto pid = static_cast<pid_t>(proceso_.processId());
    if (pid <= 0) return;
    ::kill(-pid, SIGKILL);
    proceso_.waitForFinished(kEspera_ms);
}

void ServidorSmb::Congelar() const { ::kill(-static_cast<pid_t>(proceso_.processId()), SIGSTOP); }

std::vector<pid_t> ServidorSmb::Conexiones() const {
    std::vector<pid_t> hijos;
    const QString padre = QString::number(proceso_.processId());
    for (const QString& entrada : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        QFile estado(u"/proc/"_s + entrada + u"/stat"_s);
        if (entrada.toInt() <= 0 || !estado.open(QIODevice::ReadOnly)) continue;
        const QString texto = QString::fromLocal8Bit(estado.readAll());
        const QString nombre = texto.section(u'(', 1).section(u')', 0, 0);
        if (texto.section(u") "_s, 1).section(u' ', 1, 1) == padre && nombre == u"smbd"_s) {
            hijos.push_back(entrada.toInt());
        }
    }
    return hijos;
}

void ServidorSmb::MatarConexiones() const {
    for (const pid_t hijo : Conexiones())
        ::kill(hijo, SIGKILL);
}

void EscribirArchivo(const QString& ruta, const QByteArray& contenido) {
    QDir().mkpath(QFileInfo(ruta).path());
    QFile archivo(ruta);
    if (!archivo.open(QIODevice::WriteOnly) || archivo.write(contenido) != contenido.size()) {
        qFatal("%s", qPrintable(ruta));
    }
}

QByteArray LeerArchivo(const QString& ruta) {
    QFile archivo(ruta);
    return archivo.open(QIODevice::ReadOnly) ? archivo.readAll() : QByteArray("no está");
}

QString Sha256De(const QByteArray& contenido) {
    return QString::fromLatin1(
        QCryptographicHash::hash(contenido, QCryptographicHash::Sha256).toHex());
}

struct CuandoCrezca::Estado {
    std::atomic<bool> acabar = false;
    std::atomic<bool> corrio = false;
    std::thread hilo;
};

CuandoCrezca::CuandoCrezca(const QString& ruta, qint64 bytes, std::function<void()> accion)
    : estado_(std::make_unique<Estado>()) {
    estado_->hilo = std::thread([estado = estado_.get(), ruta, bytes, accion = std::move(accion)] {
        while (!estado->acabar) {
            if (QFileInfo(ruta).size() < bytes) continue;
            accion();
            estado->corrio = true;
            return;
        }
    });
}

CuandoCrezca::~CuandoCrezca() { static_cast<void>(Corrio()); }

bool CuandoCrezca::Corrio() {
    estado_->acabar = true;
    if (estado_->hilo.joinable()) estado_->hilo.join();
    return estado_->corrio;
}

}  // namespace quimo::dayclose::pruebas
