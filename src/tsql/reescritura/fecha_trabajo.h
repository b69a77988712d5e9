#pragma once

#include <optional>
#include <string>

#include "tsql/reescritura/ambito.h"
#include "tsql/reescritura/termino.h"
#include "tsql/valores/fechas.h"

namespace quimo::tsql {

/// A date that an index is kept on. A condition over it stands only together with `control`, which
/// fails while there is a text there that is no date.
struct FechaIndexada {
    Termino fecha;
    std::string control;

    Termino ConControl(const Termino& condicion) const;
};

/// CONVERT(DateTime, SUBSTRING(x,1,2)+'/'+SUBSTRING(x,3,2)+'/'+SUBSTRING(x,5,4), 103) over an
/// indexed text of eight characters: the engine keeps an index on what it yields. Nothing for
/// anything else. `orden` is how a text without a style is read.
std::optional<FechaIndexada> FechaDeTrabajo(const Expr& expr, const Ambito& ambito,
                                            OrdenFecha orden, Lote* lote);

}  // namespace quimo::tsql
