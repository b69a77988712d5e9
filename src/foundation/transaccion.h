#pragma once

#include "foundation/sql_connection.h"

namespace quimo::foundation {

/// A transaction that is rolled back unless Confirmar() was reached.
class Transaccion {
public:
    static base::Result<Transaccion, FalloSql> Iniciar(SqlConnection& conexion) {
        QUIMO_TRY_VOID(conexion.Iniciar());
        return Transaccion(conexion);
    }
    Transaccion(Transaccion&& otra) noexcept : conexion_(otra.conexion_) {
        otra.conexion_ = nullptr;
    }
    Transaccion(const Transaccion&) = delete;
    Transaccion& operator=(const Transaccion&) = delete;
    Transaccion& operator=(Transaccion&&) = delete;
    ~Transaccion() {
        // What cannot be rolled back dies with the connection: there is nobody left to tell.
        if (conexion_ != nullptr) static_cast<void>(conexion_->Revertir());
    }

    /// Ends the transaction; what it changed survives a power cut from here on.
    base::Result<void, FalloSql> Confirmar() {
        QUIMO_CHECK(conexion_ != nullptr);
        QUIMO_TRY_VOID(conexion_->Confirmar());
        conexion_ = nullptr;
        return {};
    }

private:
    explicit Transaccion(SqlConnection& conexion) : conexion_(&conexion) {}
    SqlConnection* conexion_;
};

}  // namespace quimo::foundation
