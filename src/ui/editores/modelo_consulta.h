#pragma once

#include <QAbstractTableModel>

#include "catalog/consulta/tabla_consulta.h"

namespace quimo::ui {

/// The rows of a filter as a view shows them. The table sorts itself, so that what is exported has
/// the order that is seen.
class ModeloConsulta final : public QAbstractTableModel {
    Q_OBJECT
public:
    /// The captions are shown also while there are no rows. The table must outlive the model.
    ModeloConsulta(catalog::TablaConsulta& tabla, QStringList titulos, QObject* padre = nullptr)
        : QAbstractTableModel(padre), tabla_(tabla), titulos_(std::move(titulos)) {}

    /// Runs what fills the table anew.
    template <typename Llenar>
    bool Releer(Llenar llenar) {
        beginResetModel();
        const bool hecho = llenar();
        endResetModel();
        return hecho;
    }

    int rowCount(const QModelIndex& padre = {}) const override;
    int columnCount(const QModelIndex& padre = {}) const override;
    QVariant data(const QModelIndex& lugar, int papel) const override;
    QVariant headerData(int seccion, Qt::Orientation orientacion, int papel) const override;
    void sort(int columna, Qt::SortOrder sentido) override;

private:
    catalog::TablaConsulta& tabla_;
    QStringList titulos_;
};

}  // namespace quimo::ui
