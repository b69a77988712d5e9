#pragma once

#include <functional>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>

#include "catalog/sesion/editor_sesion.h"
#include "ui/controles/ventana_hija.h"
#include "ui/editores/panel_detalle.h"

namespace quimo::ui {

class VentanaEditor;

/// The dialogs that an editor opens and does not know. One that is not there is told to be so.
struct DialogosDeEditor {
    std::function<void(VentanaEditor&)> buscar = {};
    std::function<void(VentanaEditor&)> consulta = {};
};

/// The window of any catalogue editor: draws the session over a declaration, with the declaration's
/// control names, and forwards what the user does. Its size and its grids' columns are remembered.
class VentanaEditor final : public VentanaHija {
    Q_OBJECT
public:
    /// Opens the catalogue; nothing when it cannot be read, after telling why. The declaration and
    /// the data-access object must outlive the window.
    static VentanaEditor* Abrir(const catalog::EditorDef& def, foundation::ClsAdo& ado,
                                DialogosDeEditor dialogos = {});

    EstadoVentana Estado() const override;
    void Ejecutar(ComandoVentana comando) override;
    void Activada() override;

    catalog::EditorSesion& Sesion() { return *sesion_; }
    /// Draws what the session holds now, after somebody else moved it.
    void Refrescar();

protected:
    void closeEvent(QCloseEvent* evento) override;
    void showEvent(QShowEvent* evento) override;
    bool eventFilter(QObject* objeto, QEvent* evento) override;

private:
    /// What one field is drawn with; of the kinds of boxes one is there.
    struct Control {
        QLineEdit* caja = nullptr;
        QCheckBox* casilla = nullptr;
        QComboBox* combo = nullptr;
        QLineEdit* oculto = nullptr;
        QWidget* Principal() const;
    };

    VentanaEditor(std::unique_ptr<catalog::EditorSesion> sesion, foundation::ClsAdo& ado,
                  DialogosDeEditor dialogos);

    // ventana_editor_controles.cpp
    void Construir();
    Control CrearControl(qsizetype campo);
    QLineEdit* CrearCaja(const QString& nombre, const QString& accesible);
    QLayout* Colocar();
    void CrearDetalles();
    void OrdenarTabulador();

    void RefrescarCampo(qsizetype campo);
    void Enfocar();
    bool TomarCeldas();
    PanelDetalle* PanelActivo() const;
    void Abierto(const std::function<void(VentanaEditor&)>& dialogo);
    void DejarCaja(qsizetype campo);

    std::unique_ptr<catalog::EditorSesion> sesion_;
    foundation::ClsAdo& ado_;
    DialogosDeEditor dialogos_;
    QVector<Control> controles_;
    QVector<PanelDetalle*> paneles_;
    QTabWidget* pestanas_ = nullptr;
    bool mostrada_ = false;
};

}  // namespace quimo::ui
