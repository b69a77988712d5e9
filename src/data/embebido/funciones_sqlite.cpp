#include "data/embebido/funciones_sqlite.h"

#include <cmath>

#include <sqlite3.h>

#include "data/embebido/errores_motor.h"
#include "tsql/valores/decimales.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

using tsql::FuncionEscalar;
using tsql::Int128;

/// A scalar function together with where its errors go.
struct Registro {
    const FuncionEscalar* funcion = nullptr;
    ContextoFunciones* contexto = nullptr;
};

void Fallar(sqlite3_context* sitio, ContextoFunciones& contexto, const ErrorSql& error) {
    if (!contexto.error) contexto.error = error;
    sqlite3_result_error(sitio, error.mensaje.c_str(), -1);
}

std::vector<Valor> Leer(int cuantos, sqlite3_value** valores, bool& hay_nulo) {
    std::vector<Valor> argumentos;
    argumentos.reserve(static_cast<std::size_t>(cuantos));
    for (int i = 0; i < cuantos; ++i) {
        argumentos.push_back(DeMotor(valores[i]));
        hay_nulo = hay_nulo || argumentos.back().EsNulo();
    }
    return argumentos;
}

void LlamarEscalar(sqlite3_context* sitio, int cuantos, sqlite3_value** valores) {
    const auto& registro = *static_cast<Registro*>(sqlite3_user_data(sitio));
    bool hay_nulo = false;
    const std::vector<Valor> argumentos = Leer(cuantos, valores, hay_nulo);
    if (hay_nulo && !registro.funcion->con_nulos) {
        sqlite3_result_null(sitio);
        return;
    }
    const auto resultado = registro.funcion->llamar(argumentos);
    if (resultado) {
        AMotor(sitio, *resultado);
    } else {
        Fallar(sitio, *registro.contexto, resultado.error());
    }
}

ContextoFunciones& Contexto(sqlite3_context* sitio) {
    return *static_cast<ContextoFunciones*>(sqlite3_user_data(sitio));
}

// Functions that need the connection.

void LlamarPropia(sqlite3_context* sitio, int cuantos, sqlite3_value** valores) {
    bool hay_nulo = false;
    std::vector<Valor> argumentos = Leer(cuantos, valores, hay_nulo);
    const auto resto = std::span<const Valor>(argumentos).subspan(1);
    ContextoFunciones& contexto = Contexto(sitio);
    const auto resultado = contexto.llamar(argumentos[0].texto, resto);
    if (resultado) {
        AMotor(sitio, *resultado);
    } else {
        Fallar(sitio, contexto, resultado.error());
    }
}

void IdObjeto(sqlite3_context* sitio, int cuantos, sqlite3_value** valores) {
    const std::string nombre = DeMotor(valores[0]).texto;
    const std::string clase = cuantos > 1 ? DeMotor(valores[1]).texto : std::string();
    AMotor(sitio, Contexto(sitio).id_objeto(nombre, clase));
}

/// APPLOCK_MODE('public', 'resource', 'Session')
void ModoDeCandado(sqlite3_context* sitio, int /*cuantos*/, sqlite3_value** valores) {
    const bool suyo = Contexto(sitio).tiene_candado(DeMotor(valores[1]).texto);
    AMotor(sitio, Valor::DeTexto(suyo ? "Exclusive" : "NoLock"));
}

void NombreObjeto(sqlite3_context* sitio, int /*cuantos*/, sqlite3_value** valores) {
    AMotor(sitio, Contexto(sitio).nombre_objeto(DeMotor(valores[0]).Entero()));
}

void SiguienteNumero(sqlite3_context* sitio, int /*cuantos*/, sqlite3_value** /*valores*/) {
    ContextoFunciones& contexto = Contexto(sitio);
    contexto.ultimo_numero += contexto.incremento;
    contexto.numero_usado = true;
    sqlite3_result_int64(sitio, contexto.ultimo_numero);
}

void NumeroDado(sqlite3_context* sitio, int /*cuantos*/, sqlite3_value** valores) {
    ContextoFunciones& contexto = Contexto(sitio);
    const Valor valor = DeMotor(valores[0]);
    const bool avanza = contexto.incremento > 0 ? valor.Entero() > contexto.ultimo_numero
                                                : valor.Entero() < contexto.ultimo_numero;
    if (!valor.EsNulo() && avanza) {
        contexto.ultimo_numero = valor.Entero();
        contexto.numero_usado = true;
    }
    AMotor(sitio, valor);
}

