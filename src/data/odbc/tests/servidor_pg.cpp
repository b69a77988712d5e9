#include "servidor_pg.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDir>
#include <QThread>

#include "base/check.h"

namespace quimo::data::odbc {

namespace {

constexpr int kPlazo_ms = 30'000;

int PuertoLibre() {
    const int enchufe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in direccion = {};
    direccion.sin_family = AF_INET;
    direccion.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t largo = sizeof direccion;
    QUIMO_CHECK(bind(enchufe, reinterpret_cast<sockaddr*>(&direccion), largo) == 0);
    QUIMO_CHECK(getsockname(enchufe, reinterpret_cast<sockaddr*>(&direccion), &largo) == 0);
    close(enchufe);
    return ntohs(direccion.sin_port);
}

/// Whether it takes logins: a while after it listens.
bool Contesta(const QString& programas, int puerto) {
    QProcess pregunta;
    pregunta.setStandardOutputFile(QProcess::nullDevice());
    pregunta.start(programas + QStringLiteral("pg_isready"),
                   {QStringLiteral("-h"), QStringLiteral("127.0.0.1"), QStringLiteral("-p"),
                    QString::number(puerto)});
    return pregunta.waitForFinished(kPlazo_ms) && pregunta.exitCode() == 0;
}

/// The server refuses to run as root.
void SinPrivilegios(QProcess& proceso, uid_t usuario, gid_t grupo) {
    proceso.setChildProcessModifier([usuario, grupo] {
        if (getuid() == 0 && (setgid(grupo) != 0 || setuid(usuario) != 0)) _exit(126);
        prctl(PR_SET_PDEATHSIG, SIGQUIT);
    });
}

}  // namespace

ServidorPg::ServidorPg() : puerto_(PuertoLibre()) { Preparar(); }

void ServidorPg::Preparar() {
    const QDir raiz(QStringLiteral("/usr/lib/postgresql"));
    const QStringList versiones = raiz.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    if (versiones.isEmpty()) {
        motivo_ = QStringLiteral("PostgreSQL is not installed");
        return;
    }
    programas_ = raiz.filePath(versiones.last()) + QStringLiteral("/bin/");
    uid_t usuario = getuid();
    gid_t grupo = getgid();
    if (usuario == 0) {
        const passwd* cuenta = getpwnam("postgres");
        if (cuenta == nullptr) {
            motivo_ = QStringLiteral("there is no user postgres to run the server");
            return;
        }
        usuario = cuenta->pw_uid;
        grupo = cuenta->pw_gid;
        QUIMO_CHECK(chown(carpeta_.path().toLocal8Bit().constData(), usuario, grupo) == 0);
    }
    QProcess inicio;
    SinPrivilegios(inicio, usuario, grupo);
    inicio.setWorkingDirectory(carpeta_.path());
    inicio.start(programas_ + QStringLiteral("initdb"),
                 {QStringLiteral("-D"), carpeta_.filePath(QStringLiteral("datos")),
                  QStringLiteral("-A"), QStringLiteral("trust"), QStringLiteral("-U"),
                  QStringLiteral("prueba"), QStringLiteral("-E"), QStringLiteral("UTF8"),
                  QStringLiteral("--locale=C.UTF-8"), QStringLiteral("--no-sync")});
    if (!inicio.waitForFinished(kPlazo_ms) || inicio.exitCode() != 0) {
        inicio.kill();
        inicio.waitForFinished(kPlazo_ms);
        motivo_ = QString::fromLocal8Bit(inicio.readAllStandardError());
    }
    SinPrivilegios(proceso_, usuario, grupo);
    proceso_.setWorkingDirectory(carpeta_.path());
    proceso_.setStandardErrorFile(QProcess::nullDevice());
}

bool ServidorPg::Arrancar() {
    const auto opcion = [](const char* nombre, const QString& valor) {
        return QStringLiteral("--%1=%2").arg(QString::fromLatin1(nombre), valor);
    };
    proceso_.start(programas_ + QStringLiteral("postgres"),
                   {QStringLiteral("-D"), carpeta_.filePath(QStringLiteral("datos")),
                    opcion("listen_addresses", QStringLiteral("127.0.0.1")),
                    opcion("port", QString::number(puerto_)),
                    opcion("unix_socket_directories", carpeta_.path()),
                    opcion("fsync", QStringLiteral("off"))});
    constexpr int kVuelta_ms = 50;
    for (int pasado = 0; pasado < kPlazo_ms; pasado += kVuelta_ms) {
        if (Contesta(programas_, puerto_)) return true;
        if (proceso_.waitForFinished(kVuelta_ms)) return false;
    }
    return false;
}

void ServidorPg::Matar() {
    if (proceso_.state() == QProcess::NotRunning) return;
    kill(static_cast<pid_t>(proceso_.processId()), SIGQUIT);
    if (!proceso_.waitForFinished(kPlazo_ms)) {
        proceso_.kill();
        proceso_.waitForFinished(kPlazo_ms);
    }
}

ServidorPg::~ServidorPg() { Matar(); }

}  // namespace quimo::data::odbc
