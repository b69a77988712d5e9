#pragma once

#include <optional>

#include <QKeyEvent>

#include "ui/controles/ventana_hija.h"

namespace quimo::ui {

/// The operation that a key stands for, if any. PgUp and Up go to the next row, PgDn and Down to
/// the previous one.
std::optional<ComandoVentana> ComandoDeTecla(const QKeyEvent& tecla);

}  // namespace quimo::ui
