#pragma once

#include <utility>

#include "data/numeros_nativos.h"
#include "data/sql_connection.h"

namespace quimo::data {

/// A transaction that is rolled back unless Confirmar() was reached. It knows itself from every
/// other: one that the database ended meanwhile (a full disk, a lost connection, a ROLLBACK in a
/// procedure) is dead for good, whatever has been begun on the connection since.
class Transaccion {
public:
    static base::Result<Transaccion, FalloSql> Iniciar(SqlConnection& conexion) {
        QUIMO_TRY_VOID(conexion.Iniciar());
        return Transaccion(conexion);
    }
    Transaccion(Transaccion&& otra) noexcept
        : conexion_(std::exchange(otra.conexion_, nullptr)), numero_(otra.numero_) {}
    Transaccion(const Transaccion&) = delete;
    Transaccion& operator=(const Transaccion&) = delete;
    Transaccion& operator=(Transaccion&&) = delete;
    ~Transaccion() {
        // What cannot be rolled back dies with the connection: there is nobody left to tell.
        if (Viva()) static_cast<void>(conexion_->Revertir());
    }

    /// Whether it is the one that is open: not confirmed, not rolled back, not lost.
    bool Viva() const { return conexion_ != nullptr && conexion_->TransaccionActual() == numero_; }

    /// Runs a text in this transaction. Refused (nativo::kSinTransaccion) once it is over: what
    /// should have been part of it would be written outside of any.
    RespuestaSql Ejecutar(const QString& tsql, const QVector<QVariant>& parametros = {}) {
        if (!Viva()) return {{}, {}, Terminada()};
        return conexion_->Ejecutar(tsql, parametros);
    }

    /// Ends the transaction; what it changed survives a power cut from here on. When it fails,
    /// nothing of it is kept. nativo::kSinTransaccion when it was over already.
    base::Result<void, FalloSql> Confirmar() {
        if (!Viva()) return Terminada();
        QUIMO_TRY_VOID(conexion_->Confirmar());
        conexion_ = nullptr;
        return {};
    }

    /// The connection that it was begun on; not after Confirmar().
    SqlConnection& Conexion() {
        QUIMO_CHECK(conexion_ != nullptr);
        return *conexion_;
    }

private:
    explicit Transaccion(SqlConnection& conexion)
        : conexion_(&conexion), numero_(conexion.TransaccionActual()) {}
    static FalloSql Terminada() {
        return {FalloSql::kSentencia,
                {ErrorProveedor{
                    QStringLiteral("25000"), nativo::kSinTransaccion, QStringLiteral("QUIMO"),
                    QStringLiteral(
                        "La transacción ya no está abierta: nada de ella quedó guardado.")}}};
    }

    SqlConnection* conexion_;
    std::uint64_t numero_;
};

}  // namespace quimo::data
