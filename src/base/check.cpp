#include "base/check.h"

#include <cstdio>
#include <cstdlib>

namespace quimo::base {

void FallaInterna(const char* condicion, const char* archivo, int linea) {
    std::fprintf(stderr, "Error interno: %s (%s:%d)\n", condicion, archivo, linea);
    std::abort();
}

}  // namespace quimo::base
