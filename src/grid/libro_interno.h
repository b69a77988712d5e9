#pragma once

#include <QByteArray>

#include "base/result.h"
#include "grid/rejilla.h"

namespace quimo::grid {

/// The bytes of an Excel workbook with the grid as its only sheet. On error what does not fit one.
base::Result<QByteArray> LibroDe(const Rejilla& rejilla);

}  // namespace quimo::grid
