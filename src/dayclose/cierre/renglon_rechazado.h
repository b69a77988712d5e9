#pragma once

#include <QPair>
#include <QString>
#include <QVector>

#include "data/sql_connection.h"

namespace quimo::dayclose {

/// A terminal's row that the central database did not take.
struct RenglonRechazado {
    QString terminal;
    QString tabla;
    /// Column and literal, as the refused statement had them.
    QVector<QPair<QString, QString>> valores;
    QString condicion;  ///< the key, as statements look it up: ID_ProductosXCuenta=1000123
    data::FalloSql fallo;
};

}  // namespace quimo::dayclose
