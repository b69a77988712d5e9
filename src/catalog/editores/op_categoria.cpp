#include "catalog/editores/editores.h"

namespace quimo::catalog {

namespace {

constexpr ItemCodigo kTipos[] = {
    {u"Ventas", u"V"}, {u"Sugestivo", u"S"}, {u"Retail", u"R"}, {u"Sin Ventas", u"N"}};

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Categoria"),
    Texto(u"TxtNombre", u"Nombre_Categoria", u"Nombre").Obligatorio(u"de Nombre"),
    Codigo(u"cmbTipo", u"TxtTipo", u"Tipo_Categoria", u"Tipo", kTipos).Obligatorio(u"de Tipo"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Categoria", u"ID_Categoria", u"ID_Categoria"},
    {u"Nombre", u"Nombre_Categoria", u"Nombre_Categoria"},
    {u"Tipo", u"Tipo", u"Tipo_Categoria", kTipos},
};

}  // namespace

constexpr EditorRevisado kOpCategoria = Revisado({
    .nombre = u"OpCategoria",
    .comando = u"mnuOpCategorias",
    .titulo = u"Categorías",
    .tabla = u"Categoria",
    .consulta_clave =
        u"SELECT case ISNULL(MAX(ID_Categoria),0) when 0 then 1 else MAX(ID_Categoria)+1 end AS "
        u"Clave FROM Categoria",
    .campos = kCampos,
    .repetido = u"Ya existe el nombre de la categoría",
    .filtro = {u"Categoria WHERE", kFiltro},
});

}  // namespace quimo::catalog
