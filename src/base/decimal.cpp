#include "base/decimal.h"

#include <algorithm>

namespace quimo::base {

namespace {

std::optional<Int128> PorDiez(Int128 valor, int veces) {
    for (int i = 0; i < veces; ++i) {
        if (__builtin_mul_overflow(valor, Int128{10}, &valor)) return std::nullopt;
    }
    return valor;
}

}  // namespace

std::optional<Decimal> Decimal::DeTexto(std::string_view texto) {
    const bool negativo = !texto.empty() && texto.front() == '-';
    if (!texto.empty() && (negativo || texto.front() == '+')) texto.remove_prefix(1);
    Decimal numero;
    bool con_punto = false;
    bool hay_digitos = false;
    int significativos = 0;
    for (const char c : texto) {
        if (c == '.' && !con_punto) {
            con_punto = true;
            continue;
        }
        if (c < '0' || c > '9') return std::nullopt;
        hay_digitos = true;
        if (significativos > 0 || c != '0') ++significativos;
        if (significativos > kDigitosMax || numero.escala == kDigitosMax) return std::nullopt;
        numero.digitos = numero.digitos * 10 + (c - '0');
        if (con_punto) ++numero.escala;
    }
    if (!hay_digitos) return std::nullopt;
    if (negativo) numero.digitos = -numero.digitos;
    return numero;
}

std::string Decimal::ATexto() const {
    Int128 resto = digitos < 0 ? -digitos : digitos;
    std::string texto;
    while (resto > 0 || static_cast<int>(texto.size()) <= escala) {
        texto.push_back(static_cast<char>('0' + static_cast<int>(resto % 10)));
        resto /= 10;
    }
    std::reverse(texto.begin(), texto.end());
    if (escala > 0) texto.insert(texto.size() - static_cast<std::size_t>(escala), 1, '.');
    if (digitos < 0) texto.insert(0, 1, '-');
    return texto;
}

std::optional<Decimal> Decimal::ConEscala(int escala_nueva) const {
    if (escala_nueva >= escala) {
        const auto mayor = PorDiez(digitos, escala_nueva - escala);
        if (!mayor) return std::nullopt;
        return Decimal{*mayor, escala_nueva};
    }
    const auto divisor = PorDiez(1, escala - escala_nueva);
    if (!divisor) return Decimal{0, escala_nueva};
    Int128 cociente = digitos / *divisor;
    const Int128 resto = digitos % *divisor;
    if ((resto < 0 ? -resto : resto) >= *divisor - (resto < 0 ? -resto : resto)) {
        cociente += digitos < 0 ? -1 : 1;
    }
    return Decimal{cociente, escala_nueva};
}

bool Decimal::operator==(const Decimal& otro) const {
    const int comun = std::max(escala, otro.escala);
    const auto a = ConEscala(comun);
    const auto b = otro.ConEscala(comun);
    return a && b && a->digitos == b->digitos;
}

}  // namespace quimo::base
