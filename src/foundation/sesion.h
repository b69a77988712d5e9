#pragma once

#include <QString>

#include "foundation/cls_ado.h"

namespace quimo::foundation {

/// Who is working, kept from the login to the end of the program.
struct EstadoSesion {
    QString usuario;              ///< the name as it was typed
    qint16 id_empleado = 0;       ///< ID_Empleado
    bool admin_usuarios = false;  ///< Admin_Usuarios
    QString permisos;             ///< "|" and, for each right granted, its name and "|"
};

/// The names of the rights that the employee's work groups grant, as EstadoSesion keeps them.
base::Result<QString, data::FalloSql> CargaPermisos(ClsAdo& ado, qint16 id_empleado);

/// Loads the session's rights; a failure is told, and leaves none.
void CargarPermisosDe(ClsAdo& ado, EstadoSesion& sesion);

/// The working date as dd/mm/yyyy. Empty after telling that it is missing or is none.
QString FechaTrabajoParaMostrar(ClsAdo& ado);

/// Whether a list of rights holds this very name, not one that only contains it.
bool TienePermiso(const QString& permisos, const QString& nombre);

}  // namespace quimo::foundation
