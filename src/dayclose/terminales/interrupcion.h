#pragma once

#include <QString>

#include "base/result.h"
#include "data/sql_connection.h"
#include "dayclose/terminales/fallo_archivo.h"

namespace quimo::dayclose {

/// Why a close did not reach its end. Nothing that was done is undone.
struct Interrupcion {
    enum class Motivo {
        Abortado,    ///< the user chose to
        Error,       ///< an error that has no other answer
        Detenido,    ///< the program was told to end
        SinEmpezar,  ///< there was nothing to do, or somebody else is at it: nothing was changed
    };
    Motivo motivo = Motivo::Error;
    qint64 numero = 0;
    QString descripcion = {};
    QString detalle = {};   ///< what stands below the description: where, what, what can be done
    QString terminal = {};  ///< the one terminal that this is about: the close may go on without it
    bool dicha = false;     ///< the user has read it already
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

inline Interrupcion DeFallo(const data::FalloSql& fallo) {
    return {Interrupcion::Motivo::Error, fallo.numero, fallo.Descripcion()};
}
inline Interrupcion DeFallo(const FalloArchivo& fallo) {
    return {Interrupcion::Motivo::Error, fallo.numero, fallo.descripcion};
}
/// For errors of terminal files, told with the file or terminal they are about.
Interrupcion DeFallo(const base::Error& error, const QString& sobre);

/// The same failure, known to be about one terminal.
inline Interrupcion DeTerminal(Interrupcion fallo, const QString& terminal) {
    if (fallo.motivo == Interrupcion::Motivo::Error) fallo.terminal = terminal;
    return fallo;
}

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
