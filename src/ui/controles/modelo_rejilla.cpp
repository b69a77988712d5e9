#include "ui/controles/modelo_rejilla.h"

#include "data/valores.h"
#include "data/valores_escritos.h"
#include "grid/formato.h"

namespace quimo::ui {

using grid::TipoCelda;

void ModeloRejilla::PonerColumnas(const QVector<ColumnaRejilla>& columnas) {
    beginResetModel();
    columnas_ = columnas;
    filas_.clear();
    endResetModel();
}

void ModeloRejilla::PonerRenglones(int renglones) {
    const auto antes = static_cast<int>(filas_.size());
    if (renglones == antes) return;
    if (renglones > antes) {
        beginInsertRows({}, antes, renglones - 1);
        filas_.resize(renglones, QVector<Celda>(columnas_.size()));
        endInsertRows();
    } else {
        beginRemoveRows({}, renglones, antes - 1);
        filas_.resize(renglones);
        endRemoveRows();
    }
}

ModeloRejilla::Celda& ModeloRejilla::En(int fila, int columna) {
    QUIMO_CHECK(fila >= 0 && fila < filas_.size() && columna >= 0 && columna < columnas_.size());
    return filas_[fila][columna];
}

const ModeloRejilla::Celda& ModeloRejilla::En(int fila, int columna) const {
    QUIMO_CHECK(fila >= 0 && fila < filas_.size() && columna >= 0 && columna < columnas_.size());
    return filas_[fila][columna];
}

void ModeloRejilla::Poner(int fila, int columna, const QVariant& valor) {
    En(fila, columna).valor = valor;
    const QModelIndex lugar = index(fila, columna);
    emit dataChanged(lugar, lugar);
}

QVariant ModeloRejilla::Valor(int fila, int columna) const { return En(fila, columna).valor; }

void ModeloRejilla::Bloquear(int fila, int columna, bool bloqueada) {
    En(fila, columna).bloqueada = bloqueada;
}

int ModeloRejilla::rowCount(const QModelIndex& padre) const {
    return padre.isValid() ? 0 : static_cast<int>(filas_.size());
}

int ModeloRejilla::columnCount(const QModelIndex& padre) const {
    return padre.isValid() ? 0 : static_cast<int>(columnas_.size());
}

QString ModeloRejilla::Visible(int fila, int columna) const {
    const QVariant& valor = En(fila, columna).valor;
    const TipoCelda tipo = Tipo(columna);
    if (tipo == TipoCelda::Casilla) return {};
    if (tipo == TipoCelda::Lista) {
        for (const foundation::EntradaCombo& entrada : columnas_[columna].lista) {
            if (valor.isValid() && entrada.dato == valor.toInt()) return entrada.texto;
        }
        return {};
    }
    // A row that is still being filled shows nothing rather than a zero.
    if (!EsNumerica(tipo) || !valor.isValid()) return data::TextoDeValor(valor);
    return grid::NumeroVisible(valor, tipo, columnas_[columna].decimales);
}

QVariant ModeloRejilla::data(const QModelIndex& lugar, int papel) const {
    const Celda& celda = En(lugar.row(), lugar.column());
    const TipoCelda tipo = Tipo(lugar.column());
    switch (papel) {
        case Qt::DisplayRole:
            return Visible(lugar.row(), lugar.column());
        case Qt::EditRole:
            return tipo == TipoCelda::Lista ? celda.valor
                                            : QVariant(data::TextoDeValor(celda.valor));
        case Qt::CheckStateRole:
            if (tipo != TipoCelda::Casilla) return {};
            return static_cast<int>(celda.valor.toInt() != 0 ? Qt::Checked : Qt::Unchecked);
        case Qt::TextAlignmentRole:
            return static_cast<int>(Qt::AlignVCenter |
                                    (EsNumerica(tipo) ? Qt::AlignRight : Qt::AlignLeft));
        default:
            return {};
    }
}

std::optional<QVariant> ModeloRejilla::DelUsuario(int columna, const QVariant& valor,
                                                  int papel) const {
    const TipoCelda tipo = Tipo(columna);
    if (tipo == TipoCelda::Casilla) {
        if (papel != Qt::CheckStateRole) return std::nullopt;
        return QVariant(valor.toInt() == Qt::Checked ? 1 : 0);
    }
    if (papel != Qt::EditRole) return std::nullopt;
    if (tipo == TipoCelda::Lista) return valor;
    QString texto = valor.toString();
    if (tipo == TipoCelda::Porcentaje) texto.remove(u'%');
    if (!EsNumerica(tipo)) return QVariant(texto);
    if (texto.trimmed().isEmpty()) return QVariant();
    const auto numero = data::NumeroEscrito(texto);
    if (!numero) return std::nullopt;
    return QVariant(*numero);
}

bool ModeloRejilla::setData(const QModelIndex& lugar, const QVariant& valor, int papel) {
    if ((flags(lugar) & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable)) == 0) return false;
    const auto nuevo = DelUsuario(lugar.column(), valor, papel);
    if (!nuevo) {
        if (papel == Qt::EditRole)
            emit CeldaRechazada(lugar.row(), lugar.column(), valor.toString());
        return false;
    }
    const QString antes = data::TextoDeValor(Valor(lugar.row(), lugar.column()));
    if (antes == data::TextoDeValor(*nuevo)) return true;
    Poner(lugar.row(), lugar.column(), *nuevo);
    emit CeldaCambiada(lugar.row(), lugar.column());
    return true;
}

QVariant ModeloRejilla::headerData(int seccion, Qt::Orientation orientacion, int papel) const {
    if (orientacion == Qt::Vertical) {
        return papel == Qt::DisplayRole ? QVariant(seccion + 1) : QVariant();
    }
    if (papel == Qt::DisplayRole) return columnas_.value(seccion).titulo;
    if (papel == Qt::TextAlignmentRole) {
        return static_cast<int>(
            Qt::AlignVCenter |
            (EsNumerica(columnas_.value(seccion).tipo) ? Qt::AlignRight : Qt::AlignLeft));
    }
    return {};
}

Qt::ItemFlags ModeloRejilla::flags(const QModelIndex& lugar) const {
    Qt::ItemFlags banderas = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const TipoCelda tipo = Tipo(lugar.column());
    if (solo_lectura_ || tipo == TipoCelda::Estatico || !columnas_[lugar.column()].editable ||
        En(lugar.row(), lugar.column()).bloqueada) {
        return banderas;
    }
    banderas |= tipo == TipoCelda::Casilla ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable;
    return banderas;
}

}  // namespace quimo::ui
