#pragma once

#include <functional>
#include <string>

#include "data/embebido/marco.h"

namespace quimo::data::embebido {

/// Statements once translated: prepares them for the engine below, gives them their values, runs
/// them and reads or counts what comes of it. A plan is kept with its text and prepared anew when a
/// table, procedure or option that it stands on has changed.
///
/// A plan may call functions that are written in T-SQL. It knows nothing of those but who calls one
/// by its name (ContextoFunciones::llamar).
class Planes {
public:
    using Traduccion = std::function<Resultado<tsql::Plan>(const tsql::Entorno&)>;

    explicit Planes(Sesion& sesion) : sesion_(sesion) {}

    /// What a translation is told of tables, variables and parameters. The frame must outlive it.
    tsql::Entorno EntornoDe(Marco& marco) const;
    /// The plan of one place of the text (`clave`: the statement or expression there), from the
    /// last time it ran or translated now. Valid until the next one of the same place.
    Resultado<PlanListo*> Preparar(const void* clave, Marco& marco, const Traduccion& traducir);
    /// A plan that nobody keeps.
    Resultado<PlanListo> PrepararSuelto(tsql::Plan plan);
    /// Gives a plan the values of its constants, parameters, variables and @@slots.
    Hecho Ligar(PlanListo& listo, Marco& marco);

    // All of them from here on want the plan's values given.

    /// A SELECT: hands its rows over as a result set, or puts them into variables.
    Hecho Leer(PlanListo& listo, Marco& marco, Salida& salida);
    /// INSERT, UPDATE or DELETE, as `verbo` says: numbers the rows of an identity column, and tells
    /// how many rows were written. A constraint that refuses one undoes the statement.
    Resultado<std::int64_t> Escribir(PlanListo& listo, const std::string& verbo, Marco& marco);

    // Prepare, give values and run, for what stands in the text as a value.
    Resultado<ValorConTipo> Evaluar(const tsql::Expr& expr, Marco& marco);
    Resultado<bool> Cumple(const tsql::Expr& condicion, Marco& marco);

private:
    bool Vigente(const PlanListo& listo) const;
    ErrorSql FalloDe(int codigo);
    Hecho LeerVariables(PlanListo& listo, Marco& marco);
    Resultado<std::int64_t> EscribirSinNumerar(PlanListo& listo, const std::string& verbo,
                                               Marco& marco);
    Resultado<std::int64_t> Numerar(PlanListo& listo, const std::string& verbo, Marco& marco);
    Resultado<std::optional<std::int64_t>> PorPartes(const PlanListo& listo, Marco& marco);

    Sesion& sesion_;
};

}  // namespace quimo::data::embebido
