#include "foundation/permisos.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

namespace quimo::foundation {
namespace {

using namespace Qt::StringLiterals;

/// What these rights enable among the governed menus and commands, sorted.
QStringList Habilitadas(const QStringList& permisos) {
    QStringList nombres;
    for (const OrdenHabilitada& orden : HabilitarOrdenes(u'|' + permisos.join(u'|') + u'|')) {
        if (orden.habilitada) nombres << orden.orden;
    }
    nombres.sort();
    return nombres;
}

struct Caso {
    const char16_t* permisos;
    const char16_t* ordenes;
};

// What each right adds to its menu's own.
constexpr std::array<Caso, 28> kCasos = {{
    {u"OPERACION",
     u"mnuOpModosDePreparacion mnuOpProductos mnuOpPromociones mnuOpTipoImpuesto mnuOperacion"},
    {u"OPERACION TIPOSDEPAGO", u"mnuOpTipoPago"},
    {u"OPERACION TIPOSDEANULACION", u"mnuOpTiposAnulacion"},
    {u"OPERACION CATEGORIAS", u"mnuOpCategorias"},
    {u"OPERACION GRUPOSMODIFICADORES", u"mnuOpGpoModificadores"},
    {u"OPERACION MENU", u"mnuOpMenu"},
    {u"OPERACION SUBMENU", u"mnuOPSubMenu"},
    {u"OPERACION GPOOBSEQUIOS", u"mnuOpGpoObsequios mnuOpGpoPromocional"},
    {u"OPERACION CORTESIAS", u"mnuOpCortesias"},
    {u"OPERACION MODIFICADORES", u"mnuOpModificadores"},
    {u"OPERACION PAQUETES", u"mnuOpPaquete"},
    {u"REPORTES",
     u"mnuCorPrincipal mnuDetHoras mnuGoldCard mnuHorasEmpleado mnuNomina mnuProRep "
     u"mnuProRepCortesias mnuResumenHoras"},
    {u"REPORTES REPPAGOS", u"mnuRepDetPagos mnuRepPagos mnuRepProp"},
    {u"REPORTES REPANULACION", u"mnuRepAnulacion"},
    {u"REPORTES REPPMIX", u"mnuRepPMIX"},
    {u"REPORTES REPVENTAS", u"mnuProRepCuentas mnuRepCompCategoria mnuRepVentas"},
    {u"REPORTES REPESPECIALES", u"mnuProRepEspeciales"},
    {u"REPORTES REPARTICULOSXEMPL", u"mnuRepCompArticulos mnuRepCompEmpleado"},
    {u"REPORTES REPLISTADEPRECIOS", u"mnuProRepLista"},
    {u"ADMIN", u"mnuDepartamentos mnuEmpresas mnuUtlAdministracion"},
    {u"ADMIN PERMISOSXGRUPO", u"mnuUtlAdFunxgrp"},
    {u"ADMIN GRUPOSTRABAJO", u"mnuUtlAdGrupos"},
    {u"ADMIN EMPLEADOS", u"mnuUtlAdUsr"},
    {u"CONFIGURACION", u"mnuFunciones mnuTerminal mnuUtlConfiguracion"},
    {u"CONFIGURACION GRUPOSIMPRESORAS", u"mnuUtlConfGposImpresoras"},
    {u"CONFIGURACION IMPRESORAS", u"mnuUtlConfImpresoras"},
    {u"MENSAJES", u"mnuUtlMensajes"},
    {u"PARAMETROS", u"mnuParametros"},
}};

TEST(PermisosTest, EachRightEnablesItsOwnAndNothingWithoutItsMenu) {
    QStringList usados;
    for (const Caso& caso : kCasos) {
        const QStringList permisos = QString::fromUtf16(caso.permisos).split(u' ');
        QStringList esperadas = QString::fromUtf16(caso.ordenes).split(u' ');
        usados << permisos.last();
        if (permisos.size() == 2) {
            EXPECT_TRUE(Habilitadas({permisos[1]}).isEmpty()) << permisos[1].toStdString();
            esperadas += Habilitadas({permisos[0]});
        }
        esperadas.sort();
        EXPECT_EQ(Habilitadas(permisos), esperadas) << permisos.join(u' ').toStdString();
    }
    EXPECT_EQ(usados, NombresDePermisos());
    EXPECT_TRUE(Habilitadas({}).isEmpty());
    EXPECT_EQ(Habilitadas(usados).size(), HabilitarOrdenes(QString()).size());
}

}  // namespace
}  // namespace quimo::foundation
