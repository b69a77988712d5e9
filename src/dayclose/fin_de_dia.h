#pragma once

#include "dayclose/contexto_cierre.h"

namespace quimo::dayclose {

/// The end-of-day process: clears the day's queues and moves the working date on, fetches and
/// counts every terminal's file, copies the sales that differ, and sends every terminal its new
/// database. A close that did not reach its end is remembered and can be gone on with.
class FinDeDia {
public:
    enum class Desenlace { Terminado, Abortado, ConError };

    /// `carpeta` is the program's folder. The ports must outlive the process.
    FinDeDia(foundation::ClsAdo& ado, TerminalShare& share, const foundation::Reloj& reloj,
             const QString& carpeta);

    /// The closing date of a close that did not end, or an empty text.
    static ResultadoCierre<QString> FechaPendiente(foundation::ClsAdo& ado);

    /// Runs the process to its end, asking and telling through the data-access object's dialogs.
    Desenlace Ejecutar();
    const ResumenCierre& Resumen() const { return contexto_.resumen; }

private:
    ResultadoCierre<void> Correr();
    ResultadoCierre<CierrePendiente> Avanzar();

    ContextoCierre contexto_;
};

}  // namespace quimo::dayclose
