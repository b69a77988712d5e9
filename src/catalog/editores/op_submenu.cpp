#include "catalog/editores/editores.h"

namespace quimo::catalog {

namespace {

using Celda = TipoCeldaDetalle;

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_SubMenu"),
    Texto(u"TxtNombre", u"Nombre_SubMenu", u"Nombre").Obligatorio(u"de Nombre"),
    Casilla(u"chkFijo", u"SubMenu_Fijo", u"Fijo"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id SubMenu", u"ID_SubMenu", u"ID_SubMenu"},
    {u"Nombre", u"Nombre_SubMenu", u"Nombre_SubMenu"},
};

constexpr ColumnaDetalle kColumnasMenus[] = {
    {.tipo = Celda::Oculta},
    {.tipo = Celda::Oculta},
    {.tipo = Celda::Lista, .titulo = u"Menú", .ancho_mm = 70, .cambiable = Cambiable::Siempre},
    {.tipo = Celda::Marca},
};
constexpr CampoDetalle kAltaMenus[] = {{u"ID_Menu", 0}, {u"ID_SubMenu"}};

constexpr ColumnaDetalle kColumnasProductos[] = {
    {.tipo = Celda::Oculta},
    {.tipo = Celda::Codigo, .titulo = u"Clave", .ancho_mm = 20, .cambiable = Cambiable::SoloNuevas},
    {.tipo = Celda::Nombre, .titulo = u"Producto", .ancho_mm = 80},
    {.tipo = Celda::Oculta},
    {.tipo = Celda::Marca},
    {.tipo = Celda::Entero, .titulo = u"Orden", .ancho_mm = 18, .cambiable = Cambiable::Siempre},
};
constexpr CampoDetalle kAltaProductos[] = {{u"ID_Producto", 1}, {u"ID_SubMenu"}, {u"Orden", 5}};
constexpr CampoDetalle kCambioProductos[] = {{u"Orden", 5}};
constexpr RevisionDef kProducto = {.tabla = u"Producto",
                                   .columna_clave = u"ID_Producto",
                                   .columna_nombre = u"Nombre_Completo",
                                   .mensaje = u"La clave del producto no existe",
                                   .celda_nombre = 2};

constexpr DetalleDef kDetalles[] = {
    {
        .control = u"sprMenus",
        .titulo = u"Menús",
        .tabla = u"SubMenuXMenu",
        .consulta = u"SELECT SubMenuXMenu.ID_Menu,ID_SubMenu,Nombre_Menu,' ' AS M FROM "
                    u"SubMenuXMenu,Menu WHERE SubMenuXMenu.ID_Menu=Menu.ID_Menu AND ID_SubMenu=",
        .columnas = kColumnasMenus,
        .celda_clave = 0,
        .lista = u"SELECT ID_Menu,Nombre_Menu FROM Menu ORDER BY Nombre_Menu",
        .alta = kAltaMenus,
        // A menu changed on a stored row is not saved: it is deleted and added again.
        .columna_registro = u"ID_SubMenu",
        .columna_renglon = {u"ID_Menu", 0},
        .repetido = u"Se intento asignar mas de una vez el submenu a un menu",
    },
    {
        .control = u"sprProductos",
        .titulo = u"Productos",
        .tabla = u"ProductosXSubmenu",
        .consulta = u"SELECT ID_Submenu,ProductosXSubmenu.ID_Producto,Nombre_Completo,NULL,' "
                    u"',Orden FROM ProductosXSubmenu,Producto WHERE "
                    u"ProductosXSubmenu.ID_Producto=Producto.ID_Producto AND ID_SubMenu=",
        .columnas = kColumnasProductos,
        .celda_clave = 1,
        .revision = &kProducto,
        .alta = kAltaProductos,
        .cambio = kCambioProductos,
        .columna_registro = u"ID_SubMenu",
        .columna_renglon = {u"ID_Producto", 1},
        .repetido = u"Se intento asignar mas de una vez el producto a un submenu",
    },
};

}  // namespace

constexpr EditorRevisado kOpSubmenu = Revisado({
    .nombre = u"OpSubmenu",
    .comando = u"mnuOPSubMenu",
    .titulo = u"Submenús",
    .tabla = u"SubMenu",
    .consulta_clave = u"SELECT CASE ISNULL(MAX(ID_Submenu),0) WHEN 0 THEN 1 ELSE "
                      u"MAX(ID_Submenu)+1 END AS Clave FROM Submenu",
    .clave_sin_fila = u"1",
    .campos = kCampos,
    .repetido = u"Ya existe el nombre del submenu",
    .detalles = kDetalles,
    .filtro = {u"SubMenu WHERE", kFiltro},
});

}  // namespace quimo::catalog
