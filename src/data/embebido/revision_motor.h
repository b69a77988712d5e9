#pragma once

#include <string>
#include <vector>

#include "data/embebido/base_sqlite.h"

namespace quimo::data::embebido {

/// Something that is wrong in the file, as DBCC CHECKDB tells it: number and wording after the
/// server's, with what the engine below said of it first.
struct HallazgoMotor {
    enum Numero : int {
        kReferencia = 547,  ///< rows refer to rows that are not there
        kValor = 2570,      ///< a value that its column does not take
        kPagina = 8928,     ///< a part of the file cannot be read, or does not belong where it is
        kIndice = 8951,     ///< an index and its table do not say the same
    };
    int numero = kPagina;
    std::string tabla;  ///< empty: no table's own, such as the list of free pages
    std::string mensaje;
};

/// Reads the whole file: pages, rows, indexes, and, when all of those are sound, the references
/// between tables. Only a connection with the program's functions and order can do this. Fails when
/// another holds the file or memory runs out; what cannot be read is a finding.
Resultado<std::vector<HallazgoMotor>> RevisarMotor(BaseSqlite& base);

}  // namespace quimo::data::embebido
