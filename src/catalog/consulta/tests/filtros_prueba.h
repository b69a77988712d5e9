#pragma once

#include <array>

#include "catalog/editores/editores.h"

namespace quimo::catalog {

// The editors' own filters, by the names of their tables.
inline const FiltroDef& kTipoPago = kOpTipoPago.filtro;
inline const FiltroDef& kTiposAnulacion = kOpTiposAnulacion.filtro;
inline const FiltroDef& kCategoria = kOpCategoria.filtro;
inline const FiltroDef& kModo = kOpModoPreparacion.filtro;
inline const FiltroDef& kMensajes = kUtlMensajes.filtro;
inline const FiltroDef& kProducto = kOpProductos.filtro;
inline const FiltroDef& kImpuesto = kOpTipoImpuestos.filtro;
inline const FiltroDef& kMenu = kOpMenu.filtro;
inline const FiltroDef& kSubMenu = kOpSubmenu.filtro;
inline const FiltroDef& kModificador = kOpTipoModificador.filtro;
inline const FiltroDef& kGrupoModificador = kOpGpoModificadores.filtro;

// A base with a session's table and a join, and columns that are another table's.
inline constexpr std::array<ColumnaFiltro, 3> kColumnasPaquete = {{
    {u"Id Paquete", u"ID_Paquete", u"ID_Paquete"},
    {u"ID Producto", u"#Tmp_Paquetes.ID_Producto", u"#Tmp_Paquetes.ID_Producto"},
    {u"Producto", u"Nombre_Completo", u"Nombre_Completo"},
}};

inline constexpr std::array<ColumnaFiltro, 3> kColumnasCortesia = {{
    {u"Id Cortesia", u"ID_Tipo_Cortesia", u"ID_Tipo_Cortesia"},
    {u"Nombre", u"Nombre_Tipo_Cortesia", u"Nombre_Tipo_Cortesia"},
    {u"Abrir Gaveta", u"Abrir_Gaveta", u"Abrir_Gaveta"},
}};

inline constexpr FiltroDef kCortesia = {u"Tipo_Cortesia WHERE", kColumnasCortesia};
inline constexpr FiltroDef kPaquete = {
    u"#Tmp_Paquetes LEFT OUTER JOIN Producto ON #Tmp_Paquetes.ID_Producto=Producto.ID_Producto "
    u"WHERE",
    kColumnasPaquete};

}  // namespace quimo::catalog
