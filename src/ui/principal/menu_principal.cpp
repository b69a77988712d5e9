#include "ui/principal/menu_principal.h"

namespace quimo::ui {

namespace {

using Orden = OrdenVentana;

constexpr EntradaMenu kSeparador = {};

constexpr EntradaMenu kArchivo[] = {
    {u"mnuAbrirScript", u"&Abrir Script"},
    kSeparador,
    {u"mnuArImprimir", u"&Imprimir", {}, Orden::Imprimir},
    {u"mnuArcPreview", u"&Vista Previa", {}, Orden::Preview},
    kSeparador,
    {u"mnuArCerrar", u"&Cerrar"},
    {u"mnuArSalir", u"&Salir"},
};

constexpr EntradaMenu kRegistro[] = {
    {u"mnuEdReg", u"&Primero", {}, Orden::Primero},
    {u"mnuEdReg", u"&Anterior", {}, Orden::Anterior},
    {u"mnuEdReg", u"&Siguiente", {}, Orden::Siguiente},
    {u"mnuEdReg", u"&Ultimo", {}, Orden::Ultimo},
    kSeparador,
    {u"mnuEdReg", u"&Buscar", {}, Orden::Buscar},
    {u"mnuEdReg", u"&Consulta", {}, Orden::Filtro},
    kSeparador,
    {u"mnuEdReg", u"&Nuevo", {}, Orden::Nuevo},
    {u"mnuEdReg", u"&Modificar", {}, Orden::Modificar},
    {u"mnuEdReg", u"&Borrar", {}, Orden::Borrar},
    kSeparador,
    {u"mnuEdReg", u"&Aceptar", {}, Orden::Aceptar},
    {u"mnuEdReg", u"&Cancelar", {}, Orden::Cancelar},
};

constexpr EntradaMenu kEditar[] = {{u"mnuEdRegistro", u"&Registro", kRegistro}};

constexpr EntradaMenu kOperacion[] = {
    {u"mnuOpCategorias", u"&Categorías"},
    {u"mnuOpCortesias", u"C&ortesías"},
    {u"mnuOpGpoModificadores", u"&Grupos de modificadores"},
    {u"mnuOpGpoObsequios", u"Gr&upos de obsequios"},
    {u"mnuOpGpoPromocional", u"Grupos promociona&les"},
    {u"mnuOpMenu", u"&Menús"},
    {u"mnuOpModificadores", u"Mo&dificadores"},
    {u"mnuOpModosDePreparacion", u"Modos de p&reparación"},
    {u"mnuOpPaquete", u"P&aquetes"},
    {u"mnuOpProductos", u"&Productos"},
    {u"mnuOpPromociones", u"Promocio&nes"},
    {u"mnuOPSubMenu", u"&Submenús"},
    {u"mnuOpTiposAnulacion", u"&Tipos de anulación"},
    {u"mnuOpTipoImpuesto", u"Tipos de &impuesto"},
    {u"mnuOpTipoPago", u"Tipos d&e pago"},
};

constexpr EntradaMenu kNomina[] = {
    {u"mnuHorasEmpleado", u"&Horas por empleado"},
    {u"mnuDetHoras", u"&Detalle de horas"},
    {u"mnuResumenHoras", u"&Resumen de horas"},
};

constexpr EntradaMenu kCortesias[] = {
    {u"mnuProRepCortesias", u"&Cortesías"},
    {u"mnuGoldCard", u"&Gold Card"},
};

constexpr EntradaMenu kReportes[] = {
    {u"mnuNomina", u"&Nomina", kNomina},
    kSeparador,
    {u"mnuRepAnulacion", u"&Anulaciones"},
    {u"mnuCorPrincipal", u"&Cortesías", kCortesias},
    {u"mnuProRepCuentas", u"C&uentas"},
    {u"mnuRepDetPagos", u"&Lista de pagos"},
    {u"mnuProRepEspeciales", u"&Especiales"},
    {u"mnuProRepLista", u"Lista de p&recios"},
    {u"mnuRepProp", u"&Propinas"},
    {u"mnuRepPagos", u"&Pagos"},
    {u"mnuRepPMIX", u"P&-MIX"},
    {u"mnuRepVentas", u"&Ventas"},
    kSeparador,
    {u"mnuRepCompEmpleado", u"Comparativo por e&mpleado"},
    {u"mnuRepCompCategoria", u"Comparativo por ca&tegoría"},
    {u"mnuRepCompArticulos", u"Comparativo por art&ículo"},
};

constexpr EntradaMenu kVentana[] = {
    {u"MnuVeArIconos", u"Arreglar iconos"},
    {u"mnuVehorizontal", u"&Horizontal"},
    {u"mnuVeVertical", u"&Vertical"},
    {u"mnuVeCascada", u"&Cascada"},
};

constexpr EntradaMenu kAdministracion[] = {
    {u"mnuUtlAdFunxgrp", u"&Permisos x Grupo"},
    {u"mnuUtlAdGrupos", u"&Grupos de trabajo"},
    {u"mnuUtlAdUsr", u"&Empleados"},
    {u"mnuEmpresas", u"&Empresas"},
    {u"mnuDepartamentos", u"&Departamentos"},
};

constexpr EntradaMenu kConfiguracion[] = {
    {u"mnuFunciones", u"&Funciones del sistema"},
    {u"mnuUtlConfGposImpresoras", u"&Grupos de Impresoras"},
    {u"mnuUtlConfImpresoras", u"&Impresoras"},
    {u"mnuTerminal", u"&Terminal"},
};

constexpr EntradaMenu kProcesos[] = {
    {u"mnuUtlProcFin", u"&Fin de día"},
    {u"mnuBorrarDia", u"Borrar un d&ía"},
    {u"mnuBorrarCola", u"&Borrar Cola Impresion"},
    {u"mnuDesfirmar", u"&Desfirmar Empleados"},
    {u"mnuBorrarDatos", u"&Borrar Todos Los Datos"},
};

constexpr EntradaMenu kUtilerias[] = {
    {u"mnuEjecutar", u"&Ejecutar Script"},
    {u"mnuUtlAdministracion", u"&Administración", kAdministracion},
    {u"mnuUtlContraseña", u"Camb&iar Contraseña"},
    {u"mnuVeTapiz", u"Cambiar &Tapiz"},
    {u"mnuUtlConfiguracion", u"&Configuración", kConfiguracion},
    {u"mnuLimTapiz", u"&Limpiar Tapiz"},
    {u"mnuUtlMensajes", u"&Mensajes"},
    {u"mnuParametros", u"&Parámetros"},
    {u"mnuUtlProcesos", u"P&rocesos", kProcesos},
};

constexpr EntradaMenu kAyuda[] = {{u"mnuAyAcerca", u"&Acerca de"}};

constexpr EntradaMenu kMenus[] = {
    {u"mnuArchivo", u"&Archivo", kArchivo},
    {u"mnuEditar", u"&Editar", kEditar},
    {u"mnuOperacion", u"&Operación", kOperacion},
    {u"mnuProRep", u"&Reportes", kReportes},
    {u"MnuVentana", u"&Ventana", kVentana},
    {u"mnuUtilerias", u"&Utilerias", kUtilerias},
    {u"mnuAyuda", u"&Ayuda", kAyuda},
};

constexpr EntradaMenu kSpread[] = {
    {u"mnuSprNuevo", u"&Nuevo", {}, Orden::SpreadNuevo},
    {u"mnuSprMod", u"&Modificar", {}, Orden::SpreadModificar},
    {u"mnuSprBorrar", u"&Borrar", {}, Orden::SpreadBorrar},
};
constexpr EntradaMenu kMenuSpread = {u"mnuSpread", u"Detalle", kSpread};

constexpr DefBoton kBotones[] = {
    {u"BotonNuevoModificar", u"Nuevo (INS)", Orden::Nuevo},
    {u"BotonBorrar", u"Borrar (DEL)", Orden::Borrar},
    {u"BotonAceptar", u"Aceptar (F5)", Orden::Aceptar, true},
    {u"BotonCancelar", u"Cancelar (ESC)", Orden::Cancelar},
    {u"BotonBuscar", u"Buscar", Orden::Buscar, true},
    {u"BotonPrimerRegistro", u"Primer registro (Inicio)", Orden::Primero, true},
    {u"BotonRegistroAnterior", u"Registro anterior (Av Pág)", Orden::Anterior},
    {u"BotonRegistroSiguiente", u"Registro siguiente (Re Pág)", Orden::Siguiente},
    {u"BotonUltimoRegistro", u"Último registro (Fin)", Orden::Ultimo},
    {u"BotonImprimir", u"Imprimir", Orden::Imprimir, true},
    {u"BotonFiltro", u"Filtro", Orden::Filtro},
    {u"BotonPreview", u"Vista previa", Orden::Preview},
};

}  // namespace

std::span<const EntradaMenu> MenusPrincipales() { return kMenus; }
const EntradaMenu& MenuSpread() { return kMenuSpread; }
std::span<const DefBoton> BotonesHerramientas() { return kBotones; }

}  // namespace quimo::ui
