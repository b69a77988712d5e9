#pragma once

#include <span>

#include "catalog/declaracion/editor_def.h"

namespace quimo::catalog {

// One file each in editores/.
extern const EditorDef kOpCategoria;
extern const EditorDef kOpGpoModificadores;
extern const EditorDef kOpMenu;
extern const EditorDef kOpModoPreparacion;
extern const EditorDef kOpProductos;
extern const EditorDef kOpSubmenu;
extern const EditorDef kOpTipoImpuestos;
extern const EditorDef kOpTipoModificador;
extern const EditorDef kOpTipoPago;
extern const EditorDef kOpTiposAnulacion;
extern const EditorDef kUtlMensajes;

/// Every catalogue editor, each with the menu command that opens it.
std::span<const EditorDef* const> Editores();

}  // namespace quimo::catalog
