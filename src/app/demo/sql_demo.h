#pragma once

#include <type_traits>
#include <utility>

#include <QString>
#include <QVector>

#include "base/result.h"
#include "dayclose/fallo_archivo.h"
#include "dayclose/interrupcion.h"
#include "foundation/sql_connection.h"

namespace quimo::app::demo {

/// A failure of the database or of the day close as the error that the command shows.
base::Error ErrorDe(const foundation::FalloSql& fallo);
base::Error ErrorDe(const dayclose::FalloArchivo& fallo);
base::Error ErrorDe(const dayclose::Interrupcion& interrupcion);

/// The same result with its failure in that form.
template <typename T, typename E>
base::Result<T> Traducido(base::Result<T, E> resultado) {
    if (!resultado) return ErrorDe(resultado.error());
    if constexpr (std::is_void_v<T>) {
        return {};
    } else {
        return std::move(resultado).value();
    }
}

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
