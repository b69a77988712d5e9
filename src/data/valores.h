#pragma once

#include <optional>

#include <QDateTime>
#include <QString>
#include <QVariant>

namespace quimo::data {

/// A database value as plain text: NULL is empty, true and false are 1 and 0, numbers have a point
/// and no thousands, money and NUMERIC all their decimals, dates are "dd/mm/yyyy hh:mm:ss" (without
/// the time at midnight).
QString TextoDeValor(const QVariant& valor);

/// A database value as a T-SQL literal: NULL, numbers bare, texts and dates between quotes with
/// apostrophes doubled.
QString LiteralSql(const QVariant& valor);

/// The text with every apostrophe doubled, so that it can stand between quotes in a statement.
QString DuplicaApostrofes(const QString& texto);

/// "dd/mm/yyyy", the form in which statements carry a day and people read it.
QString TextoDeFecha(const QDate& dia);
/// The day that a text in that form begins with, whatever its year; nothing when there is none.
std::optional<QDate> FechaDeTexto(const QString& texto);

/// "dd/mm/yyyy hh:mm:ss", the form in which statements carry a date and time.
QString FechaHoraSql(const QDateTime& momento);

}  // namespace quimo::data
