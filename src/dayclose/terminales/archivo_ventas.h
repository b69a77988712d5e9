#pragma once

#include <functional>

#include <QSet>
#include <QString>

#include "dayclose/terminales/terminal_share.h"

namespace quimo::dayclose {

/// A file in the archive.
struct Archivado {
    QString ruta;
    QString sha256;
    bool nuevo = false;  ///< these bytes were not in the archive before
};

/// Every terminal file that was ever fetched, byte for byte, under
/// raiz/<closing date>/<terminal>/Quimo_Terminal-<n>.mdb with its SHA-256 in a file beside it (as
/// sha256sum checks it). Files are only ever added; the same bytes are kept once for each date.
class ArchivoVentas {
public:
    explicit ArchivoVentas(QString raiz) : raiz_(std::move(raiz)) {}

    /// Fetches a remote file straight into the archive.
    ResultadoArchivo<Archivado> Recibir(TerminalShare& share, const QString& remoto,
                                        const QString& fecha, const QString& terminal) const;
    /// Keeps a copy of a local file, as a fetched one is kept.
    ResultadoArchivo<Archivado> Agregar(const QString& local, const QString& fecha,
                                        const QString& terminal) const;
    /// The archived file with this digest, an empty path if there is none.
    ResultadoArchivo<QString> Buscar(const QString& fecha, const QString& terminal,
                                     const QString& sha256) const;

private:
    using Entrega = std::function<ResultadoArchivo<Copiado>(const QString& destino)>;
    ResultadoArchivo<Archivado> Guardar(const QString& fecha, const QString& terminal,
                                        const Entrega& traer) const;

    QString raiz_;
    mutable QSet<QString> carpetas_;  ///< made and durable
};

}  // namespace quimo::dayclose
