#pragma once

#include <map>
#include <string>
#include <vector>

#include "data/embebido/salida.h"

namespace quimo::data::embebido {

/// What is alive while one text, procedure or function runs: its plans, parameters, variables and
/// temporary tables.
struct Marco {
    explicit Marco(LoteListo& de) : lote(de) {}

    /// A variable that was declared (@name in lower case), or the error that it was not.
    Resultado<ValorConTipo*> Variable(const std::string& nombre);
    /// Drops the temporary tables that were made inside; what goes wrong is told.
    void Terminar(Sesion& sesion, Salida& salida);

    LoteListo& lote;
    const std::vector<ValorConTipo>* parametros = nullptr;  ///< of each ?
    std::map<std::string, ValorConTipo> variables = {};
    std::vector<std::string> temporales = {};  ///< tables that end with it
    bool es_rutina = false;
    bool es_funcion = false;
    tsql::Tipo retorno = {};  ///< of a function
    Valor valor = {};         ///< what RETURN gave back
};

}  // namespace quimo::data::embebido
