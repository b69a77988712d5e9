#include "ui/controles/ventana_hija.h"

namespace quimo::ui {

using Comando = ComandoVentana;

ComandosVentana ComandosDeReporte() { return Comando::Imprimir | Comando::Preview; }

ComandosVentana ComandosDeEditor() {
    return Comando::Aceptar | Comando::Borrar | Comando::Cancelar | Comando::Buscar |
           Comando::Nuevo | Comando::Modificar | Comando::Primero | Comando::Anterior |
           Comando::Siguiente | Comando::Ultimo | Comando::Filtro | ComandosDeReporte();
}

VentanaHija::VentanaHija(QWidget* padre) : QWidget(padre) {
    setAttribute(Qt::WA_DeleteOnClose);
    // Keys reach it also while none of its controls has the focus.
    setFocusPolicy(Qt::StrongFocus);
}

}  // namespace quimo::ui
