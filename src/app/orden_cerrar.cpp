#include <QDir>

#include "app/consola.h"
#include "app/resumen_cierre.h"
#include "dayclose/carpeta_share.h"
#include "dayclose/fin_de_dia.h"
#include "dayclose/smb_share.h"
#include "foundation/parametros.h"
#include "foundation/rutas.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

std::optional<foundation::Respuesta> AnteFalla(const QString& texto) {
    if (texto == u"abortar"_s) return foundation::Respuesta::Abortar;
    if (texto == u"ignorar"_s) return foundation::Respuesta::Ignorar;
    return std::nullopt;
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

}  // namespace

Estado OrdenCerrar(const Argumentos& argumentos, const Entorno& entorno) {
    const auto ante_falla = AnteFalla(argumentos.Opcion(u"ante-falla"_s, u"abortar"_s));
    if (!ante_falla) {
        EscribirError(u"La opción --ante-falla admite abortar o ignorar."_s);
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
    const auto sesion =
        AbrirSesion(argumentos, entorno, foundation::SiFalta::Fallar, carpeta + u"/QUIMO.log"_s,
                    {*ante_falla, foundation::Respuesta::Si});
    if (sesion == nullptr) return kFallo;
    foundation::ClsAdo& ado = *sesion->ado;
    const auto pendiente = dayclose::FinDeDia::FechaPendiente(ado);
    if (!pendiente) {
        EscribirError(pendiente.error().descripcion);
        return kFallo;
    }
    if (!pendiente->isEmpty() && !argumentos.Hay(u"continuar"_s)) {
        EscribirError(u"El cierre del "_s + foundation::FechaTrabajoVisible(*pendiente) +
                      u" no terminó. Use --continuar para continuarlo."_s);
        return kFallo;
    }
    dayclose::FinDeDia proceso(ado, *share, entorno.reloj, carpeta);
    const auto desenlace = proceso.Ejecutar();
    EscribirResumen(ado, proceso.Resumen());
    return desenlace == dayclose::FinDeDia::Desenlace::Terminado ? kHecho : kFallo;
}

}  // namespace quimo::app
