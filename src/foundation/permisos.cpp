#include "foundation/permisos.h"

#include "foundation/sesion.h"

namespace quimo::foundation {

namespace {

/// What holds for the menu that the commands stand in.
struct DelMenu {
    bool abierto = true;
    bool con_permiso = false;
};

void Habilitar(std::span<const ComandoDef> comandos, const QString& permisos, DelMenu menu,
               QVector<ComandoHabilitado>& decididos) {
    for (const ComandoDef& comando : comandos) {
        if (comando.nombre.isEmpty()) continue;
        const bool pide = !comando.permiso.isEmpty();
        const bool abierto =
            menu.abierto && (!pide || TienePermiso(permisos, comando.permiso.toString()));
        const bool con_permiso = menu.con_permiso || pide;
        if (con_permiso) decididos.append({&comando, abierto});
        Habilitar(comando.comandos, permisos, {abierto, con_permiso}, decididos);
    }
}

}  // namespace

QVector<ComandoHabilitado> HabilitarComandos(const QString& permisos) {
    QVector<ComandoHabilitado> decididos;
    Habilitar(MenusPrincipales(), permisos, {}, decididos);
    return decididos;
}

QStringList NombresDePermisos() {
    QStringList nombres;
    for (const QStringView permiso : Permisos())
        nombres << permiso.toString();
    return nombres;
}

}  // namespace quimo::foundation
