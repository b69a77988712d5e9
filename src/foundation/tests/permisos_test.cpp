#include "foundation/permisos.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

#include <QFile>

namespace quimo::foundation {
namespace {

using namespace Qt::StringLiterals;

/// What these rights enable among the governed menus and commands, sorted.
QStringList Habilitadas(const QStringList& permisos) {
    QStringList nombres;
    for (const auto& [comando, habilitado] : HabilitarComandos(u'|' + permisos.join(u'|') + u'|')) {
        if (habilitado) nombres << comando->nombre.toString();
    }
    nombres.sort();
    return nombres;
}

struct Caso {
    const char16_t* permisos = nullptr;
    const char16_t* comandos = nullptr;
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

TEST(PermisosTest, CadaPermisoAbreLoSuyoYNadaSinSuMenu) {
    QStringList usados;
    for (const Caso& caso : kCasos) {
        const QStringList permisos = QString::fromUtf16(caso.permisos).split(u' ');
        QStringList esperadas = QString::fromUtf16(caso.comandos).split(u' ');
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
    EXPECT_EQ(Habilitadas(usados).size(), HabilitarComandos(QString()).size());
}

/// The lines of the page's table: what depends on rights, as it is read on the screen.
void Renglones(std::span<const ComandoDef> comandos, const QString& menu, bool con_permiso,
               QStringList& renglones) {
    for (const ComandoDef& comando : comandos) {
        if (comando.nombre.isEmpty()) continue;
        const QString texto = menu + comando.texto.toString().remove(u'&');
        const bool pide = !comando.permiso.isEmpty();
        if (pide || con_permiso) {
            renglones << u"| %1 | `%2` | %3 |"_s.arg(texto, comando.nombre,
                                                     pide ? comando.permiso.toString() : u"—"_s);
        }
        Renglones(comando.comandos, texto + u" › "_s, con_permiso || pide, renglones);
    }
}

TEST(PermisosTest, LaPaginaDiceLoMismoQueLaTabla) {
    QStringList esperados;
    Renglones(MenusPrincipales(), {}, false, esperados);
    QFile pagina(QStringLiteral(QUIMO_DOCS "/permisos.md"));
    ASSERT_TRUE(pagina.open(QIODevice::ReadOnly));
    QStringList escritos = QString::fromUtf8(pagina.readAll()).split(u'\n');
    escritos.removeIf([](const QString& linea) { return !linea.contains(u"| `"_s); });
    for (qsizetype i = 0; i < std::max(esperados.size(), escritos.size()); ++i)
        EXPECT_EQ(escritos.value(i), esperados.value(i)) << escritos.value(i).toStdString();
}

}  // namespace
}  // namespace quimo::foundation
