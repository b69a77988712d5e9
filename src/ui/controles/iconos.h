#pragma once

#include <QIcon>
#include <QPalette>
#include <QPixmap>
#include <QString>

namespace quimo::ui {

/// A drawing of iconos/ as an icon whose lines have the colour of button texts, sharp on every
/// screen. Make it anew when the palette changes.
QIcon Icono(const QString& nombre, const QPalette& paleta);

/// The program's own drawing, `lado` wide for a screen with this pixel ratio.
QPixmap Emblema(int lado, qreal densidad);
/// The same as the icon of windows.
QIcon IconoDelPrograma();

}  // namespace quimo::ui
