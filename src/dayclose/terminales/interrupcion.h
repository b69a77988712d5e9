#pragma once

#include <utility>

#include <QString>

#include "base/result.h"
#include "data/sql_connection.h"
#include "dayclose/terminales/fallo_archivo.h"

namespace quimo::dayclose {

/// Why a close, or any other work with the terminals' files, did not reach its end. Nothing that
/// was done is undone.
struct Interrupcion {
    enum class Motivo {
        Abortado,    ///< the user chose to
        Error,       ///< an error that has no other answer
        Detenido,    ///< the program was told to end
        SinEmpezar,  ///< there was nothing to do, or somebody else is at it: nothing was changed
    };

    Interrupcion() = default;
    explicit Interrupcion(Motivo por_que) : motivo(por_que) {}
    Interrupcion(Motivo por_que, qint64 cual, QString que)
        : motivo(por_que), numero(cual), descripcion(std::move(que)) {}
    /// What the database or the system refused, so that QUIMO_TRY passes it on.
    // NOLINTNEXTLINE(google-explicit-constructor)
    Interrupcion(const data::FalloSql& fallo)
        : Interrupcion(Motivo::Error, fallo.numero, fallo.Descripcion()) {}
    // NOLINTNEXTLINE(google-explicit-constructor)
    Interrupcion(const FalloArchivo& fallo)
        : Interrupcion(Motivo::Error, fallo.numero, fallo.descripcion) {}

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

/// What was looked for in a terminal's file when it is not there.
enum class Buscado { Archivo, Tabla, Columna };

/// For errors of terminal files, told with the file or terminal they are about.
Interrupcion DeFallo(const base::Error& error, const QString& sobre,
                     Buscado buscado = Buscado::Tabla);

/// The same failure, known to be about one terminal.
inline Interrupcion DeTerminal(Interrupcion fallo, const QString& terminal) {
    if (fallo.motivo == Interrupcion::Motivo::Error) fallo.terminal = terminal;
    return fallo;
}

}  // namespace quimo::dayclose
