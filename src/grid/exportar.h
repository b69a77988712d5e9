#pragma once

#include <QByteArray>

#include "base/result.h"
#include "grid/rejilla.h"

namespace quimo::grid {

/// The grid as CSV: UTF-8 with a byte order mark, so that spreadsheets see the accents; commas,
/// because the amounts have decimal points and spreadsheets of this country part by commas; quotes
/// where a cell needs them. A text that a spreadsheet would take for a formula gets an apostrophe
/// in front.
QByteArray TextoCsv(const Rejilla& rejilla);
base::Result<void> ExportarCsv(const Rejilla& rejilla, const QString& archivo);

/// The grid as an Excel workbook: titles and captions in sight, numbers and dates as such, texts
/// always texts. A number that Excel would round stays a text with all its digits.
base::Result<void> ExportarXlsx(const Rejilla& rejilla, const QString& archivo);

}  // namespace quimo::grid
