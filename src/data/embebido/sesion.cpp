#include "data/embebido/sesion.h"

#include <random>

#include <QFileInfo>

#include "tsql/valores/fechas.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

constexpr std::size_t kLotesRecordados = 512;

ErrorSql SinTransaccion() {
    ErrorSql error = tsql::CrearError(3903);
    error.nativo = 628;
    error.mensaje = "Cannot issue SAVE TRANSACTION when there is no active transaction.";
    return error;
}

bool MismoValor(const Valor& a, const Valor& b) {
    return a.forma == b.forma && a.exacto == b.exacto && a.texto == b.texto && !(a.real < b.real) &&
           !(b.real < a.real);
}

}  // namespace

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
        if (causa.nativo == 1222) return causa;
        ErrorSql error = tsql::CrearError(4060, archivo);
        error.mensaje += " " + causa.mensaje;
        return error;
    }
    return {};
}

void Sesion::Cerrar() {
    por_forma_.clear();
    por_texto_.clear();
    recordados_.clear();
    modulos_.clear();
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
    if (estado_.transacciones == 0) return tsql::CrearError(3902);
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
    if (estado_.transacciones == 0) return tsql::CrearError(3903);
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
    return tsql::CrearError(6401, nombre);
}

Hecho Sesion::Guardar(const std::string& nombre) {
    if (estado_.transacciones == 0) return SinTransaccion();
    const std::string interno = "q_guardado_" + std::to_string(puntos_.size());
    QUIMO_TRY_VOID(base_.Correr("SAVEPOINT " + interno));
    puntos_.push_back({nombre, interno, catalogo_.Retratar()});
    return {};
}

bool Sesion::Sirve(const LoteListo& listo, const std::vector<tsql::Literal>& literales) const {
    if (listo.en_uso || listo.lote.literales.size() != literales.size()) return false;
    for (std::size_t i = 0; i < literales.size(); ++i) {
        const tsql::Literal& suya = listo.lote.literales[i];
        const bool fija = listo.lote.fijos[i];
        if (fija && !MismoValor(suya.valor, literales[i].valor)) return false;
        if ((fija || listo.lote.tipos_fijos[i]) && !(suya.tipo == literales[i].tipo)) return false;
    }
    return true;
}

void Sesion::Recordar(const std::string& clave, const std::shared_ptr<LoteListo>& lote) {
    recordados_.push_front({clave, lote});
    por_forma_.emplace(clave, recordados_.begin());
    while (recordados_.size() > kLotesRecordados) {
        const auto ultimo = std::prev(recordados_.end());
        const auto [desde, hasta] = por_forma_.equal_range(ultimo->clave);
        for (auto i = desde; i != hasta; ++i) {
            if (i->second == ultimo) {
                por_forma_.erase(i);
                break;
            }
        }
        recordados_.erase(ultimo);
    }
}

Resultado<std::shared_ptr<LoteListo>> Sesion::Leer(const std::string& texto,
                                                   const std::vector<tsql::Tipo>& tipos) {
    if (auto listo = LeidoAsi(texto, tipos)) return listo;
    QUIMO_TRY_VOID(tsql::AnalizarForma(texto, lexico_));
    std::string& clave = lexico_.forma;
    for (const tsql::Tipo& tipo : tipos)
        clave += '\2' + std::to_string(tsql::Empaquetar(tipo));
    const auto [desde, hasta] = por_forma_.equal_range(clave);
    for (auto i = desde; i != hasta; ++i) {
        const auto recordado = i->second;
        if (!Sirve(*recordado->lote, lexico_.literales)) continue;
        recordados_.splice(recordados_.begin(), recordados_, recordado);
        recordado->lote->en_uso = true;
        // Only what comes a second time: the rows of a close are as many texts, each met once.
        if (recordado->lote->lote.texto == texto) RecordarTexto(recordado->lote);
        recordado->lote->lote.literales.swap(lexico_.literales);
        recordado->lote->lote.texto = texto;
        return recordado->lote;
    }
    auto listo = std::make_shared<LoteListo>();
    QUIMO_TRY(tsql::Lexico lexico, tsql::Analizar(texto));
    QUIMO_TRY(listo->lote, tsql::LeerLote(texto, std::move(lexico), tsql::Constantes::PorPosicion));
    listo->tipos_parametros = tipos;
    listo->en_uso = true;
    Recordar(clave, listo);
    return listo;
}

void Sesion::RecordarTexto(const std::shared_ptr<LoteListo>& lote) {
    constexpr std::size_t kTextoMaximo = 4096;
    if (lote->lote.texto.size() > kTextoMaximo) return;
    if (por_texto_.size() >= 2 * kLotesRecordados) por_texto_.clear();
    por_texto_.insert_or_assign(lote->lote.texto, lote);
}

/// The very text again: nothing of it needs to be looked at, not even its constants.
std::shared_ptr<LoteListo> Sesion::LeidoAsi(const std::string& texto,
                                            const std::vector<tsql::Tipo>& tipos) {
    const auto leido = por_texto_.find(texto);
    if (leido == por_texto_.end()) return nullptr;
    auto listo = leido->second.lock();
    // Another text of the same form may have put its own constants there since.
    if (!listo || listo->en_uso || listo->lote.texto != texto || listo->tipos_parametros != tipos)
        return nullptr;
    listo->en_uso = true;
    return listo;
}

std::shared_ptr<LoteListo> Sesion::LoteDe(const tsql::ModuloPtr& modulo) {
    auto& listo = modulos_[modulo.get()];
    if (!listo) {
        listo = std::make_shared<LoteListo>();
        listo->modulo = modulo;
    }
    if (!listo->en_uso) {
        listo->en_uso = true;
        return listo;
    }
    // A procedure inside itself gets plans of its own.
    auto otro = std::make_shared<LoteListo>();
    otro->modulo = modulo;
    otro->en_uso = true;
    return otro;
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

ErrorSql TransaccionDeshecha() { return tsql::CrearError(3998); }

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
