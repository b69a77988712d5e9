#include "data/embebido/base_sqlite.h"

#include <array>
#include <utility>

#include <sqlite3.h>

#include "data/embebido/errores_motor.h"
#include "tsql/valores/funciones.h"

namespace quimo::data::embebido {

namespace {

constexpr int kEsperaMs = 10'000;

bool CabeEn64(tsql::Int128 valor) { return valor == static_cast<std::int64_t>(valor); }

Valor DeBytes(const void* datos, int tamano, bool texto) {
    std::string bytes;
    if (tamano > 0) bytes.assign(static_cast<const char*>(datos), static_cast<std::size_t>(tamano));
    return texto ? Valor::DeTexto(std::move(bytes)) : Valor::DeBytes(std::move(bytes));
}

}  // namespace

Preparada::Preparada(Preparada&& otra) noexcept
    : sentencia_(std::exchange(otra.sentencia_, nullptr)) {}

Preparada& Preparada::operator=(Preparada&& otra) noexcept {
    std::swap(sentencia_, otra.sentencia_);
    return *this;
}

Preparada::~Preparada() { sqlite3_finalize(sentencia_); }

void Preparada::Ligar(int lugar, const Valor& valor) {
    const auto tamano = static_cast<int>(valor.texto.size());
    if (valor.forma == Valor::Forma::Nulo) {
        sqlite3_bind_null(sentencia_, lugar);
    } else if (valor.forma == Valor::Forma::Real) {
        sqlite3_bind_double(sentencia_, lugar, valor.real);
    } else if (valor.forma == Valor::Forma::Texto) {
        sqlite3_bind_text(sentencia_, lugar, valor.texto.c_str(), tamano, SQLITE_TRANSIENT);
    } else if (valor.forma == Valor::Forma::Bytes) {
        sqlite3_bind_blob(sentencia_, lugar, valor.texto.c_str(), tamano, SQLITE_TRANSIENT);
    } else if (CabeEn64(valor.exacto)) {
        sqlite3_bind_int64(sentencia_, lugar, valor.Entero());
    } else {
        const std::string bytes = tsql::AnchoABytes(valor.exacto);
        sqlite3_bind_blob(sentencia_, lugar, bytes.data(), static_cast<int>(bytes.size()),
                          SQLITE_TRANSIENT);
    }
}

void Preparada::Ligar(int lugar, std::string_view texto) {
    sqlite3_bind_text(sentencia_, lugar, texto.data(), static_cast<int>(texto.size()),
                      SQLITE_TRANSIENT);
}

void Preparada::Ligar(int lugar, std::int64_t entero) {
    sqlite3_bind_int64(sentencia_, lugar, entero);
}

int Preparada::Paso() { return sqlite3_step(sentencia_); }
void Preparada::Reiniciar() { sqlite3_reset(sentencia_); }

Valor Preparada::Leer(int columna) const {
    return DeMotor(sqlite3_column_value(sentencia_, columna));
}

std::int64_t Preparada::Entero(int columna) const {
    return sqlite3_column_int64(sentencia_, columna);
}

std::string Preparada::Texto(int columna) const { return Leer(columna).texto; }

Valor DeMotor(sqlite3_value* valor) {
    const int tipo = sqlite3_value_type(valor);
    if (tipo == SQLITE_INTEGER) return Valor::De(sqlite3_value_int64(valor));
    if (tipo == SQLITE_FLOAT) return Valor::DeReal(sqlite3_value_double(valor));
    if (tipo == SQLITE_TEXT) {
        const void* datos = sqlite3_value_text(valor);
        return DeBytes(datos, sqlite3_value_bytes(valor), true);
    }
    if (tipo == SQLITE_BLOB) {
        const void* datos = sqlite3_value_blob(valor);
        return DeBytes(datos, sqlite3_value_bytes(valor), false);
    }
    return {};
}

void AMotor(sqlite3_context* contexto, const Valor& valor) {
    const auto tamano = static_cast<int>(valor.texto.size());
    if (valor.forma == Valor::Forma::Nulo) {
        sqlite3_result_null(contexto);
    } else if (valor.forma == Valor::Forma::Real) {
        sqlite3_result_double(contexto, valor.real);
    } else if (valor.forma == Valor::Forma::Texto) {
        sqlite3_result_text(contexto, valor.texto.c_str(), tamano, SQLITE_TRANSIENT);
    } else if (valor.forma == Valor::Forma::Bytes) {
        sqlite3_result_blob(contexto, valor.texto.c_str(), tamano, SQLITE_TRANSIENT);
    } else if (CabeEn64(valor.exacto)) {
        sqlite3_result_int64(contexto, valor.Entero());
    } else {
        const std::string bytes = tsql::AnchoABytes(valor.exacto);
        sqlite3_result_blob(contexto, bytes.data(), static_cast<int>(bytes.size()),
                            SQLITE_TRANSIENT);
    }
}

BaseSqlite::~BaseSqlite() { Cerrar(); }

void BaseSqlite::Cerrar() {
    sqlite3_close_v2(base_);
    base_ = nullptr;
}

Hecho BaseSqlite::Abrir(const std::string& archivo, bool crear) {
    archivo_ = archivo;
    const int modo = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (crear ? SQLITE_OPEN_CREATE : 0);
    const int codigo = sqlite3_open_v2(archivo.c_str(), &base_, modo, nullptr);
    if (codigo != SQLITE_OK) {
        const std::string motivo =
            base_ != nullptr ? sqlite3_errmsg(base_) : sqlite3_errstr(codigo);
        Cerrar();
        return BaseNoAbre(archivo, motivo);
    }
    sqlite3_extended_result_codes(base_, 1);
    sqlite3_busy_timeout(base_, kEsperaMs);
    if (sqlite3_db_readonly(base_, "main") == 1) {
        Cerrar();
        return BaseNoAbre(archivo, "attempt to write a readonly database");
    }
    auto hecho = Configurar();
    if (!hecho) {
        const std::string motivo = hecho.error().mensaje;
        Cerrar();
        return BaseNoAbre(archivo, motivo);
    }
    return {};
}

Hecho BaseSqlite::Configurar() {
    // FULL: what COMMIT answered for is on the disk. The shared cache of pages is 64 MB.
    constexpr std::array kAjustes = {
        "PRAGMA journal_mode=WAL",      "PRAGMA synchronous=FULL",  "PRAGMA foreign_keys=ON",
        "PRAGMA temp_store=MEMORY",     "PRAGMA cache_size=-65536", "PRAGMA mmap_size=1073741824",
        "PRAGMA recursive_triggers=ON", "PRAGMA trusted_schema=ON",
    };
    for (const char* ajuste : kAjustes) {
        QUIMO_TRY_VOID(Correr(ajuste));
    }
    return {};
}

Resultado<Preparada> BaseSqlite::Preparar(const std::string& sql, bool duradera) {
    sqlite3_stmt* sentencia = nullptr;
    const int codigo =
        sqlite3_prepare_v3(base_, sql.c_str(), static_cast<int>(sql.size()) + 1,
                           duradera ? SQLITE_PREPARE_PERSISTENT : 0, &sentencia, nullptr);
    if (codigo != SQLITE_OK) return Fallo(codigo);
    return Preparada(sentencia);
}

Hecho BaseSqlite::Correr(const std::string& sql) {
    const int codigo = sqlite3_exec(base_, sql.c_str(), nullptr, nullptr, nullptr);
    if (codigo != SQLITE_OK) return Fallo(codigo);
    return {};
}

Hecho BaseSqlite::CadaFila(Preparada& sentencia, const std::function<Hecho()>& hacer) {
    int codigo = SQLITE_ROW;
    for (codigo = sentencia.Paso(); codigo == SQLITE_ROW; codigo = sentencia.Paso()) {
        QUIMO_TRY_VOID(hacer());
    }
    if (codigo != SQLITE_DONE) return Fallo(codigo);
    sentencia.Reiniciar();
    return {};
}

void BaseSqlite::TaparRestos() {
    if (!con_restos_ || base_ == nullptr) return;
    auto numero = Preparar("PRAGMA user_version");
    if (!numero || numero->Paso() != SQLITE_ROW) return;
    const std::int64_t otro = (numero->Entero(0) + 1) & 0x7FFFFFFF;
    numero->Reiniciar();
    // Without waiting for the disk, which may still refuse: what counts is that the log's end is
    // another one. The next COMMIT waits for both.
    const bool tapados =
        Correr("PRAGMA synchronous=OFF;PRAGMA user_version=" + std::to_string(otro)).has_value();
    const bool repuesto = Correr("PRAGMA synchronous=FULL").has_value();
    QUIMO_CHECK(repuesto);
    con_restos_ = !tapados;
}

std::string BaseSqlite::Mensaje() const { return sqlite3_errmsg(base_); }
int BaseSqlite::CodigoExtendido() const { return sqlite3_extended_errcode(base_); }
bool BaseSqlite::EnTransaccion() const { return sqlite3_get_autocommit(base_) == 0; }
std::int64_t BaseSqlite::Cambios() const { return sqlite3_changes64(base_); }

ErrorSql BaseSqlite::Fallo(int codigo) {
    const int primario = codigo & 0xFF;
    if (primario == SQLITE_IOERR || primario == SQLITE_FULL || primario == SQLITE_NOMEM) {
        con_restos_ = true;
    }
    const std::string mensaje = Mensaje();
    const auto dice = [&](const char* que) { return mensaje.find(que) != std::string::npos; };
    if (primario == SQLITE_BUSY || primario == SQLITE_LOCKED) return BaseOcupada();
    if (dice("integer overflow")) return tsql::Desbordamiento("expression", "int");
    if (dice("stack overflow") || dice("too large") || dice("too many") || dice("too complex") ||
        dice("at most")) {
        return tsql::DemasiadoAnidado();
    }
    switch (primario) {
        case SQLITE_FULL:
            return DiscoLleno(archivo_);
        case SQLITE_TOOBIG:
            return tsql::TextoRecortado();
        case SQLITE_NOMEM:
            return SinMemoria();
        case SQLITE_READONLY:
            return BaseSoloLectura(archivo_);
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_IOERR:
        case SQLITE_CANTOPEN:
            return FalloDeDisco(mensaje);
        default:
            return FalloInterno(mensaje);
    }
}

}  // namespace quimo::data::embebido
