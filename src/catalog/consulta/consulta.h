#pragma once

#include <span>

#include "catalog/consulta/condicion.h"
#include "catalog/consulta/tabla_consulta.h"
#include "catalog/declaracion/filtro_def.h"
#include "foundation/cls_ado.h"

namespace quimo::catalog {

/// What the filter dialog does: from a catalogue's declaration and the user's conditions it makes
/// the statement, runs it and keeps the rows. How texts compare (case, accents) is the database's
/// affair.
class Consulta {
public:
    /// Asks the database for the types of the columns; one that it does not know counts as a text.
    /// The texts of the declaration and the data-access object must outlive the consult.
    Consulta(const FiltroDef& filtro, foundation::ClsAdo& ado);

    const QVector<ColumnaFiltrable>& Columnas() const { return columnas_; }

    /// "SELECT expressions FROM base [AND] conditions", or the first condition that is badly
    /// written.
    base::Result<QString, CondicionMalEscrita> Sentencia(
        std::span<const Condicion> condiciones) const;
    /// Runs the statement and keeps its rows. False when the database refused it, which
    /// ClsAdo::ManejaError told the user; there are no rows then.
    bool Ejecutar(const QString& sentencia);

    TablaConsulta& Tabla() { return tabla_; }
    const TablaConsulta& Tabla() const { return tabla_; }
    /// The key of a shown row: the value of the first declared column.
    QVariant Clave(qsizetype fila) const { return tabla_.Valor(fila, 0); }

private:
    QString Unir(const QStringList& seleccion, const QStringList& condiciones) const;
    std::optional<QVector<data::Columna>> TiposDe(const QStringList& columnas) const;

    FiltroDef filtro_;
    foundation::ClsAdo& ado_;
    QVector<ColumnaFiltrable> columnas_;
    TablaConsulta tabla_;
};

}  // namespace quimo::catalog
