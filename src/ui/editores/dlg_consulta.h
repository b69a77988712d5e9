#pragma once

#include <optional>

#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

#include "catalog/consulta/consulta.h"
#include "ui/editores/modelo_consulta.h"

namespace quimo::ui {

/// The filter dialog of the editors: conditions on the left, the rows that meet them on the right.
/// Enter in a condition lists the rows, Enter or a double click on a row chooses it, Esc closes.
/// Rows are sorted by clicking a caption, copied with Ctrl+C and exported as they are shown.
class DlgConsulta final : public QDialog {
    Q_OBJECT
public:
    /// The consult and the dialogs must outlive the window.
    DlgConsulta(catalog::Consulta& consulta, foundation::Dialogos& dialogos,
                QWidget* padre = nullptr);

    /// Shows itself until a row is chosen or the dialog is closed; the chosen row's key.
    std::optional<QVariant> Elegir();

protected:
    void done(int resultado) override;
    bool eventFilter(QObject* objeto, QEvent* evento) override;

private:
    struct Renglon {
        QComboBox* operador = nullptr;
        QLineEdit* texto = nullptr;  // the value: one of these two
        QComboBox* lista = nullptr;
        QLineEdit* hasta = nullptr;  // none where "entre" makes no sense
        QString Valor() const { return lista != nullptr ? lista->currentText() : texto->text(); }
        QWidget* Control() const {
            return lista != nullptr ? static_cast<QWidget*>(lista) : static_cast<QWidget*>(texto);
        }
    };
    struct Formato;

    QWidget* Condiciones();
    QWidget* Valores(const catalog::ColumnaFiltrable& columna, const QString& numero,
                     Renglon& renglon);
    QWidget* Resultados();
    QPushButton* Boton(const QString& nombre, const QString& texto, const QString& accesible,
                       void (DlgConsulta::*accion)());
    void AlCambiarOperador(const Renglon& renglon);
    void Consultar();
    void Limpiar();
    void Aceptar();
    void Copiar();
    void ExportarExcel();
    void ExportarCsv();
    void Exportar(const Formato& formato);
    void MostrarCuenta();

    catalog::Consulta& consulta_;
    foundation::Dialogos& dialogos_;
    ModeloConsulta modelo_;
    QVector<Renglon> renglones_;
    QTableView* tabla_;
    QLabel* registros_;
    QLabel* aviso_;
    QVector<QPushButton*> con_filas_;  // what makes sense only while there are rows
    QVariant clave_;
    bool con_anchos_ = false;
};

}  // namespace quimo::ui
