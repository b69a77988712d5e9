#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "base/decimal.h"

namespace quimo::tsql {

using base::Int128;

/// A value at run time, as its type keeps it (see Tipo). Which type it is of is known beside it.
struct Valor {
    enum class Forma { Nulo, Exacto, Real, Texto, Bytes };

    Forma forma = Forma::Nulo;
    Int128 exacto = 0;
    double real = 0;
    std::string texto = {};  ///< UTF-8, or bytes

    static Valor De(Int128 exacto) { return {Forma::Exacto, exacto}; }
    static Valor DeReal(double real) { return {Forma::Real, 0, real}; }
    static Valor DeTexto(std::string texto) { return {Forma::Texto, 0, 0, std::move(texto)}; }
    static Valor DeBytes(std::string bytes) { return {Forma::Bytes, 0, 0, std::move(bytes)}; }

    bool EsNulo() const { return forma == Forma::Nulo; }
    std::int64_t Entero() const { return static_cast<std::int64_t>(exacto); }
};

}  // namespace quimo::tsql
