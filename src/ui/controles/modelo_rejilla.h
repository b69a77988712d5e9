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
    int decimales = 2;      ///< of numbers
    int largo_max = 32767;  ///< characters that can be typed
    bool editable = false;
    bool oculta = false;
    QVector<foundation::EntradaCombo> lista = {};  ///< of TipoCelda::Lista
};

/// What the last column of a detail grid says of its row. Written as "N", "M", "B", or a blank.
enum class MarcaCambio { Ninguna, Nuevo, Modificado, Borrado };

/// The cells behind a grid. Places count from 0. What the program writes is stored as it comes;
/// what the user writes is checked against the cell's type first and marks the row as changed.
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
    void PonerTipo(int fila, int columna, grid::TipoCelda tipo);
    grid::TipoCelda Tipo(int fila, int columna) const;
    void PonerNegrita(int fila, int columna, bool negrita);
    void PonerPuntos(int fila, int columna, int puntos);
    void Bloquear(int fila, int columna, bool bloqueada);
    /// While it is on, no cell can be edited.
    void PonerSoloLectura(bool solo_lectura) { solo_lectura_ = solo_lectura; }
    bool SoloLectura() const { return solo_lectura_; }

    /// Keeps the change marks in this column.
    void PonerColumnaMarca(int columna) { columna_marca_ = columna; }
    MarcaCambio Marca(int fila) const;
    void PonerMarca(int fila, MarcaCambio marca);

    int rowCount(const QModelIndex& padre = {}) const override;
    int columnCount(const QModelIndex& padre = {}) const override;
    QVariant data(const QModelIndex& lugar, int papel) const override;
    bool setData(const QModelIndex& lugar, const QVariant& valor, int papel) override;
    QVariant headerData(int seccion, Qt::Orientation orientacion, int papel) const override;
    Qt::ItemFlags flags(const QModelIndex& lugar) const override;
    bool removeRows(int fila, int cuantas, const QModelIndex& padre) override;

signals:
    /// The user changed a cell.
    void CeldaCambiada(int fila, int columna);
    /// What the user wrote does not suit the cell, which stays as it was.
    void CeldaRechazada(int fila, int columna, const QString& escrito);

private:
    struct Celda {
        QVariant valor = {};
        std::optional<grid::TipoCelda> tipo = {};
        int puntos = 0;
        bool negrita = false;
        bool bloqueada = false;
    };
    Celda& En(int fila, int columna);
    const Celda& En(int fila, int columna) const;
    void Cambiada(int fila, int columna);
    QString Visible(int fila, int columna) const;
    std::optional<QVariant> DelUsuario(int fila, int columna, const QVariant& valor,
                                       int papel) const;

    QVector<ColumnaRejilla> columnas_;
    QVector<QVector<Celda>> filas_;
    int columna_marca_ = -1;
    bool solo_lectura_ = false;
};

}  // namespace quimo::ui
