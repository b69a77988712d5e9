#pragma once

#include <array>

#include "catalog/filtro_def.h"

namespace quimo::catalog {

// What the catalogues offer in their filters: caption, expression shown, column filtered on.

inline constexpr std::array<ColumnaFiltro, 4> kColumnasTipoPago = {{
    {u"Id Tipo", u"ID_Tipo_Pago", u"ID_Tipo_Pago"},
    {u"Nombre", u"Nombre_Tipo_Pago", u"Nombre_Tipo_Pago"},
    {u"Clase",
     u"CASE Clase WHEN 'E' THEN 'Efectivo' WHEN 'T' THEN 'Tarjeta Crédito' WHEN 'D' THEN 'Débito' "
     u"WHEN 'C' THEN 'Cheque' ELSE 'Otro' END AS Clase",
     u"Clase"},
    {u"Abrir Gaveta", u"Abrir_Gaveta", u"Abrir_Gaveta"},
}};
inline constexpr std::array<ColumnaFiltro, 3> kColumnasTiposAnulacion = {{
    {u"Id Tipo", u"ID_Tipo_Anulacion", u"ID_Tipo_Anulacion"},
    {u"Nombre", u"Nombre_Tipos_Anulacion", u"Nombre_Tipos_Anulacion"},
    {u"Regresa Existencia", u"Regresa_Existencia", u"Regresa_Existencia"},
}};
inline constexpr std::array<ColumnaFiltro, 3> kColumnasCategoria = {{
    {u"Id Categoria", u"ID_Categoria", u"ID_Categoria"},
    {u"Nombre", u"Nombre_Categoria", u"Nombre_Categoria"},
    {u"Tipo",
     u"CASE Tipo_Categoria WHEN 'V' THEN 'Ventas' WHEN 'S' THEN 'Sugestivo' WHEN 'R' THEN 'Retail' "
     u"WHEN 'N' THEN 'Sin Ventas' END AS Tipo",
     u"Tipo_Categoria"},
}};
inline constexpr std::array<ColumnaFiltro, 3> kColumnasModo = {{
    {u"Id Modo", u"ID_Modo_Preparacion", u"ID_Modo_Preparacion"},
    {u"Nombre", u"Nombre_Modo_Preparacion", u"Nombre_Modo_Preparacion"},
    {u"Indicador", u"Indicador", u"Indicador"},
}};
inline constexpr std::array<ColumnaFiltro, 3> kColumnasMensajes = {{
    {u"Id Mensaje", u"ID_Mensaje", u"ID_Mensaje"},
    {u"Mensaje", u"Mensaje", u"Mensaje"},
    {u"Activo", u"Mensaje_Activo", u"Mensaje_Activo"},
}};
inline constexpr std::array<ColumnaFiltro, 11> kColumnasProducto = {{
    {u"Id Producto", u"ID_Producto", u"ID_Producto"},
    {u"Nombre Completo", u"Nombre_Completo", u"Nombre_Completo"},
    {u"Nombre Botón", u"Nombre_Boton", u"Nombre_Boton"},
    {u"Nombre Cuenta", u"Nombre_Cuenta", u"Nombre_Cuenta"},
    {u"Existencia", u"Existencia", u"Existencia"},
    {u"Abierto", u"Abierto", u"Abierto"},
    {u"Especial", u"Especial", u"Especial"},
    {u"Grupo Impresora", u"Nombre_Grupo_Impresoras", u"Nombre_Grupo_Impresoras"},
    {u"Grupo Modificador", u"Nombre_Grupo_Modificadores", u"Nombre_Grupo_Modificadores"},
    {u"Estado",
     u"CASE Estado WHEN 'A' THEN 'Activo' WHEN 'S' THEN 'Sin existencia' WHEN 'B' THEN 'Bloqueado' "
     u"WHEN 'D' THEN 'Descontinuado' END AS Estado",
     u"Estado"},
    {u"Paquete", u"Paquete", u"Paquete"},
}};
inline constexpr std::array<ColumnaFiltro, 5> kColumnasImpuesto = {{
    {u"Id Tipo", u"Tipos_Impuesto.ID_Tipo_Impuesto", u"Tipos_Impuesto.ID_Tipo_Impuesto"},
    {u"Nombre", u"Nombre_Tipo_Impuesto", u"Nombre_Tipo_Impuesto"},
    {u"Activo", u"Tipo_Imp_Activo", u"Tipo_Imp_Activo"},
    {u"Fecha Inicio", u"Fecha_Inicio_Impuesto", u"Fecha_Inicio_Impuesto"},
    {u"Fecha Fin", u"Fecha_Fin_Impuesto", u"Fecha_Fin_Impuesto"},
}};
inline constexpr std::array<ColumnaFiltro, 4> kColumnasMenu = {{
    {u"Id Menu", u"ID_Menu", u"ID_Menu"},
    {u"Nombre", u"Nombre_Menu", u"Nombre_Menuu"},
    {u"Descripción", u"Descripcion", u"Descripcion"},
    {u"Activo", u"Menu_Activo", u"Menu_Activo"},
}};
inline constexpr std::array<ColumnaFiltro, 2> kColumnasSubMenu = {{
    {u"Id SubMenu", u"ID_SubMenu", u"ID_SubMenu"},
    {u"Nombre", u"Nombre_SubMenu", u"Nombre_SubMenu"},
}};
inline constexpr std::array<ColumnaFiltro, 4> kColumnasModificador = {{
    {u"Id Modificador", u"ID_Tipo_Modificador", u"ID_Tipo_Modificador"},
    {u"Nombre", u"Nombre_Tipo_Modificador", u"Nombre_Tipo_Modificador"},
    {u"Estado",
     u"CASE Estado_Modificador WHEN 'A' THEN 'Activo' WHEN 'S' THEN 'Suspendido' WHEN 'D' THEN "
     u"'Descontinuado' END AS Estado_Modificador",
     u"Estado_Modificador"},
    {u"Precio", u"Precio_Tipo_Modificador", u"Precio_Tipo_Modificador"},
}};
inline constexpr std::array<ColumnaFiltro, 4> kColumnasGrupoModificador = {{
    {u"Id Grupo", u"ID_Grupo_Modificadores", u"ID_Grupo_Modificadores"},
    {u"Nombre", u"Nombre_Grupo_Modificadores", u"Nombre_Grupo_Modificadores"},
    {u"Fluir Aut.", u"Fluir_automatico", u"Fluir_automatico"},
    {u"Activo", u"Grupo_Mod_Activo", u"Grupo_Mod_Activo"},
}};
inline constexpr std::array<ColumnaFiltro, 3> kColumnasPaquete = {{
    {u"Id Paquete", u"ID_Paquete", u"ID_Paquete"},
    {u"ID Producto", u"#Tmp_Paquetes.ID_Producto", u"#Tmp_Paquetes.ID_Producto"},
    {u"Producto", u"Nombre_Completo", u"Nombre_Completo"},
}};

// Two of its columns are another table's.
inline constexpr std::array<ColumnaFiltro, 3> kColumnasCortesia = {{
    {u"Id Cortesia", u"ID_Tipo_Cortesia", u"ID_Tipo_Cortesia"},
    {u"Nombre", u"Nombre_Tipo_Cortesia", u"Nombre_Tipo_Cortesia"},
    {u"Abrir Gaveta", u"Abrir_Gaveta", u"Abrir_Gaveta"},
}};

inline constexpr FiltroDef kCortesia = {u"Tipo_Cortesia WHERE", kColumnasCortesia};
inline constexpr FiltroDef kTipoPago = {u"Tipo_Pago WHERE", kColumnasTipoPago};
inline constexpr FiltroDef kTiposAnulacion = {u"Tipos_Anulacion WHERE", kColumnasTiposAnulacion};
inline constexpr FiltroDef kCategoria = {u"Categoria WHERE", kColumnasCategoria};
inline constexpr FiltroDef kModo = {u"Modo_Preparacion WHERE", kColumnasModo};
inline constexpr FiltroDef kMensajes = {u"Mensajes WHERE", kColumnasMensajes};
inline constexpr FiltroDef kProducto = {
    u"Producto,Grupo_Modificadores,Grupo_Impresoras WHERE "
    u"Producto.ID_Grupo_Modificadores=Grupo_Modificadores.ID_Grupo_Modificadores AND "
    u"Producto.ID_Grupo_Impresoras=Grupo_Impresoras.ID_Grupo_Impresoras ",
    kColumnasProducto};
inline constexpr FiltroDef kImpuesto = {
    u"Tipos_Impuesto,PorcentajeXTipo_Impuesto WHERE "
    u"Tipos_Impuesto.ID_Tipo_Impuesto=PorcentajeXTipo_Impuesto.ID_Tipo_Impuesto",
    kColumnasImpuesto};
inline constexpr FiltroDef kMenu = {u"Menu WHERE", kColumnasMenu};
inline constexpr FiltroDef kSubMenu = {u"SubMenu WHERE", kColumnasSubMenu};
inline constexpr FiltroDef kModificador = {u"Tipo_Modificador WHERE", kColumnasModificador};
inline constexpr FiltroDef kGrupoModificador = {u"Grupo_Modificadores WHERE",
                                                kColumnasGrupoModificador};
inline constexpr FiltroDef kPaquete = {
    u"#Tmp_Paquetes LEFT OUTER JOIN Producto ON #Tmp_Paquetes.ID_Producto=Producto.ID_Producto "
    u"WHERE",
    kColumnasPaquete};

}  // namespace quimo::catalog
