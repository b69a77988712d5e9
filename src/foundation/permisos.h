#pragma once

#include <span>

#include <QString>
#include <QStringList>
#include <QVector>

namespace quimo::foundation {

/// A command of the main menu that depends on the user's rights.
struct ReglaOrden {
    const char16_t* orden = u"";        ///< the control's name
    const char16_t* permiso = nullptr;  ///< without one it is enabled whenever its menu is
};

/// A menu that a right opens, with its commands in the order in which they are tested.
struct ReglaMenu {
    const char16_t* menu = nullptr;  ///< nullptr: the commands do not hang from a right
    const char16_t* permiso = nullptr;
    std::span<const ReglaOrden> ordenes = {};
};

/// All rules, in the order in which they are tested. A command that no rule names is always
/// enabled.
std::span<const ReglaMenu> ReglasDeMenus();

/// A menu or command and whether this user may choose it.
struct OrdenHabilitada {
    QString orden;
    bool habilitada = false;
};

/// What the rules say for a list of rights (EstadoSesion::permisos). When a menu is closed, so are
/// all its commands.
QVector<OrdenHabilitada> HabilitarOrdenes(const QString& permisos);

/// Every right that a rule asks for, each once.
QStringList NombresDePermisos();

}  // namespace quimo::foundation
