#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/decimal.h"

namespace quimo::tsql {

using base::Int128;

/// Exact arithmetic over digits scaled by powers of ten. Nothing when 38 digits are not enough.

std::optional<Int128> PotenciaDeDiez(int exponente);
int ContarCifras(Int128 valor);

enum class Redondeo { Truncar, MitadesAfuera };
/// The same value with another number of decimals.
std::optional<Int128> CambiarEscala(Int128 valor, int de, int a,
                                    Redondeo redondeo = Redondeo::MitadesAfuera);

/// a*b of scales sa+sb brought to escala; halves away from zero.
std::optional<Int128> Multiplicar(Int128 a, Int128 b, int escala_producto, int escala);
/// a/b brought to escala, cut off. The divisor is not zero.
std::optional<Int128> Dividir(Int128 a, int escala_a, Int128 b, int escala_b, int escala);

std::string TextoDecimal(Int128 valor, int escala);
/// "-12.30" with its scale. With `moneda`, a currency sign and thousands commas may stand in it.
std::optional<base::Decimal> LeerDecimal(std::string_view texto, bool moneda);
/// A real brought to whole digits of a scale, halves away from zero.
std::optional<Int128> DeReal(double valor, int escala);
double AReal(Int128 valor, int escala);

}  // namespace quimo::tsql
