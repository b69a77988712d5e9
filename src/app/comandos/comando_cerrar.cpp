#include <unistd.h>

#include <QDir>
#include <QSysInfo>

#include "app/comandos/consola.h"
#include "app/comandos/resumen_cierre.h"
#include "app/comandos/senales.h"
#include "dayclose/cierre/fin_de_dia.h"
#include "dayclose/cierre/trabajo_terminal.h"
#include "dayclose/terminales/carpeta_share.h"
#include "dayclose/terminales/smb_share.h"
#include "foundation/parametros.h"
#include "foundation/rutas.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

using dayclose::FinDeDia;
using dayclose::OpcionesCierre;
using dayclose::TrabajoTerminal;
using foundation::Respuesta;

std::optional<Respuesta> AnteFalla(const QString& texto) {
    if (texto == u"abortar"_s) return Respuesta::Abortar;
    if (texto == u"ignorar"_s) return Respuesta::Ignorar;
    return std::nullopt;
}

/// What is wrong with the options taken together; empty when nothing is.
QString Contradiccion(const Argumentos& argumentos) {
    const QStringList trabajos = {u"continuar"_s, u"descartar"_s, u"traer"_s, u"enviar"_s};
    QStringList pedidos;
    for (const QString& trabajo : trabajos) {
        if (argumentos.Hay(trabajo)) pedidos << u"--"_s + trabajo;
    }
    if (pedidos.size() > 1) {
        return u"Las opciones %1 no van juntas."_s.arg(pedidos.join(u" y "_s));
    }
    if (argumentos.Hay(u"traer"_s) != argumentos.Hay(u"terminal"_s)) {
        return u"Las opciones --traer ARCHIVO y --terminal NOMBRE van juntas."_s;
    }
    const bool cierra = pedidos.isEmpty() || pedidos.first() == u"--continuar"_s;
    if (argumentos.Hay(u"omitir"_s) && !cierra) {
        return u"La opción --omitir sólo va con un cierre."_s;
    }
    return {};
}

/// The terminals' shares: where --red says they are mounted, else over the network. Null after
/// telling what is wrong with the file that says who logs in.
std::unique_ptr<dayclose::TerminalShare> AbrirRed(const Argumentos& argumentos,
                                                  const QString& carpeta) {
    if (argumentos.Hay(u"red"_s)) {
        return std::make_unique<dayclose::CarpetaShare>(
            QDir(argumentos.Opcion(u"red"_s)).absolutePath());
    }
    auto configuracion = dayclose::ConfiguracionRed::DelPrograma(carpeta);
    if (configuracion) return std::make_unique<dayclose::SmbShare>(*std::move(configuracion));
    EscribirError(QString::fromStdString(configuracion.error().mensaje));
    return nullptr;
}

QString Quien() {
    return u"%1 en %2 (quimoctl, proceso %3)"_s
        .arg(foundation::UsuarioDelSistema(), QSysInfo::machineHostName())
        .arg(::getpid());
}

OpcionesCierre Opciones(const Argumentos& argumentos) {
    OpcionesCierre opciones;
    opciones.pendiente = argumentos.Hay(u"continuar"_s) ? OpcionesCierre::Pendiente::Continuar
                                                        : OpcionesCierre::Pendiente::Rechazar;
    opciones.omitir = argumentos.Varias(u"omitir"_s);
    opciones.quien = Quien();
    opciones.detener = &PedidoDeTerminar::Hay;
    return opciones;
}

/// What the process is answered: the way out that loses nothing, unless --ante-falla says to go on.
/// Discarding is asked for by its own option.
Respuestas RespuestasDe(const Argumentos& argumentos, Respuesta ante_falla) {
    Respuestas respuestas;
    respuestas.ante_falla = ante_falla;
    const bool seguir = ante_falla == Respuesta::Ignorar || argumentos.Hay(u"descartar"_s);
    respuestas.si_no = seguir ? Respuesta::Si : Respuesta::No;
    respuestas.aceptar = Respuesta::Aceptar;
    return respuestas;
}

Estado Cerrar(FinDeDia& proceso, foundation::ClsAdo& ado) {
    const FinDeDia::Desenlace desenlace = proceso.Ejecutar();
    EscribirResumen(ado, proceso.Resumen());
    if (desenlace == FinDeDia::Desenlace::Terminado) return kHecho;
    return desenlace == FinDeDia::Desenlace::Incompleto ? kIncompleto : kFallo;
}

Estado Terminal(const Argumentos& argumentos, TrabajoTerminal& trabajo, foundation::ClsAdo& ado) {
    const TrabajoTerminal::Desenlace desenlace =
        argumentos.Hay(u"enviar"_s)
            ? trabajo.Enviar(argumentos.Opcion(u"enviar"_s))
            : trabajo.Traer(QDir::current().absoluteFilePath(argumentos.Opcion(u"traer"_s)),
                            argumentos.Opcion(u"terminal"_s));
    const bool hecho = desenlace == TrabajoTerminal::Desenlace::Hecho ||
                       desenlace == TrabajoTerminal::Desenlace::Incompleto;
    if (trabajo.Traida() && hecho) EscribirTraida(ado, *trabajo.Traida());
    for (const QString& aviso : trabajo.Avisos())
        Escribir(u"Aviso: "_s + aviso);
    if (hecho && argumentos.Hay(u"enviar"_s)) {
        Escribir(u"Recibió su base nueva: "_s + argumentos.Opcion(u"enviar"_s));
    }
    if (desenlace == TrabajoTerminal::Desenlace::Hecho) return kHecho;
    return desenlace == TrabajoTerminal::Desenlace::Incompleto ? kIncompleto : kFallo;
}

}  // namespace

Estado ComandoCerrar(const Argumentos& argumentos, const Entorno& entorno) {
    const auto ante_falla = AnteFalla(argumentos.Opcion(u"ante-falla"_s, u"abortar"_s));
    const QString contradiccion = ante_falla
                                      ? Contradiccion(argumentos)
                                      : u"La opción --ante-falla admite abortar o ignorar."_s;
    if (!contradiccion.isEmpty()) {
        EscribirError(contradiccion);
        return kMalUso;
    }
    const QString carpeta =
        QDir(argumentos.Opcion(u"dir"_s, foundation::CarpetaInstalacion())).absolutePath();
    if (!QDir(carpeta).exists()) {
        EscribirError(u"No existe la carpeta del programa "_s + carpeta);
        return kFallo;
    }
    const auto share = AbrirRed(argumentos, carpeta);
    if (share == nullptr) return kFallo;
    const PedidoDeTerminar pedido;
    const auto sesion =
        AbrirSesion(argumentos, entorno, foundation::SiFalta::Fallar, carpeta + u"/QUIMO.log"_s,
                    RespuestasDe(argumentos, *ante_falla));
    if (sesion == nullptr) return kFallo;
    foundation::ClsAdo& ado = *sesion->ado;
    if (argumentos.Hay(u"traer"_s) || argumentos.Hay(u"enviar"_s)) {
        TrabajoTerminal trabajo(ado, *share, entorno.reloj, carpeta, Opciones(argumentos));
        return Terminal(argumentos, trabajo, ado);
    }
    FinDeDia proceso(ado, *share, entorno.reloj, carpeta, Opciones(argumentos));
    if (argumentos.Hay(u"descartar"_s)) return proceso.Descartar() ? kHecho : kFallo;
    return Cerrar(proceso, ado);
}

}  // namespace quimo::app
