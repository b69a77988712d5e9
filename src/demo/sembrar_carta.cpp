#include <QDateTime>

#include "demo/carta.h"
#include "demo/sembrar.h"
#include "demo/sql_demo.h"

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Decimal;
using base::Dinero;
using base::Result;
using data::Fila;
using data::SqlConnection;

namespace {

const QVariant kNulo;

QString Texto(std::u16string_view texto) { return QStringView(texto).toString(); }
QVariant Pesos(int pesos) { return QVariant::fromValue(Dinero::DeEntero(pesos)); }
QVariant Dia(int ano, int mes, int dia) {
    return QDateTime(QDate(ano, mes, dia), QTime(0, 0), Qt::UTC);
}
// A fraction of the price in ten-thousandths.
QVariant Tasa(int diezmilesimas) {
    return QVariant::fromValue(Decimal{.digitos = diezmilesimas, .escala = 4});
}

Result<void> SembrarImpuestos(SqlConnection& conexion) {
    QUIMO_TRY_VOID(Insertar(conexion, u"Tipos_Impuesto"_s,
                            u"ID_Tipo_Impuesto,Nombre_Tipo_Impuesto,Tipo_Imp_Activo"_s,
                            {
                                {kIva16, u"IVA 16 %"_s, 1},
                                {kIva0, u"IVA 0 % (alimentos por cocinar)"_s, 1},
                                {kIeps8, u"IEPS 8 % (golosinas)"_s, 1},
                            }));
    return Insertar(conexion, u"PorcentajeXTipo_Impuesto"_s,
                    u"ID_Tipo_Impuesto,Fecha_Inicio_Impuesto,Fecha_Fin_Impuesto,Porcentaje"_s,
                    {
                        {kIva16, Dia(1995, 4, 1), Dia(2009, 12, 31), Tasa(1500)},
                        {kIva16, Dia(2010, 1, 1), kNulo, Tasa(1600)},
                        {kIva0, Dia(1995, 4, 1), kNulo, Tasa(0)},
                        {kIeps8, Dia(2014, 1, 1), kNulo, Tasa(800)},
                    });
}

struct ModificadorDemo {
    QVector<int> grupos;
    QString nombre;
    int pesos = 0;
    QString estado = u"A"_s;
};

QVector<ModificadorDemo> Modificadores() {
    return {
        {{kModificadoresHuevos}, u"Estrellados"_s},
        {{kModificadoresHuevos}, u"Revueltos"_s},
        {{kModificadoresHuevos}, u"Volteados"_s},
        {{kModificadoresHuevos}, u"Con frijoles refritos"_s, 18},
        {{kModificadoresHuevos}, u"Con tasajo"_s, 65},
        {{kModificadoresHuevos, kModificadoresAntojitos}, u"Salsa roja"_s},
        {{kModificadoresHuevos, kModificadoresAntojitos}, u"Salsa verde"_s},
        {{kModificadoresAntojitos}, u"Sin cebolla"_s},
        {{kModificadoresAntojitos}, u"Sin picante"_s},
        {{kModificadoresAntojitos}, u"Doble quesillo"_s, 28},
        {{kModificadoresAntojitos, kModificadoresCarne}, u"Con aguacate"_s, 25},
        {{kModificadoresCarne}, u"Término rojo"_s},
        {{kModificadoresCarne}, u"Término medio"_s},
        {{kModificadoresCarne}, u"Tres cuartos"_s},
        {{kModificadoresCarne}, u"Bien cocido"_s},
        {{kModificadoresCarne}, u"Papas en vez de arroz"_s, 20},
        {{kModificadoresCafe}, u"Leche deslactosada"_s, 10},
        {{kModificadoresCafe}, u"Leche de almendra"_s, 16},
        {{kModificadoresCafe}, u"Sin azúcar"_s},
        {{kModificadoresCafe}, u"Carga extra"_s, 15},
        {{kModificadoresBebida}, u"Sin hielo"_s},
        {{kModificadoresBebida}, u"Poco hielo"_s},
        {{kModificadoresBebida}, u"Escarchado con sal de gusano"_s, 12},
        {{kModificadoresBebida}, u"Popote de bambú"_s, 5, u"S"_s},
        {{kModificadoresDestilado}, u"Con naranja y sal de gusano"_s, 15},
        {{kModificadoresDestilado}, u"Doble"_s, 70},
        {{kModificadoresDestilado}, u"En las rocas"_s},
        {{kModificadoresDestilado}, u"Con refresco"_s, 30, u"D"_s},
    };
}

Result<void> SembrarModificadores(SqlConnection& conexion) {
    QUIMO_TRY_VOID(Insertar(
        conexion, u"Grupo_Modificadores"_s,
        u"ID_Grupo_Modificadores,Nombre_Grupo_Modificadores,Fluir_automatico,Grupo_Mod_Activo"_s,
        {
            {kModificadoresHuevos, u"Huevos y desayunos"_s, 0, 1},
            {kModificadoresAntojitos, u"Antojitos y guisos"_s, 0, 1},
            {kModificadoresCarne, u"Término de la carne"_s, 1, 1},
            {kModificadoresCafe, u"Café y chocolate"_s, 0, 1},
            {kModificadoresBebida, u"Bebidas frías"_s, 0, 1},
            {kModificadoresDestilado, u"Destilados"_s, 0, 1},
        }));
    QVector<Fila> tipos;
    QVector<Fila> por_grupo;
    int id = 0;
    for (const ModificadorDemo& modificador : Modificadores()) {
        ++id;
        tipos.append({id, modificador.nombre, modificador.estado, Pesos(modificador.pesos)});
        for (const int grupo : modificador.grupos)
            por_grupo.append({grupo, id});
    }
    QUIMO_TRY_VOID(Insertar(
        conexion, u"Tipo_Modificador"_s,
        u"ID_Tipo_Modificador,Nombre_Tipo_Modificador,Estado_Modificador,Precio_Tipo_Modificador"_s,
        tipos));
    return Insertar(conexion, u"TiposXGrupo_Modificadores"_s,
                    u"ID_Grupo_Modificadores,ID_Tipo_Modificador"_s, por_grupo);
}

Result<void> SembrarSubmenus(SqlConnection& conexion) {
    QUIMO_TRY_VOID(Insertar(conexion, u"SubMenu"_s, u"ID_SubMenu,Nombre_SubMenu,SubMenu_Fijo"_s,
                            {
                                {1, u"Desayunos"_s, 0},
                                {2, u"Antojitos"_s, 1},
                                {3, u"Comida"_s, 1},
                                {4, u"Bebidas"_s, 1},
                                {5, u"Barra"_s, 1},
                                {6, u"Postres"_s, 0},
                                {7, u"Paquetes y extras"_s, 0},
                                {8, u"Tienda"_s, 0},
                            }));
    return Insertar(conexion, u"SubMenuXMenu"_s, u"ID_Menu,ID_SubMenu,Orden"_s,
                    {
                        {kMenuRestaurante, 1, 1},
                        {kMenuRestaurante, 2, 2},
                        {kMenuRestaurante, 3, 3},
                        {kMenuRestaurante, 4, 4},
                        {kMenuRestaurante, 5, 5},
                        {kMenuRestaurante, 6, 6},
                        {kMenuRestaurante, 7, 7},
                        {kMenuRestaurante, 8, 8},
                        {kMenuBar, 5, 1},
                        {kMenuBar, 4, 2},
                        {kMenuBar, 2, 3},
                        {kMenuBar, 6, 4},
                        {kMenuBar, 7, 5},
                        {kMenuBar, 8, 6},
                    });
}

const CategoriaDemo& CategoriaDe(const ProductoDemo& producto) {
    for (const CategoriaDemo& categoria : CategoriasDemo()) {
        if (categoria.id == producto.Categoria()) return categoria;
    }
    QUIMO_CHECK(!"a product without a category");
    return CategoriasDemo().front();
}

QVariant ClaveONulo(int clave) { return clave == 0 ? kNulo : QVariant(clave); }

Fila FilaDeProducto(const ProductoDemo& producto, const CategoriaDemo& categoria) {
    const QString nombre = Texto(producto.nombre);
    const int modificadores =
        producto.con_modificadores ? categoria.grupo_modificadores : kSinModificadores;
    return {producto.id,
            nombre,
            Texto(producto.boton),
            nombre,
            categoria.existencia,
            producto.del_dia ? 1 : 0,
            producto.del_dia ? 1 : 0,
            ClaveONulo(categoria.grupo_impresoras),
            ClaveONulo(modificadores),
            QString(QChar(producto.estado)),
            categoria.id,
            producto.Paquete() ? 1 : 0};
}

Result<void> SembrarProductos(SqlConnection& conexion) {
    QVector<Fila> categorias;
    for (const CategoriaDemo& categoria : CategoriasDemo())
        categorias.append({categoria.id, Texto(categoria.nombre), QString(QChar(categoria.tipo))});
    QVector<Fila> productos;
    QVector<Fila> precios;
    QVector<Fila> impuestos;
    QVector<Fila> submenus;
    for (const ProductoDemo& producto : ProductosDemo()) {
        const CategoriaDemo& categoria = CategoriaDe(producto);
        productos.append(FilaDeProducto(producto, categoria));
        if (producto.precio_restaurante > 0)
            precios.append({kMenuRestaurante, producto.id, Pesos(producto.precio_restaurante)});
        if (producto.precio_bar > 0)
            precios.append({kMenuBar, producto.id, Pesos(producto.precio_bar)});
        impuestos.append({producto.impuesto, producto.id, 1});
        submenus.append({producto.id, categoria.submenu, static_cast<int>(submenus.size()) + 1});
    }
    QUIMO_TRY_VOID(Insertar(conexion, u"Categoria"_s,
                            u"ID_Categoria,Nombre_Categoria,Tipo_Categoria"_s, categorias));
    QUIMO_TRY_VOID(Insertar(conexion, u"Producto"_s,
                            u"ID_Producto,Nombre_Completo,Nombre_Boton,Nombre_Cuenta,Existencia,"
                            "Abierto,Especial,ID_Grupo_Impresoras,ID_Grupo_Modificadores,Estado,"
                            "ID_Categoria,Paquete"_s,
                            productos));
    QUIMO_TRY_VOID(Insertar(conexion, u"PreciosXMenu"_s, u"ID_Menu,ID_Producto,Precio"_s, precios));
    QUIMO_TRY_VOID(Insertar(conexion, u"ImpuestosXProducto"_s,
                            u"ID_Tipo_Impuesto,ID_Producto,Incluir_en_precio"_s, impuestos));
    return Insertar(conexion, u"ProductosXSubmenu"_s, u"ID_Producto,ID_SubMenu,Orden"_s, submenus);
}

}  // namespace

Result<void> SembrarCarta(SqlConnection& conexion) {
    QUIMO_TRY_VOID(SembrarImpuestos(conexion));
    QUIMO_TRY_VOID(SembrarModificadores(conexion));
    QUIMO_TRY_VOID(SembrarSubmenus(conexion));
    return SembrarProductos(conexion);
}

}  // namespace quimo::demo
