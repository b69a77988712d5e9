#pragma once

#include "data/sql_connection.h"

namespace quimo::data {

/// What becomes of a statement's answer for who wants one thing of it. The failure is the
/// statement's own.

/// Only that it was done.
base::Result<void, FalloSql> HechoDe(RespuestaSql respuesta);
/// How many rows its last statement wrote: 0 without a statement, -1 for one that writes none.
base::Result<qint64, FalloSql> AfectadasDe(RespuestaSql respuesta);
/// The first result set; FalloSql::kSinConjunto when there is none.
base::Result<Conjunto, FalloSql> ConjuntoDe(RespuestaSql respuesta);

/// Runs a text of which only success counts.
base::Result<void, FalloSql> Correr(SqlConnection& conexion, const QString& tsql,
                                    const QVector<QVariant>& parametros = {});
/// Runs a text and gives the rows of its first result set; kSinConjunto when it gives none.
base::Result<QVector<Fila>, FalloSql> Consultar(SqlConnection& conexion, const QString& tsql,
                                                const QVector<QVariant>& parametros = {});
/// The first of these rows; empty when there are none.
base::Result<Fila, FalloSql> ConsultarFila(SqlConnection& conexion, const QString& tsql,
                                           const QVector<QVariant>& parametros = {});

}  // namespace quimo::data
