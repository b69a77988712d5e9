#pragma once

#include <QTableView>

#include "ui/controles/modelo_rejilla.h"

namespace quimo::ui {

/// The grid of an editor's details: rows of typed cells. Places count from 0.
///
/// Filling: PonerColumnas, PonerRenglones, Poner. Each column has a type; lists are edited with a
/// combo box, check boxes by clicking, numbers only as numbers. Selected cells are copied as
/// tab-separated text (Ctrl+C).
class Rejilla final : public QTableView {
    Q_OBJECT
public:
    /// `nombre` is the control's name, `accesible` what a screen reader says.
    Rejilla(const QString& nombre, const QString& accesible, QWidget* padre = nullptr);

    /// Defines the columns; rows are gone.
    void PonerColumnas(const QVector<ColumnaRejilla>& columnas);
    int Renglones() const { return modelo_.rowCount(); }
    void PonerRenglones(int renglones);

    void Poner(int fila, int columna, const QVariant& valor) {
        modelo_.Poner(fila, columna, valor);
    }
    QVariant Valor(int fila, int columna) const { return modelo_.Valor(fila, columna); }
    /// As it is shown.
    QString Texto(int fila, int columna) const;
    void Bloquear(int fila, int columna, bool bloqueada = true) {
        modelo_.Bloquear(fila, columna, bloqueada);
    }
    void PonerSoloLectura(bool solo_lectura);

    void PonerActual(int fila, int columna);
    int FilaActual() const { return currentIndex().row(); }
    int ColumnaActual() const { return currentIndex().column(); }

    /// The selected visible cells as text: columns apart by tabs, rows by line breaks. Numbers are
    /// plain ("1234.50"), check boxes 1 and 0.
    QString TextoSeleccionado() const;
    void Copiar() const;

signals:
    /// The user changed a cell.
    void CeldaCambiada(int fila, int columna);
    /// What the user wrote does not suit the cell, which stays as it was.
    void CeldaRechazada(int fila, int columna, const QString& escrito);

protected:
    void keyPressEvent(QKeyEvent* evento) override;

private:
    QString TextoPlano(const QModelIndex& lugar) const;
    /// Columns from left to right as they are shown, hidden ones left out.
    QVector<int> ColumnasVisibles() const;

    ModeloRejilla modelo_;
};

}  // namespace quimo::ui
