#pragma once

#include <QDate>

#include "base/result.h"
#include "data/sql_connection.h"

namespace quimo::demo {

/// Fills an empty schema with the demonstration restaurant: house, staff, menu and parameters, no
/// sales. Employees have no password yet. The caller decides about the transaction.
base::Result<void> Sembrar(data::SqlConnection& conexion, const QDate& fecha_trabajo);

/// Terminals, printers, staff, rights and parameters.
base::Result<void> SembrarCasa(data::SqlConnection& conexion, const QDate& fecha_trabajo);
/// Products with all that describes them. Needs the menus and printer groups of SembrarCasa.
base::Result<void> SembrarCarta(data::SqlConnection& conexion);
/// Packages, promotions and courtesies. Needs the products.
base::Result<void> SembrarOfertas(data::SqlConnection& conexion);

}  // namespace quimo::demo
