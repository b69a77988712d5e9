#pragma once

#include "foundation/cls_ado.h"
#include "ui/editores/ventana_editor.h"

namespace quimo::ui {

/// The search and filter dialogs for any editor: what they find becomes its current row. The
/// data-access object must outlive them.
DialogosDeEditor DialogosDeBusqueda(foundation::ClsAdo& ado);

}  // namespace quimo::ui
