#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include "foundation/comandos.h"

namespace quimo::foundation {

/// A menu or command and whether this user may choose it.
struct ComandoHabilitado {
    const ComandoDef* comando = nullptr;
    bool habilitado = false;
};

/// What depends on rights, decided for a list of them (EstadoSesion::permisos): each command with a
/// right of its own, and all that stands in a menu with one. When a menu is closed, so are all its
/// commands. A command that is not in the answer is always enabled.
QVector<ComandoHabilitado> HabilitarComandos(const QString& permisos);

/// Every right that a command asks for, each once.
QStringList NombresDePermisos();

}  // namespace quimo::foundation
