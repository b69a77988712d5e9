#pragma once

#include <QPoint>
#include <QWidget>

#include "foundation/comandos.h"

namespace quimo::ui {

using foundation::ComandosVentana;
using foundation::ComandoVentana;

/// What an editor's toolbar holds, and what a report's.
ComandosVentana ComandosDeEditor();
ComandosVentana ComandosDeReporte();

/// How the main window shows the child while it is the active one.
struct EstadoVentana {
    ComandosVentana visibles;     ///< its toolbar buttons
    ComandosVentana habilitados;  ///< those that can be chosen now
    QString registros;            ///< first panel of the status bar: "Registros: 12"
    QString teclas;               ///< second panel: the key hint
};

/// A window inside the main window: an editor, a report, a set-up screen. It tells its state and
/// does what it is asked; the main window does the rest. Whether it may close it says in
/// closeEvent.
class VentanaHija : public QWidget {
    Q_OBJECT
public:
    explicit VentanaHija(QWidget* padre = nullptr);

    virtual EstadoVentana Estado() const = 0;
    /// Called only with what Estado() has enabled.
    virtual void Ejecutar(ComandoVentana comando) = 0;
    /// It became the active child, also for the first time.
    virtual void Activada() {}

signals:
    /// Estado() says something else than before.
    void EstadoCambiado();
    /// The pop-up menu of the detail grid is wanted here (screen coordinates).
    void MenuSpreadPedido(QPoint donde);
};

}  // namespace quimo::ui
