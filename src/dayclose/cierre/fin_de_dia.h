#pragma once

#include <optional>

#include "dayclose/cierre/contexto_cierre.h"

namespace quimo::dayclose {

/// The end-of-day process: clears the day's queues and moves the working date on, fetches and
/// counts every terminal's file, copies the sales that differ, and sends every terminal its new
/// database. A close that did not reach its end is remembered and can be gone on with. One close of
/// a restaurant runs at a time, whoever starts it and wherever.
class FinDeDia {
public:
    enum class Desenlace {
        Terminado,
        Incompleto,  ///< it reached its end, but a terminal's sales or database are missing
        Abortado,
        ConError,
        Detenido,    ///< the program was told to end; the close can be gone on with
        SinEmpezar,  ///< there was nothing to go on with, or another close is running
    };

    /// `carpeta` is the program's folder. The ports must outlive the process.
    FinDeDia(foundation::ClsAdo& ado, TerminalShare& share, const data::Reloj& reloj,
             const QString& carpeta, OpcionesCierre opciones = {});

    /// Runs the process to its end, asking and telling through the data-access object's dialogs.
    Desenlace Ejecutar();
    /// Leaves a close that did not end behind for good, after asking twice. What it copied stays,
    /// and so does every file in the archive. True when it was left behind.
    bool Descartar();
    const ResumenCierre& Resumen() const { return contexto_.resumen; }

private:
    ResultadoCierre<void> Correr();
    ResultadoCierre<void> CorrerEnTurno();
    ResultadoCierre<void> Elegir();
    ResultadoCierre<void> ConfirmarDescarte();
    ResultadoCierre<void> Empezar();
    ResultadoCierre<CierrePendiente> Avanzar();
    ResultadoCierre<void> Recorrer();
    ResultadoCierre<void> DescartarPendiente();
    void BorrarCopiasLocales();
    QString QueSigue() const;
    Desenlace Contar(Interrupcion interrupcion);

    ContextoCierre contexto_;
    std::optional<CierrePendiente> cierre_;
};

}  // namespace quimo::dayclose
