#pragma once

#include <functional>

#include <QStringList>

#include "dayclose/terminales/interrupcion.h"
#include "foundation/dialogos.h"

namespace quimo::dayclose {

/// Decides what a failed file operation means: error 70 is tried again, up to a limit for each
/// terminal; a share that cannot be reached is asked about while sales are fetched, and collected
/// in a list while catalogues are sent; anything else ends the close.
class ManejadorFallas {
public:
    enum class Fase { Reunir, Distribuir };
    static constexpr int kReintentosMax = 2000;

    /// `pausa_ms` passes between two tries at a file that is held open; `detener` may end them.
    ManejadorFallas(foundation::Dialogos& dialogos, int pausa_ms, std::function<bool()> detener)
        : dialogos_(dialogos), pausa_ms_(pausa_ms), detener_(std::move(detener)) {}

    /// A terminal's file is about to be fetched: its retries begin at 0.
    void Empezar() {
        reintentos_ = 0;
        omitida_ = false;
        abierta_ = false;
    }
    void Entrar(Fase fase) { fase_ = fase; }
    /// Whether the terminal at hand was marked as skipped: it stays so even when a retry succeeds.
    bool Omitida() const { return omitida_; }
    /// Whether the terminal at hand never let go of its file.
    bool Abierta() const { return abierta_; }
    /// One line for each terminal that could not be reached while catalogues were sent.
    const QStringList& Lista() const { return lista_; }

    /// Runs a file operation until it succeeds (true), is given up (false: the run goes on with
    /// what comes next) or interrupts the close.
    template <typename Operacion>
    ResultadoCierre<bool> Ejecutar(const QString& terminal, Operacion operacion) {
        while (true) {
            auto hecho = operacion();
            if (hecho) return true;
            QUIMO_TRY(const bool reintentar, Decidir(terminal, hecho.error()));
            if (!reintentar) return false;
        }
    }

private:
    /// True to try again, false to go on without.
    ResultadoCierre<bool> Decidir(const QString& terminal, const FalloArchivo& fallo);
    ResultadoCierre<bool> Esperar(const QString& terminal);

    foundation::Dialogos& dialogos_;
    int pausa_ms_;
    std::function<bool()> detener_;
    Fase fase_ = Fase::Reunir;
    int reintentos_ = 0;
    bool omitida_ = false;
    bool abierta_ = false;
    QStringList lista_;
};

/// The interruption of a close that was told to end.
Interrupcion Detenido();

}  // namespace quimo::dayclose
