#pragma once

#include "dayclose/interrupcion.h"
#include "foundation/candado.h"

namespace quimo::dayclose {

/// The right to close the restaurant's day, or to bring sales in and send databases outside of it:
/// one program at a time has it, and gives it back when it ends, however it ends.
class TurnoCierre {
public:
    /// Who has it already, and since when, is told (Motivo::SinEmpezar).
    static ResultadoCierre<TurnoCierre> Tomar(foundation::SqlConnection& conexion,
                                              const QString& quien, const QDateTime& ahora);

private:
    explicit TurnoCierre(foundation::Candado candado) : candado_(std::move(candado)) {}
    foundation::Candado candado_;
};

}  // namespace quimo::dayclose
