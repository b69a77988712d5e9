#pragma once

#include "data/candado.h"
#include "dayclose/terminales/interrupcion.h"

namespace quimo::dayclose {

/// The right to close the restaurant's day, or to bring sales in and send databases outside of it:
/// one program at a time has it, and gives it back when it ends, however it ends.
class TurnoCierre {
public:
    /// Who has it already, and since when, is told (Motivo::SinEmpezar).
    static ResultadoCierre<TurnoCierre> Tomar(data::SqlConnection& conexion, const QString& quien,
                                              const QDateTime& ahora);

    /// To be called now and then, outside of a transaction: tells the others that it is still ours.
    /// A failure when it is not, because the connection was lost meanwhile.
    ResultadoCierre<void> Mantener(const QDateTime& ahora);

private:
    TurnoCierre(data::Candado candado, QDateTime ahora)
        : candado_(std::move(candado)), renovado_(std::move(ahora)) {}

    data::Candado candado_;
    QDateTime renovado_;
};

}  // namespace quimo::dayclose
