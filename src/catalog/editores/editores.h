#pragma once

#include <span>

#include "catalog/declaracion/revisado.h"

namespace quimo::catalog {

// One file each in editores/.
extern const EditorRevisado kOpCategoria;
extern const EditorRevisado kOpGpoModificadores;
extern const EditorRevisado kOpMenu;
extern const EditorRevisado kOpModoPreparacion;
extern const EditorRevisado kOpProductos;
extern const EditorRevisado kOpSubmenu;
extern const EditorRevisado kOpTipoImpuestos;
extern const EditorRevisado kOpTipoModificador;
extern const EditorRevisado kOpTipoPago;
extern const EditorRevisado kOpTiposAnulacion;
extern const EditorRevisado kUtlMensajes;

/// Every catalogue editor, each with the menu command that opens it.
std::span<const EditorRevisado* const> Editores();

}  // namespace quimo::catalog
