#include <cstdio>

#include <termios.h>
#include <unistd.h>

#include <QFile>

#include "app/comandos/administrador.h"
#include "app/comandos/consola.h"
#include "security/cifrado_rc4.h"
#include "security/clave.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

constexpr qint64 kLineaMax = 1024;

// Without echo on a terminal, which asks twice; otherwise one line of the input.
class SinEco {
public:
    SinEco() : terminal_(tcgetattr(STDIN_FILENO, &antes_) == 0) {
        if (!terminal_) return;
        termios sin_eco = antes_;
        sin_eco.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &sin_eco);
    }
    SinEco(const SinEco&) = delete;
    SinEco& operator=(const SinEco&) = delete;
    ~SinEco() {
        if (terminal_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &antes_);
    }
    bool Terminal() const { return terminal_; }

private:
    termios antes_ = {};
    bool terminal_;
};

QString LeerLinea(QFile& entrada) {
    QString linea = QString::fromUtf8(entrada.readLine(kLineaMax));
    while (linea.endsWith(u'\n') || linea.endsWith(u'\r'))
        linea.chop(1);
    return linea;
}

base::Result<QString> PedirContrasena() {
    QFile entrada;
    if (!entrada.open(stdin, QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return base::Error{base::Error::Codigo::Archivo, "No se puede leer la contraseña."};
    }
    const SinEco sin_eco;
    if (sin_eco.Terminal()) EscribirError(u"Contraseña:"_s);
    QString contrasena = LeerLinea(entrada);
    if (sin_eco.Terminal()) {
        EscribirError(u"Otra vez:"_s);
        if (LeerLinea(entrada) != contrasena) {
            return base::Error{base::Error::Codigo::Datos, "Las contraseñas no son iguales."};
        }
    }
    return contrasena;
}

base::Result<QString> ContrasenaGuardada() {
    security::CifradoRc4 cifrado;
    QUIMO_TRY_VOID(cifrado.Preparar());
    QUIMO_TRY(const QString contrasena, PedirContrasena());
    return cifrado.Cifrar(contrasena);
}

}  // namespace

Estado ComandoUsuario(const Argumentos& argumentos, const Entorno& entorno) {
    const auto guardada = ContrasenaGuardada();
    if (!guardada) return Fallar(guardada.error());
    const auto sesion = AbrirSesion(argumentos, entorno, foundation::SiFalta::Fallar, QString());
    if (sesion == nullptr) return kFallo;
    const QString& usuario = argumentos.palabras[2];
    const auto creado = CrearAdministrador(
        sesion->ado->Conexion(), {usuario, argumentos.Opcion(u"nombre"_s, usuario), *guardada});
    if (!creado) return Fallar(creado.error());
    Escribir(u"Administrador dado de alta: "_s + usuario);
    return kHecho;
}

Estado ComandoClave(const Argumentos& argumentos, const Entorno& /*entorno*/) {
    const QString& archivo = argumentos.palabras[0];
    if (const auto creada = security::CrearArchivoClave(archivo); !creada)
        return Fallar(creada.error());
    Escribir(u"Clave creada en "_s + archivo +
             u". Guarde una copia: sin ella nadie puede entrar.\nUso: QUIMO_CLAVE_ARCHIVO="_s +
             archivo);
    return kHecho;
}

}  // namespace quimo::app
