#pragma once

#include <functional>
#include <memory>

#include <QString>

#include "data/sql_connection.h"

namespace quimo::data {

/// What a connection is opened with.
struct DatosConexion {
    QString servidor;
    QString base_de_datos;
    QString usuario;
    QString clave;
};

/// Opens a connection of whichever engine the server word names.
using Conector =
    std::function<base::Result<std::unique_ptr<SqlConnection>, FalloSql>(const DatosConexion&)>;

}  // namespace quimo::data
