#pragma once

#include <span>
#include <string>
#include <string_view>

#include "tsql/valores/error_sql.h"
#include "tsql/valores/tipos.h"
#include "tsql/valores/valor.h"

namespace quimo::tsql {

using Argumentos = std::span<const Valor>;

/// A scalar function of the engine. Exact numbers come and go as whole numbers scaled by their
/// type; those of more than 64 bits as sixteen bytes (see AnchoABytes).
struct FuncionEscalar {
    std::string_view nombre;
    int argumentos = 0;  ///< -1: any number
    Resultado<Valor> (*llamar)(Argumentos) = nullptr;
    bool con_nulos = false;  ///< it sees NULLs; others are NULL when an argument is
    bool determinista = true;
};

/// All scalar functions that translated statements call, but for those that need the connection:
/// q_objeto, q_nombre_objeto, q_fn, q_identidad and q_numero_dado.
std::span<const FuncionEscalar> FuncionesDeTexto();
std::span<const FuncionEscalar> FuncionesDeNumero();
std::span<const FuncionEscalar> FuncionesDeFecha();

/// Sixteen bytes whose order is the order of the numbers.
std::string AnchoABytes(Int128 valor);
Int128 BytesAAncho(std::string_view bytes);
/// A whole number as the engine handed it over. A real stands for a sum that left its range.
Resultado<Int128> LeerExacto(const Valor& valor, const Tipo& tipo);
/// A value as its type keeps it, from what the engine handed over.
Resultado<Valor> Normalizar(const Valor& valor, const Tipo& tipo);

}  // namespace quimo::tsql
