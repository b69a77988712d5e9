#pragma once

#include <QObject>
#include <QVector>

#include "catalog/sesion/editor_sesion.h"
#include "ui/controles/rejilla.h"

namespace quimo::ui {

/// One detail grid of an editor's window: draws a catalog::DetalleSesion and hands on what is done
/// to it. In edit mode INS adds a row, DEL deletes one and Ctrl+V pastes from a spreadsheet; a
/// click on a heading sorts. Column widths are remembered.
class PanelDetalle final : public QObject {
    Q_OBJECT
public:
    /// The session must outlive the panel; the grid belongs to `padre`.
    PanelDetalle(catalog::EditorSesion& sesion, std::size_t cual, QWidget* padre);

    Rejilla* Vista() const { return vista_; }
    void Refrescar();
    /// Closes the cell that is being written into; false when none is.
    bool CerrarCelda(bool tomar_lo_escrito);
    /// Hands on what was written into cells and not handed on yet. False when some of it was
    /// refused, after telling so.
    bool Aplicar();

    void Nuevo();
    void Modificar();
    void Borrar();
    void RecordarAnchos() const;

signals:
    /// The pop-up menu of the grid is wanted here (screen coordinates).
    void MenuPedido(QPoint donde);

protected:
    bool eventFilter(QObject* objeto, QEvent* evento) override;

private:
    struct Escrito {
        int fila = 0;
        int columna = 0;
        QString texto;
    };
    catalog::DetalleSesion& Detalle() const { return sesion_.Detalles()[cual_]; }
    void PonerColumnas();
    void RefrescarRenglon(int fila);
    QVariant ValorVisible(const catalog::Renglon& renglon, int columna) const;
    void Anotar(int fila, int columna, const QString& texto);
    void Pegar();
    int PrimeraEditable(int fila) const;
    /// Its own after its editor's.
    QString NombreEntero() const;

    catalog::EditorSesion& sesion_;
    std::size_t cual_;
    Rejilla* vista_;
    QVector<Escrito> escritos_;
};

}  // namespace quimo::ui
