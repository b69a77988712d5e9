#pragma once

#include <QString>

namespace quimo::foundation {

/// The installation folder: QUIMO_DIR, or "quimo" under the user's data folder. It holds the
/// template, the working file, one folder per terminal, the archive and the log.
QString CarpetaInstalacion();

/// A fixed name of the product ("C:\QUIMO.log", "\norsa\log\") as a path under `raiz`: the drive
/// goes and backslashes become slashes.
QString RutaFija(const QString& raiz, const QString& nombre_fijo);

}  // namespace quimo::foundation
