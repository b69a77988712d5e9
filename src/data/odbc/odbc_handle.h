#pragma once

#include <utility>

#include <sql.h>
#include <sqlext.h>

namespace quimo::data::odbc {

/// One handle of the driver manager: environment, connection or statement. Moves, never copies; a
/// parent must outlive its children. A connection is taken down before it is freed.
template <SQLSMALLINT kTipo>
class OdbcHandle {
public:
    OdbcHandle() = default;
    /// Empty when the driver manager gives none; the parent's diagnostics tell why.
    static OdbcHandle Crear(SQLHANDLE padre) {
        OdbcHandle nuevo;
        const SQLRETURN hecho = SQLAllocHandle(kTipo, padre, &nuevo.handle_);
        if (!SQL_SUCCEEDED(hecho)) nuevo.handle_ = nullptr;
        return nuevo;
    }
    OdbcHandle(OdbcHandle&& otro) noexcept : handle_(std::exchange(otro.handle_, nullptr)) {}
    OdbcHandle& operator=(OdbcHandle&& otro) noexcept {
        std::swap(handle_, otro.handle_);
        return *this;
    }
    OdbcHandle(const OdbcHandle&) = delete;
    OdbcHandle& operator=(const OdbcHandle&) = delete;
    ~OdbcHandle() {
        if (handle_ == nullptr) return;
        if constexpr (kTipo == SQL_HANDLE_DBC) SQLDisconnect(handle_);
        SQLFreeHandle(kTipo, handle_);
    }

    SQLHANDLE Crudo() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

private:
    SQLHANDLE handle_ = nullptr;
};

using EntornoOdbc = OdbcHandle<SQL_HANDLE_ENV>;
using EnlaceOdbc = OdbcHandle<SQL_HANDLE_DBC>;
using SentenciaOdbc = OdbcHandle<SQL_HANDLE_STMT>;

/// An attribute whose value is a whole number, as the calls that set attributes take it.
inline SQLPOINTER ComoAtributo(SQLULEN valor) {
    // The interface passes whole numbers through a pointer.
    return reinterpret_cast<SQLPOINTER>(valor);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace quimo::data::odbc
