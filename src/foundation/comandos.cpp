#include "foundation/comandos.h"

#include <algorithm>
#include <array>

namespace quimo::foundation {

namespace {

using V = ComandoVentana;

constexpr ComandoDef Menu(QStringView nombre, QStringView texto,
                          std::span<const ComandoDef> comandos, QStringView permiso = {}) {
    return {.nombre = nombre, .texto = texto, .permiso = permiso, .comandos = comandos};
}

constexpr ComandoDef DeVentana(QStringView nombre, QStringView texto, ComandoVentana ventana) {
    return {.nombre = nombre, .texto = texto, .ventana = ventana};
}

constexpr ComandoDef kSeparador = {};

constexpr ComandoDef kArchivo[] = {
    {u"mnuAbrirScript", u"&Abrir Script"},
    kSeparador,
    DeVentana(u"mnuArImprimir", u"&Imprimir", V::Imprimir),
    DeVentana(u"mnuArcPreview", u"&Vista Previa", V::Preview),
    kSeparador,
    {u"mnuArCerrar", u"&Cerrar"},
    {u"mnuArSalir", u"&Salir"},
};

constexpr ComandoDef kRegistro[] = {
    DeVentana(u"mnuEdReg", u"&Primero", V::Primero),
    DeVentana(u"mnuEdReg", u"&Anterior", V::Anterior),
    DeVentana(u"mnuEdReg", u"&Siguiente", V::Siguiente),
    DeVentana(u"mnuEdReg", u"&Ultimo", V::Ultimo),
    kSeparador,
    DeVentana(u"mnuEdReg", u"&Buscar", V::Buscar),
    DeVentana(u"mnuEdReg", u"&Consulta", V::Filtro),
    kSeparador,
    DeVentana(u"mnuEdReg", u"&Nuevo", V::Nuevo),
    DeVentana(u"mnuEdReg", u"&Modificar", V::Modificar),
    DeVentana(u"mnuEdReg", u"&Borrar", V::Borrar),
    kSeparador,
    DeVentana(u"mnuEdReg", u"&Aceptar", V::Aceptar),
    DeVentana(u"mnuEdReg", u"&Cancelar", V::Cancelar),
};

constexpr ComandoDef kEditar[] = {Menu(u"mnuEdRegistro", u"&Registro", kRegistro)};

constexpr ComandoDef kOperacion[] = {
    {u"mnuOpCategorias", u"&Categorías", u"CATEGORIAS"},
    {u"mnuOpCortesias", u"C&ortesías", u"CORTESIAS"},
    {u"mnuOpGpoModificadores", u"&Grupos de modificadores", u"GRUPOSMODIFICADORES"},
    {u"mnuOpGpoObsequios", u"Gr&upos de obsequios", u"GPOOBSEQUIOS"},
    {u"mnuOpGpoPromocional", u"Grupos promociona&les", u"GPOOBSEQUIOS"},
    {u"mnuOpMenu", u"&Menús", u"MENU"},
    {u"mnuOpModificadores", u"Mo&dificadores", u"MODIFICADORES"},
    {u"mnuOpModosDePreparacion", u"Modos de p&reparación"},
    {u"mnuOpPaquete", u"P&aquetes", u"PAQUETES"},
    {u"mnuOpProductos", u"&Productos"},
    {u"mnuOpPromociones", u"Promocio&nes"},
    {u"mnuOPSubMenu", u"&Submenús", u"SUBMENU"},
    {u"mnuOpTiposAnulacion", u"&Tipos de anulación", u"TIPOSDEANULACION"},
    {u"mnuOpTipoImpuesto", u"Tipos de &impuesto"},
    {u"mnuOpTipoPago", u"Tipos d&e pago", u"TIPOSDEPAGO"},
};

constexpr ComandoDef kNomina[] = {
    {u"mnuHorasEmpleado", u"&Horas por empleado"},
    {u"mnuDetHoras", u"&Detalle de horas"},
    {u"mnuResumenHoras", u"&Resumen de horas"},
};

constexpr ComandoDef kCortesias[] = {
    {u"mnuProRepCortesias", u"&Cortesías"},
    {u"mnuGoldCard", u"&Gold Card"},
};

constexpr ComandoDef kReportes[] = {
    Menu(u"mnuNomina", u"&Nomina", kNomina),
    kSeparador,
    {u"mnuRepAnulacion", u"&Anulaciones", u"REPANULACION"},
    Menu(u"mnuCorPrincipal", u"&Cortesías", kCortesias),
    {u"mnuProRepCuentas", u"C&uentas", u"REPVENTAS"},
    {u"mnuRepDetPagos", u"&Lista de pagos", u"REPPAGOS"},
    {u"mnuProRepEspeciales", u"&Especiales", u"REPESPECIALES"},
    {u"mnuProRepLista", u"Lista de p&recios", u"REPLISTADEPRECIOS"},
    {u"mnuRepProp", u"&Propinas", u"REPPAGOS"},
    {u"mnuRepPagos", u"&Pagos", u"REPPAGOS"},
    {u"mnuRepPMIX", u"P&-MIX", u"REPPMIX"},
    {u"mnuRepVentas", u"&Ventas", u"REPVENTAS"},
    kSeparador,
    {u"mnuRepCompEmpleado", u"Comparativo por e&mpleado", u"REPARTICULOSXEMPL"},
    {u"mnuRepCompCategoria", u"Comparativo por ca&tegoría", u"REPVENTAS"},
    {u"mnuRepCompArticulos", u"Comparativo por art&ículo", u"REPARTICULOSXEMPL"},
};

constexpr ComandoDef kVentana[] = {
    {u"MnuVeArIconos", u"Arreglar iconos"},
    {u"mnuVehorizontal", u"&Horizontal"},
    {u"mnuVeVertical", u"&Vertical"},
    {u"mnuVeCascada", u"&Cascada"},
};

constexpr ComandoDef kAdministracion[] = {
    {u"mnuUtlAdFunxgrp", u"&Permisos x Grupo", u"PERMISOSXGRUPO"},
    {u"mnuUtlAdGrupos", u"&Grupos de trabajo", u"GRUPOSTRABAJO"},
    {u"mnuUtlAdUsr", u"&Empleados", u"EMPLEADOS"},
    {u"mnuEmpresas", u"&Empresas"},
    {u"mnuDepartamentos", u"&Departamentos"},
};

constexpr ComandoDef kConfiguracion[] = {
    {u"mnuFunciones", u"&Funciones del sistema"},
    {u"mnuUtlConfGposImpresoras", u"&Grupos de Impresoras", u"GRUPOSIMPRESORAS"},
    {u"mnuUtlConfImpresoras", u"&Impresoras", u"IMPRESORAS"},
    {u"mnuTerminal", u"&Terminal"},
};

constexpr ComandoDef kProcesos[] = {
    {u"mnuUtlProcFin", u"&Fin de día"},
    {u"mnuBorrarDia", u"Borrar un d&ía"},
    {u"mnuBorrarCola", u"&Borrar Cola Impresion"},
    {u"mnuDesfirmar", u"&Desfirmar Empleados"},
    {u"mnuBorrarDatos", u"&Borrar Todos Los Datos"},
};

constexpr ComandoDef kUtilerias[] = {
    {u"mnuEjecutar", u"&Ejecutar Script"},
    Menu(u"mnuUtlAdministracion", u"&Administración", kAdministracion, u"ADMIN"),
    {u"mnuUtlContraseña", u"Camb&iar Contraseña"},
    {u"mnuVeTapiz", u"Cambiar &Tapiz"},
    Menu(u"mnuUtlConfiguracion", u"&Configuración", kConfiguracion, u"CONFIGURACION"),
    {u"mnuLimTapiz", u"&Limpiar Tapiz"},
    {u"mnuUtlMensajes", u"&Mensajes", u"MENSAJES"},
    {u"mnuParametros", u"&Parámetros", u"PARAMETROS"},
    Menu(u"mnuUtlProcesos", u"P&rocesos", kProcesos),
};

constexpr ComandoDef kAyuda[] = {{u"mnuAyAcerca", u"&Acerca de"}};

constexpr ComandoDef kMenus[] = {
    Menu(u"mnuArchivo", u"&Archivo", kArchivo),
    Menu(u"mnuEditar", u"&Editar", kEditar),
    Menu(u"mnuOperacion", u"&Operación", kOperacion, u"OPERACION"),
    Menu(u"mnuProRep", u"&Reportes", kReportes, u"REPORTES"),
    Menu(u"MnuVentana", u"&Ventana", kVentana),
    Menu(u"mnuUtilerias", u"&Utilerias", kUtilerias),
    Menu(u"mnuAyuda", u"&Ayuda", kAyuda),
};

constexpr ComandoDef kSpread[] = {
    DeVentana(u"mnuSprNuevo", u"&Nuevo", V::SpreadNuevo),
    DeVentana(u"mnuSprMod", u"&Modificar", V::SpreadModificar),
    DeVentana(u"mnuSprBorrar", u"&Borrar", V::SpreadBorrar),
};
constexpr ComandoDef kMenuSpread = Menu(u"mnuSpread", u"Detalle", kSpread);

constexpr QStringView kPermisos[] = {
    u"OPERACION",
    u"TIPOSDEPAGO",
    u"TIPOSDEANULACION",
    u"CATEGORIAS",
    u"GRUPOSMODIFICADORES",
    u"MENU",
    u"SUBMENU",
    u"GPOOBSEQUIOS",
    u"CORTESIAS",
    u"MODIFICADORES",
    u"PAQUETES",
    u"REPORTES",
    u"REPPAGOS",
    u"REPANULACION",
    u"REPPMIX",
    u"REPVENTAS",
    u"REPESPECIALES",
    u"REPARTICULOSXEMPL",
    u"REPLISTADEPRECIOS",
    u"ADMIN",
    u"PERMISOSXGRUPO",
    u"GRUPOSTRABAJO",
    u"EMPLEADOS",
    u"CONFIGURACION",
    u"GRUPOSIMPRESORAS",
    u"IMPRESORAS",
    u"MENSAJES",
    u"PARAMETROS",
};

/// Puts commands and menus, without the separators, one after the other; how many there are then.
/// Without a place to put them it only counts.
constexpr std::size_t Aplanar(std::span<const ComandoDef> comandos,
                              std::span<const ComandoDef*> donde, std::size_t van) {
    for (const ComandoDef& comando : comandos) {
        if (comando.nombre.isEmpty()) continue;
        if (!donde.empty()) donde[van] = &comando;
        van = Aplanar(comando.comandos, donde, van + 1);
    }
    return van;
}

constexpr auto kTodos = [] {
    constexpr std::span<const ComandoDef> kSpreadSolo(&kMenuSpread, 1);
    std::array<const ComandoDef*, Aplanar(kSpreadSolo, {}, Aplanar(kMenus, {}, 0))> todos{};
    Aplanar(kSpreadSolo, todos, Aplanar(kMenus, todos, 0));
    return todos;
}();

constexpr bool Iguales(QStringView uno, QStringView otro) {
    if (uno.size() != otro.size()) return false;
    for (qsizetype i = 0; i < uno.size(); ++i) {
        if (uno.utf16()[i] != otro.utf16()[i]) return false;
    }
    return true;
}

consteval bool TodosTienenTexto() {
    return std::ranges::none_of(kTodos, [](auto* comando) { return comando->texto.isEmpty(); });
}

/// Only what asks different things of a window may share a name.
consteval bool SinRepetir() {
    for (std::size_t i = 0; i < kTodos.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            const ComandoDef* const uno = kTodos[i];
            const ComandoDef* const otro = kTodos[j];
            const bool de_ventana = uno->ventana && otro->ventana;
            if (de_ventana && uno->ventana == otro->ventana) return false;
            if (!de_ventana && Iguales(uno->nombre, otro->nombre)) return false;
        }
    }
    return true;
}

consteval bool PermisosCompletos() {
    for (const ComandoDef* const comando : kTodos) {
        if (!comando->permiso.isEmpty() && std::ranges::none_of(kPermisos, [&](auto permiso) {
                return Iguales(permiso, comando->permiso);
            }))
            return false;
    }
    return true;
}

consteval bool PermisosPedidosUnaVez() {
    for (const QStringView este : kPermisos) {
        const auto es_este = [este](auto permiso) { return Iguales(permiso, este); };
        if (std::ranges::count_if(kPermisos, es_este) != 1) return false;
        if (std::ranges::none_of(kTodos, [&](auto* comando) { return es_este(comando->permiso); }))
            return false;
    }
    return true;
}

static_assert(TodosTienenTexto(), "a command without a text");
static_assert(SinRepetir(), "two commands of one name, or that ask the same of a window");
static_assert(PermisosCompletos(), "a right that is not in the list");
static_assert(PermisosPedidosUnaVez(), "a right twice in the list, or that no command asks for");

}  // namespace

std::span<const ComandoDef> MenusPrincipales() { return kMenus; }
const ComandoDef& MenuSpread() { return kMenuSpread; }
std::span<const QStringView> Permisos() { return kPermisos; }

bool EsComando(QStringView nombre) {
    return std::ranges::any_of(kTodos,
                               [nombre](auto* comando) { return comando->nombre == nombre; });
}

}  // namespace quimo::foundation