// Aggregates. The state of one group; made when its first row comes.

struct Estado {
    bool hay = false;
    std::int64_t cuenta = 0;
    Int128 suma = 0;
    Valor valor;
    double media = 0;
    double cuadrados = 0;
};

Estado* EstadoDe(sqlite3_context* sitio, bool crear) {
    auto** hueco = static_cast<Estado**>(
        sqlite3_aggregate_context(sitio, crear ? static_cast<int>(sizeof(Estado*)) : 0));
    if (hueco == nullptr) return nullptr;
    if (*hueco == nullptr && crear) *hueco = new Estado();
    return *hueco;
}

std::unique_ptr<Estado> Soltar(sqlite3_context* sitio) {
    auto** hueco = static_cast<Estado**>(sqlite3_aggregate_context(sitio, 0));
    if (hueco == nullptr) return nullptr;
    std::unique_ptr<Estado> estado(*hueco);
    *hueco = nullptr;
    return estado;
}

void PasoUnico(sqlite3_context* sitio, int /*cuantos*/, sqlite3_value** valores) {
    Estado* estado = EstadoDe(sitio, true);
    if (estado == nullptr) return;
    if (estado->hay) Fallar(sitio, Contexto(sitio), MasDeUnValor());
    estado->hay = true;
    estado->valor = DeMotor(valores[0]);
}

/// Reads the exact number of an aggregate's row; false for NULL or after a failure.
bool LeerFila(sqlite3_context* sitio, sqlite3_value* valor, Int128& numero) {
    const Valor leido = DeMotor(valor);
    if (leido.EsNulo()) return false;
    const auto exacto = tsql::LeerExacto(leido, tsql::TipoNumerico(tsql::kDigitosMaximos, 0));
    if (!exacto) {
        Fallar(sitio, Contexto(sitio), exacto.error());
        return false;
    }
    numero = *exacto;
    return true;
}

void PasoSuma(sqlite3_context* sitio, int /*cuantos*/, sqlite3_value** valores) {
    Int128 numero = 0;
    Estado* estado = EstadoDe(sitio, true);
    if (estado == nullptr || !LeerFila(sitio, valores[0], numero)) return;
    estado->hay = true;
    if (__builtin_add_overflow(estado->suma, numero, &estado->suma) ||
        tsql::ContarCifras(estado->suma) > tsql::kDigitosMaximos) {
        Fallar(sitio, Contexto(sitio), tsql::Desbordamiento("expression", "numeric"));
    }
}

template <bool kMenor>
void PasoExtremo(sqlite3_context* sitio, int /*cuantos*/, sqlite3_value** valores) {
    Int128 numero = 0;
    Estado* estado = EstadoDe(sitio, true);
    if (estado == nullptr || !LeerFila(sitio, valores[0], numero)) return;
    if (!estado->hay || (kMenor ? numero < estado->suma : numero > estado->suma)) {
        estado->suma = numero;
    }
    estado->hay = true;
}

void FinSuma(sqlite3_context* sitio) {
    const auto estado = Soltar(sitio);
    AMotor(sitio, estado && estado->hay ? Valor::De(estado->suma) : Valor{});
}

void FinUnico(sqlite3_context* sitio) {
    const auto estado = Soltar(sitio);
    AMotor(sitio, estado ? estado->valor : Valor{});
}

void PasoVarianza(sqlite3_context* sitio, int /*cuantos*/, sqlite3_value** valores) {
    if (sqlite3_value_type(valores[0]) == SQLITE_NULL) return;
    Estado* estado = EstadoDe(sitio, true);
    if (estado == nullptr) return;
    const double x = sqlite3_value_double(valores[0]);
    ++estado->cuenta;
    const double delta = x - estado->media;
    estado->media += delta / static_cast<double>(estado->cuenta);
    estado->cuadrados += delta * (x - estado->media);
}

