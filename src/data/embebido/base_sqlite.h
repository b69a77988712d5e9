#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tsql/valores/error_sql.h"
#include "tsql/valores/valor.h"

struct sqlite3;
struct sqlite3_stmt;
struct sqlite3_value;
struct sqlite3_context;

namespace quimo::data::embebido {

using tsql::ErrorSql;
using tsql::Resultado;
using tsql::Valor;
using Hecho = base::Result<void, ErrorSql>;

/// A prepared statement. Values are bound from 1, columns read from 0.
class Preparada {
public:
    Preparada() = default;
    explicit Preparada(sqlite3_stmt* sentencia) : sentencia_(sentencia) {}
    Preparada(const Preparada&) = delete;
    Preparada& operator=(const Preparada&) = delete;
    Preparada(Preparada&& otra) noexcept;
    Preparada& operator=(Preparada&& otra) noexcept;
    ~Preparada();

    bool Lista() const { return sentencia_ != nullptr; }
    void Ligar(int lugar, const Valor& valor);
    void Ligar(int lugar, std::string_view texto);
    void Ligar(int lugar, std::int64_t entero);
    /// The engine's result code: a row, the end, or a failure.
    int Paso();
    void Reiniciar();
    Valor Leer(int columna) const;
    std::int64_t Entero(int columna) const;
    std::string Texto(int columna) const;

private:
    sqlite3_stmt* sentencia_ = nullptr;
};

/// Reads a value of the engine, and hands one over as a function's result.
Valor DeMotor(sqlite3_value* valor);
void AMotor(sqlite3_context* contexto, const Valor& valor);

/// One open file.
class BaseSqlite {
public:
    BaseSqlite() = default;
    BaseSqlite(const BaseSqlite&) = delete;
    BaseSqlite& operator=(const BaseSqlite&) = delete;
    ~BaseSqlite();

    /// Native 4060, with the reason behind it, when the file is missing, is no database or cannot
    /// be written.
    Hecho Abrir(const std::string& archivo, bool crear);
    void Cerrar();
    bool Abierta() const { return base_ != nullptr; }
    const std::string& Archivo() const { return archivo_; }

    Resultado<Preparada> Preparar(const std::string& sql, bool duradera = false);
    /// Runs statements that bind nothing and whose rows nobody reads.
    Hecho Correr(const std::string& sql);
    /// Does something with every row; fails when they cannot be read to the last one.
    Hecho CadaFila(Preparada& sentencia, const std::function<Hecho()>& hacer);
    /// The failure behind a result code, for what no constraint explains.
    ErrorSql Fallo(int codigo);
    /// After a failure of the disk, outside of a transaction: what a COMMIT that failed may have
    /// left whole at the log's end is written over, or whoever opens the file after a crash would
    /// take it for done. Does nothing without such a failure.
    void TaparRestos();
    std::string Mensaje() const;
    int CodigoExtendido() const;
    bool EnTransaccion() const;
    std::int64_t Cambios() const;
    sqlite3* get() const { return base_; }

private:
    Hecho Configurar();

    sqlite3* base_ = nullptr;
    std::string archivo_;
    bool con_restos_ = false;
};

}  // namespace quimo::data::embebido
