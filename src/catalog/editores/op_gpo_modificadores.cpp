#include "catalog/editores/editores.h"

namespace quimo::catalog {

namespace {

using Celda = TipoCeldaDetalle;

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Grupo_Modificadores"),
    Texto(u"TxtNombre", u"Nombre_Grupo_Modificadores", u"Nombre").Obligatorio(u"de Nombre"),
    Casilla(u"chkFluir", u"Fluir_automatico", u"Fluir Aut."),
    Casilla(u"chkActivo", u"Grupo_Mod_Activo", u"Activo"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Grupo", u"ID_Grupo_Modificadores", u"ID_Grupo_Modificadores"},
    {u"Nombre", u"Nombre_Grupo_Modificadores", u"Nombre_Grupo_Modificadores"},
    {u"Fluir Aut.", u"Fluir_automatico", u"Fluir_automatico"},
    {u"Activo", u"Grupo_Mod_Activo", u"Grupo_Mod_Activo"},
};

constexpr ColumnaDetalle kColumnas[] = {
    {.tipo = Celda::Codigo, .titulo = u"Clave", .ancho_mm = 20, .cambiable = Cambiable::Siempre},
    {.tipo = Celda::Nombre, .titulo = u"Modificador", .ancho_mm = 80},
    {.tipo = Celda::Marca},
};
constexpr CampoDetalle kAlta[] = {{u"ID_Grupo_Modificadores"}, {u"ID_Tipo_Modificador", 0}};
constexpr RevisionDef kModificador = {.tabla = u"Tipo_Modificador",
                                      .columna_clave = u"ID_Tipo_Modificador",
                                      .columna_nombre = u"Nombre_Tipo_Modificador",
                                      .mensaje = u"La clave del modificador no existe",
                                      .celda_nombre = 1};

constexpr DetalleDef kDetalles[] = {{
    .control = u"sprModificadores",
    .titulo = u"Modificadores",
    .tabla = u"TiposXGrupo_Modificadores",
    .consulta =
        u"SELECT TiposXGrupo_Modificadores.ID_Tipo_Modificador,Nombre_Tipo_Modificador,' ' FROM "
        u"TiposXGrupo_Modificadores,Tipo_Modificador WHERE "
        u"TiposXGrupo_Modificadores.ID_Tipo_Modificador=Tipo_Modificador.ID_Tipo_Modificador AND "
        u"ID_Grupo_Modificadores=",
    .columnas = kColumnas,
    .guardar = GuardarDetalle::Reemplazar,
    .celda_clave = 0,
    .revision = &kModificador,
    .alta = kAlta,
    .columna_registro = u"ID_Grupo_Modificadores",
    .repetido = u"Se intenta dar de alta el mismo modificador 2 veces, solo se registrara una vez",
}};

}  // namespace

constexpr EditorRevisado kOpGpoModificadores = Revisado({
    .nombre = u"OpGpoModificadores",
    .comando = u"mnuOpGpoModificadores",
    .titulo = u"Grupos de modificadores",
    .tabla = u"Grupo_Modificadores",
    .consulta_clave = u"SELECT MAX(ID_Grupo_Modificadores)+1 AS Clave FROM Grupo_Modificadores",
    .campos = kCampos,
    .repetido = u"Ya existe el nombre del grupo de modificadores",
    .detalles = kDetalles,
    .filtro = {u"Grupo_Modificadores WHERE", kFiltro},
});

}  // namespace quimo::catalog
