#pragma once

#include "data/reloj.h"
#include "foundation/cls_ado.h"

namespace quimo::foundation {

/// The server word that chooses the embedded engine; the database word is then a file's path.
inline constexpr char16_t kServidorEmbebido[] = u"embebido";

/// Whether a missing embedded database is made.
enum class SiFalta { Fallar, Crear };

/// What the program opens its database with: the login that QUIMO_BD_USUARIO and QUIMO_BD_CLAVE
/// name, or its own. The embedded engine takes any.
data::DatosConexion AccesoDelPrograma(const QString& servidor, const QString& base_de_datos);

/// Opens connections by their server word: the embedded engine, or SQL Server through ODBC. The
/// clock must outlive the connections.
data::Conector CrearConector(const data::Reloj& reloj, SiFalta si_falta = SiFalta::Fallar);

}  // namespace quimo::foundation
