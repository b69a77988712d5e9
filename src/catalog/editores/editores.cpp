#include "catalog/editores/editores.h"

namespace quimo::catalog {

std::span<const EditorRevisado* const> Editores() {
    static constexpr const EditorRevisado* kEditores[] = {
        &kOpCategoria,       &kOpGpoModificadores, &kOpMenu,      &kOpTipoModificador,
        &kOpModoPreparacion, &kOpProductos,        &kOpSubmenu,   &kOpTiposAnulacion,
        &kOpTipoImpuestos,   &kOpTipoPago,         &kUtlMensajes,
    };
    return kEditores;
}

}  // namespace quimo::catalog
