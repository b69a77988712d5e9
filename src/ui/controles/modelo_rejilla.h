#pragma once

#include <optional>

#include <QAbstractTableModel>
#include <QVector>

#include "foundation/cls_ado.h"
#include "grid/celda.h"

namespace quimo::ui {

/// One column of a grid.
struct ColumnaRejilla {
    QString titulo;
    grid::TipoCelda tipo = grid::TipoCelda::Texto;
    int ancho_mm = 25;
    int decimales = 2;  ///< of numbers
    bool editable = false;
    bool oculta = false;
    QVector<foundation::EntradaCombo> lista = {};  ///< of TipoCelda::Lista
};

/// The cells behind a grid. Places count from 0. What the program writes is stored as it comes;
/// what the user writes is checked against its column's type first.
class ModeloRejilla final : public QAbstractTableModel {
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;

    void PonerColumnas(const QVector<ColumnaRejilla>& columnas);
    const QVector<ColumnaRejilla>& Columnas() const { return columnas_; }
    /// New rows are empty.
    void PonerRenglones(int renglones);

    void Poner(int fila, int columna, const QVariant& valor);
    QVariant Valor(int fila, int columna) const;
    grid::TipoCelda Tipo(int columna) const { return columnas_[columna].tipo; }
    void Bloquear(int fila, int columna, bool bloqueada);
    /// While it is on, no cell can be edited.
    void PonerSoloLectura(bool solo_lectura) { solo_lectura_ = solo_lectura; }

    int rowCount(const QModelIndex& padre = {}) const override;
    int columnCount(const QModelIndex& padre = {}) const override;
    QVariant data(const QModelIndex& lugar, int papel) const override;
    bool setData(const QModelIndex& lugar, const QVariant& valor, int papel) override;
    QVariant headerData(int seccion, Qt::Orientation orientacion, int papel) const override;
    Qt::ItemFlags flags(const QModelIndex& lugar) const override;

signals:
    /// The user changed a cell.
    void CeldaCambiada(int fila, int columna);
    /// What the user wrote does not suit the cell, which stays as it was.
    void CeldaRechazada(int fila, int columna, const QString& escrito);

private:
    struct Celda {
        QVariant valor = {};
        bool bloqueada = false;
    };
    Celda& En(int fila, int columna);
    const Celda& En(int fila, int columna) const;
    QString Visible(int fila, int columna) const;
    std::optional<QVariant> DelUsuario(int columna, const QVariant& valor, int papel) const;

    QVector<ColumnaRejilla> columnas_;
    QVector<QVector<Celda>> filas_;
    bool solo_lectura_ = false;
};

}  // namespace quimo::ui
