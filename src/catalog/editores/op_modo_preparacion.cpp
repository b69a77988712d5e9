#include "catalog/editores/editores.h"

namespace quimo::catalog {

namespace {

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Modo_Preparacion"),
    Texto(u"TxtNombre", u"Nombre_Modo_Preparacion", u"Nombre").Obligatorio(u"de Nombre"),
    Texto(u"txtIndicador", u"Indicador", u"Indicador").Obligatorio(u"de Indicador"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Modo", u"ID_Modo_Preparacion", u"ID_Modo_Preparacion"},
    {u"Nombre", u"Nombre_Modo_Preparacion", u"Nombre_Modo_Preparacion"},
    {u"Indicador", u"Indicador", u"Indicador"},
};

}  // namespace

constexpr EditorRevisado kOpModoPreparacion = Revisado({
    .nombre = u"OpModoPreparacion",
    .comando = u"mnuOpModosDePreparacion",
    .titulo = u"Modos de preparación",
    .tabla = u"Modo_Preparacion",
    .consulta_clave = u"SELECT MAX(ID_Modo_Preparacion)+1 AS Clave FROM Modo_Preparacion",
    .campos = kCampos,
    .repetido = u"Ya existe el modo de preparación",
    .filtro = {u"Modo_Preparacion WHERE", kFiltro},
});

}  // namespace quimo::catalog
