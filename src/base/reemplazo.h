#pragma once

#include <cstddef>
#include <string>

#include <sys/types.h>

#include "base/descriptor.h"
#include "base/result.h"

namespace quimo::base {

/// The errno of the system call that failed.
struct FalloSistema {
    int error = 0;
};

/// The one safe way to write a file that somebody may be reading, or that must survive a power cut:
/// a complete new file beside the old one, made durable, and then put in its place at once.
///
///     QUIMO_TRY(Reemplazo nuevo, Reemplazo::Crear(destino, temporal, Restos::Pisar, 0644));
///     QUIMO_TRY_VOID(nuevo.Escribir(datos, bytes));  // as often as there is something
///     QUIMO_TRY_VOID(nuevo.Asegurar());
///     QUIMO_TRY_VOID(nuevo.Colocar());
///     QUIMO_TRY_VOID(AsegurarNombre(destino));
///
/// The bytes are durable after Asegurar(), the name after AsegurarNombre(): a power cut between
/// Colocar() and that leaves the old file or the new one, each whole. Until Colocar() the
/// destination is as it was. The temporary file is removed by the destructor, unless it was put in
/// place; one that a killed run left behind is its caller's to remove. Every failure is the errno
/// of the call that failed, and who asked tells it in his own words.
class Reemplazo {
public:
    /// What becomes of a file that lies under the temporary name already.
    enum class Restos {
        Pisar,     ///< a run that was killed left it: it is written over
        Respetar,  ///< somebody else's: EEXIST
    };
    /// Opens `temporal`, in the folder of `destino`, for reading and writing.
    static Result<Reemplazo, FalloSistema> Crear(std::string destino, std::string temporal,
                                                 Restos restos, mode_t permisos);
    Reemplazo(Reemplazo&& otro) noexcept;
    Reemplazo& operator=(Reemplazo&&) = delete;
    ~Reemplazo();

    const std::string& Destino() const { return destino_; }
    /// Of the open temporary file, for locks and permissions. -1 once it was closed or given away.
    int Fd() const { return archivo_.Fd(); }

    /// Writes all of it, however few bytes the system takes at a time. A call that a signal
    /// interrupts is made again, but not for ever: after 100 in a row without a byte it is EINTR. A
    /// call that takes no byte at all and gives no reason is ENOSPC.
    Result<void, FalloSistema> Escribir(const void* datos, std::size_t bytes);
    /// Makes the bytes durable.
    Result<void, FalloSistema> Asegurar();
    /// Closes the file before it is put in place, which may fail where it lies on a network.
    Result<void, FalloSistema> Cerrar();
    /// The open file, for who goes on with it after it was put in place.
    Descriptor SoltarArchivo() { return std::move(archivo_); }

    /// Takes the destination's place, whatever lies there.
    Result<void, FalloSistema> Colocar();
    /// Takes the destination's place if nothing lies there, else EEXIST. No file system but those
    /// that can neither rename without replacing nor link lets somebody come in between.
    Result<void, FalloSistema> ColocarSiFalta();

private:
    Reemplazo(std::string destino, std::string temporal, int fd)
        : destino_(std::move(destino)), temporal_(std::move(temporal)), archivo_(fd) {}

    std::string destino_;
    std::string temporal_;  ///< empty when nothing has to be removed
    Descriptor archivo_;
};

/// Puts a finished file in another's place. Neither its bytes nor the name are made durable.
Result<void, FalloSistema> Renombrar(const std::string& origen, const std::string& destino);

/// Makes the entry of a file or folder durable in the folder that holds it. Where a network file
/// system cannot, that server decides, and it is no failure.
Result<void, FalloSistema> AsegurarNombre(const std::string& ruta);

}  // namespace quimo::base
