#pragma once

#include <QFlags>
#include <QPoint>
#include <QWidget>

namespace quimo::ui {

/// What menu, toolbar and keys can ask of the active child window. An editor's operations and a
/// report's, and the three of an editor's detail grid.
enum class OrdenVentana : quint32 {
    Aceptar = 1U << 0,
    Borrar = 1U << 1,
    Cancelar = 1U << 2,
    Buscar = 1U << 3,
    Nuevo = 1U << 4,
    Modificar = 1U << 5,
    Primero = 1U << 6,
    Anterior = 1U << 7,
    Siguiente = 1U << 8,
    Ultimo = 1U << 9,
    Filtro = 1U << 10,
    Imprimir = 1U << 11,
    Preview = 1U << 12,
    SpreadNuevo = 1U << 13,
    SpreadModificar = 1U << 14,
    SpreadBorrar = 1U << 15,
};
Q_DECLARE_FLAGS(OrdenesVentana, OrdenVentana)
Q_DECLARE_OPERATORS_FOR_FLAGS(OrdenesVentana)

/// What an editor's toolbar holds, and what a report's.
OrdenesVentana OrdenesDeEditor();
OrdenesVentana OrdenesDeReporte();

/// How the main window shows the child while it is the active one.
struct EstadoVentana {
    OrdenesVentana visibles;     ///< its toolbar buttons
    OrdenesVentana habilitadas;  ///< those that can be chosen now
    QString registros;           ///< first panel of the status bar: "Registros: 12"
    QString teclas;              ///< second panel: the key hint
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
    virtual void Ejecutar(OrdenVentana orden) = 0;
    /// It became the active child, also for the first time.
    virtual void Activada() {}

signals:
    /// Estado() says something else than before.
    void EstadoCambiado();
    /// The pop-up menu of the detail grid is wanted here (screen coordinates).
    void MenuSpreadPedido(QPoint donde);
};

}  // namespace quimo::ui
