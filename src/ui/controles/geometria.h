#pragma once

#include <QWidget>

namespace quimo::ui {

/// Where and how large a window was when it was last closed, remembered for each user. A place that
/// is off the screen is not taken.
void GuardarGeometria(const QWidget& ventana, const QString& nombre);
void RecuperarGeometria(QWidget& ventana, const QString& nombre);

}  // namespace quimo::ui
