#pragma once

#include <string>
#include <vector>

#include "base/result.h"
#include "jet/base_datos.h"

namespace quimo::jet {

/// What the verifier noticed.
struct Hallazgo {
    enum class Gravedad {
        Falla,   ///< the file is damaged
        Rareza,  ///< files of other programs are known to have it; this library makes none
    };
    Gravedad gravedad = Gravedad::Falla;
    std::string mensaje;  ///< Spanish, naming page, table, index and row
};

/// Checks pages, maps, table definitions, rows, long values, every index entry and the catalogue
/// against each other, and changes nothing. Returns at most kHallazgosMax findings; an error only
/// when the file cannot be read at all.
class Verificador {
public:
    static constexpr std::size_t kHallazgosMax = 1000;
    static base::Result<std::vector<Hallazgo>> Verificar(const BaseDatos& base);
};

}  // namespace quimo::jet
