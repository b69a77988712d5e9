#include "catalog/editores/editores.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

namespace {

using Celda = TipoCeldaDetalle;

/// What stands between the two lines of a button: a backslash and an n, not a line break.
constexpr QStringView kEntreLineas = u"\\n";

void PartirBoton(const QString& guardado, QString& primera, QString& segunda) {
    const qsizetype lugar = guardado.indexOf(kEntreLineas, 0, Qt::CaseInsensitive);
    primera = lugar < 0 ? guardado : guardado.left(lugar);
    segunda = lugar < 0 ? QString() : guardado.mid(lugar + kEntreLineas.size());
}

QString UnirBoton(const QString& primera, const QString& segunda) {
    return segunda.isEmpty() ? primera : primera + kEntreLineas.toString() + segunda;
}

constexpr PartesDef kBoton = {&PartirBoton, &UnirBoton};

constexpr ListaDef kImpresoras = {
    .consulta =
        u"SELECT Nombre_Grupo_Impresoras,ID_Grupo_Impresoras FROM Grupo_Impresoras ORDER BY "
        u"Nombre_Grupo_Impresoras",
    .ninguno = u"NINGUNO",
    .nulo_por = NuloPor::Texto,
};
constexpr ListaDef kModificadores = {
    .consulta =
        u"SELECT Nombre_Grupo_Modificadores,ID_Grupo_Modificadores FROM "
        u"Grupo_Modificadores ORDER BY Nombre_Grupo_Modificadores",
    .ninguno = u"NINGUNA",
    .dato_ninguno = -1,
    .nulo_por = NuloPor::Dato,
};
constexpr ListaDef kCategorias = {
    .consulta = u"SELECT Nombre_Categoria,ID_Categoria FROM Categoria ORDER BY Nombre_Categoria"};

constexpr ItemCodigo kEstados[] = {
    {u"Activo", u"A"}, {u"Sin existencia", u"S"}, {u"Bloqueado", u"B"}, {u"Descontinuado", u"D"}};

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Producto"),
    Texto(u"TxtNombre", u"Nombre_Completo", u"Nombre completo").Tag(u"NoVacio"),
    Texto(u"txtBoton", u"Nombre_Boton", u"Nombre del botón").Tag(u"NoVacio").Partido(kBoton),
    SegundaParte(u"txtBotonU", u"Segunda línea"),
    Texto(u"txtCuenta", u"Nombre_Cuenta", u"Nombre en la cuenta").Tag(u"NoVacio"),
    Numero(u"txtExistencia", u"Existencia", u"Existencia").Tag(u"Numerico"),
    Casilla(u"chkAbierto", u"Abierto", u"Abierto"),
    Casilla(u"chkEspecial", u"Especial", u"Especial"),
    Lista(u"cmbImpresoras", u"txtImpresoras", u"ID_Grupo_Impresoras", u"Grupo de impresoras",
          kImpresoras),
    Lista(u"cmbModificadores", u"txtModificador", u"ID_Grupo_Modificadores",
          u"Grupo de modificadores", kModificadores),
    Codigo(u"cmbEstado", u"txtEstado", u"Estado", u"Estado", kEstados)
        .Tag(u"NoVacio")
        .Inicial(u"A"),
    Lista(u"cmbCategoria", u"txtCategoria", u"ID_Categoria", u"Categoría", kCategorias)
        .Tag(u"NoVacio"),
    Casilla(u"chkPaquete", u"Paquete", u"Paquete"),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Producto", u"ID_Producto", u"ID_Producto"},
    {u"Nombre Completo", u"Nombre_Completo", u"Nombre_Completo"},
    {u"Nombre Botón", u"Nombre_Boton", u"Nombre_Boton"},
    {u"Nombre Cuenta", u"Nombre_Cuenta", u"Nombre_Cuenta"},
    {u"Existencia", u"Existencia", u"Existencia"},
    {u"Abierto", u"Abierto", u"Abierto"},
    {u"Especial", u"Especial", u"Especial"},
    {u"Grupo Impresora", u"Nombre_Grupo_Impresoras", u"Nombre_Grupo_Impresoras"},
    {u"Grupo Modificador", u"Nombre_Grupo_Modificadores", u"Nombre_Grupo_Modificadores"},
    {u"Estado", u"Estado", u"Estado", kEstados},
    {u"Paquete", u"Paquete", u"Paquete"},
};

