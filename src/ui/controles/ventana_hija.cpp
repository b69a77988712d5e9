#include "ui/controles/ventana_hija.h"

namespace quimo::ui {

using Orden = OrdenVentana;

OrdenesVentana OrdenesDeReporte() { return Orden::Imprimir | Orden::Preview; }

OrdenesVentana OrdenesDeEditor() {
    return Orden::Aceptar | Orden::Borrar | Orden::Cancelar | Orden::Buscar | Orden::Nuevo |
           Orden::Modificar | Orden::Primero | Orden::Anterior | Orden::Siguiente | Orden::Ultimo |
           Orden::Filtro | OrdenesDeReporte();
}

VentanaHija::VentanaHija(QWidget* padre) : QWidget(padre) {
    setAttribute(Qt::WA_DeleteOnClose);
    // Keys reach it also while none of its controls has the focus.
    setFocusPolicy(Qt::StrongFocus);
}

}  // namespace quimo::ui
