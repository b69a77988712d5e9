#include "tsql/valores/decimales.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr int kExponenteMaximo = 38;

Int128 Magnitud(Int128 valor) { return valor < 0 ? -valor : valor; }

bool Cabe(Int128 valor) {
    const auto limite = PotenciaDeDiez(kExponenteMaximo);
    return Magnitud(valor) < *limite;
}

/// numerador*10^ceros/divisor, one decimal digit after the other, so that only the result must
/// fit. Cut off.
std::optional<Int128> DividirLargo(Int128 numerador, int ceros, Int128 divisor) {
    const bool negativo = (numerador < 0) != (divisor < 0);
    Int128 resto = Magnitud(numerador);
    const Int128 d = Magnitud(divisor);
    Int128 cociente = resto / d;
    resto %= d;
    for (int i = 0; i < ceros; ++i) {
        Int128 ampliado = 0;
        Int128 cifra = 0;
        if (__builtin_mul_overflow(resto, Int128{10}, &ampliado)) {
            // Only for divisors of 38 digits: ten subtractions instead of one product.
            for (int k = 0; k < 10; ++k) {
                ampliado += resto;
                if (ampliado >= d) {
                    ampliado -= d;
                    ++cifra;
                }
            }
        } else {
            cifra = ampliado / d;
            ampliado %= d;
        }
        resto = ampliado;
        if (__builtin_mul_overflow(cociente, Int128{10}, &cociente)) return std::nullopt;
        cociente += cifra;
    }
    if (!Cabe(cociente)) return std::nullopt;
    return negativo ? -cociente : cociente;
}

}  // namespace

std::optional<Int128> PotenciaDeDiez(int exponente) {
    if (exponente < 0 || exponente > kExponenteMaximo) return std::nullopt;
    Int128 potencia = 1;
    for (int i = 0; i < exponente; ++i)
        potencia *= 10;
    return potencia;
}

int ContarCifras(Int128 valor) {
    int cifras = 0;
    valor = Magnitud(valor);
    for (; valor > std::numeric_limits<std::int64_t>::max(); valor /= 10)
        ++cifras;
    // Nearly all are in here, and a division of half the width is many times as fast.
    for (auto corto = static_cast<std::uint64_t>(valor); corto > 0; corto /= 10)
        ++cifras;
    return cifras;
}

std::optional<Int128> CambiarEscala(Int128 valor, int de, int a, Redondeo redondeo) {
    if (a >= de) {
        const auto factor = PotenciaDeDiez(a - de);
        Int128 producto = 0;
        if (!factor || __builtin_mul_overflow(valor, *factor, &producto)) return std::nullopt;
        if (!Cabe(producto)) return std::nullopt;
        return producto;
    }
    const auto divisor = PotenciaDeDiez(de - a);
    if (!divisor) return Int128{0};
    const Int128 cociente = valor / *divisor;
    const Int128 resto = Magnitud(valor % *divisor);
    if (redondeo == Redondeo::Truncar || resto < *divisor - resto) return cociente;
    return valor < 0 ? cociente - 1 : cociente + 1;
}

std::optional<Int128> Multiplicar(Int128 a, Int128 b, int escala_producto, int escala) {
    Int128 producto = 0;
    if (!__builtin_mul_overflow(a, b, &producto)) {
        return CambiarEscala(producto, escala_producto, escala);
    }
    if (escala >= escala_producto) return std::nullopt;
    // a*b/10^n with n digits to drop: a is split so that no partial product leaves 128 bits.
    const auto divisor = PotenciaDeDiez(escala_producto - escala);
    if (!divisor) return std::nullopt;
    const Int128 entero = a / *divisor;
    const Int128 resto = a % *divisor;
    Int128 parte_entera = 0;
    Int128 parte_resto = 0;
    if (__builtin_mul_overflow(entero, b, &parte_entera) ||
        __builtin_mul_overflow(resto, b, &parte_resto)) {
        return std::nullopt;
    }
    const auto fraccion = CambiarEscala(parte_resto, escala_producto - escala, 0);
    if (!fraccion || __builtin_add_overflow(parte_entera, *fraccion, &parte_entera) ||
        !Cabe(parte_entera)) {
        return std::nullopt;
    }
    return parte_entera;
}

std::optional<Int128> Dividir(Int128 a, int escala_a, Int128 b, int escala_b, int escala) {
    const int ceros = escala - escala_a + escala_b;
    if (ceros >= 0) return DividirLargo(a, ceros, b);
    const auto divisor = PotenciaDeDiez(-ceros);
    if (!divisor) return Int128{0};
    return a / b / *divisor;
}

std::string TextoDecimal(Int128 valor, int escala) { return base::Decimal{valor, escala}.ATexto(); }

std::optional<base::Decimal> LeerDecimal(std::string_view texto, bool moneda) {
    texto = Recortar(texto);
    std::string limpio;
    for (std::size_t i = 0; i < texto.size(); ++i) {
        const char c = texto[i];
        const bool al_inicio = limpio.empty() || limpio == "-" || limpio == "+";
        if (moneda && ((c == '$' && al_inicio) || c == ',')) continue;
        limpio.push_back(c);
    }
    if (limpio.empty() && moneda) return base::Decimal{};
    return base::Decimal::DeTexto(limpio);
}

std::optional<Int128> DeReal(double valor, int escala) {
    const double ampliado = std::round(valor * std::pow(10.0, escala));
    if (!std::isfinite(ampliado) || std::abs(ampliado) >= 1e38) return std::nullopt;
    return static_cast<Int128>(ampliado);
}

double AReal(Int128 valor, int escala) {
    return static_cast<double>(valor) / std::pow(10.0, escala);
}

}  // namespace quimo::tsql
