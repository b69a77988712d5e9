#include "catalog/editores/editores.h"

namespace quimo::catalog {

namespace {

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Mensaje"),
    // The text of a message is missed as if it were a name: docs/decisions/0003.
    Texto(u"TxtMensaje", u"Mensaje", u"Mensaje").Obligatorio(u"de Nombre"),
    Casilla(u"chkActivo", u"Mensaje_Activo", u"Activo").Inicial(u"1"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Mensaje", u"ID_Mensaje", u"ID_Mensaje"},
    {u"Mensaje", u"Mensaje", u"Mensaje"},
    {u"Activo", u"Mensaje_Activo", u"Mensaje_Activo"},
};

}  // namespace

constexpr EditorRevisado kUtlMensajes = Revisado({
    .nombre = u"UtlMensajes",
    .comando = u"mnuUtlMensajes",
    .titulo = u"Mensajes",
    .tabla = u"Mensajes",
    .campos = kCampos,
    .repetido = u"Ya existe el mensaje",
    .filtro = {u"Mensajes WHERE", kFiltro},
});

}  // namespace quimo::catalog
