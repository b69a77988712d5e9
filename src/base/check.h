#pragma once

namespace quimo::base {

/// Writes the broken condition to standard error and ends the program. Only for mistakes of ours;
/// what can go wrong outside is a Result.
[[noreturn]] void FallaInterna(const char* condicion, const char* archivo, int linea);

}  // namespace quimo::base

/// On in every build: a program that goes on after this could write a wrong figure.
#define QUIMO_CHECK(condicion)          \
    ((condicion) ? static_cast<void>(0) \
                 : ::quimo::base::FallaInterna(#condicion, __FILE__, __LINE__))
