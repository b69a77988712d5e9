#include "ui/principal/teclado.h"

namespace quimo::ui {

std::optional<OrdenVentana> OrdenDeTecla(const QKeyEvent& tecla) {
    if ((tecla.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return std::nullopt;
    switch (tecla.key()) {
        case Qt::Key_F5:
            return OrdenVentana::Aceptar;
        case Qt::Key_Delete:
            return OrdenVentana::Borrar;
        case Qt::Key_Escape:
            return OrdenVentana::Cancelar;
        case Qt::Key_Insert:
            return OrdenVentana::Nuevo;
        case Qt::Key_F6:
            return OrdenVentana::Modificar;
        case Qt::Key_Home:
            return OrdenVentana::Primero;
        case Qt::Key_PageDown:
        case Qt::Key_Down:
            return OrdenVentana::Anterior;
        case Qt::Key_PageUp:
        case Qt::Key_Up:
            return OrdenVentana::Siguiente;
        case Qt::Key_End:
            return OrdenVentana::Ultimo;
        default:
            return std::nullopt;
    }
}

}  // namespace quimo::ui
