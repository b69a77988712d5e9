#include "data/embebido/procedimientos_candado.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "data/embebido/errores_motor.h"
#include "tsql/valores/conversion.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

constexpr const char* kDeTomar = "sp_getapplock";
constexpr const char* kDeSoltar = "sp_releaseapplock";
constexpr auto kParametrosDeTomar = std::to_array<std::string_view>(
    {"@resource", "@lockmode", "@lockowner", "@locktimeout", "@dbprincipal"});
constexpr auto kParametrosDeSoltar =
    std::to_array<std::string_view>({"@resource", "@lockowner", "@dbprincipal"});

constexpr int kConcedido = 0;
constexpr int kVencido = -1;
constexpr int kSinServicio = -999;
constexpr std::chrono::milliseconds kEntreIntentos{20};

std::string Texto(const std::map<std::string, ValorConTipo>& valores, const char* nombre) {
    const auto valor = valores.find(nombre);
    return valor == valores.end() ? std::string() : valor->second.valor.texto;
}

}  // namespace

bool ProcedimientosDeCandado::EsUno(const tsql::NombreObjeto& nombre) {
    return tsql::MismoNombre(nombre.objeto, kDeTomar) ||
           tsql::MismoNombre(nombre.objeto, kDeSoltar);
}

/// The arguments of a system procedure, by their order or their names.
Resultado<ProcedimientosDeCandado::Valores> ProcedimientosDeCandado::Argumentos(
    const tsql::Ejecutar& ejecutar, std::span<const std::string_view> nombres, Marco& marco) {
    Valores valores;
    std::size_t siguiente = 0;
    for (const tsql::Argumento& argumento : ejecutar.argumentos) {
        if (siguiente >= nombres.size()) return tsql::ParametrosDeMas(ejecutar.nombre.objeto);
        const std::string nombre = tsql::AMinusculas(
            argumento.nombre.empty() ? std::string(nombres[siguiente]) : argumento.nombre);
        ++siguiente;
        if (std::find(nombres.begin(), nombres.end(), nombre) == nombres.end()) {
            return ParametroDesconocido(argumento.nombre, ejecutar.nombre.objeto);
        }
        if (!argumento.valor) continue;
        QUIMO_TRY(valores[nombre], planes_.Evaluar(*argumento.valor, marco));
    }
    return valores;
}

Hecho ProcedimientosDeCandado::Ejecutar(const tsql::Ejecutar& ejecutar, Marco& marco) {
    const bool toma = tsql::MismoNombre(ejecutar.nombre.objeto, kDeTomar);
    const char* const rutina = toma ? kDeTomar : kDeSoltar;
    QUIMO_TRY(const Valores valores, toma ? Argumentos(ejecutar, kParametrosDeTomar, marco)
                                          : Argumentos(ejecutar, kParametrosDeSoltar, marco));
    const std::string recurso = Texto(valores, "@resource");
    if (recurso.empty()) return tsql::ParametroInvalido("@Resource", rutina);
    if (!tsql::MismoNombre(Texto(valores, "@lockowner"), "Session"))
        return tsql::ParametroInvalido("@LockOwner", rutina);
    int codigo = kConcedido;
    if (toma) {
        QUIMO_TRY(codigo, Tomar(valores, recurso));
    } else if (!sesion_.Cerrojos().Soltar(recurso)) {
        return CandadoSinTener(recurso);
    }
    if (ejecutar.variable.empty()) return {};
    QUIMO_TRY(ValorConTipo* const variable, marco.Variable(ejecutar.variable));
    QUIMO_TRY(variable->valor,
              Convertir(Valor::De(codigo), tsql::TipoEntero(tsql::Clase::Int), variable->tipo));
    return {};
}

Resultado<int> ProcedimientosDeCandado::Tomar(const Valores& valores, const std::string& recurso) {
    if (!tsql::MismoNombre(Texto(valores, "@lockmode"), "Exclusive"))
        return tsql::ParametroInvalido("@LockMode", kDeTomar);
    const auto plazo = valores.find("@locktimeout");
    if (plazo == valores.end() || plazo->second.valor.exacto < 0)
        return tsql::ParametroInvalido("@LockTimeout", kDeTomar);
    return Esperar(recurso, plazo->second.valor.Entero());
}

int ProcedimientosDeCandado::Esperar(const std::string& recurso, std::int64_t plazo_ms) {
    const auto hasta = std::chrono::steady_clock::now() + std::chrono::milliseconds(plazo_ms);
    while (true) {
        const auto tomado = sesion_.Cerrojos().Tomar(sesion_.Base().Archivo(), recurso);
        if (tomado == Candados::Tomado::Si) return kConcedido;
        if (tomado == Candados::Tomado::SinCerrojos) return kSinServicio;
        if (std::chrono::steady_clock::now() >= hasta) return kVencido;
        std::this_thread::sleep_for(kEntreIntentos);
    }
}

}  // namespace quimo::data::embebido
