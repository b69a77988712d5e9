#pragma once

#include <optional>

#include <QDate>
#include <QString>
#include <QVariant>

#include "data/sql_connection.h"

namespace quimo::data {

/// What kind of value a column holds, as far as its user is concerned.
enum class ClaseValor { Texto, Numero, Fecha, Logico, Otro };
ClaseValor ClaseDe(TipoSql tipo);

/// Whether a column of this type holds text, of whatever length.
bool EsTexto(TipoSql tipo);
/// Whether such a text is Unicode.
bool EsTextoAncho(TipoSql tipo);

/// The first and the last day that a column of dates keeps.
struct RangoDeFechas {
    QDate desde;
    QDate hasta;
};
RangoDeFechas FechasDe(TipoSql tipo);

/// A number as people write it: "1234.5", "1234,5", "$1,234.50", "1.234,50". With both signs the
/// last one is the decimal one; a comma alone parts thousands when groups of three follow it, and
/// decimals otherwise or behind a zero; a point alone is always decimal. Nothing for anything else
/// ("1.2.3").
std::optional<base::Decimal> LeerNumero(const QString& escrito);
/// The same as plain text, with a point and nothing else.
std::optional<QString> NumeroEscrito(const QString& escrito);

/// A date as people write it, day, month and a year of four digits, parted by / - or a point.
/// Nothing for one that does not exist or that the database cannot keep (before 1753).
std::optional<QDate> LeerFecha(const QString& escrito);

/// "Sí", "s", "1", "verdadero" and their opposites, without regard to case or accents.
std::optional<bool> LeerLogico(const QString& escrito);

/// A database value as people read it: money "$1,234.50", dates dd/mm/yyyy, flags "Sí" and "No",
/// NULL empty.
QString TextoVisible(const QVariant& valor);
/// The same for other programs: numbers plain with a point ("1234.50"), money with all the decimals
/// that it has, but two at least.
QString TextoPlano(const QVariant& valor);

/// A text as comparisons see it: without case and accents. ñ stays a letter of its own.
QString Plegar(const QString& texto);

/// Less than, equal to or greater than 0, as the first number is to the second.
int Comparar(const base::Decimal& uno, const base::Decimal& otro);

}  // namespace quimo::data
