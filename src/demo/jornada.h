#pragma once

#include <optional>

#include <QDate>
#include <QString>

#include "demo/catalogo.h"
#include "demo/ventas.h"

namespace quimo::demo {

/// When guests come: all day with breakfast, lunch and dinner, or from noon to the last glass.
enum class Ritmo { Salon, Bar };

/// Whether the day ends as usual or is looked at before everybody has paid.
enum class AlCerrar { TodoPagado, QuedanAbiertas };

/// A working date and the calendar day on which it was sold.
struct DiaDeTrabajo {
    QString texto;  ///< "ddmmyyyy", as the sales carry it
    QDate dia = {};
};

/// The calendar day of a working date. The day close leaves the month at 13 and more after the end
/// of a year, and lets February have 29 days: the text counts as the day that was meant. Nothing
/// when it is not eight digits of a possible date.
std::optional<DiaDeTrabajo> LeerFechaTrabajo(const QString& texto);

/// One day's sales of one terminal, always the same for the same catalogue, terminal and working
/// date. The orders have no numbers yet (Numerar). At least one order runs past midnight.
VentasDia SimularJornada(const Catalogo& catalogo, const DiaDeTrabajo& dia, Ritmo ritmo,
                         AlCerrar al_cerrar);

}  // namespace quimo::demo
