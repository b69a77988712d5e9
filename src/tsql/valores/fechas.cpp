#include "tsql/valores/fechas.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr auto kMeses =
    std::to_array<std::string_view>({"January", "February", "March", "April", "May", "June", "July",
                                     "August", "September", "October", "November", "December"});
constexpr auto kDias = std::to_array<std::string_view>(
    {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"});

constexpr auto kPartes = std::to_array<std::pair<std::string_view, ParteFecha>>({
    {"year", ParteFecha::Anio},
    {"yy", ParteFecha::Anio},
    {"yyyy", ParteFecha::Anio},
    {"quarter", ParteFecha::Trimestre},
    {"qq", ParteFecha::Trimestre},
    {"q", ParteFecha::Trimestre},
    {"month", ParteFecha::Mes},
    {"mm", ParteFecha::Mes},
    {"m", ParteFecha::Mes},
    {"dayofyear", ParteFecha::DiaDelAnio},
    {"dy", ParteFecha::DiaDelAnio},
    {"y", ParteFecha::DiaDelAnio},
    {"day", ParteFecha::Dia},
    {"dd", ParteFecha::Dia},
    {"d", ParteFecha::Dia},
    {"week", ParteFecha::Semana},
    {"wk", ParteFecha::Semana},
    {"ww", ParteFecha::Semana},
    {"weekday", ParteFecha::DiaSemana},
    {"dw", ParteFecha::DiaSemana},
    {"hour", ParteFecha::Hora},
    {"hh", ParteFecha::Hora},
    {"minute", ParteFecha::Minuto},
    {"mi", ParteFecha::Minuto},
    {"n", ParteFecha::Minuto},
    {"second", ParteFecha::Segundo},
    {"ss", ParteFecha::Segundo},
    {"s", ParteFecha::Segundo},
    {"millisecond", ParteFecha::Milisegundo},
    {"ms", ParteFecha::Milisegundo},
});

/// Days from 1900-01-01 to a date of the Gregorian calendar.
std::int64_t Dias(int anio, int mes, int dia) {
    const std::int64_t a = mes <= 2 ? anio - 1 : anio;
    const std::int64_t siglo = (a >= 0 ? a : a - 399) / 400;
    const std::int64_t en_siglo = a - siglo * 400;
    const std::int64_t del_anio = (153 * (mes + (mes > 2 ? -3 : 9)) + 2) / 5 + dia - 1;
    const std::int64_t total = en_siglo * 365 + en_siglo / 4 - en_siglo / 100 + del_anio;
    return siglo * 146097 + total - 693901;
}

std::int64_t Dividir(std::int64_t a, std::int64_t b) { return a >= 0 ? a / b : -((b - 1 - a) / b); }

std::int64_t EnRango(std::int64_t ms, bool& cabe) {
    cabe = ms >= kFechaMinima && ms <= kFechaMaxima;
    return ms;
}

std::optional<std::int64_t> SumarMeses(std::int64_t ms, std::int64_t meses) {
    FechaHora f = AFechaHora(ms);
    const std::int64_t total = static_cast<std::int64_t>(f.anio) * 12 + f.mes - 1 + meses;
    if (total < 1753 * 12 || total >= 10000 * 12) return std::nullopt;
    f.anio = static_cast<int>(total / 12);
    f.mes = static_cast<int>(total % 12) + 1;
    f.dia = std::min(f.dia, DiasDelMes(f.anio, f.mes));
    return AMilisegundos(f);
}

std::int64_t Unidad(ParteFecha parte) {
    if (parte == ParteFecha::Semana) return 7 * kMilisegundosDia;
    if (parte == ParteFecha::Hora) return 3'600'000;
    if (parte == ParteFecha::Minuto) return 60'000;
    if (parte == ParteFecha::Segundo) return 1000;
    if (parte == ParteFecha::Milisegundo) return 1;
    return kMilisegundosDia;
}

}  // namespace

int DiasDelMes(int anio, int mes) {
    constexpr std::array kLargos = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool bisiesto = (anio % 4 == 0 && anio % 100 != 0) || anio % 400 == 0;
    return mes == 2 && bisiesto ? 29 : kLargos[static_cast<std::size_t>(mes - 1)];
}

bool EsValida(const FechaHora& f) {
    return f.anio >= 1753 && f.anio <= 9999 && f.mes >= 1 && f.mes <= 12 && f.dia >= 1 &&
           f.dia <= DiasDelMes(f.anio, f.mes) && f.hora >= 0 && f.hora < 24 && f.minuto >= 0 &&
           f.minuto < 60 && f.segundo >= 0 && f.segundo < 60 && f.milisegundo >= 0 &&
           f.milisegundo < 1000;
}

std::int64_t AMilisegundos(const FechaHora& f) {
    return ((Dias(f.anio, f.mes, f.dia) * 24 + f.hora) * 60 + f.minuto) * 60'000 +
           static_cast<std::int64_t>(f.segundo) * 1000 + f.milisegundo;
}

FechaHora AFechaHora(std::int64_t ms) {
    const std::int64_t dias = Dividir(ms, kMilisegundosDia);
    const auto resto = static_cast<int>(ms - dias * kMilisegundosDia);
    const std::int64_t z = dias + 693901;
    const std::int64_t siglo = Dividir(z, 146097);
    const std::int64_t en_siglo = z - siglo * 146097;
    const std::int64_t anio =
        (en_siglo - en_siglo / 1460 + en_siglo / 36524 - en_siglo / 146096) / 365;
    const std::int64_t del_anio = en_siglo - (365 * anio + anio / 4 - anio / 100);
    const std::int64_t m = (5 * del_anio + 2) / 153;
    FechaHora f;
    f.dia = static_cast<int>(del_anio - (153 * m + 2) / 5 + 1);
    f.mes = static_cast<int>(m < 10 ? m + 3 : m - 9);
    f.anio = static_cast<int>(anio + siglo * 400 + (f.mes <= 2 ? 1 : 0));
    f.hora = resto / 3'600'000;
    f.minuto = resto / 60'000 % 60;
    f.segundo = resto / 1000 % 60;
    f.milisegundo = resto % 1000;
    return f;
}

std::int64_t RedondearFecha(std::int64_t ms) {
    constexpr std::array<int, 11> kFin = {0, 0, 3, 3, 3, 7, 7, 7, 7, 10, 10};
    const std::int64_t decena = Dividir(ms, 10) * 10;
    return decena + kFin[static_cast<std::size_t>(ms - decena)];
}

std::optional<ParteFecha> ParteDeNombre(std::string_view nombre) {
    for (const auto& [texto, parte] : kPartes) {
        if (MismoNombre(texto, nombre)) return parte;
    }
    return std::nullopt;
}

std::optional<std::int64_t> SumarFecha(ParteFecha parte, std::int64_t cantidad, std::int64_t ms) {
    if (std::abs(cantidad) > 10'000'000'000) return std::nullopt;
    if (parte == ParteFecha::Anio) return SumarMeses(ms, cantidad * 12);
    if (parte == ParteFecha::Trimestre) return SumarMeses(ms, cantidad * 3);
    if (parte == ParteFecha::Mes) return SumarMeses(ms, cantidad);
    std::int64_t desplazamiento = 0;
    if (__builtin_mul_overflow(cantidad, Unidad(parte), &desplazamiento)) return std::nullopt;
    if (__builtin_add_overflow(ms, desplazamiento, &desplazamiento)) return std::nullopt;
    bool cabe = false;
    const std::int64_t suma = EnRango(desplazamiento, cabe);
    if (!cabe) return std::nullopt;
    return RedondearFecha(suma);
}

std::int64_t DiferenciaFechas(ParteFecha parte, std::int64_t desde, std::int64_t hasta) {
    const FechaHora a = AFechaHora(desde);
    const FechaHora b = AFechaHora(hasta);
    if (parte == ParteFecha::Anio) return b.anio - a.anio;
    if (parte == ParteFecha::Mes) return (b.anio - a.anio) * 12 + b.mes - a.mes;
    if (parte == ParteFecha::Trimestre) {
        return (b.anio - a.anio) * 4 + (b.mes - 1) / 3 - (a.mes - 1) / 3;
    }
    if (parte == ParteFecha::Semana) {
        // 1900-01-01 was a Monday; weeks are cut before Sunday.
        const auto semana = [](std::int64_t ms) {
            return Dividir(Dividir(ms, kMilisegundosDia) + 1, 7);
        };
        return semana(hasta) - semana(desde);
    }
    return Dividir(hasta, Unidad(parte)) - Dividir(desde, Unidad(parte));
}

int LeerParte(ParteFecha parte, std::int64_t ms) {
    const FechaHora f = AFechaHora(ms);
    const std::int64_t dias = Dividir(ms, kMilisegundosDia);
    const auto del_anio = static_cast<int>(dias - Dias(f.anio, 1, 1)) + 1;
    const auto dia_semana = [](std::int64_t d) {
        return static_cast<int>(d + 1 - Dividir(d + 1, 7) * 7);
    };
    if (parte == ParteFecha::Anio) return f.anio;
    if (parte == ParteFecha::Trimestre) return (f.mes - 1) / 3 + 1;
    if (parte == ParteFecha::Mes) return f.mes;
    if (parte == ParteFecha::Dia) return f.dia;
    if (parte == ParteFecha::DiaDelAnio) return del_anio;
    if (parte == ParteFecha::DiaSemana) return dia_semana(dias) + 1;
    if (parte == ParteFecha::Semana) {
        return (del_anio - 1 + dia_semana(Dias(f.anio, 1, 1))) / 7 + 1;
    }
    if (parte == ParteFecha::Hora) return f.hora;
    if (parte == ParteFecha::Minuto) return f.minuto;
    if (parte == ParteFecha::Segundo) return f.segundo;
    return f.milisegundo;
}

std::string NombreParte(ParteFecha parte, std::int64_t ms) {
    const int numero = LeerParte(parte, ms);
    if (parte == ParteFecha::Mes) return std::string(kMeses[static_cast<std::size_t>(numero - 1)]);
    if (parte == ParteFecha::DiaSemana) {
        return std::string(kDias[static_cast<std::size_t>(numero - 1)]);
    }
    return std::to_string(numero);
}

}  // namespace quimo::tsql
