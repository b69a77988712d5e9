#pragma once

#include "foundation/cls_ado.h"
#include "foundation/reloj.h"

namespace quimo::foundation {

/// The server word that chooses the embedded engine; the database word is then a file's path.
inline constexpr char16_t kServidorEmbebido[] = u"embebido";

/// Whether a missing embedded database is made.
enum class SiFalta { Fallar, Crear };

/// Opens connections by their server word. The clock must outlive the connections.
Conector CrearConector(const Reloj& reloj, SiFalta si_falta = SiFalta::Fallar);

}  // namespace quimo::foundation
