#pragma once

#include <functional>

#include <QHash>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QToolBar>

#include "data/reloj.h"
#include "foundation/cls_ado.h"
#include "foundation/sesion.h"
#include "ui/controles/dialogos_qt.h"
#include "ui/controles/ventana_hija.h"
#include "ui/principal/area_mdi.h"

namespace quimo::ui {

/// What the main window works with; all of it must outlive the window.
struct Contexto {
    foundation::ClsAdo& ado;
    foundation::EstadoSesion& sesion;
    const data::Reloj& reloj;
    DialogosQt& dialogos;
};

/// The main window: every command of the system, the toolbar and the status bar that its child
/// windows share, the picture behind them. What a user may choose is decided once, when it opens.
///
/// A command opens the window registered for it, runs the action registered for it, or says that it
/// is not available. Commands for the active child (toolbar, mnuEdReg, print and preview, the keys)
/// reach it only while its state allows them.
class MDIPrincipal final : public QMainWindow {
    Q_OBJECT
public:
    /// Makes a child window; nothing when it cannot be opened, after telling why.
    using Fabrica = std::function<VentanaHija*()>;

    explicit MDIPrincipal(const Contexto& contexto);
    ~MDIPrincipal() override;

    /// The command opens the window that the factory makes; when it is open already, that one.
    void RegistrarVentana(const QString& comando, const Fabrica& fabrica);
    /// The command runs this.
    void RegistrarAccion(const QString& comando, const std::function<void()>& accion);

    /// Shows a child window inside, which it owns from then on.
    void Abrir(VentanaHija* ventana);
    VentanaHija* Activa() const;
    /// Reads the working date again, after something has moved it.
    void RefrescarFechaTrabajo();

signals:
    /// It was closed: the program ends.
    void Cerrada();

protected:
    void closeEvent(QCloseEvent* evento) override;
    void changeEvent(QEvent* evento) override;
    bool eventFilter(QObject* objeto, QEvent* evento) override;

private:
    // mdi_principal_menu.cpp: menus, toolbar, rights.
    void CrearMenus();
    void Llenar(QMenu& menu, std::span<const foundation::ComandoDef> comandos);
    QMenu* NombrarMenu(QMenu* menu, const foundation::ComandoDef& def);
    QAction* CrearAccion(const foundation::ComandoDef& def, QObject* padre);
    void CrearHerramientas();
    void PonerIconos();
    void AplicarPermisos();
    void RegistrarPropias();

    void CrearBarraDeStatus();
    void Elegido(const QString& comando);
    void Dirigir(ComandoVentana comando);
    void RefrescarEstado();
    void Tictac();
    void CambiarTapiz();
    void GuardarTapiz(const QString& archivo);
    void RecordarTapiz();
    void AcercaDe();

    Contexto contexto_;
    AreaMdi* area_;
    QToolBar* herramientas_;
    QMenu* menu_spread_;
    QLabel* panel_registros_ = nullptr;
    QLabel* panel_teclas_ = nullptr;
    QLabel* panel_fecha_trabajo_ = nullptr;
    QLabel* panel_fecha_sistema_ = nullptr;
    QLabel* panel_reloj_ = nullptr;
    QHash<QString, std::function<void()>> acciones_;
    QHash<QString, QMdiSubWindow*> abiertas_;
    QHash<const foundation::ComandoDef*, QAction*> de_comando_;
    QMultiHash<quint32, QAction*> de_ventana_;  // what offers an operation of the active child
    QHash<quint32, QAction*> botones_;          // the toolbar's own
};

}  // namespace quimo::ui
