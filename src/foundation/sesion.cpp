#include "foundation/sesion.h"

#include "foundation/parametros.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

base::Result<QString, data::FalloSql> CargaPermisos(ClsAdo& ado, qint16 id_empleado) {
    data::RecordsetPtr filas;
    const QString consulta =
        u"SELECT Nombre_Permiso FROM EmpleadosXGrupo,Grupo_Trabajo,PermisosXGrupo_Trabajo,Permisos "
        "WHERE EmpleadosXGrupo.ID_Grupo_Trabajo=Grupo_Trabajo.ID_Grupo_Trabajo AND "
        "EmpleadosXGrupo.ID_Grupo_Trabajo=PermisosXGrupo_Trabajo.ID_Grupo_Trabajo AND "
        "PermisosXGrupo_Trabajo.ID_Permiso=Permisos.ID_Permiso AND Activo=1 AND ID_Empleado="_s +
        QString::number(id_empleado);
    if (!ado.Consultar(filas, consulta)) return ado.Pendiente().value_or(data::FalloSql{});
    QString permisos = u"|"_s;
    for (const data::Fila& fila : filas->Filas())
        permisos += fila[0].toString() + u'|';
    return permisos;
}

void CargarPermisosDe(ClsAdo& ado, EstadoSesion& sesion) {
    const auto permisos = CargaPermisos(ado, sesion.id_empleado);
    if (!permisos) ado.ManejaError();
    sesion.permisos = permisos ? *permisos : u"|"_s;
}

QString FechaTrabajoParaMostrar(ClsAdo& ado) {
    const auto fecha = Parametros(ado).Cadena(parametro::kFechaTrabajo);
    if (fecha && EsFechaTrabajo(*fecha)) return FechaTrabajoVisible(*fecha);
    const QString motivo = !fecha && fecha.error().numero != data::FalloSql::kSinRegistro
                               ? fecha.error().Descripcion()
                           : fecha ? u"su valor es '"_s + *fecha + u'\''
                                   : u"no está"_s;
    ado.Dialogo().Avisar(
        u"No se pudo leer la fecha de trabajo (FECHA_TRABAJO de Parametros): "_s + motivo + u'.',
        Icono::Exclamacion);
    return {};
}

bool TienePermiso(const QString& permisos, const QString& nombre) {
    return permisos.contains(u'|' + nombre + u'|');
}

}  // namespace quimo::foundation
