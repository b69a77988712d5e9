#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>

#include "catalog/consulta/buscador.h"

namespace quimo::ui {

/// The search dialog of the editors. Enter looks for what is written (again: for the next row that
/// matches), F3 for the next one, Esc closes. What was found, or that nothing was, is told inside.
class DlgBuscar final : public QDialog {
    Q_OBJECT
public:
    /// The searcher must outlive the dialog.
    explicit DlgBuscar(catalog::Buscador& buscador, QWidget* padre = nullptr);

signals:
    /// The record set stands on a row that was found.
    void Hallado();

protected:
    void done(int resultado) override;

private:
    catalog::CriterioBusqueda Criterio() const;
    void Buscar();
    void Siguiente();
    void Contar(catalog::Hallazgo hallazgo, const catalog::CriterioBusqueda& criterio);

    catalog::Buscador& buscador_;
    QLineEdit* texto_;
    QComboBox* campo_;
    QComboBox* modo_;
    QLabel* resultado_;
    catalog::CriterioBusqueda anterior_;
};

}  // namespace quimo::ui
