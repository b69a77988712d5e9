#pragma once

#include <memory>
#include <unordered_map>

#include "dayclose/terminales/conexion_smb.h"
#include "dayclose/terminales/terminal_share.h"

namespace quimo::dayclose {

/// The terminals' shares reached directly over the network: "\\CAJA1\quimo\Quimo_Terminal.mdb" is
/// the share `quimo` of the computer CAJA1, logged in to as `ConfiguracionRed` says.
///
/// 70 a file that somebody has open for writing (to fetch it) or at all (to replace it), or that
/// changes while it is fetched; 52 a computer that is not found, does not answer or goes away; 76 a
/// share or folder that is not there; 75 a login or path that is refused. After 52, 75 or 76 the
/// program hangs up, and the computer is looked for again at the next operation, and only then. A
/// connection from before is tried first, so that a computer that was started again meanwhile is
/// not taken for one that is gone. An operation waits for the name, for the connection and for
/// each answer, `plazo_s` each; a computer that falls silent costs three or four such waits.
///
/// A lock file beside the database ("...ldb") that somebody has open, or that may not be looked at,
/// is an open database.
///
/// A file is replaced so that the old or the new one is whole at every moment. The protocol as the
/// library speaks it has no rename over an existing file (it deletes that first), hence:
///   1. the destination is opened for us alone and closed again: who holds it open is told (70)
///      before anything is touched;
///   2. the new file is written beside it, "Quimo_Terminal.mdb.parcial", and its size is checked.
///      When it reaches the disk the other computer decides: the library cannot ask for it;
///   3. the destination is opened for us alone again and read: other contents than expected end it
///      here. It must be closed before the next step, so its size and time are compared again;
///   4. "...mdb" becomes "...mdb.anterior", whose size and time are compared once more: a sale that
///      came in between puts it back. Then "...mdb.parcial" becomes "...mdb", and the former file
///      is deleted.
/// Interrupted in step 2 or 3, the destination is as it was and the next upload writes over the
/// rest. Interrupted between the renames, there is no destination: whatever operation comes next
/// puts "...anterior" back first, so the old file is there again and the new one is sent again.
/// Interrupted before the deletion, the new file is in place and the next operation deletes the
/// rest.
class SmbShare final : public TerminalShare {
public:
    explicit SmbShare(ConfiguracionRed configuracion) : configuracion_(std::move(configuracion)) {}

    ResultadoArchivo<bool> Existe(const QString& remoto) override;
    ResultadoArchivo<Copiado> Traer(const QString& remoto, const QString& local) override;
    ResultadoArchivo<void> Llevar(const QString& local, const QString& remoto,
                                  const QString& esperado) override;

private:
    /// Runs an operation on the connection to a computer, and hangs up when the share fails it.
    template <typename Operacion>
    auto Con(const QString& remoto, Operacion operacion)
        -> decltype(operacion(std::declval<ConexionSmb&>(), std::declval<const RutaRed&>()));

    ConfiguracionRed configuracion_;
    std::unordered_map<std::string, std::unique_ptr<ConexionSmb>> conexiones_;
};

}  // namespace quimo::dayclose
