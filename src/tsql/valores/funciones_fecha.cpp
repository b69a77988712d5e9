#include <array>
#include <limits>

#include "tsql/valores/conversion.h"
#include "tsql/valores/fechas.h"
#include "tsql/valores/funciones.h"

namespace quimo::tsql {

namespace {

ParteFecha Parte(const Valor& valor) { return static_cast<ParteFecha>(valor.Entero()); }

/// q_sumar_fecha(part, amount, date)
Resultado<Valor> Sumar(Argumentos x) {
    const auto suma = SumarFecha(Parte(x[0]), x[1].Entero(), x[2].Entero());
    if (!suma) return SumaDeFechaDesbordada("datetime");
    return Valor::De(*suma);
}

/// q_diferencia(part, from, to)
Resultado<Valor> Diferencia(Argumentos x) {
    const std::int64_t partes = DiferenciaFechas(Parte(x[0]), x[1].Entero(), x[2].Entero());
    if (partes > std::numeric_limits<std::int32_t>::max() ||
        partes < std::numeric_limits<std::int32_t>::min()) {
        return DiferenciaDeFechasDesbordada();
    }
    return Valor::De(partes);
}

Resultado<Valor> Leer(Argumentos x) { return Valor::De(LeerParte(Parte(x[0]), x[1].Entero())); }
Resultado<Valor> Nombre(Argumentos x) {
    return Valor::DeTexto(NombreParte(Parte(x[0]), x[1].Entero()));
}

/// q_sumar_dias(date, sign, days as a date)
Resultado<Valor> SumarDias(Argumentos x) {
    const std::int64_t suma = x[0].Entero() + x[1].Entero() * x[2].Entero();
    if (suma < kFechaMinima || suma > kFechaMaxima) return SumaDeFechaDesbordada("datetime");
    return Valor::De(RedondearFecha(suma));
}

Resultado<Valor> EsFecha(Argumentos x) {
    if (x[0].EsNulo()) return Valor::De(0);
    const bool es = !x[0].texto.empty() && !LeerFecha(x[0].texto, OrdenFecha::Dma).fallo;
    return Valor::De(es ? 1 : 0);
}

/// q_fecha8(text): the date that the digits ddmmyyyy spell, read as the reports read them. A text
/// that spells none yields '!', so that an index can be kept over it.
Resultado<Valor> FechaDeOcho(Argumentos x) {
    const std::string& t = x[0].texto;
    const auto trozo = [&t](std::size_t desde, std::size_t largo) {
        return desde < t.size() ? t.substr(desde, largo) : std::string();
    };
    const auto leida =
        LeerFecha(trozo(0, 2) + "/" + trozo(2, 2) + "/" + trozo(4, 4), OrdenFecha::Dma);
    if (leida.fallo) return Valor::DeTexto("!");
    return Valor::De(leida.milisegundos);
}

/// q_fechas_validas(x): fails when there is a text that is no date
Resultado<Valor> FechasValidas(Argumentos x) {
    if (!x[0].EsNulo()) return FechaFueraDeRango("varchar", "datetime");
    return Valor::De(1);
}

}  // namespace

std::span<const FuncionEscalar> FuncionesDeFecha() {
    static constexpr auto kFunciones = std::to_array<FuncionEscalar>({
        {"q_sumar_fecha", 3, Sumar},
        {"q_diferencia", 3, Diferencia},
        {"q_parte", 2, Leer},
        {"q_nombre_parte", 2, Nombre},
        {"q_sumar_dias", 3, SumarDias},
        {"q_es_fecha", 1, EsFecha, true},
        {"q_fecha8", 1, FechaDeOcho},
        {"q_fechas_validas", 1, FechasValidas, true},
    });
    return kFunciones;
}

}  // namespace quimo::tsql
