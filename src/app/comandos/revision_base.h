#pragma once

#include <QStringList>

#include "data/sql_connection.h"

namespace quimo::app {

/// What a check of the central database found, in lines for the manager.
struct RevisionBase {
    QStringList fallas;    ///< what is wrong, each with what to do about it
    QStringList avisos;    ///< what is odd and stops nothing
    QString pendiente;     ///< the close that did not end; empty without one
    bool danada = false;   ///< the engine found damage: only a backup brings back what is lost
    int tablas = 0;        ///< tables read
    qint64 renglones = 0;  ///< rows in them
};

/// Checks the central database on either engine: its file with DBCC CHECKDB, the notes of a close
/// under way against each other, and the sales for rows without the one that they belong to. Reads
/// everything once, changes nothing, and goes on past what it cannot read, which is a finding.
RevisionBase RevisarBase(data::SqlConnection& conexion);

}  // namespace quimo::app
