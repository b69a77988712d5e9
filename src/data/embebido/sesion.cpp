#include "data/embebido/sesion.h"

#include <random>

#include <QFileInfo>

#include "data/embebido/errores_motor.h"
#include "tsql/valores/fechas.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

std::int64_t AMilisegundos(const QDateTime& fecha) {
    const QDateTime origen(QDate(1900, 1, 1), QTime(0, 0), Qt::UTC);
    return origen.msecsTo(QDateTime(fecha.date(), fecha.time(), Qt::UTC));
}

QDateTime AFecha(std::int64_t milisegundos) {
    return QDateTime(QDate(1900, 1, 1), QTime(0, 0), Qt::UTC).addMSecs(milisegundos);
}

Sesion::Sesion(const Reloj& reloj) : reloj_(reloj), catalogo_(base_) {}

Hecho Sesion::Abrir(const std::string& archivo, bool crear) {
    nombre_base_ = QFileInfo(QString::fromStdString(archivo)).completeBaseName().toStdString();
    QUIMO_TRY_VOID(base_.Abrir(archivo, crear));
    auto hecho = RegistrarFunciones(base_, contexto_);
    if (hecho) hecho = catalogo_.Abrir();
    if (!hecho) {
        const ErrorSql causa = hecho.error();
        Cerrar();
        return EsBaseOcupada(causa) ? causa : BaseNoAbre(archivo, causa.mensaje);
    }
    return {};
}

void Sesion::Cerrar() {
    textos_.Olvidar();
    catalogo_.Cerrar();
    candados_.Cerrar();
    estado_.transacciones = 0;
    base_.Cerrar();
}

Hecho Sesion::Iniciar(const std::string& nombre) {
    Conciliar();
    if (estado_.transacciones == 0) {
        // At once for writing: a transaction that has read and then waits for another writer could
        // never go on.
        QUIMO_TRY_VOID(base_.Correr("BEGIN IMMEDIATE"));
        foto_ = catalogo_.Retratar();
        nombre_externo_ = nombre;
        puntos_.clear();
        ++numero_transaccion_;
    }
    ++estado_.transacciones;
    return {};
}

void Sesion::Olvidar() {
    estado_.transacciones = 0;
    puntos_.clear();
    catalogo_.Restaurar(std::move(foto_));
}

void Sesion::Conciliar() {
    if (base_.EnTransaccion()) return;
    if (estado_.transacciones > 0) Olvidar();
    base_.TaparRestos();
}

Hecho Sesion::Confirmar() {
    if (estado_.transacciones == 0) return SinTransaccionQueConfirmar();
    if (estado_.transacciones > 1) {
        --estado_.transacciones;
        return {};
    }
    auto hecho = base_.Correr("COMMIT");
    if (hecho) {
        estado_.transacciones = 0;
        puntos_.clear();
        return {};
    }
    // Another's lock leaves it open: over even so, or what follows would count on it.
    if (base_.EnTransaccion()) static_cast<void>(base_.Correr("ROLLBACK"));
    QUIMO_CHECK(!base_.EnTransaccion());
    Conciliar();
    return hecho;
}

Hecho Sesion::Revertir(const std::string& nombre) {
    if (estado_.transacciones == 0) return SinTransaccionQueRevertir();
    if (nombre.empty() || tsql::MismoNombre(nombre, nombre_externo_)) {
        auto hecho = base_.Correr("ROLLBACK");
        if (base_.EnTransaccion()) return hecho;
        // What the engine could not read while it undid, the next reader undoes.
        Olvidar();
        return {};
    }
    for (std::size_t i = puntos_.size(); i > 0; --i) {
        if (!tsql::MismoNombre(puntos_[i - 1].nombre, nombre)) continue;
        const auto hecho = base_.Correr("ROLLBACK TO " + puntos_[i - 1].interno);
        if (!hecho) {
            static_cast<void>(base_.Correr("ROLLBACK"));
            Conciliar();
            return hecho;
        }
        puntos_.resize(i);
        catalogo_.Restaurar(puntos_.back().foto);
        return {};
    }
    return PuntoDesconocido(nombre);
}

