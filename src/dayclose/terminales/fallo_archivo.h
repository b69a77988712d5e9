#pragma once

#include <QString>

#include "base/result.h"

namespace quimo::dayclose {

/// A file operation that the system refused, by the numbers that the day close decides on.
struct FalloArchivo {
    enum Numero : int {
        kNombreIncorrecto = 52,  ///< bad name, or the computer or share does not answer
        kNoEncontrado = 53,      ///< the file is not there
        kErrorDispositivo = 57,  ///< the device failed
        kDiscoLleno = 61,        ///< no room left
        kPermisoDenegado = 70,   ///< somebody holds the file open
        kAccesoRuta = 75,        ///< the path is refused
        kRutaNoEncontrada = 76,  ///< the folder or share is not there
        kCambiado = 3197,        ///< another file lies there than the one to be replaced
    };
    int numero = kErrorDispositivo;
    QString descripcion;  ///< Spanish, with the path
    bool propio = false;  ///< of this computer's own disk: it fails whatever terminal it is about

    /// The failures that mean that a terminal cannot be reached.
    bool EsDeComunicacion() const {
        return numero == kNombreIncorrecto || numero == kAccesoRuta || numero == kRutaNoEncontrada;
    }
};

/// The failure for a number, with its usual description and the path it happened at.
FalloArchivo FalloDeNumero(int numero, const QString& ruta);
/// The same with what is known beyond that, in parentheses.
FalloArchivo FalloDeNumero(int numero, const QString& ruta, const QString& motivo);

/// The failure for an errno of the system.
FalloArchivo FalloDeErrno(int error, const QString& ruta);

/// Whose disk a file lies on.
enum class Disco { Propio, Terminal };

/// The same of a known disk: where a mounted share has lost its computer, our own disk has failed.
FalloArchivo FalloEnDisco(Disco disco, int error, const QString& ruta);

template <typename T>
using ResultadoArchivo = base::Result<T, FalloArchivo>;

}  // namespace quimo::dayclose
