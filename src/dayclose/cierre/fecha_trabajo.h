#pragma once

#include <QString>

namespace quimo::dayclose {

/// The working date after `fecha` (eight digits "ddmmyyyy"). 28 February is always followed by the
/// 29th, in common years too, and after 31 December comes day 1 of month 13 of the next year: the
/// terminals count on both.
QString SiguienteFechaTrabajo(const QString& fecha);

}  // namespace quimo::dayclose
