#include "catalog/editores/editores.h"

namespace quimo::catalog {

namespace {

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Tipo_Anulacion"),
    Texto(u"TxtNombre", u"Nombre_Tipos_Anulacion", u"Nombre").Obligatorio(u"de Nombre"),
    Casilla(u"chkRegresar", u"Regresa_Existencia", u"Regresa existencia").Inicial(u"1"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Tipo", u"ID_Tipo_Anulacion", u"ID_Tipo_Anulacion"},
    {u"Nombre", u"Nombre_Tipos_Anulacion", u"Nombre_Tipos_Anulacion"},
    {u"Regresa Existencia", u"Regresa_Existencia", u"Regresa_Existencia"},
};

}  // namespace

constexpr EditorRevisado kOpTiposAnulacion = Revisado({
    .nombre = u"OpTiposAnulacion",
    .comando = u"mnuOpTiposAnulacion",
    .titulo = u"Tipos de anulación",
    .tabla = u"Tipos_Anulacion",
    .campos = kCampos,
    .repetido = u"Ya existe el nombre del tipo de anulación",
    .filtro = {u"Tipos_Anulacion WHERE", kFiltro},
});

}  // namespace quimo::catalog
