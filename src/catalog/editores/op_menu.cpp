#include "catalog/editores/editores.h"

namespace quimo::catalog {

namespace {

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Menu"),
    Texto(u"TxtNombre", u"Nombre_Menu", u"Nombre").Obligatorio(u"de Nombre"),
    Texto(u"txtDescripcion", u"Descripcion", u"Descripción"),
    Casilla(u"chkActivo", u"Menu_Activo", u"Activo"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Menu", u"ID_Menu", u"ID_Menu"},
    // There is no such column to compare: the database refuses it, and so it stays.
    {u"Nombre", u"Nombre_Menu", u"Nombre_Menuu"},
    {u"Descripción", u"Descripcion", u"Descripcion"},
    {u"Activo", u"Menu_Activo", u"Menu_Activo"},
};

}  // namespace

constexpr EditorRevisado kOpMenu = Revisado({
    .nombre = u"OpMenu",
    .comando = u"mnuOpMenu",
    .titulo = u"Menús",
    .tabla = u"Menu",
    // The next number of the modifier groups, not of the menus: docs/decisions/0003.
    .consulta_clave = u"SELECT CASE ISNULL(MAX(ID_Grupo_Modificadores),0) WHEN 0 THEN 1 ELSE "
                      u"MAX(ID_Grupo_Modificadores)+1 END AS Clave FROM Grupo_Modificadores",
    .campos = kCampos,
    .repetido = u"Ya existe el nombre del menu",
    .filtro = {u"Menu WHERE", kFiltro},
});

}  // namespace quimo::catalog
