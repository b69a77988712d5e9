#pragma once

#include <QString>
#include <QVariant>

#include "base/result.h"
#include "data/sql_connection.h"

namespace quimo::catalog {

/// Why something written is refused, as the user is to read it.
struct Objecion {
    QString texto;
};

/// A text that somebody wrote, with every letter in one piece: an "é" that came as an e and an
/// accent is the same letter as one that was typed. Everything written into an editor passes here.
QString Compuesto(const QString& texto);

/// A text that somebody wrote, as the value that its column keeps: exact numbers as the database
/// counts them, an empty number as NULL. On error what to tell them, beginning with "El campo " and
/// the field's name: a text that is too long or has letters that the central database or the
/// indexes of a terminal's do not hold, a number that is none or does not fit.
base::Result<QVariant, Objecion> ValorParaColumna(const data::Columna& columna,
                                                  const QString& campo, const QString& texto);

/// A date as it is typed, d/m/yyyy with any sign between, as dd/mm/yyyy. On error what to tell.
base::Result<QString, Objecion> FechaEscrita(const QString& texto);

}  // namespace quimo::catalog