constexpr ColumnaDetalle kColumnasImpuestos[] = {
    {.tipo = Celda::Oculta},
    {.tipo = Celda::Oculta},
    {.tipo = Celda::Lista,
     .titulo = u"Impuesto",
     .ancho_mm = 70,
     .cambiable = Cambiable::SoloNuevas},
    {.tipo = Celda::Casilla,
     .titulo = u"Incluir en precio",
     .ancho_mm = 32,
     .cambiable = Cambiable::Siempre,
     .inicial = u"0"},
    {.tipo = Celda::Marca},
};
constexpr CampoDetalle kAltaImpuestos[] = {
    {u"ID_Tipo_Impuesto", 0}, {u"ID_Producto"}, {u"Incluir_en_precio", 3}};
constexpr CampoDetalle kCambioImpuestos[] = {{u"Incluir_en_precio", 3}};

constexpr ColumnaDetalle kColumnasMenus[] = {
    {.tipo = Celda::Oculta},
    {.tipo = Celda::Oculta},
    {.tipo = Celda::Lista, .titulo = u"Menú", .ancho_mm = 70, .cambiable = Cambiable::SoloNuevas},
    {.tipo = Celda::Dinero,
     .titulo = u"Precio",
     .ancho_mm = 32,
     .cambiable = Cambiable::Siempre,
     .inicial = u"0"},
    {.tipo = Celda::Marca},
};
constexpr CampoDetalle kAltaMenus[] = {{u"ID_Menu", 0}, {u"ID_Producto"}, {u"Precio", 3}};
constexpr CampoDetalle kCambioMenus[] = {{u"Precio", 3}};

constexpr DetalleDef kDetalles[] = {
    {
        .control = u"sprImpuestos",
        .titulo = u"Impuestos",
        .tabla = u"ImpuestosXProducto",
        .consulta = u"SELECT ImpuestosXProducto.ID_Tipo_Impuesto,ID_Producto,Nombre_Tipo_Impuesto,"
                    u"Incluir_en_precio,' ' FROM ImpuestosXProducto,Tipos_Impuesto WHERE "
                    u"ImpuestosXProducto.ID_Tipo_Impuesto=Tipos_Impuesto.ID_Tipo_Impuesto AND "
                    u"ID_Producto=",
        .columnas = kColumnasImpuestos,
        .lista = u"SELECT ID_Tipo_Impuesto,Nombre_Tipo_Impuesto FROM Tipos_Impuesto ORDER BY "
                 u"Nombre_Tipo_Impuesto",
        .alta = kAltaImpuestos,
        .cambio = kCambioImpuestos,
        .columna_registro = u"ID_Producto",
        .columna_renglon = {u"ID_Tipo_Impuesto", 0},
    },
    {
        .control = u"sprMenus",
        .titulo = u"Precios por menú",
        .tabla = u"PreciosXMenu",
        .consulta = u"SELECT PreciosXMenu.ID_Menu,ID_Producto,Nombre_Menu,Precio,' ' AS M FROM "
                    u"PreciosXMenu,Menu WHERE PreciosXMenu.ID_Menu=Menu.ID_Menu AND ID_Producto=",
        .columnas = kColumnasMenus,
        .lista = u"SELECT ID_Menu,Nombre_Menu FROM Menu ORDER BY Nombre_Menu",
        .alta = kAltaMenus,
        .cambio = kCambioMenus,
        .columna_registro = u"ID_Producto",
        .columna_renglon = {u"ID_Menu", 0},
    },
};

}  // namespace

constexpr EditorRevisado kOpProductos = Revisado({
    .nombre = u"OpProductos",
    .comando = u"mnuOpProductos",
    .titulo = u"Productos",
    .tabla = u"Producto",
    .consulta_clave = u"SELECT CASE ISNULL(MAX(ID_Producto),0) WHEN 0 THEN 1 ELSE "
                      u"MAX(ID_Producto)+1 END AS Clave FROM Producto",
    .clave_sin_fila = u"1",
    .campos = kCampos,
    .repetido = u"Ya existe el producto",
    .detalles = kDetalles,
    .pestanas = u"TabProductos",
    .filtro = {u"Producto,Grupo_Modificadores,Grupo_Impresoras WHERE "
               u"Producto.ID_Grupo_Modificadores=Grupo_Modificadores.ID_Grupo_Modificadores AND "
               u"Producto.ID_Grupo_Impresoras=Grupo_Impresoras.ID_Grupo_Impresoras ",
               kFiltro},
});

}  // namespace quimo::catalog
