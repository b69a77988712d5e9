#pragma once

#include <optional>
#include <string>
#include <vector>

#include "data/embebido/candados.h"
#include "data/embebido/catalogo_embebido.h"
#include "data/embebido/funciones_sqlite.h"
#include "data/embebido/textos_leidos.h"
#include "data/reloj.h"
#include "data/sql_connection.h"
#include "tsql/traduccion/traductor.h"

namespace quimo::data::embebido {

/// What T-SQL keeps from one text to the next.
struct EstadoSesion {
    int transacciones = 0;
    std::int64_t filas = 0;
    int error = 0;
    std::optional<std::int64_t> identidad;
    bool sin_cuenta = false;   ///< SET NOCOUNT ON
    bool aborta_todo = false;  ///< SET XACT_ABORT ON
    tsql::OrdenFecha orden = tsql::OrdenFecha::Dma;
    std::string identity_insert;
    std::int64_t opciones = 0;  ///< grows when an option changes that translations depend on
    int nivel = 0;              ///< procedures inside one another
};

/// One connection to one file: the open file, its definitions, its transaction and its plans.
class Sesion {
public:
    explicit Sesion(const Reloj& reloj);

    Hecho Abrir(const std::string& archivo, bool crear);
    void Cerrar();
    bool Abierta() const { return base_.Abierta(); }

    BaseSqlite& Base() { return base_; }
    CatalogoEmbebido& Catalogo() { return catalogo_; }
    ContextoFunciones& Contexto() { return contexto_; }
    EstadoSesion& Estado() { return estado_; }
    Candados& Cerrojos() { return candados_; }
    TextosLeidos& Textos() { return textos_; }
    const std::string& NombreBase() const { return nombre_base_; }

    // Transactions, nested as T-SQL nests them. One that could not be confirmed is over: rolled
    // back, whatever the engine did with it by itself.
    Hecho Iniciar(const std::string& nombre);
    Hecho Confirmar();
    Hecho Revertir(const std::string& nombre);
    Hecho Guardar(const std::string& nombre);
    /// Number of the open transaction, another for each outermost BEGIN; 0 when none is open.
    std::uint64_t TransaccionActual() const {
        return estado_.transacciones > 0 ? numero_transaccion_ : 0;
    }
    /// A failure of the disk or of memory makes the engine end a transaction by itself: then it is
    /// over here too, with its savepoints and definitions. To be called after every statement.
    void Conciliar();

    /// Value of @@ROWCOUNT, GETDATE and the other slots that the session fills.
    Valor Global(const std::string& nombre) const;
    std::int64_t Ahora() const;
    /// GETDATE tells one time while one statement runs: a new one from here on.
    void SoltarHora() { hora_.reset(); }

private:
    struct Punto {
        std::string nombre;
        std::string interno;
        CatalogoEmbebido::Foto foto;
    };
    void Olvidar();

    const Reloj& reloj_;
    ContextoFunciones contexto_;  // outlives the file: functions point to it
    BaseSqlite base_;
    CatalogoEmbebido catalogo_;
    Candados candados_;
    EstadoSesion estado_;
    std::string nombre_base_;
    std::string nombre_externo_;
    CatalogoEmbebido::Foto foto_;
    std::vector<Punto> puntos_;
    std::uint64_t numero_transaccion_ = 0;
    mutable std::optional<std::int64_t> hora_;  ///< read when a statement first asks
    TextosLeidos textos_;                       // its plans are statements of the file
};

/// Undoes what one statement did unless Confirmar was reached: a savepoint inside a transaction, a
/// transaction of its own outside. What cannot be undone alone goes with the whole transaction.
class PuntoDeSentencia {
public:
    static Resultado<PuntoDeSentencia> Abrir(Sesion& sesion);
    PuntoDeSentencia(const PuntoDeSentencia&) = delete;
    PuntoDeSentencia& operator=(const PuntoDeSentencia&) = delete;
    PuntoDeSentencia(PuntoDeSentencia&& otro) noexcept;
    PuntoDeSentencia& operator=(PuntoDeSentencia&&) = delete;
    ~PuntoDeSentencia();

    Hecho Confirmar();

private:
    PuntoDeSentencia(Sesion& sesion, bool propia, CatalogoEmbebido::Foto foto)
        : sesion_(&sesion),
          propia_(propia),
          transaccion_(sesion.TransaccionActual()),
          foto_(std::move(foto)) {}

    Sesion* sesion_;
    bool propia_;
    std::uint64_t transaccion_;
    CatalogoEmbebido::Foto foto_;
};

/// Milliseconds since 1900 of a date, and back.
std::int64_t AMilisegundos(const QDateTime& fecha);
QDateTime AFecha(std::int64_t milisegundos);

}  // namespace quimo::data::embebido
