#pragma once

#include <optional>
#include <vector>

#include "data/embebido/sesion.h"
#include "data/embebido/valores_qt.h"

namespace quimo::data::embebido {

/// A result set kept for INSERT ... EXEC.
struct ConjuntoInterno {
    std::vector<tsql::ColumnaSalida> columnas;
    std::vector<std::vector<Valor>> filas;
};

/// What one text leaves on its way: result sets, counts, messages and failures go to its answer,
/// and @@ROWCOUNT and @@ERROR to the session. While a capture lives, result sets are kept for it
/// instead and counts are told to nobody.
class Salida {
public:
    Salida(Sesion& sesion, RespuestaSql& respuesta) : sesion_(sesion), respuesta_(respuesta) {}
    Salida(const Salida&) = delete;
    Salida& operator=(const Salida&) = delete;

    /// Tells an error, or a message when it is no more than that.
    void Informar(const ErrorSql& error);
    /// A statement is done and wrote this many rows; -1: it writes none.
    void Contar(std::int64_t filas);

    /// The first error and the number of all that were told.
    const std::optional<ErrorSql>& PrimerError() const { return primero_; }
    std::size_t Errores() const { return errores_; }

    /// INSERT ... EXEC: keeps the result sets of what runs inside, while it lives. One at a time.
    class Captura {
    public:
        explicit Captura(Salida& salida) : salida_(salida) { salida_.captura_ = &conjuntos; }
        Captura(const Captura&) = delete;
        Captura& operator=(const Captura&) = delete;
        ~Captura() { salida_.captura_ = nullptr; }

        std::vector<ConjuntoInterno> conjuntos;

    private:
        Salida& salida_;
    };
    bool Capturando() const { return captura_ != nullptr; }

    /// A result set while its rows come. It is handed over by Entregar, or not at all.
    class Nuevo {
    public:
        /// The columns must outlive it.
        Nuevo(Salida& salida, const std::vector<tsql::ColumnaSalida>& columnas);

        /// One more row; `leer` gives the value of the column of that number. Fails when a number
        /// has left the range of its column's type.
        template <typename Leer>
        Hecho Agregar(const Leer& leer);
        void Entregar();

    private:
        Salida& salida_;
        const std::vector<tsql::ColumnaSalida>& columnas_;
        bool interno_;
        ConjuntoInterno capturado_;
        Conjunto conjunto_;
    };

private:
    Sesion& sesion_;
    RespuestaSql& respuesta_;
    std::vector<ConjuntoInterno>* captura_ = nullptr;
    std::optional<ErrorSql> primero_;
    std::size_t errores_ = 0;
};

template <typename Leer>
Hecho Salida::Nuevo::Agregar(const Leer& leer) {
    if (interno_) {
        std::vector<Valor> valores;
        valores.reserve(columnas_.size());
        for (std::size_t i = 0; i < columnas_.size(); ++i)
            valores.push_back(leer(i));
        capturado_.filas.push_back(std::move(valores));
        return {};
    }
    Fila fila;
    for (std::size_t i = 0; i < columnas_.size(); ++i) {
        QUIMO_TRY(QVariant valor, AVariante(leer(i), columnas_[i].tipo));
        fila.append(std::move(valor));
    }
    conjunto_.filas.append(std::move(fila));
    return {};
}

}  // namespace quimo::data::embebido
