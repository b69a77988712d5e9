#include "base/dinero.h"

#include <array>
#include <charconv>
#include <cstdlib>

#include "base/check.h"
#include "base/decimal.h"

namespace quimo::base {

namespace {

constexpr int kDecimales = 4;

bool EsDigito(char c) { return c >= '0' && c <= '9'; }

std::string Entero(std::uint64_t valor) {
    std::array<char, 24> texto{};
    const auto fin = std::to_chars(texto.data(), texto.data() + texto.size(), valor).ptr;
    return {texto.data(), fin};
}

std::uint64_t Magnitud(std::int64_t valor) {
    return valor < 0 ? ~static_cast<std::uint64_t>(valor) + 1 : static_cast<std::uint64_t>(valor);
}

/// The quotient rounded half away from zero; nothing when it does not fit.
std::optional<std::int64_t> DividirRedondeando(Int128 valor, std::int64_t divisor) {
    Int128 cociente = valor / divisor;
    const Int128 resto = valor % divisor;
    if ((resto < 0 ? -resto : resto) * 2 >= divisor) cociente += valor < 0 ? -1 : 1;
    if (cociente != static_cast<std::int64_t>(cociente)) return std::nullopt;
    return static_cast<std::int64_t>(cociente);
}

}  // namespace

std::optional<Dinero> Dinero::DeTexto(std::string_view texto) {
    const bool negativo = !texto.empty() && texto.front() == '-';
    if (!texto.empty() && (negativo || texto.front() == '+')) texto.remove_prefix(1);
    // Towards the sign: there is one more below zero than above it.
    const int signo = negativo ? -1 : 1;
    std::int64_t total = 0;
    int decimales = -1;
    bool hay_digitos = false;
    bool subir = false;
    for (const char c : texto) {
        if (c == '.' && decimales < 0) {
            decimales = 0;
            continue;
        }
        if (!EsDigito(c)) return std::nullopt;
        hay_digitos = true;
        if (decimales == kDecimales) {
            subir = c >= '5';
            ++decimales;
        }
        if (decimales > kDecimales) continue;
        if (decimales >= 0) ++decimales;
        if (__builtin_mul_overflow(total, 10, &total)) return std::nullopt;
        if (__builtin_add_overflow(total, signo * (c - '0'), &total)) return std::nullopt;
    }
    if (!hay_digitos) return std::nullopt;
    for (int i = decimales < 0 ? 0 : decimales; i < kDecimales; ++i) {
        if (__builtin_mul_overflow(total, 10, &total)) return std::nullopt;
    }
    if (subir && __builtin_add_overflow(total, signo, &total)) return std::nullopt;
    return DeDiezmilesimas(total);
}

std::string Dinero::ATexto() const {
    const std::uint64_t magnitud = Magnitud(diezmilesimas_);
    std::string decimales = Entero(magnitud % kUno);
    decimales.insert(0, static_cast<std::size_t>(kDecimales) - decimales.size(), '0');
    return (diezmilesimas_ < 0 ? "-" : "") + Entero(magnitud / kUno) + "." + decimales;
}

std::string Dinero::AMoneda() const {
    const std::uint64_t centavos = Magnitud(ACentavos().diezmilesimas_) / 100;
    std::string entero = Entero(centavos / 100);
    for (auto i = static_cast<std::ptrdiff_t>(entero.size()) - 3; i > 0; i -= 3) {
        entero.insert(static_cast<std::size_t>(i), 1, ',');
    }
    std::string decimales = Entero(centavos % 100);
    decimales.insert(0, 2 - decimales.size(), '0');
    return (diezmilesimas_ < 0 && centavos != 0 ? "-$" : "$") + entero + "." + decimales;
}

std::optional<Dinero> Dinero::Mas(Dinero otro) const {
    std::int64_t suma = 0;
    if (__builtin_add_overflow(diezmilesimas_, otro.diezmilesimas_, &suma)) return std::nullopt;
    return DeDiezmilesimas(suma);
}

std::optional<Dinero> Dinero::Menos(Dinero otro) const {
    std::int64_t resta = 0;
    if (__builtin_sub_overflow(diezmilesimas_, otro.diezmilesimas_, &resta)) return std::nullopt;
    return DeDiezmilesimas(resta);
}

std::optional<Dinero> Dinero::Por(std::int64_t veces) const {
    std::int64_t producto = 0;
    if (__builtin_mul_overflow(diezmilesimas_, veces, &producto)) return std::nullopt;
    return DeDiezmilesimas(producto);
}

Dinero Dinero::operator+(Dinero otro) const {
    const auto suma = Mas(otro);
    QUIMO_CHECK(suma.has_value());
    return *suma;
}

Dinero Dinero::operator-(Dinero otro) const {
    const auto resta = Menos(otro);
    QUIMO_CHECK(resta.has_value());
    return *resta;
}

Dinero Dinero::operator*(std::int64_t veces) const {
    const auto producto = Por(veces);
    QUIMO_CHECK(producto.has_value());
    return *producto;
}

Dinero Dinero::Fraccion(std::int64_t diezmilesimas) const {
    const auto parte = DividirRedondeando(Int128{diezmilesimas_} * diezmilesimas, kUno);
    QUIMO_CHECK(parte.has_value());
    return DeDiezmilesimas(*parte);
}

Dinero Dinero::ACentavos() const {
    // Whole cents lie within the range wherever the amount does.
    return DeDiezmilesimas(*DividirRedondeando(diezmilesimas_, 100) * 100);
}

}  // namespace quimo::base
