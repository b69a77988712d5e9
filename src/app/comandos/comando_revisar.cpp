#include <QFileInfo>

#include "app/comandos/consola.h"
#include "app/comandos/revision_base.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

const QString kRestaurar =
    u"Restaure el respaldo más reciente de la base y traiga después las ventas de los días que le "
    u"falten, de la\ncarpeta archivo: quimoctl cerrar ... --traer ARCHIVO --terminal NOMBRE "
    u"(docs/cierre.md)."_s;

}  // namespace

Estado ComandoRevisarBase(const Argumentos& argumentos, const Entorno& entorno) {
    const auto sesion = AbrirSesion(argumentos, entorno, foundation::SiFalta::Fallar, QString());
    if (sesion == nullptr) {
        if (QFileInfo(argumentos.palabras[1]).isFile()) {
            EscribirError(u"Si ningún otro programa lo tiene ocupado, está dañado. "_s +
                          kRestaurar);
        }
        return kFallo;
    }
    const RevisionBase revision = RevisarBase(sesion->ado->Conexion());
    for (const QString& falla : revision.fallas)
        EscribirError(u"Falla: "_s + falla);
    if (!revision.pendiente.isEmpty()) Escribir(revision.pendiente);
    for (const QString& aviso : revision.avisos)
        Escribir(u"Aviso: "_s + aviso);
    if (!revision.avisos.isEmpty()) {
        Escribir(
            u"Esas ventas no salen completas en los reportes. Traiga otra vez el archivo de su día "
            u"(quimoctl cerrar ... --traer)."_s);
    }
    const QString leido =
        u"Se revisaron %1 tablas con %2 renglones."_s.arg(revision.tablas).arg(revision.renglones);
    if (revision.fallas.isEmpty()) {
        Escribir(u"La base de datos está sana.\n"_s + leido);
        return kHecho;
    }
    Escribir(leido);
    EscribirError(u"La base de datos no está sana. Fallas: %1."_s.arg(revision.fallas.size()));
    if (revision.danada) EscribirError(kRestaurar);
    return kFallo;
}

}  // namespace quimo::app
