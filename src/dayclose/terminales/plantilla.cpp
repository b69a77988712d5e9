#include "dayclose/terminales/plantilla.h"

#include <string>
#include <utility>

#include "jet/base_datos.h"

namespace quimo::dayclose {

using base::Result;
using jet::TipoColumna;

namespace {

constexpr CampoPlantilla Largo(std::string_view nombre) { return {nombre, 0, TipoColumna::Largo}; }
constexpr CampoPlantilla Entero(std::string_view nombre) {
    return {nombre, 0, TipoColumna::Entero};
}
constexpr CampoPlantilla Logico(std::string_view nombre) {
    return {nombre, 0, TipoColumna::Logico};
}
constexpr CampoPlantilla Moneda(std::string_view nombre) {
    return {nombre, 0, TipoColumna::Moneda};
}
constexpr CampoPlantilla Doble(std::string_view nombre) { return {nombre, 0, TipoColumna::Doble}; }
constexpr CampoPlantilla Fecha(std::string_view nombre) { return {nombre, 0, TipoColumna::Fecha}; }
constexpr CampoPlantilla Texto(std::string_view nombre, int largo) {
    return {nombre, largo, TipoColumna::Texto, true};
}
// Two bytes for every character, as the terminals' programs store what is typed in.
constexpr CampoPlantilla TextoPlano(std::string_view nombre, int largo) {
    return {nombre, largo, TipoColumna::Texto, false};
}

constexpr CampoPlantilla kComanda[] = {
    Largo("ID_Comanda"),     Largo("ID_Empleado"),   Largo("Num_Mesa"), Logico("Abierta"),
    Fecha("Fecha_Apertura"), Fecha("Fecha_Cierre"),  Texto("Tipo", 10), Texto("Fecha_Trabajo", 8),
    Largo("Control"),        Largo("CantHuespedes"),
};
constexpr CampoPlantilla kCuenta[] = {
    Largo("ID_Comanda"),       Largo("Num_Cuenta"), Logico("Pagada"),
    Entero("Num_Impresiones"), Moneda("Total"),     Largo("Control"),
};
constexpr CampoPlantilla kProductosXCuenta[] = {
    Largo("ID_ProductosXCuenta"), Largo("ID_Comanda"),           Largo("Num_Cuenta"),
    Largo("ID_Producto"),         TextoPlano("Comentario", 255), Logico("Preparado"),
    Moneda("Precio_Venta"),       Moneda("Precio_Original"),     Largo("ID_Tipo_Anulacion"),
    Largo("ID_Modo_Preparacion"), Largo("ID_Promocion"),         Largo("ID_Paquete"),
    Largo("Empleado_Anulacion"),  Fecha("Hora_Anulacion"),       Largo("Control"),
};
constexpr CampoPlantilla kCortesia[] = {
    Largo("ID_ProductosXCuenta"),
    Largo("ID_Tipo_Cortesia"),
    Moneda("Monto"),
};
constexpr CampoPlantilla kModificador[] = {
    Largo("ID_ProductosXCuenta"),
    Largo("ID_Tipo_Modificador"),
    Moneda("Precio_Modificador"),
};
constexpr CampoPlantilla kImpuestosXCuenta[] = {
    Largo("ID_ProductosXCuenta"),
    Largo("ID_Tipo_Impuesto"),
    Moneda("Monto_ImpuestosXCuenta"),
};
constexpr CampoPlantilla kPago[] = {
    Largo("ID_Pago"),     Largo("ID_comanda"), Largo("Num_Cuenta"),          Largo("ID_Tipo_Pago"),
    Moneda("Monto_Pago"), Moneda("Propina"),   TextoPlano("Referencia", 50), Largo("Control"),
};
constexpr CampoPlantilla kEmpleado[] = {
    Largo("ID_Empleado"),     Texto("Usuario", 20),           Texto("Nombre_Empleado", 150),
    Texto("Contraseña", 100), Texto("Tarjeta_magnetica", 50), Texto("Estado_Empleado", 1),
    Texto("Num_Tarjeta", 20),
};
constexpr CampoPlantilla kGrupoTrabajo[] = {
    Largo("ID_Grupo_Trabajo"),
    Texto("Nombre_Grupo_Trabajo", 50),
};
constexpr CampoPlantilla kEmpleadosXGrupo[] = {
    Largo("ID_Empleado"),
    Largo("ID_Grupo_Trabajo"),
};
constexpr CampoPlantilla kPermisos[] = {
    Largo("ID_Permiso"),
};
constexpr CampoPlantilla kPermisosXGrupoTrabajo[] = {
    Largo("ID_Grupo_Trabajo"),
    Largo("ID_Permiso"),
};
constexpr CampoPlantilla kMensajes[] = {
    Largo("ID_Mensaje"),
    Texto("Mensaje", 255),
};
constexpr CampoPlantilla kCategoria[] = {
    Largo("ID_Categoria"),
    Texto("Nombre_Categoria", 50),
    Texto("Tipo_categoria", 1),
};
constexpr CampoPlantilla kGrupoImpresoras[] = {
    Largo("ID_Grupo_Impresoras"),
    Texto("Nombre_Grupo_Impresoras", 50),
};
constexpr CampoPlantilla kTerminal[] = {
    Largo("ID_Terminal"),
    Texto("Nombre_Terminal", 25),
    Texto("Direccion_IP", 15),
    Texto("Estado_Terminal", 1),
};
constexpr CampoPlantilla kImpresora[] = {
    Largo("ID_Impresora"),
    Texto("Nombre_Impresora", 50),
    Texto("Puerto", 50),
    Texto("Modo", 1),
    Largo("ID_Terminal"),
    Entero("Redirigido"),
    Texto("Estado_Impresora", 1),
    Logico("EsDeCheques"),
    Largo("Id_Impresora_Respaldo"),
};
constexpr CampoPlantilla kImpresorasXGrupo[] = {
    Largo("ID_Impresora"),
    Largo("ID_Grupo_Impresoras"),
};
constexpr CampoPlantilla kTiposImpuesto[] = {
    Largo("ID_Tipo_Impuesto"),
    Texto("Nombre_Tipo_Impuesto", 50),
    Doble("Porcentaje"),
    Logico("Tipo_Imp_Activo"),
};
constexpr CampoPlantilla kTiposAnulacion[] = {
    Largo("ID_Tipo_Anulacion"),
    Texto("Nombre_Tipos_Anulacion", 50),
    Logico("Regresa_Existencia"),
};
constexpr CampoPlantilla kModoPreparacion[] = {
    Largo("ID_Modo_Preparacion"),
    Texto("Nombre_Modo_Preparacion", 50),
    Texto("Indicador", 20),
};
constexpr CampoPlantilla kTipoModificador[] = {
    Largo("ID_Tipo_Modificador"),
    Texto("Nombre_Tipo_Modificador", 50),
    Moneda("Precio_Tipo_Modificador"),
    Texto("Estado_Modificador", 1),
};
constexpr CampoPlantilla kGrupoModificadores[] = {
    Largo("ID_Grupo_Modificadores"),
    Texto("Nombre_Grupo_Modificadores", 50),
    Logico("Fluir_automatico"),
    Logico("Grupo_Mod_Activo"),
};
constexpr CampoPlantilla kTiposXGrupoModificadores[] = {
    Largo("ID_Grupo_Modificadores"),
    Largo("ID_Tipo_Modificador"),
};
constexpr CampoPlantilla kProducto[] = {
    Largo("ID_Producto"),
    Largo("ID_Categoria"),
    Texto("Nombre_Boton", 50),
    Texto("Nombre_Cuenta", 50),
    Moneda("Precio_Producto"),
    Doble("Existencia"),
    Logico("Abierto"),
    Largo("ID_Grupo_Impresoras"),
    Largo("ID_Grupo_Modificadores"),
    Texto("Estado", 1),
    Logico("Paquete"),
};
constexpr CampoPlantilla kTipoCortesia[] = {
    Largo("ID_Tipo_Cortesia"),   Texto("Nombre_Tipo_Cortesia", 50), Texto("Tipo_Cortesia", 1),
    Moneda("Cantidad_Cortesia"), Moneda("Cantidad_Maxima"),         Logico("Sel_articulo"),
    Logico("Cortesia_Activa"),
};
constexpr CampoPlantilla kProductoXTipoCortesia[] = {
    Largo("ID_Tipo_Cortesia"),
    Largo("ID_Producto"),
};
constexpr CampoPlantilla kTipoPago[] = {
    Largo("ID_Tipo_Pago"),
    Texto("Nombre_Tipo_Pago", 50),
    Texto("Clase", 1),
    Logico("Abrir_gaveta"),
};
constexpr CampoPlantilla kImpuestosXProducto[] = {
    Largo("ID_Tipo_Impuesto"),
    Largo("ID_Producto"),
    Logico("Incluir_en_precio"),
};
constexpr CampoPlantilla kSeccionesPaquete[] = {
    Largo("Id_Seccion_Paquete"),
    Texto("Nombre_Seccion", 100),
    Largo("ID_Producto"),
    Largo("Numero"),
};
constexpr CampoPlantilla kProductosXSeccion[] = {
    Largo("ID_Seccion_Paquete"),
    Largo("ID_Producto"),
};
constexpr CampoPlantilla kPromocion[] = {
    Largo("ID_Promocion"),      Texto("ClaveUsr", 20), Texto("Nombre_Promocion", 50),
    Texto("Tipo_Promocion", 1), Largo("CantMesa"),     Logico("Activo"),
};
constexpr CampoPlantilla kGrupoPromocional[] = {
    Largo("ID_Grupo_Promocional"),
    Texto("Nombre_Gpo_Promocional", 50),
};
constexpr CampoPlantilla kDetalleGpoPromocional[] = {
    Largo("ID_Grupo_Promocional"),
    Largo("ID_Producto"),
};
constexpr CampoPlantilla kGrupoObsequios[] = {
    Largo("ID_Grupo_Obsequio"),
    Texto("Nombre_Gpo_Obsequio", 50),
};
constexpr CampoPlantilla kDetalleGpoObsequios[] = {
    Largo("ID_Grupo_Obsequio"),
    Largo("ID_Producto"),
};
constexpr CampoPlantilla kDetallePromocion[] = {
    Largo("ID_Detalle_Promocion"), Largo("ID_Promocion"),       Doble("CantMinima"),
    Doble("CantMaxima"),           Doble("CantObsequios"),      Doble("Descuento"),
    Largo("ID_Grupo_Promocional"), Largo("ID_Grupo_Obsequios"),
};
constexpr CampoPlantilla kParametros[] = {
    Texto("ID_Parametro", 30),
    Doble("Valor_Num"),
    Texto("Valor_Cad", 255),
};
constexpr CampoPlantilla kSubmenu[] = {
    Largo("ID_Submenu"),
    Texto("Nombre_Submenu", 50),
    Logico("SubMenu_Fijo"),
    Largo("Orden"),
};
constexpr CampoPlantilla kProductosXSubmenu[] = {
    Largo("ID_Submenu"),
    Largo("ID_Producto"),
};

// The sales first, then the catalogues in the order in which the close fills them.
constexpr TablaPlantilla kTablas[] = {
    {.nombre = "Comanda", .campos = kComanda, .indice = "Fecha_Trabajo"},
    {.nombre = "Cuenta", .campos = kCuenta, .clave = 2},
    {.nombre = "ProductosXCuenta", .campos = kProductosXCuenta, .indice = "ID_Comanda"},
    {.nombre = "Cortesia", .campos = kCortesia, .clave = 2},
    {.nombre = "Modificador", .campos = kModificador, .clave = 2},
    {.nombre = "ImpuestosXCuenta", .campos = kImpuestosXCuenta, .clave = 2},
    {.nombre = "Pago", .campos = kPago},
    {.nombre = "Empleado", .campos = kEmpleado},
    {.nombre = "Grupo_Trabajo", .campos = kGrupoTrabajo},
    {.nombre = "EmpleadosXGrupo", .campos = kEmpleadosXGrupo, .clave = 2},
    {.nombre = "Permisos", .campos = kPermisos},
    {.nombre = "PermisosXGrupo_Trabajo", .campos = kPermisosXGrupoTrabajo, .clave = 2},
    {.nombre = "Mensajes", .campos = kMensajes},
    {.nombre = "Categoria", .campos = kCategoria},
    {.nombre = "Grupo_Impresoras", .campos = kGrupoImpresoras},
    {.nombre = "Terminal", .campos = kTerminal},
    {.nombre = "Impresora", .campos = kImpresora},
    {.nombre = "ImpresorasXGrupo", .campos = kImpresorasXGrupo, .clave = 2},
    {.nombre = "Tipos_Impuesto",
     .campos = kTiposImpuesto,
     .clave = 0,
     .indice = "ID_Tipo_Impuesto"},
    {.nombre = "Tipos_Anulacion", .campos = kTiposAnulacion},
    {.nombre = "Modo_Preparacion", .campos = kModoPreparacion},
    {.nombre = "Tipo_Modificador", .campos = kTipoModificador},
    {.nombre = "Grupo_Modificadores", .campos = kGrupoModificadores},
    {.nombre = "TiposXGrupo_Modificadores", .campos = kTiposXGrupoModificadores, .clave = 2},
    {.nombre = "Producto", .campos = kProducto, .indice = "Nombre_Cuenta"},
    {.nombre = "Tipo_Cortesia", .campos = kTipoCortesia},
    {.nombre = "ProductoXTipo_Cortesia", .campos = kProductoXTipoCortesia, .clave = 2},
    {.nombre = "Tipo_Pago", .campos = kTipoPago},
    {.nombre = "ImpuestosXProducto", .campos = kImpuestosXProducto, .clave = 2},
    {.nombre = "Secciones_Paquete", .campos = kSeccionesPaquete},
    {.nombre = "ProductosXSeccion", .campos = kProductosXSeccion, .clave = 2},
    {.nombre = "Promocion", .campos = kPromocion},
    {.nombre = "Grupo_Promocional", .campos = kGrupoPromocional},
    {.nombre = "Detalle_Gpo_Promocional", .campos = kDetalleGpoPromocional, .clave = 2},
    {.nombre = "Grupo_Obsequios", .campos = kGrupoObsequios},
    {.nombre = "Detalle_Gpo_Obsequios", .campos = kDetalleGpoObsequios, .clave = 2},
    {.nombre = "Detalle_Promocion", .campos = kDetallePromocion},
    {.nombre = "Parametros", .campos = kParametros},
    {.nombre = "Submenu", .campos = kSubmenu},
    {.nombre = "ProductosXSubmenu", .campos = kProductosXSubmenu, .clave = 2},
};

}  // namespace

std::span<const TablaPlantilla> TablasPlantilla() { return kTablas; }

jet::DefTabla Definicion(const TablaPlantilla& tabla) {
    jet::DefTabla definicion{.nombre = std::string(tabla.nombre), .columnas = {}, .indices = {}};
    for (const CampoPlantilla& campo : tabla.campos) {
        definicion.columnas.push_back({.nombre = std::string(campo.nombre),
                                       .tipo = campo.tipo,
                                       .largo = campo.largo,
                                       .comprimido = campo.comprimido});
    }
    if (tabla.clave > 0) {
        jet::DefIndice clave{.nombre = "PrimaryKey",
                             .columnas = {},
                             .primaria = true,
                             .unico = true,
                             .requerido = true};
        for (const CampoPlantilla& campo :
             tabla.campos.first(static_cast<std::size_t>(tabla.clave)))
            clave.columnas.push_back({.nombre = std::string(campo.nombre)});
        definicion.indices.push_back(std::move(clave));
    }
    if (!tabla.indice.empty()) {
        const std::string columna(tabla.indice);
        definicion.indices.push_back({.nombre = columna, .columnas = {{.nombre = columna}}});
    }
    return definicion;
}

Result<void> EscribirPlantilla(const std::filesystem::path& ruta) {
    const std::u8string utf8 = ruta.u8string();
    QUIMO_TRY(jet::BaseDatos base, jet::BaseDatos::Crear(std::string(utf8.begin(), utf8.end())));
    for (const TablaPlantilla& tabla : kTablas)
        QUIMO_TRY_VOID(base.CrearTabla(Definicion(tabla)));
    return base.Guardar();
}

}  // namespace quimo::dayclose
