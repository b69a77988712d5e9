#include "data/embebido/revision_previa.h"

#include <algorithm>
#include <concepts>

#include "data/embebido/errores_motor.h"

namespace quimo::data::embebido {

namespace {

/// One of the kinds that are named: what stands for several kinds of statement says which, so that
/// a new kind compiles only after somebody thought of it.
template <typename T, typename... Clases>
concept UnaDe = (std::same_as<T, Clases> || ...);

/// Statements that define something, and those that run what nobody knows yet.
template <typename T>
concept QueDefine =
    UnaDe<T, tsql::CrearTabla, tsql::CambiarTabla, tsql::Quitar, tsql::Opcion, tsql::Ejecutar>;

/// Indexes change no name; views, procedures and functions stand alone in their text.
template <typename T>
concept QueNoDefine =
    UnaDe<T, tsql::Insertar, tsql::Actualizar, tsql::Borrar, tsql::Truncar, tsql::CrearIndice,
          tsql::CrearModulo, tsql::Asignar, tsql::Salto, tsql::Regresar, tsql::Imprimir,
          tsql::LanzarError, tsql::Transaccion, tsql::RevisarBase>;

bool Define(const tsql::Sentencia& sentencia);

bool Define(const std::vector<tsql::SentenciaPtr>& sentencias) {
    return std::any_of(sentencias.begin(), sentencias.end(),
                       [](const tsql::SentenciaPtr& s) { return Define(*s); });
}

struct QuienDefine {
    bool operator()(const tsql::Bloque& bloque) const { return Define(bloque.sentencias); }
    bool operator()(const tsql::Si& si) const {
        return Define(*si.entonces) || (si.sino && Define(*si.sino));
    }
    bool operator()(const tsql::Mientras& mientras) const { return Define(*mientras.cuerpo); }
    bool operator()(const tsql::Declarar& declarar) const { return declarar.tabla != nullptr; }
    bool operator()(const tsql::Seleccionar& seleccionar) const {
        const auto& simple = seleccionar.consulta->simple;
        return simple && simple->en.has_value();
    }
    bool operator()(const QueDefine auto& /*sentencia*/) const { return true; }
    bool operator()(const QueNoDefine auto& /*sentencia*/) const { return false; }
};

bool Define(const tsql::Sentencia& sentencia) { return std::visit(QuienDefine{}, sentencia.que); }

/// Statements whose names are looked up when they run: they translate nothing but values.
template <typename T>
concept QueNoSeTraduce = QueDefine<T> ||
    UnaDe<T, tsql::Truncar, tsql::CrearIndice, tsql::CrearModulo, tsql::Asignar, tsql::Salto,
          tsql::Regresar, tsql::Imprimir, tsql::LanzarError, tsql::Transaccion, tsql::RevisarBase>;

}  // namespace

bool RevisionPrevia::Procede(const std::vector<tsql::SentenciaPtr>& sentencias) {
    return sentencias.size() > 1 && !Define(sentencias);
}

Hecho RevisionPrevia::Revisar(const std::vector<tsql::SentenciaPtr>& sentencias) {
    for (const tsql::SentenciaPtr& sentencia : sentencias) {
        QUIMO_TRY_VOID(Una(*sentencia));
    }
    return {};
}

Hecho RevisionPrevia::Una(const tsql::Sentencia& sentencia) {
    return std::visit(
        [this]<typename T>(const T& que) -> Hecho {
            if constexpr (QueNoSeTraduce<T>) {
                return {};
            } else {
                return Ver(que);
            }
        },
        sentencia.que);
}

Hecho RevisionPrevia::Traducida(const void* clave, const Planes::Traduccion& traducir) {
    const auto plan = planes_.Preparar(clave, marco_, traducir);
    if (plan || EsObjetoDesconocido(plan.error()) || EsFalloInterno(plan.error())) return {};
    return plan.error();
}

Hecho RevisionPrevia::Ver(const tsql::Seleccionar& seleccionar) {
    return Traducida(&seleccionar, [&](const tsql::Entorno& e) {
        return TraducirConsulta(*seleccionar.consulta, e);
    });
}

Hecho RevisionPrevia::Ver(const tsql::Insertar& insertar) {
    if (insertar.ejecutar) return {};
    return Traducida(&insertar,
                     [&](const tsql::Entorno& e) { return TraducirInsertar(insertar, e); });
}

Hecho RevisionPrevia::Ver(const tsql::Actualizar& actualizar) {
    return Traducida(&actualizar,
                     [&](const tsql::Entorno& e) { return TraducirActualizar(actualizar, e); });
}

Hecho RevisionPrevia::Ver(const tsql::Borrar& borrar) {
    return Traducida(&borrar, [&](const tsql::Entorno& e) { return TraducirBorrar(borrar, e); });
}

Hecho RevisionPrevia::Ver(const tsql::Declarar& declarar) {
    for (const tsql::Variable& variable : declarar.variables)
        marco_.variables[variable.nombre].tipo = variable.tipo;
    return {};
}

Hecho RevisionPrevia::Ver(const tsql::Si& si) {
    QUIMO_TRY_VOID(Una(*si.entonces));
    if (si.sino) return Una(*si.sino);
    return {};
}

Hecho RevisionPrevia::Ver(const tsql::Mientras& mientras) { return Una(*mientras.cuerpo); }

Hecho RevisionPrevia::Ver(const tsql::Bloque& bloque) { return Revisar(bloque.sentencias); }

}  // namespace quimo::data::embebido
