#pragma once

#include <string>
#include <utility>

#include "base/result.h"

namespace quimo::tsql {

/// A failure as the server tells it: native number, SQLSTATE and the server's English wording.
/// Texts are UTF-8.
struct ErrorSql {
    int nativo = 0;
    std::string mensaje;
    std::string sqlstate = "42000";
    int severidad = 16;

    /// The statement list stops here: a conversion that failed, a name that is not there, bad
    /// syntax. Other failures undo their statement only and the list goes on.
    bool AbortaLote() const;
};

template <typename T>
using Resultado = base::Result<T, ErrorSql>;

/// The error of a native number. Each %1, %2... of the server's wording is replaced by the
/// arguments; the SQLSTATE is the one the driver reports for the number.
ErrorSql CrearError(int nativo, const std::string& uno = {}, const std::string& dos = {},
                    const std::string& tres = {});

// Errors by what they say.
ErrorSql SintaxisIncorrecta(const std::string& palabra, const std::string& lugar = {});
ErrorSql DemasiadoAnidado();
ErrorSql ObjetoDesconocido(const std::string& nombre);
ErrorSql VariableSinDeclarar(const std::string& nombre);
ErrorSql ParametrosDeMenos(const std::string& marcas, const std::string& dados);
ErrorSql ParametrosDeMas(const std::string& funcion);
ErrorSql ParametroInvalido(const std::string& cual, const std::string& funcion);
ErrorSql ConversionImplicitaProhibida(const std::string& de, const std::string& a);
ErrorSql ConversionImposible(const std::string& de, const std::string& a);
ErrorSql Desbordamiento(const std::string& de, const std::string& a);
ErrorSql TextoRecortado();
ErrorSql ColumnaSinNulos(const std::string& columna, const std::string& tabla,
                         const std::string& verbo);

}  // namespace quimo::tsql
