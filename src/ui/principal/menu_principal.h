#pragma once

#include <optional>
#include <span>

#include "ui/controles/ventana_hija.h"

namespace quimo::ui {

/// An entry of the main menu: a command, a menu with entries of its own, or (without a name) a
/// separator.
struct EntradaMenu {
    const char16_t* nombre = nullptr;  ///< the control's name; the array mnuEdReg shares one
    const char16_t* texto = u"";
    std::span<const EntradaMenu> entradas = {};
    std::optional<OrdenVentana> orden = {};  ///< what it asks of the active child
};

/// The menus of the menu bar, from left to right.
std::span<const EntradaMenu> MenusPrincipales();
/// The pop-up menu of detail grids.
const EntradaMenu& MenuSpread();

/// A button of the toolbar.
struct DefBoton {
    const char16_t* clave = u"";
    const char16_t* texto = u"";  ///< what its hint says
    OrdenVentana orden = OrdenVentana::Aceptar;
    bool separador_antes = false;
};

/// The toolbar's buttons, from left to right. The first one also offers "modify" in its own menu.
std::span<const DefBoton> BotonesHerramientas();

}  // namespace quimo::ui
