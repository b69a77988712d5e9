#include "ui/editores/modelo_consulta.h"

#include "data/valores_escritos.h"

namespace quimo::ui {

using data::ClaseValor;

int ModeloConsulta::rowCount(const QModelIndex& padre) const {
    return padre.isValid() ? 0 : static_cast<int>(tabla_.Filas());
}

int ModeloConsulta::columnCount(const QModelIndex& padre) const {
    return padre.isValid() ? 0 : static_cast<int>(titulos_.size());
}

QVariant ModeloConsulta::data(const QModelIndex& lugar, int papel) const {
    if (papel == Qt::DisplayRole) return tabla_.Texto(lugar.row(), lugar.column());
    if (papel != Qt::TextAlignmentRole) return {};
    const bool numero = data::ClaseDe(tabla_.Tipo(lugar.column())) == ClaseValor::Numero;
    return static_cast<int>(Qt::AlignVCenter | (numero ? Qt::AlignRight : Qt::AlignLeft));
}

QVariant ModeloConsulta::headerData(int seccion, Qt::Orientation orientacion, int papel) const {
    if (orientacion == Qt::Vertical || papel != Qt::DisplayRole) return {};
    return titulos_.value(seccion);
}

void ModeloConsulta::sort(int columna, Qt::SortOrder sentido) {
    if (columna < 0 || columna >= columnCount() || rowCount() == 0) return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QVector<qsizetype> antes = tabla_.Orden();
    tabla_.Ordenar(columna, sentido == Qt::AscendingOrder ? catalog::Sentido::Ascendente
                                                          : catalog::Sentido::Descendente);
    QVector<int> lugares(antes.size());  // where each row of the set is shown now
    for (qsizetype fila = 0; fila < antes.size(); ++fila)
        lugares[tabla_.Orden()[fila]] = static_cast<int>(fila);
    for (const QModelIndex& viejo : persistentIndexList())
        changePersistentIndex(viejo, index(lugares[antes[viejo.row()]], viejo.column()));
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

}  // namespace quimo::ui
