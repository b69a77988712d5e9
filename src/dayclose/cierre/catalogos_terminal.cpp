#include "dayclose/cierre/base_nueva.h"

namespace quimo::dayclose {

namespace {

constexpr DefCatalogo kCatalogos[] = {
    {u"Empleado",
     u"ID_Empleado,Usuario,Nombre_Empleado + ' ' + Apellido_Paterno + ' ' + Apellido_Materno AS "
     u"Nombre_Empleado,Contraseña,Tarjeta_magnetica,Estado_Empleado,Num_Tarjeta"},
    {u"Grupo_Trabajo", u"ID_Grupo_Trabajo,Nombre_Grupo_Trabajo"},
    {u"EmpleadosXGrupo", u"ID_Empleado,ID_Grupo_Trabajo"},
    {u"Permisos", u"ID_Permiso"},
    {u"PermisosXGrupo_Trabajo", u"ID_Grupo_Trabajo,ID_Permiso"},
    {u"Mensajes", u"ID_Mensaje,Mensaje", nullptr, u"Mensaje_Activo=1"},
    {u"Categoria", u"ID_Categoria,Nombre_Categoria,Tipo_categoria"},
    {u"Grupo_Impresoras", u"ID_Grupo_Impresoras,Nombre_Grupo_Impresoras"},
    {u"Terminal", u"ID_Terminal,Nombre_Terminal,Direccion_IP,Estado_Terminal"},
    {u"Impresora",
     u"ID_Impresora,Nombre_Impresora,Puerto,Modo,ID_Terminal,Redirigido,Estado_Impresora,"
     u"EsDeCheques,Id_Impresora_Respaldo"},
    {u"ImpresorasXGrupo", u"ID_Impresora,ID_Grupo_Impresoras"},
    {u"Tipos_Impuesto",
     u"Tipos_Impuesto.ID_Tipo_Impuesto,Nombre_Tipo_Impuesto,Porcentaje,Tipo_Imp_Activo",
     u"Tipos_Impuesto,PorcentajeXTipo_Impuesto",
     u"Tipos_Impuesto.ID_Tipo_Impuesto=PorcentajeXTipo_Impuesto.ID_Tipo_Impuesto", u"Impuesto"},
    {u"Tipos_Anulacion", u"ID_Tipo_Anulacion,Nombre_Tipos_Anulacion,Regresa_Existencia"},
    {u"Modo_Preparacion", u"ID_Modo_Preparacion,Nombre_Modo_Preparacion,Indicador"},
    {u"Tipo_Modificador",
     u"ID_Tipo_Modificador,Nombre_Tipo_Modificador,Precio_Tipo_Modificador,Estado_Modificador"},
    {u"Grupo_Modificadores",
     u"ID_Grupo_Modificadores,Nombre_Grupo_Modificadores,Fluir_automatico,Grupo_Mod_Activo"},
    {u"TiposXGrupo_Modificadores", u"ID_Grupo_Modificadores,ID_Tipo_Modificador"},
    {u"Producto",
     u"ID_Producto,ID_Categoria,Nombre_Boton,Nombre_Cuenta,0 AS Precio_Producto,Existencia,Abierto,"
     u"ID_Grupo_Impresoras,ID_Grupo_Modificadores,Estado,Paquete"},
    {u"Tipo_Cortesia",
     u"ID_Tipo_Cortesia,Nombre_Tipo_Cortesia,Tipo_Cortesia,Cantidad_Cortesia,Cantidad_Maxima,"
     u"Sel_articulo,Cortesia_Activa",
     nullptr, nullptr, u"Cortesia"},
    {u"ProductoXTipo_Cortesia", u"Tipo_Cortesia.ID_Tipo_Cortesia,ID_Producto",
     u"Tipo_Cortesia,ProductoXTipo_Cortesia",
     u"Tipo_Cortesia.ID_Tipo_Cortesia=ProductoXTipo_Cortesia.ID_Tipo_Cortesia", u"Cortesia"},
    {u"Tipo_Pago", u"ID_Tipo_Pago,Nombre_Tipo_Pago,Clase,Abrir_gaveta"},
    {u"ImpuestosXProducto", u"ID_Tipo_Impuesto,ID_Producto,Incluir_en_precio"},
    {u"Secciones_Paquete", u"Id_Seccion_Paquete,Nombre_Seccion,ID_Producto,Numero"},
    {u"ProductosXSeccion", u"ID_Seccion_Paquete,ID_Producto"},
    {u"Promocion", u"ID_Promocion,ClaveUsr,Nombre_Promocion,Tipo_Promocion,CantMesa,Activo",
     nullptr, nullptr, u"Promocion"},
    {u"Grupo_Promocional", u"ID_Grupo_Promocional,Nombre_Gpo_Promocional"},
    {u"Detalle_Gpo_Promocional", u"ID_Grupo_Promocional,ID_Producto"},
    {u"Grupo_Obsequios", u"ID_Grupo_Obsequio,Nombre_Gpo_Obsequio"},
    {u"Detalle_Gpo_Obsequios", u"ID_Grupo_Obsequio,ID_Producto"},
    {u"Detalle_Promocion",
     u"ID_Detalle_Promocion,ID_Promocion,CantMinima,CantMaxima,CantObsequios,Descuento,"
     u"ID_Grupo_Promocional,ID_Grupo_Obsequios"},
    {u"Parametros", u"ID_Parametro,Valor_Num,Valor_Cad"},
};

}  // namespace

std::span<const DefCatalogo> Catalogos() { return kCatalogos; }

}  // namespace quimo::dayclose
