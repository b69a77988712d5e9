#include "data/embebido/opciones_sesion.h"

#include <algorithm>
#include <array>

#include "data/embebido/errores_motor.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

template <std::size_t kCuantas>
bool EsDe(const std::array<std::string_view, kCuantas>& nombres, const std::string& nombre) {
    return std::find(nombres.begin(), nombres.end(), nombre) != nombres.end();
}

/// Options that the session does not keep: without effect here, or what the engine always does
/// (switching those off would change meanings).
bool SePuedeAceptar(const tsql::Opcion& opcion, bool si) {
    static constexpr auto kSinEfecto = std::to_array<std::string_view>(
        {"TRANSACTION", "LOCK_TIMEOUT", "ARITHABORT", "ANSI_DEFAULTS"});
    static constexpr auto kSiempre = std::to_array<std::string_view>(
        {"ANSI_NULLS", "QUOTED_IDENTIFIER", "ANSI_WARNINGS", "ANSI_PADDING",
         "CONCAT_NULL_YIELDS_NULL", "ANSI_NULL_DFLT_ON"});
    static constexpr auto kNunca =
        std::to_array<std::string_view>({"NUMERIC_ROUNDABORT", "IMPLICIT_TRANSACTIONS"});
    return EsDe(kSinEfecto, opcion.nombre) || (si && EsDe(kSiempre, opcion.nombre)) ||
           (!si && EsDe(kNunca, opcion.nombre));
}

Hecho PonerIdentidad(const tsql::Opcion& opcion, bool si, Sesion& sesion) {
    std::string& abierta = sesion.Estado().identity_insert;
    const auto tabla = sesion.Catalogo().BuscarTabla(opcion.tabla);
    if (!tabla) return tsql::ObjetoDesconocido(opcion.tabla.Completo());
    if (tabla->Identidad() == nullptr) return TablaSinIdentidad(tabla->nombre);
    const bool suya = tsql::MismoNombre(abierta, tabla->nombre);
    if (si && !abierta.empty() && !suya) return IdentidadYaAbierta(abierta, tabla->nombre);
    if (si || suya) abierta = si ? tabla->nombre : "";
    ++sesion.Estado().opciones;
    return {};
}

Hecho PonerOrden(const tsql::Opcion& opcion, EstadoSesion& estado) {
    if (opcion.valor == "DMY") {
        estado.orden = tsql::OrdenFecha::Dma;
    } else if (opcion.valor == "MDY") {
        estado.orden = tsql::OrdenFecha::Mda;
    } else if (opcion.valor == "YMD") {
        estado.orden = tsql::OrdenFecha::Amd;
    } else {
        return OpcionDesconocida(opcion.valor, "SET DATEFORMAT option");
    }
    ++estado.opciones;
    return {};
}

}  // namespace

Hecho PonerOpcion(const tsql::Opcion& opcion, Sesion& sesion) {
    EstadoSesion& estado = sesion.Estado();
    const bool si = opcion.valor == "ON";
    if (opcion.nombre == "NOCOUNT") {
        estado.sin_cuenta = si;
    } else if (opcion.nombre == "XACT_ABORT") {
        estado.aborta_todo = si;
    } else if (opcion.nombre == "IDENTITY_INSERT") {
        return PonerIdentidad(opcion, si, sesion);
    } else if (opcion.nombre == "DATEFORMAT") {
        return PonerOrden(opcion, estado);
    } else if (opcion.nombre == "USE") {
        if (!tsql::MismoNombre(opcion.valor, sesion.NombreBase()))
            return BaseDesconocida(opcion.valor);
    } else if (!SePuedeAceptar(opcion, si)) {
        return OpcionDesconocida(opcion.nombre + " " + opcion.valor, "SET option");
    }
    return {};
}

}  // namespace quimo::data::embebido
