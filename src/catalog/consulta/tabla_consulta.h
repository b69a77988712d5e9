#pragma once

#include <QStringList>

#include "data/sql_connection.h"

namespace quimo::catalog {

enum class Sentido { Ascendente, Descendente };

/// The rows that a query found, in the order in which they are shown.
class TablaConsulta {
public:
    TablaConsulta() = default;
    /// One caption for each column of the set.
    TablaConsulta(const QStringList& titulos, data::Conjunto conjunto);

    qsizetype Filas() const { return orden_.size(); }
    qsizetype Columnas() const { return conjunto_.columnas.size(); }
    const QString& Titulo(qsizetype columna) const { return titulos_[columna]; }
    data::TipoSql Tipo(qsizetype columna) const { return conjunto_.columnas[columna].tipo; }
    const QVariant& Valor(qsizetype fila, qsizetype columna) const {
        return conjunto_.filas[orden_[fila]][columna];
    }
    /// As it is shown.
    QString Texto(qsizetype fila, qsizetype columna) const;

    /// Sorts by a column: numbers as numbers, dates as dates, texts as a Spanish dictionary does,
    /// empty values first. Rows that are equal in it keep the order they had.
    void Ordenar(qsizetype columna, Sentido sentido);
    /// The rows' places in the set, as they are shown.
    const QVector<qsizetype>& Orden() const { return orden_; }

private:
    QStringList titulos_;
    data::Conjunto conjunto_;
    QVector<qsizetype> orden_;
};

}  // namespace quimo::catalog
