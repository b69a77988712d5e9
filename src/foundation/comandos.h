#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <QFlags>
#include <QStringView>

namespace quimo::foundation {

/// What menu, toolbar and keys can ask of the active child window. An editor's operations and a
/// report's, and the three of an editor's detail grid.
enum class ComandoVentana : std::uint32_t {
    Aceptar = 1U << 0,
    Borrar = 1U << 1,
    Cancelar = 1U << 2,
    Buscar = 1U << 3,
    Nuevo = 1U << 4,
    Modificar = 1U << 5,
    Primero = 1U << 6,
    Anterior = 1U << 7,
    Siguiente = 1U << 8,
    Ultimo = 1U << 9,
    Filtro = 1U << 10,
    Imprimir = 1U << 11,
    Preview = 1U << 12,
    SpreadNuevo = 1U << 13,
    SpreadModificar = 1U << 14,
    SpreadBorrar = 1U << 15,
};
Q_DECLARE_FLAGS(ComandosVentana, ComandoVentana)
Q_DECLARE_OPERATORS_FOR_FLAGS(ComandosVentana)

/// An entry of the menus: a command, a menu with entries of its own, or (without a name) a
/// separator. All that the program knows of a command stands here, once.
struct ComandoDef {
    QStringView nombre = {};   ///< the control's name; only what is asked of a window shares one
    QStringView texto = {};    ///< as it is read; & before the letter that chooses it
    QStringView permiso = {};  ///< the right that it asks for; empty: none but its menu's
    std::span<const ComandoDef> comandos = {};   ///< of a menu
    std::optional<ComandoVentana> ventana = {};  ///< what it asks of the active child
};

/// The menus of the menu bar, from left to right.
std::span<const ComandoDef> MenusPrincipales();
/// The pop-up menu of detail grids.
const ComandoDef& MenuSpread();
/// Whether some command or menu has this name.
bool EsComando(QStringView nombre);

/// Every right that a command asks for, each once, in the order of their keys in a new database.
std::span<const QStringView> Permisos();

}  // namespace quimo::foundation
