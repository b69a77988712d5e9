#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/valores/error_sql.h"
#include "tsql/valores/tipos.h"
#include "tsql/valores/valor.h"

namespace quimo::tsql {

/// A constant of a text, with the type that the server gives to constants.
struct Literal {
    Tipo tipo;
    Valor valor;
};

struct Token {
    enum class Clase {
        Palabra,     ///< name or keyword, # names included
        Delimitado,  ///< [name] or "name"
        Variable,    ///< @name
        Global,      ///< @@name
        Literal,     ///< number, text or binary
        Signo,       ///< operator or punctuation
        Parametro,   ///< ?
        Fin,
    };
    Clase clase = Clase::Fin;
    std::string_view texto = {};  ///< as written; of a delimited name, what is inside
    std::size_t desde = 0;        ///< where it stands in the text, in bytes
    std::size_t hasta = 0;
    int literal = -1;  ///< position in Lexico::literales
};

/// A text cut into tokens. Tokens point into the text, which must outlive them.
struct Lexico {
    std::vector<Token> tokens;  ///< the last one is Fin
    std::vector<Literal> literales;
    int parametros = 0;  ///< how many ? there are
    /// The text with each constant replaced by the kind of its type: texts that differ in nothing
    /// but the values of constants have the same form.
    std::string forma;
};

/// Longest text that is taken, in bytes.
constexpr std::size_t kTextoMaximo = 16U << 20U;

Resultado<Lexico> Analizar(std::string_view texto);
/// Only its form, constants and count of parameters, without tokens, into a Lexico of before whose
/// memory is used again: what is needed of a text whose form was read already.
base::Result<void, ErrorSql> AnalizarForma(std::string_view texto, Lexico& lexico);

/// Whether the word is one of the dialect's reserved words.
bool EsReservada(std::string_view palabra);

/// " (line 3, column 12)" of a place in a text.
std::string Lugar(std::string_view texto, std::size_t posicion);

}  // namespace quimo::tsql
