#pragma once

#include <QApplication>
#include <QString>

namespace quimo::ui {

/// Spanish for everything Qt itself says (dialogs, context menus, names of days and months). False
/// when Qt's Spanish texts are not installed: then only its own dialogs are in English.
bool PonerIdioma(QApplication& aplicacion);

/// Colours: those of the desktop, or those that QUIMO_TEMA asks for ("claro", "oscuro").
void PonerTema(QApplication& aplicacion);

/// Puts a window that is about to be shown in the middle of its screen.
void Centrar(QWidget& ventana);

/// How high the rows of a grid in this widget are.
int AltoDeRenglon(const QWidget& rejilla);

/// Gives a control its names: the object name and what a screen reader says.
template <typename Control>
Control* Nombrar(Control* control, const QString& nombre, const QString& accesible) {
    control->setObjectName(nombre);
    control->setAccessibleName(accesible);
    return control;
}

}  // namespace quimo::ui
