#pragma once

#include <optional>

#include <QStringList>
#include <QVector>

#include "grid/rejilla.h"

namespace quimo::grid {

/// Cells as one line of text for the clipboard: parted by tabs, without breaks of their own.
QString LineaTabulada(QStringList celdas);

/// Rows of a grid as text for the clipboard, one to a line.
QString TextoTabulado(const Rejilla& rejilla, const QVector<qsizetype>& filas);

/// The lines and cells of a text that was copied elsewhere; nothing when it is longer than a
/// mebibyte of characters.
std::optional<QVector<QStringList>> LeerTabulado(const QString& texto);

}  // namespace quimo::grid
