#include "ui/principal/teclado.h"

namespace quimo::ui {

std::optional<ComandoVentana> ComandoDeTecla(const QKeyEvent& tecla) {
    if ((tecla.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return std::nullopt;
    switch (tecla.key()) {
        case Qt::Key_F5:
            return ComandoVentana::Aceptar;
        case Qt::Key_Delete:
            return ComandoVentana::Borrar;
        case Qt::Key_Escape:
            return ComandoVentana::Cancelar;
        case Qt::Key_Insert:
            return ComandoVentana::Nuevo;
        case Qt::Key_F6:
            return ComandoVentana::Modificar;
        case Qt::Key_Home:
            return ComandoVentana::Primero;
        case Qt::Key_PageDown:
        case Qt::Key_Down:
            return ComandoVentana::Anterior;
        case Qt::Key_PageUp:
        case Qt::Key_Up:
            return ComandoVentana::Siguiente;
        case Qt::Key_End:
            return ComandoVentana::Ultimo;
        default:
            return std::nullopt;
    }
}

}  // namespace quimo::ui
