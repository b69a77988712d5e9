#pragma once

#include <QString>

#include "base/result.h"
#include "dayclose/fallo_archivo.h"
#include "foundation/sql_connection.h"

namespace quimo::dayclose {

/// Why a close did not reach its end: the user chose to abort, or stopped it while it was at work,
/// or an error that has no other answer. Nothing that was done is undone.
struct Interrupcion {
    enum class Motivo { Abortado, Error, Detenido };
    Motivo motivo = Motivo::Error;
    qint64 numero = 0;
    QString descripcion = {};
};

template <typename T>
using ResultadoCierre = base::Result<T, Interrupcion>;

/// Numbers of failures that no operating system or database server gave.
enum NumeroPropio : qint64 {
    kBaseDanada = 3343,       ///< a terminal's file is damaged or no database
    kBaseNoSoportada = 3041,  ///< a terminal's file is of another version, enciphered, ...
    kTablaAusente = 3078,     ///< a table that is needed is not in the file
    kColumnaAusente = 3070,   ///< a column that is needed is not in the file
    kDatoNoCabe = 3163,       ///< a value does not fit its column
    kClaveRepetida = 3022,    ///< a row would repeat a key
    kErrorArchivo = 3024,     ///< a file cannot be read or written
    kParametroErroneo = 5,    ///< a parameter has no usable value
};

inline Interrupcion DeFallo(const foundation::FalloSql& fallo) {
    return {Interrupcion::Motivo::Error, fallo.numero, fallo.Descripcion()};
}
inline Interrupcion DeFallo(const FalloArchivo& fallo) {
    return {Interrupcion::Motivo::Error, fallo.numero, fallo.descripcion};
}
/// For errors of terminal files, told with the file or terminal they are about.
Interrupcion DeFallo(const base::Error& error, const QString& sobre);

}  // namespace quimo::dayclose

/// QUIMO_INTENTAR(const int n, Leer()); declares n, or returns the failure as an Interrupcion.
#define QUIMO_INTENTAR(declaracion, ...)                                           \
    auto QUIMO_UNIR(intento_, __LINE__) = (__VA_ARGS__);                           \
    if (!QUIMO_UNIR(intento_, __LINE__))                                           \
        return ::quimo::dayclose::DeFallo(QUIMO_UNIR(intento_, __LINE__).error()); \
    declaracion = std::move(QUIMO_UNIR(intento_, __LINE__)).value()

#define QUIMO_INTENTAR_VOID(...)                                                          \
    do {                                                                                  \
        auto intento_interno = (__VA_ARGS__);                                             \
        if (!intento_interno) return ::quimo::dayclose::DeFallo(intento_interno.error()); \
    } while (false)
