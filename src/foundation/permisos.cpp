#include "foundation/permisos.h"

#include "foundation/sesion.h"

namespace quimo::foundation {

namespace {

constexpr ReglaOrden kOperacion[] = {
    {u"mnuOpTipoPago", u"TIPOSDEPAGO"},
    {u"mnuOpTiposAnulacion", u"TIPOSDEANULACION"},
    {u"mnuOpCategorias", u"CATEGORIAS"},
    {u"mnuOpGpoModificadores", u"GRUPOSMODIFICADORES"},
    {u"mnuOpMenu", u"MENU"},
    {u"mnuOPSubMenu", u"SUBMENU"},
    {u"mnuOpGpoObsequios", u"GPOOBSEQUIOS"},
    {u"mnuOpGpoPromocional", u"GPOOBSEQUIOS"},
    {u"mnuOpCortesias", u"CORTESIAS"},
    {u"mnuOpModificadores", u"MODIFICADORES"},
    {u"mnuOpPaquete", u"PAQUETES"},
    {u"mnuOpModosDePreparacion"},
    {u"mnuOpProductos"},
    {u"mnuOpPromociones"},
    {u"mnuOpTipoImpuesto"},
};

constexpr ReglaOrden kReportes[] = {
    {u"mnuRepPagos", u"REPPAGOS"},
    {u"mnuRepDetPagos", u"REPPAGOS"},
    {u"mnuRepProp", u"REPPAGOS"},
    {u"mnuRepAnulacion", u"REPANULACION"},
    {u"mnuRepPMIX", u"REPPMIX"},
    {u"mnuRepVentas", u"REPVENTAS"},
    {u"mnuProRepCuentas", u"REPVENTAS"},
    {u"mnuRepCompCategoria", u"REPVENTAS"},
    {u"mnuProRepEspeciales", u"REPESPECIALES"},
    {u"mnuRepCompEmpleado", u"REPARTICULOSXEMPL"},
    {u"mnuRepCompArticulos", u"REPARTICULOSXEMPL"},
    {u"mnuProRepLista", u"REPLISTADEPRECIOS"},
    {u"mnuNomina"},
    {u"mnuHorasEmpleado"},
    {u"mnuDetHoras"},
    {u"mnuResumenHoras"},
    {u"mnuCorPrincipal"},
    {u"mnuProRepCortesias"},
    {u"mnuGoldCard"},
};

constexpr ReglaOrden kAdministracion[] = {
    {u"mnuUtlAdFunxgrp", u"PERMISOSXGRUPO"},
    {u"mnuUtlAdGrupos", u"GRUPOSTRABAJO"},
    {u"mnuUtlAdUsr", u"EMPLEADOS"},
    {u"mnuEmpresas"},
    {u"mnuDepartamentos"},
};

constexpr ReglaOrden kConfiguracion[] = {
    {u"mnuUtlConfGposImpresoras", u"GRUPOSIMPRESORAS"},
    {u"mnuUtlConfImpresoras", u"IMPRESORAS"},
    {u"mnuFunciones"},
    {u"mnuTerminal"},
};

constexpr ReglaOrden kSueltas[] = {
    {u"mnuUtlMensajes", u"MENSAJES"},
    {u"mnuParametros", u"PARAMETROS"},
};

constexpr ReglaMenu kReglas[] = {
    {u"mnuOperacion", u"OPERACION", kOperacion},
    {u"mnuProRep", u"REPORTES", kReportes},
    {u"mnuUtlAdministracion", u"ADMIN", kAdministracion},
    {u"mnuUtlConfiguracion", u"CONFIGURACION", kConfiguracion},
    {nullptr, nullptr, kSueltas},
};

}  // namespace

std::span<const ReglaMenu> ReglasDeMenus() { return kReglas; }

QVector<OrdenHabilitada> HabilitarOrdenes(const QString& permisos) {
    const auto tiene = [&permisos](const char16_t* permiso) {
        return permiso == nullptr || TienePermiso(permisos, QString::fromUtf16(permiso));
    };
    QVector<OrdenHabilitada> ordenes;
    for (const ReglaMenu& regla : kReglas) {
        const bool abierto = tiene(regla.permiso);
        if (regla.menu != nullptr) ordenes.append({QString::fromUtf16(regla.menu), abierto});
        for (const ReglaOrden& orden : regla.ordenes)
            ordenes.append({QString::fromUtf16(orden.orden), abierto && tiene(orden.permiso)});
    }
    return ordenes;
}

QStringList NombresDePermisos() {
    QStringList nombres;
    const auto agregar = [&nombres](const char16_t* permiso) {
        if (permiso == nullptr) return;
        const QString nombre = QString::fromUtf16(permiso);
        if (!nombres.contains(nombre)) nombres << nombre;
    };
    for (const ReglaMenu& regla : kReglas) {
        agregar(regla.permiso);
        for (const ReglaOrden& orden : regla.ordenes)
            agregar(orden.permiso);
    }
    return nombres;
}

}  // namespace quimo::foundation
