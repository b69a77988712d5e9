#pragma once

#include <cstdlib>
#include <iostream>
#include <utility>

#include "base/result.h"

namespace quimo::jet {

/// The value, or the program's end: for benches and seeds, which are nothing without it.
template <typename T>
T Exigir(base::Result<T> resultado) {
    if (!resultado) {
        std::cerr << resultado.error().mensaje << "\n";
        std::exit(1);
    }
    return std::move(resultado).value();
}
inline void Exigir(const base::Result<void>& resultado) {
    if (resultado) return;
    std::cerr << resultado.error().mensaje << "\n";
    std::exit(1);
}

}  // namespace quimo::jet