Hecho Sesion::Guardar(const std::string& nombre) {
    if (estado_.transacciones == 0) return SinTransaccionQueGuardar();
    const std::string interno = "q_guardado_" + std::to_string(puntos_.size());
    QUIMO_TRY_VOID(base_.Correr("SAVEPOINT " + interno));
    puntos_.push_back({nombre, interno, catalogo_.Retratar()});
    return {};
}

std::int64_t Sesion::Ahora() const { return tsql::RedondearFecha(AMilisegundos(reloj_.Ahora())); }

Valor Sesion::Global(const std::string& nombre) const {
    if (nombre == "@@ROWCOUNT" || nombre == "ROWCOUNT_BIG") return Valor::De(estado_.filas);
    if (nombre == "@@ERROR") return Valor::De(estado_.error);
    if (nombre == "@@TRANCOUNT") return Valor::De(estado_.transacciones);
    if (nombre == "@@NESTLEVEL") return Valor::De(estado_.nivel);
    if (nombre == "@@SPID") return Valor::De(1);
    if (nombre == "@@PROCID") return Valor::De(0);
    if (nombre == "@@IDENTITY" || nombre == "SCOPE_IDENTITY") {
        return estado_.identidad ? Valor::De(*estado_.identidad) : Valor{};
    }
    if (nombre == "GETDATE" || nombre == "SYSDATETIME") {
        if (!hora_) hora_ = Ahora();
        return Valor::De(*hora_);
    }
    if (nombre == "RAND") {
        std::random_device azar;
        return Valor::DeReal(static_cast<double>(azar()) / 4294967296.0);
    }
    if (nombre == "DB_NAME") return Valor::DeTexto(nombre_base_);
    if (nombre == "@@LANGUAGE") return Valor::DeTexto("us_english");
    if (nombre == "@@SERVERNAME" || nombre == "HOST_NAME") return Valor::DeTexto("embebido");
    if (nombre == "USER_NAME" || nombre == "SUSER_SNAME") return Valor::DeTexto("dbo");
    return Valor::DeTexto("QUIMO");
}

Resultado<PuntoDeSentencia> PuntoDeSentencia::Abrir(Sesion& sesion) {
    const bool propia = !sesion.Base().EnTransaccion();
    if (propia && sesion.TransaccionActual() != 0) return TransaccionDeshecha();
    QUIMO_TRY_VOID(sesion.Base().Correr(propia ? "BEGIN IMMEDIATE" : "SAVEPOINT q_sentencia"));
    return PuntoDeSentencia(sesion, propia, sesion.Catalogo().Retratar());
}

PuntoDeSentencia::PuntoDeSentencia(PuntoDeSentencia&& otro) noexcept
    : sesion_(std::exchange(otro.sesion_, nullptr)),
      propia_(otro.propia_),
      transaccion_(otro.transaccion_),
      foto_(std::move(otro.foto_)) {}

Hecho PuntoDeSentencia::Confirmar() {
    QUIMO_TRY_VOID(sesion_->Base().Correr(propia_ ? "COMMIT" : "RELEASE q_sentencia"));
    sesion_ = nullptr;
    return {};
}

PuntoDeSentencia::~PuntoDeSentencia() {
    if (sesion_ == nullptr) return;
    BaseSqlite& base = sesion_->Base();
    if (propia_) {
        sesion_->Catalogo().Restaurar(std::move(foto_));
    } else if (sesion_->TransaccionActual() != transaccion_ || !base.EnTransaccion()) {
        return;  // the transaction that it stood in is over, and all of it undone
    } else if (base.Correr("ROLLBACK TO q_sentencia;RELEASE q_sentencia")) {
        sesion_->Catalogo().Restaurar(std::move(foto_));
        return;
    }
    if (base.EnTransaccion()) static_cast<void>(base.Correr("ROLLBACK"));
    QUIMO_CHECK(!base.EnTransaccion());
}

}  // namespace quimo::data::embebido
