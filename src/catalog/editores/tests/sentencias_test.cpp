#include "base_catalogo.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {
namespace {

using foundation::Respuesta;

struct Edicion {
    const char16_t* control = nullptr;
    const char16_t* texto = nullptr;
    bool elegir = false;
};

/// What a save of the first row sends, and the key query of a new row.
struct CasoSentencia {
    const char* nombre = nullptr;
    const EditorDef* def = nullptr;
    std::vector<Edicion> ediciones;
    const char16_t* update = nullptr;
    const char16_t* clave = nullptr;
};

const CasoSentencia kCasos[] = {
    {"TipoPago",
     &kOpTipoPago,
     {{u"TxtNombre", u"D'Oro"}, {u"CmbClase", u"Otro", true}, {u"chkAbrir", u"0"}},
     u"UPDATE Tipo_Pago SET Nombre_Tipo_Pago='D''Oro',Clase='O',Abrir_Gaveta=0 WHERE "
     u"ID_Tipo_Pago=1",
     u""},
    {"TiposAnulacion",
     &kOpTiposAnulacion,
     {{u"TxtNombre", u"Ñoño"}, {u"chkRegresar", u"0"}},
     u"UPDATE Tipos_Anulacion SET Nombre_Tipos_Anulacion='Ñoño',Regresa_Existencia=0 WHERE "
     u"ID_Tipo_Anulacion=1",
     u""},
    {"Categoria",
     &kOpCategoria,
     {{u"cmbTipo", u"Sin Ventas", true}},
     u"UPDATE Categoria SET Nombre_Categoria='Entradas',Tipo_Categoria='N' WHERE ID_Categoria=1",
     u"SELECT case ISNULL(MAX(ID_Categoria),0) when 0 then 1 else MAX(ID_Categoria)+1 end AS Clave "
     u"FROM Categoria"},
    {"ModoPreparacion",
     &kOpModoPreparacion,
     {{u"txtIndicador", u"'"}},
     u"UPDATE Modo_Preparacion SET Nombre_Modo_Preparacion='Normal',Indicador='''' WHERE "
     u"ID_Modo_Preparacion=1",
     u"SELECT MAX(ID_Modo_Preparacion)+1 AS Clave FROM Modo_Preparacion"},
    {"Mensajes",
     &kUtlMensajes,
     {{u"TxtMensaje", u"¿Hay \"pozole\"?"}, {u"chkActivo", u"0"}},
     u"UPDATE Mensajes SET Mensaje='¿Hay \"pozole\"?',Mensaje_Activo=0 WHERE ID_Mensaje=1",
     u""},
    {"Menu",
     &kOpMenu,
     {{u"TxtNombre", u"Terraza"}, {u"chkActivo", u"0"}},
     u"UPDATE Menu SET Nombre_Menu='Terraza',Descripcion='Carta del salón',Menu_Activo=0 WHERE "
     u"ID_Menu=1",
     u"SELECT CASE ISNULL(MAX(ID_Grupo_Modificadores),0) WHEN 0 THEN 1 ELSE "
     u"MAX(ID_Grupo_Modificadores)+1 END AS Clave FROM Grupo_Modificadores"},
    {"Submenu",
     &kOpSubmenu,
     {{u"chkFijo", u"0"}},
     u"UPDATE SubMenu SET Nombre_SubMenu='Comida',SubMenu_Fijo=0 WHERE ID_SubMenu=1",
     u"SELECT CASE ISNULL(MAX(ID_Submenu),0) WHEN 0 THEN 1 ELSE MAX(ID_Submenu)+1 END AS Clave "
     u"FROM Submenu"},
    {"TipoModificador",
     &kOpTipoModificador,
     {{u"cmbEstado", u"Suspendido", true}, {u"MskPrecio", u"$1,234.5"}},
     u"UPDATE Tipo_Modificador SET Nombre_Tipo_Modificador='Con "
     u"todo',Estado_Modificador='S',Precio_Tipo_Modificador=1234.50 WHERE ID_Tipo_Modificador=1",
     u"SELECT MAX(ID_Tipo_Modificador)+1 AS Clave FROM Tipo_Modificador"},
    {"GpoModificadores",
     &kOpGpoModificadores,
     {{u"chkFluir", u"1"}, {u"chkActivo", u"0"}},
     u"UPDATE Grupo_Modificadores SET Nombre_Grupo_Modificadores='Tacos y "
     u"antojitos',Fluir_automatico=1,Grupo_Mod_Activo=0 WHERE ID_Grupo_Modificadores=1",
     u"SELECT MAX(ID_Grupo_Modificadores)+1 AS Clave FROM Grupo_Modificadores"},
    {"TipoImpuestos",
     &kOpTipoImpuestos,
     {{u"TxtNombre", u"I.V.A."}},
     u"UPDATE Tipos_Impuesto SET Nombre_Tipo_Impuesto='I.V.A.',Tipo_Imp_Activo=1 WHERE "
     u"ID_Tipo_Impuesto=1",
     u"SELECT MAX(ID_Tipo_Impuesto)+1 AS Clave FROM Tipos_Impuesto"},
    {"Productos",
     &kOpProductos,
     {{u"TxtNombre", u"Papas"},
      {u"txtBoton", u"PAPAS"},
      {u"txtBotonU", u"GRANDES"},
      {u"txtCuenta", u"Papas"},
      {u"txtExistencia", u"7.5"},
      {u"chkEspecial", u"1"},
      {u"cmbImpresoras", u"NINGUNO", true},
      {u"cmbModificadores", u"Bebidas", true},
      {u"cmbEstado", u"Bloqueado", true},
      {u"cmbCategoria", u"Extras", true}},
     u"UPDATE Producto SET Nombre_Completo='Papas',Nombre_Boton='PAPAS\\nGRANDES',Nombre_Cuenta='"
     u"Papas',Existencia=7.5,Abierto=1,Especial=1,ID_Grupo_Impresoras=NULL,"
     u"ID_Grupo_Modificadores=3,Estado='B',ID_Categoria=13,Paquete=0 WHERE ID_Producto=101",
     u"SELECT CASE ISNULL(MAX(ID_Producto),0) WHEN 0 THEN 1 ELSE MAX(ID_Producto)+1 END AS Clave "
     u"FROM Producto"},
};

class SentenciasTest : public pruebas::CatalogoTest,
                       public testing::WithParamInterface<CasoSentencia> {};

TEST_P(SentenciasTest, CambioYLlave) {
    const CasoSentencia& caso = GetParam();
    const auto sesion = Abrir(*caso.def);
    if (caso.def == &kOpProductos) {
        sesion->Modificar();
        Escribir(*sesion, u"chkAbierto", u"1");
        ASSERT_TRUE(sesion->Guardar());
    }
    sesion->Modificar();
    for (const Edicion& edicion : caso.ediciones) {
        if (edicion.elegir) {
            Elegir(*sesion, edicion.control, edicion.texto);
        } else {
            Escribir(*sesion, edicion.control, edicion.texto);
        }
    }
    cinta_->sentencias.clear();
    ASSERT_TRUE(sesion->Guardar()) << Mostrado().toStdString();
    const QStringList cambios = cinta_->Tomar({u"UPDATE"_s, u"INSERT"_s, u"DELETE"_s});
    ASSERT_FALSE(cambios.isEmpty());
    EXPECT_EQ(cambios.first(), QString::fromUtf16(caso.update));

    sesion->Nuevo();
    sesion->Escribir(1, u"Nueva"_s);
    for (qsizetype i = 2; i < std::ssize(caso.def->campos); ++i) {
        if (sesion->Campos().Entradas(i).isEmpty()) {
            if (caso.def->campos[static_cast<std::size_t>(i)].tipo != TipoCampo::Casilla) {
                sesion->Escribir(i, u"1"_s);
            }
        } else {
            sesion->Elegir(i, 0);
        }
    }
    cinta_->sentencias.clear();
    ASSERT_TRUE(sesion->Guardar()) << Mostrado().toStdString();
    EXPECT_EQ(cinta_->Tomar({u"SELECT CASE"_s, u"SELECT case"_s, u"SELECT MAX"_s}).join(u';'),
              QString::fromUtf16(caso.clave));
}

INSTANTIATE_TEST_SUITE_P(Catalogos, SentenciasTest, testing::ValuesIn(kCasos),
                         [](const auto& caso) { return std::string(caso.param.nombre); });

class SesionTest : public pruebas::CatalogoTest {};

TEST_F(SesionTest, LaBitacoraTieneLosCambiosYNadaMas) {
    const auto pagos = Abrir(kOpTipoPago);
    pagos->Mover(u"SIGUIENTE"_s);
    pagos->Nuevo();
    Escribir(*pagos, u"TxtNombre", u"Bonos");
    Elegir(*pagos, u"CmbClase", u"Cheque");
    ASSERT_TRUE(pagos->Guardar());
    pagos->Modificar();
    Escribir(*pagos, u"chkAbrir", u"0");
    ASSERT_TRUE(pagos->Guardar());
    pagos->Nuevo();
    Escribir(*pagos, u"TxtNombre", u"Efectivo");
    Elegir(*pagos, u"CmbClase", u"Efectivo");
    EXPECT_FALSE(pagos->Guardar());
    pagos->Cancelar();
    const auto submenus = Abrir(kOpSubmenu);
    submenus->Modificar();
    DetalleSesion& menus = submenus->Detalles()[0];
    ASSERT_TRUE(menus.Escribir(menus.Agregar(-1), 2, u"bar"_s));
    menus.Borrar(0);
    ASSERT_TRUE(submenus->Guardar());
    const QStringList log = Bitacora();
    ASSERT_EQ(log.size(), 5);
    EXPECT_EQ(log[0],
              u"Modificacion en \tTipo_Pago\t Valor: \tNombre_Tipo_Pago='Bonos',Clase='C',"
              "Abrir_Gaveta=0"_s);
    EXPECT_EQ(log[1], u"Ya existe el nombre del tipo de pago\tClsRdo_Error"_s);
    EXPECT_EQ(log[2],
              u"Modificacion en \tSubMenu\t Valor: \tNombre_SubMenu='Comida',SubMenu_Fijo=1"_s);
    EXPECT_EQ(log[3],
              u"Valor borrado en \tSubMenuXMenu\t condicion: \tID_SubMenu=1 AND ID_Menu=1"_s);
    EXPECT_EQ(
        log[4],
        u"Valor insertado en \tSubMenuXMenu\t campos: \tID_Menu,ID_SubMenu\t valores: \t2,1"_s);
}

struct CasoEnUso {
    const char* nombre = nullptr;
    const EditorDef* def = nullptr;
    const char16_t* tabla = nullptr;
    const char16_t* detalles = nullptr;  ///< a count that must not change
};

const CasoEnUso kEnUso[] = {
    {"Categoria", &kOpCategoria, u"Producto", u"SELECT COUNT(*) AS N FROM Producto"},
    {"Menu", &kOpMenu, u"", u"SELECT COUNT(*) AS N FROM PreciosXMenu"},
    {"Modificador", &kOpTipoModificador, u"TiposXGrupo_Modificadores",
     u"SELECT COUNT(*) AS N FROM Tipo_Modificador"},
    {"Grupo", &kOpGpoModificadores, u"Producto",
     u"SELECT COUNT(*) AS N FROM TiposXGrupo_Modificadores"},
    {"Impuesto", &kOpTipoImpuestos, u"ImpuestosXProducto",
     u"SELECT COUNT(*) AS N FROM PorcentajeXTipo_Impuesto"},
    {"Producto", &kOpProductos, u"", u"SELECT COUNT(*) AS N FROM PreciosXMenu"},
};

class EnUsoTest : public pruebas::CatalogoTest, public testing::WithParamInterface<CasoEnUso> {};

TEST_P(EnUsoTest, SigueALaVistaConSusDetalles) {
    const CasoEnUso& caso = GetParam();
    const auto sesion = Abrir(*caso.def);
    const QString clave = sesion->Clave();
    const qsizetype habia = sesion->Conjunto()->RecordCount();
    const QString detalles = Filas(caso.detalles);
    dialogos_.Responder(u"¿Esta seguro de borrar el registro?"_s, Respuesta::Si);
    EXPECT_FALSE(sesion->Borrar());
    const QString mostrado = Mostrado();
    EXPECT_TRUE(
        mostrado.startsWith(u"No se puede borrar este registro por estar en uso en la tabla "_s));
    EXPECT_TRUE(mostrado.contains(QString::fromUtf16(caso.tabla))) << mostrado.toStdString();
    EXPECT_EQ(sesion->Clave(), clave);
    EXPECT_EQ(sesion->Conjunto()->RecordCount(), habia);
    EXPECT_EQ(Filas(caso.detalles), detalles);
    EXPECT_FALSE(sesion->EnEdicion());
}

INSTANTIATE_TEST_SUITE_P(Catalogos, EnUsoTest, testing::ValuesIn(kEnUso),
                         [](const auto& caso) { return std::string(caso.param.nombre); });

}  // namespace
}  // namespace quimo::catalog