template <bool kPoblacion, bool kRaiz>
void FinVarianza(sqlite3_context* sitio) {
    const auto estado = Soltar(sitio);
    const std::int64_t n = estado ? estado->cuenta - (kPoblacion ? 0 : 1) : 0;
    if (n <= 0) {
        sqlite3_result_null(sitio);
        return;
    }
    const double varianza = estado->cuadrados / static_cast<double>(n);
    sqlite3_result_double(sitio, kRaiz ? std::sqrt(varianza) : varianza);
}

int CompararTextos(void* /*nada*/, int largo_a, const void* a, int largo_b, const void* b) {
    return tsql::Comparar({static_cast<const char*>(a), static_cast<std::size_t>(largo_a)},
                          {static_cast<const char*>(b), static_cast<std::size_t>(largo_b)});
}

Hecho RegistrarEscalares(BaseSqlite& base, ContextoFunciones& contexto,
                         std::span<const FuncionEscalar> funciones) {
    for (const FuncionEscalar& funcion : funciones) {
        const int marcas =
            SQLITE_UTF8 | SQLITE_INNOCUOUS | (funcion.determinista ? SQLITE_DETERMINISTIC : 0);
        const int codigo = sqlite3_create_function_v2(
            base.get(), std::string(funcion.nombre).c_str(), funcion.argumentos, marcas,
            new Registro{&funcion, &contexto}, LlamarEscalar, nullptr, nullptr,
            [](void* registro) { delete static_cast<Registro*>(registro); });
        if (codigo != SQLITE_OK) return base.Fallo(codigo);
    }
    return {};
}

struct DeConexion {
    const char* nombre = nullptr;
    int argumentos = 0;
    void (*llamar)(sqlite3_context*, int, sqlite3_value**);
    void (*paso)(sqlite3_context*, int, sqlite3_value**);
    void (*fin)(sqlite3_context*);
};

constexpr DeConexion kDeConexion[] = {
    {"q_fn", -1, LlamarPropia, nullptr, nullptr},
    {"q_objeto", 1, IdObjeto, nullptr, nullptr},
    {"q_objeto", 2, IdObjeto, nullptr, nullptr},
    {"q_candado", 3, ModoDeCandado, nullptr, nullptr},
    {"q_nombre_objeto", 1, NombreObjeto, nullptr, nullptr},
    {"q_identidad", 0, SiguienteNumero, nullptr, nullptr},
    {"q_numero_dado", 1, NumeroDado, nullptr, nullptr},
    {"q_unico", 1, nullptr, PasoUnico, FinUnico},
    {"q_suma", 1, nullptr, PasoSuma, FinSuma},
    {"q_min", 1, nullptr, PasoExtremo<true>, FinSuma},
    {"q_max", 1, nullptr, PasoExtremo<false>, FinSuma},
    {"q_var", 1, nullptr, PasoVarianza, FinVarianza<false, false>},
    {"q_varp", 1, nullptr, PasoVarianza, FinVarianza<true, false>},
    {"q_stdev", 1, nullptr, PasoVarianza, FinVarianza<false, true>},
    {"q_stdevp", 1, nullptr, PasoVarianza, FinVarianza<true, true>},
};

}  // namespace

Hecho RegistrarFunciones(BaseSqlite& base, ContextoFunciones& contexto) {
    QUIMO_TRY_VOID(RegistrarEscalares(base, contexto, tsql::FuncionesDeTexto()));
    QUIMO_TRY_VOID(RegistrarEscalares(base, contexto, tsql::FuncionesDeNumero()));
    QUIMO_TRY_VOID(RegistrarEscalares(base, contexto, tsql::FuncionesDeFecha()));
    for (const DeConexion& funcion : kDeConexion) {
        const int codigo = sqlite3_create_function_v2(
            base.get(), funcion.nombre, funcion.argumentos, SQLITE_UTF8, &contexto, funcion.llamar,
            funcion.paso, funcion.fin, nullptr);
        if (codigo != SQLITE_OK) return base.Fallo(codigo);
    }
    const int codigo = sqlite3_create_collation_v2(base.get(), "QUIMO", SQLITE_UTF8, nullptr,
                                                   CompararTextos, nullptr);
    if (codigo != SQLITE_OK) return base.Fallo(codigo);
    return {};
}

}  // namespace quimo::data::embebido
