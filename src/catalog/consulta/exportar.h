#pragma once

#include "catalog/consulta/tabla_consulta.h"

namespace quimo::catalog {

/// The shown rows as CSV: UTF-8 with a byte order mark, so that spreadsheets see the accents;
/// commas, because the amounts have decimal points and spreadsheets of this country part by commas;
/// quotes where a cell needs them. A text that a spreadsheet would take for a formula gets an
/// apostrophe in front.
QByteArray TextoCsv(const TablaConsulta& tabla);
base::Result<void> ExportarCsv(const TablaConsulta& tabla, const QString& archivo);

/// The shown rows as an Excel workbook: captions bold and in sight, numbers and dates as such,
/// texts always texts. A number that Excel would round stays a text with all its digits.
base::Result<void> ExportarXlsx(const TablaConsulta& tabla, const QString& archivo);

/// The given rows (places as they are shown) as text for the clipboard: cells parted by tabs.
QString TextoTabulado(const TablaConsulta& tabla, const QVector<qsizetype>& filas);

}  // namespace quimo::catalog
