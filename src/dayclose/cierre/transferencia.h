#pragma once

#include <functional>
#include <optional>

#include <QStringList>
#include <QVector>

#include "dayclose/cierre/renglon_rechazado.h"
#include "dayclose/terminales/base_terminal.h"
#include "foundation/cls_ado.h"

namespace quimo::dayclose {

/// What was copied of one table of one terminal.
struct TablaCopiada {
    QString terminal;
    QString tabla;
    qint64 insertadas = 0;
    qint64 modificadas = 0;
    qint64 iguales = 0;    ///< passed over: they are there with the same content
    qint64 distintas = 0;  ///< passed over although their content differs
};

/// A file of a terminal that the same close copied before, and the tables it copied of it.
struct CopiaAnterior {
    QString archivo;
    QStringList tablas;
};

/// How a terminal's sales are to be copied.
struct OpcionesCopia {
    /// ComoSiempre: a row that is there is updated. PasarIguales: only when it really differs; it
    /// is looked for in all days.
    enum class Presentes { ComoSiempre, PasarIguales };
    enum class Distintas { Actualizar, Pasar };

    QString fecha;       ///< closing date: items are looked up among its orders
    QStringList tablas;  ///< copied in the order of Copias(), whatever theirs is here
    /// Earlier files of the terminal, oldest first. A row that the last of them to hold it held
    /// with the same content is passed over, one with other content is updated whatever its day.
    QVector<CopiaAnterior> anteriores = {};
    Presentes presentes = Presentes::ComoSiempre;
    Distintas distintas = Distintas::Actualizar;  ///< of PasarIguales
    /// Asked now and then; true ends the copy with Motivo::Detenido.
    std::function<bool()> detener = {};
};

/// Why a terminal was not copied, and the row that the database refused, if it was that.
struct FallaCopia {
    Interrupcion interrupcion;
    std::optional<RenglonRechazado> renglon = {};
};

/// Copies a terminal's sales into the central tables: a row that is there is updated, a missing one
/// inserted, each change with its own entry in the log. The caller opens the transaction in which
/// all of it happens, and ends it: after a failure nothing of it may be confirmed.
base::Result<QVector<TablaCopiada>, FallaCopia> CopiarTerminal(foundation::ClsAdo& ado,
                                                               const BaseTerminal& base,
                                                               const OpcionesCopia& opciones);

}  // namespace quimo::dayclose
