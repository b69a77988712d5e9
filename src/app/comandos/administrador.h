#pragma once

#include <QString>

#include "base/result.h"
#include "data/sql_connection.h"

namespace quimo::app {

/// Who is to administer a new database.
struct NuevoAdministrador {
    QString usuario;
    QString nombre;
    QString guardada;  ///< the password in its stored form
};

/// Adds the first administrator of a database, in the work group "Administradores" with every right
/// there is. All of it or nothing. Refused (Restriccion) when somebody with a password administers
/// it already, or when the user name is taken.
base::Result<void> CrearAdministrador(data::SqlConnection& conexion,
                                      const NuevoAdministrador& nuevo);

}  // namespace quimo::app
