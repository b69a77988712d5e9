#include "catalog/editores/editores.h"

namespace quimo::catalog {

namespace {

constexpr ItemCodigo kClases[] = {
    {u"Efectivo", u"E"}, {u"Tarjeta Crédito", u"T"}, {u"Débito", u"D"}, {u"Cheque", u"C"},
    {u"Otro", u"O"},
};

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Tipo_Pago"),
    Texto(u"TxtNombre", u"Nombre_Tipo_Pago", u"Nombre").Obligatorio(u"de Nombre"),
    Codigo(u"CmbClase", u"TxtClase", u"Clase", u"Clase", kClases).Obligatorio(u"de Clase"),
    Casilla(u"chkAbrir", u"Abrir_Gaveta", u"Abrir gaveta").Inicial(u"1"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Tipo", u"ID_Tipo_Pago", u"ID_Tipo_Pago"},
    {u"Nombre", u"Nombre_Tipo_Pago", u"Nombre_Tipo_Pago"},
    {u"Clase", u"Clase", u"Clase", kClases, OtroCodigo::ElUltimo},
    {u"Abrir Gaveta", u"Abrir_Gaveta", u"Abrir_Gaveta"},
};

}  // namespace

constexpr EditorRevisado kOpTipoPago = Revisado({
    .nombre = u"OpTipoPago",
    .comando = u"mnuOpTipoPago",
    .titulo = u"Tipos de pago",
    .tabla = u"Tipo_Pago",
    .campos = kCampos,
    .repetido = u"Ya existe el nombre del tipo de pago",
    .filtro = {u"Tipo_Pago WHERE", kFiltro},
});

}  // namespace quimo::catalog
