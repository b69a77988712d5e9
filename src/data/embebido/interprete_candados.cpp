#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "data/embebido/interprete.h"
#include "tsql/valores/conversion.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

constexpr int kConcedido = 0;
constexpr int kVencido = -1;
constexpr int kSinServicio = -999;
constexpr std::chrono::milliseconds kEntreIntentos{20};

ErrorSql Parametro(const std::string& nombre, const std::string& rutina) {
    return tsql::CrearError(1023, nombre, rutina);
}

}  // namespace

bool Interprete::EsDeCandados(const tsql::NombreObjeto& nombre) {
    return tsql::MismoNombre(nombre.objeto, "sp_getapplock") ||
           tsql::MismoNombre(nombre.objeto, "sp_releaseapplock");
}

/// The arguments of a system procedure, by their order or their names.
Resultado<std::map<std::string, ValorConTipo>> Interprete::ArgumentosDe(
    const tsql::Ejecutar& ejecutar, std::span<const std::string_view> nombres, Marco& marco) {
    std::map<std::string, ValorConTipo> valores;
    std::size_t siguiente = 0;
    for (const tsql::Argumento& argumento : ejecutar.argumentos) {
        if (siguiente >= nombres.size()) return tsql::CrearError(8144, ejecutar.nombre.objeto);
        const std::string nombre = tsql::AMinusculas(
            argumento.nombre.empty() ? std::string(nombres[siguiente]) : argumento.nombre);
        ++siguiente;
        if (std::find(nombres.begin(), nombres.end(), nombre) == nombres.end()) {
            return tsql::CrearError(8145, argumento.nombre, ejecutar.nombre.objeto);
        }
        if (!argumento.valor) continue;
        QUIMO_TRY(valores[nombre], Evaluar(*argumento.valor, marco));
    }
    return valores;
}

/// sp_getapplock and sp_releaseapplock, for locks of the session that nobody shares. A wait has a
/// limit. -999, as after any call that cannot be served, where the file system knows no locks.
Resultado<Flujo> Interprete::HacerCandado(const tsql::Ejecutar& ejecutar, Marco& marco) {
    constexpr auto kDeTomar = std::to_array<std::string_view>(
        {"@resource", "@lockmode", "@lockowner", "@locktimeout", "@dbprincipal"});
    constexpr auto kDeSoltar =
        std::to_array<std::string_view>({"@resource", "@lockowner", "@dbprincipal"});
    const bool toma = tsql::MismoNombre(ejecutar.nombre.objeto, "sp_getapplock");
    const std::string rutina = toma ? "sp_getapplock" : "sp_releaseapplock";
    QUIMO_TRY(const auto valores, toma ? ArgumentosDe(ejecutar, kDeTomar, marco)
                                       : ArgumentosDe(ejecutar, kDeSoltar, marco));
    const auto texto = [&](const char* nombre) {
        const auto valor = valores.find(nombre);
        return valor == valores.end() ? std::string() : valor->second.valor.texto;
    };
    const std::string recurso = texto("@resource");
    if (recurso.empty()) return Parametro("@Resource", rutina);
    if (!tsql::MismoNombre(texto("@lockowner"), "Session")) return Parametro("@LockOwner", rutina);
    int codigo = kConcedido;
    if (!toma) {
        if (!sesion_.Cerrojos().Soltar(recurso)) return tsql::CrearError(1223, recurso);
    } else {
        if (!tsql::MismoNombre(texto("@lockmode"), "Exclusive"))
            return Parametro("@LockMode", rutina);
        const auto plazo = valores.find("@locktimeout");
        if (plazo == valores.end() || plazo->second.valor.exacto < 0)
            return Parametro("@LockTimeout", rutina);
        codigo = TomarCandado(recurso, plazo->second.valor.Entero());
    }
    if (ejecutar.variable.empty()) return Flujo::Sigue;
    const auto variable = marco.variables.find(ejecutar.variable);
    if (variable == marco.variables.end()) return tsql::CrearError(137, ejecutar.variable);
    QUIMO_TRY(
        variable->second.valor,
        Convertir(Valor::De(codigo), tsql::TipoEntero(tsql::Clase::Int), variable->second.tipo));
    return Flujo::Sigue;
}

int Interprete::TomarCandado(const std::string& recurso, std::int64_t plazo_ms) {
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
