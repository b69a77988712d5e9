#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tsql/lectura/ast.h"

namespace quimo::tsql {

/// A text read whole: nothing of it is run when any of it is not understood.
struct Lote {
    std::string texto;
    std::vector<SentenciaPtr> sentencias;
    int parametros = 0;
    /// Constants of the text. Those marked in `fijos` shaped the tree itself: a text of the same
    /// form with other values there needs a tree of its own.
    std::vector<Literal> literales;
    std::vector<bool> fijos;
    /// Constants whose very type (length, digits) shaped the translation.
    std::vector<bool> tipos_fijos;
};

enum class Constantes {
    PorPosicion,  ///< constants are named by their position: the tree serves other values too
    EnElArbol,    ///< constants are kept in the tree, for texts that are stored and read again
};

/// Reads a text. Failures are native 102, 105, 156, 191 and the like, with the word and its place.
Resultado<Lote> LeerLote(const std::string& texto, Constantes constantes);
/// The same for a text that is cut into tokens already.
Resultado<Lote> LeerLote(const std::string& texto, Lexico lexico, Constantes constantes);

/// Reads one expression or condition, as a default or a computed column keeps it.
Resultado<ExprPtr> LeerExpresion(const std::string& texto);

}  // namespace quimo::tsql
