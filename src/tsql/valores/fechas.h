#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quimo::tsql {

/// Dates are milliseconds since 1900-01-01 00:00:00, from 1753-01-01 to 9999-12-31 23:59:59.997,
/// always on a .000, .003 or .007 of a second.
constexpr std::int64_t kMilisegundosDia = 86'400'000;
constexpr std::int64_t kFechaMinima = -53690 * kMilisegundosDia;
constexpr std::int64_t kFechaMaxima = 2958464 * kMilisegundosDia - 3;

/// In which order day, month and year stand in a text. A connection reads day/month/year.
enum class OrdenFecha { Dma, Mda, Amd };

struct FechaHora {
    int anio = 1900;
    int mes = 1;
    int dia = 1;
    int hora = 0;
    int minuto = 0;
    int segundo = 0;
    int milisegundo = 0;
};

int DiasDelMes(int anio, int mes);
bool EsValida(const FechaHora& fecha);
std::int64_t AMilisegundos(const FechaHora& fecha);
FechaHora AFechaHora(std::int64_t milisegundos);
/// To the server's three-hundredths of a second.
std::int64_t RedondearFecha(std::int64_t milisegundos);

/// Why a text is not a date.
enum class FalloFecha { Forma, Rango };
struct LecturaFecha {
    std::int64_t milisegundos = 0;
    std::optional<FalloFecha> fallo;
};
/// Reads a date, a time or both, in any of the ways the server reads them.
LecturaFecha LeerFecha(std::string_view texto, OrdenFecha orden);

/// The order that a CONVERT style reads; the given one where the style does not say.
OrdenFecha OrdenDeEstilo(int estilo, OrdenFecha orden);
/// A date as CONVERT's style writes it; nothing for a style that there is not.
std::optional<std::string> FormatearFecha(std::int64_t milisegundos, int estilo);

enum class ParteFecha {
    Anio,
    Trimestre,
    Mes,
    DiaDelAnio,
    Dia,
    Semana,
    DiaSemana,
    Hora,
    Minuto,
    Segundo,
    Milisegundo,
};
/// "day", "dd", "d" and the other names of a part.
std::optional<ParteFecha> ParteDeNombre(std::string_view nombre);
/// Nothing when the result leaves the range of dates.
std::optional<std::int64_t> SumarFecha(ParteFecha parte, std::int64_t cantidad,
                                       std::int64_t milisegundos);
/// Boundaries of the part that are crossed between two dates.
std::int64_t DiferenciaFechas(ParteFecha parte, std::int64_t desde, std::int64_t hasta);
/// Weeks begin on Sunday.
int LeerParte(ParteFecha parte, std::int64_t milisegundos);
/// "November", "Saturday", or the number.
std::string NombreParte(ParteFecha parte, std::int64_t milisegundos);

}  // namespace quimo::tsql
