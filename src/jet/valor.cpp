#include "jet/valor.h"

#include <cmath>

namespace quimo::jet {

namespace {

constexpr std::int64_t kMilisegundosPorDia = 86400000;
constexpr double kDiasMin = -657434;  // 0100-01-01
constexpr double kDiasMax = 2958466;  // 10000-01-01, excluded
constexpr std::int64_t kDiasHasta1970 = 25569;

/// Days since 1970-01-01 of a date of the Gregorian calendar, and back. A year begins in March
/// here, so that the leap day is its last.
std::int64_t DiasDeCivil(int ano, int mes, int dia) {
    const std::int64_t a = mes <= 2 ? ano - 1 : ano;
    const std::int64_t era = a / 400;
    const std::int64_t del_era = a - era * 400;
    const std::int64_t del_ano = (153 * (mes > 2 ? mes - 3 : mes + 9) + 2) / 5 + dia - 1;
    return era * 146097 + del_era * 365 + del_era / 4 - del_era / 100 + del_ano - 719468;
}

void CivilDeDias(std::int64_t dias, Fecha::Civil& civil) {
    const std::int64_t z = dias + 719468;
    const std::int64_t era = z / 146097;
    const std::int64_t del_era = z - era * 146097;
    const std::int64_t a = (del_era - del_era / 1460 + del_era / 36524 - del_era / 146096) / 365;
    const std::int64_t del_ano = del_era - (365 * a + a / 4 - a / 100);
    const std::int64_t m = (5 * del_ano + 2) / 153;
    civil.dia = static_cast<int>(del_ano - (153 * m + 2) / 5 + 1);
    civil.mes = static_cast<int>(m < 10 ? m + 3 : m - 9);
    civil.ano = static_cast<int>(a + era * 400 + (civil.mes <= 2 ? 1 : 0));
}

std::optional<int> Hexadecimal(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return std::nullopt;
}

bool LlevaGuion(std::size_t octeto) {
    return octeto == 4 || octeto == 6 || octeto == 8 || octeto == 10;
}

}  // namespace

std::optional<Fecha> Fecha::DeCivil(const Civil& c) {
    if (c.ano < 100 || c.ano > 9999 || c.mes < 1 || c.mes > 12 || c.dia < 1 || c.dia > 31 ||
        c.hora < 0 || c.hora > 23 || c.minuto < 0 || c.minuto > 59 || c.segundo < 0 ||
        c.segundo > 59 || c.milisegundo < 0 || c.milisegundo > 999) {
        return std::nullopt;
    }
    const std::int64_t desde_1970 = DiasDeCivil(c.ano, c.mes, c.dia);
    Civil vuelta;
    CivilDeDias(desde_1970, vuelta);
    if (vuelta.dia != c.dia || vuelta.mes != c.mes) return std::nullopt;
    const auto d = static_cast<double>(desde_1970 + kDiasHasta1970);
    const double s = c.hora * 3600 + c.minuto * 60 + c.segundo + c.milisegundo / 1000.0;
    return Fecha{d >= 0 ? d + s / 86400 : d - s / 86400};
}

std::optional<Fecha::Civil> Fecha::ACivil() const {
    if (!(dias > kDiasMin - 1 && dias < kDiasMax)) return std::nullopt;
    auto dia = static_cast<std::int64_t>(dias);
    auto milis = static_cast<std::int64_t>(
        std::llround(std::fabs(dias - static_cast<double>(dia)) * kMilisegundosPorDia));
    if (milis >= kMilisegundosPorDia) {
        milis -= kMilisegundosPorDia;
        ++dia;
    }
    if (dia >= static_cast<std::int64_t>(kDiasMax)) return std::nullopt;
    Civil civil;
    CivilDeDias(dia - kDiasHasta1970, civil);
    civil.hora = static_cast<int>(milis / 3600000);
    civil.minuto = static_cast<int>(milis / 60000 % 60);
    civil.segundo = static_cast<int>(milis / 1000 % 60);
    civil.milisegundo = static_cast<int>(milis % 1000);
    return civil;
}

std::optional<Guid> Guid::DeTexto(std::string_view texto) {
    if (texto.size() == 38 && texto.front() == '{' && texto.back() == '}') {
        texto = texto.substr(1, 36);
    }
    if (texto.size() != 36) return std::nullopt;
    Guid guid;
    std::size_t i = 0;
    for (std::size_t octeto = 0; octeto < guid.bytes.size(); ++octeto) {
        if (LlevaGuion(octeto) && texto[i++] != '-') return std::nullopt;
        const auto alto = Hexadecimal(texto[i]);
        const auto bajo = Hexadecimal(texto[i + 1]);
        if (!alto || !bajo) return std::nullopt;
        guid.bytes.at(octeto) = static_cast<std::uint8_t>(*alto * 16 + *bajo);
        i += 2;
    }
    return guid;
}

std::string Guid::ATexto() const {
    static constexpr std::string_view kDigitos = "0123456789ABCDEF";
    std::string texto = "{";
    for (std::size_t octeto = 0; octeto < bytes.size(); ++octeto) {
        if (LlevaGuion(octeto)) texto.push_back('-');
        texto.push_back(kDigitos[bytes.at(octeto) >> 4]);
        texto.push_back(kDigitos[bytes.at(octeto) & 15]);
    }
    texto.push_back('}');
    return texto;
}

}  // namespace quimo::jet
