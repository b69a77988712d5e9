#pragma once

#include <type_traits>
#include <utility>

#include <QString>
#include <QVector>

#include "base/result.h"
#include "data/sql_connection.h"
#include "dayclose/terminales/fallo_archivo.h"
#include "dayclose/terminales/interrupcion.h"

namespace quimo::demo {

/// A failure of the database or of the day close as the error that the command shows.
base::Error ErrorDe(const data::FalloSql& fallo);
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

/// data::Correr and data::Consultar with their failure in that form.
base::Result<void> Ejecutar(data::SqlConnection& conexion, const QString& tsql,
                            const QVector<QVariant>& parametros = {});

base::Result<QVector<data::Fila>> Consultar(data::SqlConnection& conexion, const QString& tsql,
                                            const QVector<QVariant>& parametros = {});

/// Inserts the rows; `columnas` are separated by commas.
base::Result<void> Insertar(data::SqlConnection& conexion, const QString& tabla,
                            const QString& columnas, const QVector<data::Fila>& filas);

/// The same with the keys given here in a table whose keys the database numbers.
base::Result<void> InsertarConClave(data::SqlConnection& conexion, const QString& tabla,
                                    const QString& columnas, const QVector<data::Fila>& filas);

}  // namespace quimo::demo
