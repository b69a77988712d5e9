#pragma once

#include <span>

#include "ui/controles/ventana_hija.h"

namespace quimo::ui {

/// A button of the toolbar.
struct DefBoton {
    const char16_t* clave = u"";
    const char16_t* texto = u"";  ///< what its hint says
    ComandoVentana comando = ComandoVentana::Aceptar;
    bool separador_antes = false;
};

/// The toolbar's buttons, from left to right. The first one also offers "modify" in its own menu.
std::span<const DefBoton> BotonesHerramientas();

}  // namespace quimo::ui
