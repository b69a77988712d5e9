#pragma once

#include <QTableView>

#include "ui/controles/modelo_rejilla.h"

namespace quimo::ui {

/// The grid that editors' details and reports show: rows of typed cells. Places count from 0.
///
/// Filling: PonerColumnas, PonerRenglones, Poner. Each column has a type, which a single cell may
/// override; lists are edited with a combo box, check boxes by clicking, numbers only as numbers.
/// Selected cells are copied as tab-separated text (Ctrl+C), and such text is pasted over the cells
/// that can be edited (Ctrl+V).
///
/// Detail grids say with PonerColumnaMarca where they keep the change marks; that column should be
/// hidden. A row that the user changes is marked "M" unless it is new.
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
    void PonerTipo(int fila, int columna, grid::TipoCelda tipo) {
        modelo_.PonerTipo(fila, columna, tipo);
    }
    void PonerNegrita(int fila, int columna, bool negrita = true) {
        modelo_.PonerNegrita(fila, columna, negrita);
    }
    void PonerPuntos(int fila, int columna, int puntos) {
        modelo_.PonerPuntos(fila, columna, puntos);
    }
    void Bloquear(int fila, int columna, bool bloqueada = true) {
        modelo_.Bloquear(fila, columna, bloqueada);
    }
    void PonerSoloLectura(bool solo_lectura);

    void PonerActual(int fila, int columna);
    int FilaActual() const { return currentIndex().row(); }
    int ColumnaActual() const { return currentIndex().column(); }

    void PonerColumnaMarca(int columna) { modelo_.PonerColumnaMarca(columna); }
    MarcaCambio Marca(int fila) const { return modelo_.Marca(fila); }
    /// Appends a row marked "N", makes it the current one and returns its place.
    int AgregarRenglon();
    /// A row that is new is taken away; any other is marked "B" and no longer shown.
    void BorrarRenglon(int fila);

    /// The selected visible cells as text: columns apart by tabs, rows by line breaks. Numbers are
    /// plain ("1234.50"), check boxes 1 and 0.
    QString TextoSeleccionado() const;
    void Copiar() const;
    /// Writes tab-separated text over the cells from the current one on; what does not fit a cell's
    /// type, or cannot be edited, stays as it was. No rows are added.
    void Pegar(const QString& texto);

signals:
    /// The user changed a cell.
    void CeldaCambiada(int fila, int columna);
    /// What the user wrote does not suit the cell, which stays as it was.
    void CeldaRechazada(int fila, int columna, const QString& escrito);

protected:
    void keyPressEvent(QKeyEvent* evento) override;
    void contextMenuEvent(QContextMenuEvent* evento) override;

private:
    void PegarCelda(const QModelIndex& lugar, const QString& texto);
    QString TextoPlano(const QModelIndex& lugar) const;
    /// Columns from left to right as they are shown, hidden ones left out.
    QVector<int> ColumnasVisibles() const;

    ModeloRejilla modelo_;
};

}  // namespace quimo::ui
