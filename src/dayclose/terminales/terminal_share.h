#pragma once

#include <functional>

#include "dayclose/terminales/archivos.h"
#include "dayclose/terminales/fallo_archivo.h"

namespace quimo::dayclose {

/// The terminals' network shares as a port. Remote files are named as the network names them:
/// "\\CAJA1\quimo\Quimo_Terminal.mdb". Failures carry the numbers that the day close decides on: a
/// file that the terminal holds open is 70, a computer or share that does not answer 52 or 76, a
/// refused path 75.
class TerminalShare {
public:
    TerminalShare() = default;
    TerminalShare(const TerminalShare&) = delete;
    TerminalShare& operator=(const TerminalShare&) = delete;
    virtual ~TerminalShare() = default;

    /// Whether the file is there. A folder inside the share that is missing means that it is not.
    virtual ResultadoArchivo<bool> Existe(const QString& remoto) = 0;
    /// Copies a remote file to a local one, which is replaced whole or not at all.
    virtual ResultadoArchivo<Copiado> Traer(const QString& remoto, const QString& local) = 0;
    /// Copies a local file over a remote one, which is replaced whole or not at all, and only if it
    /// is still the one that the caller has kept: `esperado` is its SHA-256, empty when there was
    /// no file. The new file is first written beside it; then, with the destination locked where
    /// that is possible, what lies there is compared. Anything else than what is expected is
    /// `FalloArchivo::kCambiado`: the destination stays, nothing is left beside it.
    virtual ResultadoArchivo<void> Llevar(const QString& local, const QString& remoto,
                                          const QString& esperado) = 0;

    /// Runs when the new file is complete, just before what lies at the destination is looked at
    /// for the last time: where tests let a terminal sell.
    std::function<void()> antes_de_reemplazar;
};

}  // namespace quimo::dayclose
