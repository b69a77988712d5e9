#pragma once

#include <optional>

#include <QVariant>

#include "jet/definicion.h"
#include "jet/valor.h"

namespace quimo::dayclose {

/// A central value as the terminal's column keeps it: flags from any number, exact numbers as they
/// are, money to the ten-thousandth, texts with composed letters. Nothing when it cannot be kept
/// there without loss of meaning (a text in a number, a number out of range).
std::optional<jet::Valor> AValorTerminal(const QVariant& valor, jet::TipoColumna tipo);

}  // namespace quimo::dayclose
