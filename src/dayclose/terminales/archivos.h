#pragma once

#include <functional>

#include <QByteArray>

#include "base/reemplazo.h"
#include "dayclose/terminales/fallo_archivo.h"

namespace quimo::dayclose {

/// What a copy went through.
struct Copiado {
    qint64 bytes = 0;
    QString sha256;  ///< 64 lower-case hexadecimal digits
};

/// Whether a source that somebody holds locked is read all the same. The program's own files are;
/// a terminal's is not.
enum class Candados { Ignorar, Respetar };

/// Copies a whole file and puts it in the destination's place at once: it is written beside it,
/// made durable and renamed. On any failure the destination is as it was and nothing is left beside
/// it. A source that changes while it is read, or that is locked where locks are respected: 70. The
/// destination's folder must exist (76).
ResultadoArchivo<Copiado> CopiarEntero(const QString& origen, const QString& destino,
                                       Candados candados = Candados::Ignorar);

/// Takes one piece of a file that is being copied.
using Sumidero = std::function<ResultadoArchivo<void>(const char* datos, qsizetype bytes)>;
/// Hands a whole file to a sink, a piece at a time, and fails if it was not the whole file.
using Productor = std::function<ResultadoArchivo<void>(const Sumidero& sumidero)>;

/// What a producer hands over, counted and digested on its way to a sink, or to none.
ResultadoArchivo<Copiado> Resumir(const Productor& producir, const Sumidero& sumidero = {});

/// A new file that stands whole and durable beside its destination ("DESTINO.parcial") and is not
/// yet in its place. Removed with the object unless it was put there; its name is durable once it
/// was.
class ArchivoNuevo {
public:
    static ResultadoArchivo<ArchivoNuevo> Escribir(const QString& destino,
                                                   const Productor& producir,
                                                   Disco disco = Disco::Propio);
    /// Of a file of our own.
    static ResultadoArchivo<ArchivoNuevo> CopiaDe(const QString& origen, const QString& destino,
                                                  Disco disco);

    const Copiado& Contenido() const { return contenido_; }
    /// Takes the destination's place, whatever lies there.
    ResultadoArchivo<void> Colocar();
    /// Takes the destination's place if nothing lies there, else `kCambiado`.
    ResultadoArchivo<void> ColocarSiFalta();
    /// Takes the destination's place if what lies there has this digest, else `kCambiado`. Nobody
    /// else can lock the destination between the comparison and the replacement, and who has it
    /// locked is 70; `revisar` is asked while it is held.
    ResultadoArchivo<void> ColocarSi(const QString& sha256,
                                     const std::function<ResultadoArchivo<void>()>& revisar);

private:
    ArchivoNuevo(QString destino, Disco disco, base::Reemplazo nuevo)
        : destino_(std::move(destino)), disco_(disco), nuevo_(std::move(nuevo)) {}
    ResultadoArchivo<void> Segun(const base::Result<void, base::FalloSistema>& hecho) const;

    QString destino_;
    Disco disco_;
    base::Reemplazo nuevo_;
    Copiado contenido_;
};

/// A file of our own that goes with the object.
class ArchivoTemporal {
public:
    explicit ArchivoTemporal(QString ruta) : ruta_(std::move(ruta)) {}
    ArchivoTemporal(const ArchivoTemporal&) = delete;
    ArchivoTemporal& operator=(const ArchivoTemporal&) = delete;
    ~ArchivoTemporal();
    const QString& Ruta() const { return ruta_; }

private:
    QString ruta_;
};

/// Writes a whole file from the pieces that `producir` hands over, and puts it in the destination's
/// place as `CopiarEntero` does: beside it, durable, renamed; nothing is left on failure.
ResultadoArchivo<Copiado> EscribirCon(const QString& destino, const Productor& producir);

/// Hands every piece of a local file to a sink. A file that changes while it is read, or that is
/// locked where locks are respected: 70.
ResultadoArchivo<void> RecorrerArchivo(const QString& ruta, const Sumidero& sumidero,
                                       Candados candados = Candados::Ignorar);

/// Writes a small file whole, in the same way.
ResultadoArchivo<void> EscribirEntero(const QString& destino, const QByteArray& contenido);

/// SHA-256 of a file's bytes.
ResultadoArchivo<QString> Sha256DeArchivo(const QString& ruta);

/// Makes a folder and those above it, each one durable in the folder that holds it. One that exists
/// is fine; its entry is made durable too, for whoever made it may have been ended before that.
ResultadoArchivo<void> CrearCarpeta(const QString& ruta);

/// Puts a finished file in another's place and makes the folder's entry durable.
ResultadoArchivo<void> Renombrar(const QString& origen, const QString& destino);

/// Makes the entry of a file or folder durable in the folder that holds it.
ResultadoArchivo<void> AsentarNombre(const QString& ruta, Disco disco = Disco::Propio);

/// Removes what runs that were killed left half-written in the program's folder, its archive and
/// its terminals' folders. Only for the one run that may write there.
void BorrarRestos(const QString& carpeta);

/// Whether some process holds a lock on the file that would hinder replacing it.
bool EstaBloqueado(const QString& ruta);

}  // namespace quimo::dayclose
