#pragma once

#include <QString>
#include <QVector>

#include "base/result.h"
#include "foundation/sql_connection.h"

namespace quimo::app::demo {

/// A failed statement as the error that the command shows.
base::Error ErrorDeSql(const foundation::FalloSql& fallo);

/// Runs statements that return nothing.
base::Result<void> Ejecutar(foundation::SqlConnection& conexion, const QString& tsql,
                            const QVector<QVariant>& parametros = {});

/// The rows of the first result set.
base::Result<QVector<foundation::Fila>> Consultar(foundation::SqlConnection& conexion,
                                                  const QString& tsql,
                                                  const QVector<QVariant>& parametros = {});

/// Inserts the rows; `columnas` are separated by commas.
base::Result<void> Insertar(foundation::SqlConnection& conexion, const QString& tabla,
                            const QString& columnas, const QVector<foundation::Fila>& filas);

/// The same with the keys given here in a table whose keys the database numbers.
base::Result<void> InsertarConClave(foundation::SqlConnection& conexion, const QString& tabla,
                                    const QString& columnas,
                                    const QVector<foundation::Fila>& filas);

}  // namespace quimo::app::demo
