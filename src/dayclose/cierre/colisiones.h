#pragma once

#include <QString>
#include <QVector>

#include "dayclose/terminales/interrupcion.h"

namespace quimo::dayclose {

/// Something about the terminals' files that the manager should know before they are copied.
struct HallazgoPrevio {
    QString terminal;  ///< the one to look at; of two that collide, the one that is copied later
    QString texto;     ///< Spanish, a few lines: terminals, table, keys, what differs
    bool se_pierde = false;  ///< a row will stand in the place of another one
};

/// The file of one counted terminal.
struct ArchivoPorCotejar {
    QString terminal;
    int id = 0;
    QString ruta;
    QString sha256 = {};  ///< of the file; without it, it is read for that
};

/// Looks at the files of all counted terminals together for what a copy would hide or mix up: keys
/// that two files hold with different contents, the same rows or the same file under two names,
/// items without their terminal's number in front, orders of another working date, rows whose
/// order, check or item is in no file. It only tells: the copy goes on as ever, and the terminal
/// with the higher number has the last word. Keeps a few bytes of each row of one table at a time.
/// A file that cannot be read is an error.
ResultadoCierre<QVector<HallazgoPrevio>> BuscarColisiones(
    const QVector<ArchivoPorCotejar>& archivos, const QString& fecha_cierre);

}  // namespace quimo::dayclose
