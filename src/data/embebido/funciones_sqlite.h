#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "data/embebido/base_sqlite.h"
#include "tsql/valores/funciones.h"

namespace quimo::data::embebido {

/// What functions of a running statement need from the connection, and what they leave behind.
struct ContextoFunciones {
    /// The error that a function raised; the statement that called it fails with it.
    std::optional<ErrorSql> error;
    std::function<Resultado<Valor>(const std::string& funcion, tsql::Argumentos argumentos)> llamar;
    std::function<Valor(const std::string& nombre, const std::string& clase)> id_objeto;
    std::function<Valor(std::int64_t id)> nombre_objeto;
    std::function<bool(const std::string& nombre)> tiene_candado;
    // Numbering of an identity column, for the statement that is running.
    std::int64_t ultimo_numero = 0;
    std::int64_t incremento = 1;
    bool numero_usado = false;
};

/// Registers the functions and the text order QUIMO with an open file. The context must outlive it.
Hecho RegistrarFunciones(BaseSqlite& base, ContextoFunciones& contexto);

}  // namespace quimo::data::embebido
