#pragma once

#include <functional>
#include <memory>

#include "data/sql_connection.h"

namespace quimo::data {

/// A connection that tells how its transactions end, whoever ends them: Confirmar and Revertir, a
/// text, or the server itself after a failure. Everything else goes to the connection inside.
class ConexionVigilada final : public SqlConnection {
public:
    enum class Fin {
        Confirmada,  ///< what the transaction changed is there to stay
        Deshecha,    ///< undone, or lost in a way that nobody can tell from it
    };
    /// Called after the outermost transaction has ended.
    using AlTerminar = std::function<void(Fin)>;

    ConexionVigilada(std::unique_ptr<SqlConnection> dentro, AlTerminar al_terminar)
        : dentro_(std::move(dentro)), al_terminar_(std::move(al_terminar)) {}

    RespuestaSql Ejecutar(const QString& tsql, const QVector<QVariant>& parametros) override;
    RespuestaSql EjecutarVarias(const QStringList& sentencias) override;
    base::Result<void, FalloSql> Iniciar() override { return dentro_->Iniciar(); }
    base::Result<void, FalloSql> Confirmar() override;
    base::Result<void, FalloSql> Revertir() override;
    bool EnTransaccion() const override { return dentro_->EnTransaccion(); }
    std::uint64_t TransaccionActual() const override { return dentro_->TransaccionActual(); }
    base::Result<DefinicionTabla, FalloSql> Describir(const QString& tabla) override {
        return dentro_->Describir(tabla);
    }
    bool Abierta() const override { return dentro_->Abierta(); }
    void Cerrar() override;

private:
    /// Runs `trabajo` and tells the end of the transaction if it was that; `como` says how it ended
    /// from what came back.
    template <typename Trabajo, typename Como>
    auto Vigilar(Trabajo trabajo, Como como) {
        const bool estaba = dentro_->EnTransaccion();
        auto hecho = trabajo();
        if (estaba && !dentro_->EnTransaccion()) al_terminar_(como(hecho));
        return hecho;
    }

    std::unique_ptr<SqlConnection> dentro_;
    AlTerminar al_terminar_;
};

}  // namespace quimo::data
