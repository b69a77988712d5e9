#include <algorithm>
#include <array>
#include <cmath>

#include "tsql/valores/conversion.h"
#include "tsql/valores/decimales.h"
#include "tsql/valores/funciones.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr std::size_t kBytesAncho = 16;

Tipo TipoEn(const Valor& valor) { return Desempaquetar(valor.Entero()); }
int EnteroEn(const Valor& valor) { return static_cast<int>(valor.exacto); }

ErrorSql Desborde(const Tipo& tipo) {
    const std::string nombre(NombreClase(tipo.clase));
    return Desbordamiento(tipo.clase == Clase::Numeric ? "numeric" : "expression", nombre);
}

/// A result in range of its type.
Resultado<Valor> EnTipo(std::optional<Int128> digitos, const Tipo& tipo) {
    if (!digitos) return Desborde(tipo);
    return Convertir(Valor::De(*digitos), tipo, tipo);
}

struct Operandos {
    Int128 a = 0;
    Int128 b = 0;
    int escala_a = 0;
    int escala_b = 0;
    Tipo tipo;
};

Resultado<Operandos> Leer(Argumentos x) {
    Operandos o;
    o.tipo = TipoEn(x[4]);
    o.escala_a = EnteroEn(x[2]);
    o.escala_b = EnteroEn(x[3]);
    QUIMO_TRY(o.a, LeerExacto(x[0], o.tipo));
    QUIMO_TRY(o.b, LeerExacto(x[1], o.tipo));
    return o;
}

Resultado<Valor> Sumar(const Operandos& o, bool restar) {
    const int escala = std::max(o.escala_a, o.escala_b);
    const auto a = CambiarEscala(o.a, o.escala_a, escala);
    const auto b = CambiarEscala(o.b, o.escala_b, escala);
    if (!a || !b) return Desborde(o.tipo);
    return EnTipo(CambiarEscala(restar ? *a - *b : *a + *b, escala, o.tipo.escala), o.tipo);
}

Resultado<Valor> Mas(Argumentos x) {
    QUIMO_TRY(const Operandos o, Leer(x));
    return Sumar(o, false);
}

Resultado<Valor> Menos(Argumentos x) {
    QUIMO_TRY(const Operandos o, Leer(x));
    return Sumar(o, true);
}

Resultado<Valor> Por(Argumentos x) {
    QUIMO_TRY(const Operandos o, Leer(x));
    return EnTipo(Multiplicar(o.a, o.b, o.escala_a + o.escala_b, o.tipo.escala), o.tipo);
}

Resultado<Valor> Entre(Argumentos x) {
    QUIMO_TRY(const Operandos o, Leer(x));
    if (o.b == 0) return DivisionEntreCero();
    return EnTipo(Dividir(o.a, o.escala_a, o.b, o.escala_b, o.tipo.escala), o.tipo);
}

Resultado<Valor> Resto(Argumentos x) {
    QUIMO_TRY(const Operandos o, Leer(x));
    const int escala = std::max(o.escala_a, o.escala_b);
    const auto a = CambiarEscala(o.a, o.escala_a, escala);
    const auto b = CambiarEscala(o.b, o.escala_b, escala);
    if (!a || !b) return Desborde(o.tipo);
    if (*b == 0) return DivisionEntreCero();
    return EnTipo(CambiarEscala(*a % *b, escala, o.tipo.escala), o.tipo);
}

/// Both are of one scale, or real: the engine's own operator, with the server's answer to a zero. A
/// NULL on either side is answered before it comes here, so that NULL / 0 is NULL.
Resultado<Valor> Cociente(Argumentos x) {
    if (x[0].forma == Valor::Forma::Real || x[1].forma == Valor::Forma::Real) {
        const double a =
            x[0].forma == Valor::Forma::Real ? x[0].real : static_cast<double>(x[0].exacto);
        const double b =
            x[1].forma == Valor::Forma::Real ? x[1].real : static_cast<double>(x[1].exacto);
        if (b == 0) return DivisionEntreCero();
        return Valor::DeReal(a / b);
    }
    if (x[1].exacto == 0) return DivisionEntreCero();
    return Valor::De(x[0].exacto / x[1].exacto);
}

Resultado<Valor> Modulo(Argumentos x) {
    if (x[1].exacto == 0) return DivisionEntreCero();
    return Valor::De(x[0].exacto % x[1].exacto);
}

Resultado<Valor> Ancho(Argumentos x) {
    const auto numero = base::Decimal::DeTexto(x[0].texto);
    QUIMO_CHECK(numero.has_value());
    return Valor::De(numero->digitos);
}

/// q_clave(x, zeros): sixteen bytes that compare as the number does.
Resultado<Valor> Clave(Argumentos x) {
    QUIMO_TRY(const Int128 digitos, LeerExacto(x[0], TipoNumerico(kDigitosMaximos, 0)));
    const auto llevado = CambiarEscala(digitos, 0, EnteroEn(x[1]));
    if (!llevado) return Desborde(TipoNumerico(kDigitosMaximos, 0));
    return Valor::DeBytes(AnchoABytes(*llevado));
}

/// q_cv(x, from, to, options)
Resultado<Valor> ConvertirValor(Argumentos x) {
    const Tipo de = TipoEn(x[1]);
    OpcionesConversion opciones;
    const int codigo = EnteroEn(x[3]);
    opciones.estilo = codigo & 0xFFFF;
    opciones.destino = (codigo >> 16 & 1) != 0 ? Destino::Columna : Destino::Expresion;
    opciones.orden = static_cast<OrdenFecha>(codigo >> 20 & 3);
    QUIMO_TRY(const Valor valor, Normalizar(x[0], de));
    return Convertir(valor, de, TipoEn(x[2]), opciones);
}

/// q_no_nulo(x, column, table, verb)
Resultado<Valor> NoNulo(Argumentos x) {
    if (x[0].EsNulo()) return ColumnaSinNulos(x[1].texto, "dbo." + x[2].texto, x[3].texto);
    return x[0];
}

Resultado<Valor> RedondearExacto(const Valor& valor, int lugares, bool truncar, const Tipo& tipo) {
    QUIMO_TRY(const Int128 digitos, LeerExacto(valor, tipo));
    if (lugares >= tipo.escala) return Valor::De(digitos);
    const int quitar = tipo.escala - lugares;
    const auto modo = truncar ? Redondeo::Truncar : Redondeo::MitadesAfuera;
    const auto corto =
        quitar > kDigitosMaximos ? Int128{0} : CambiarEscala(digitos, quitar, 0, modo);
    return EnTipo(*corto == 0 ? Int128{0} : CambiarEscala(*corto, 0, quitar), tipo);
}

/// q_redondear(x, places, truncate, type)
Resultado<Valor> RedondearValor(Argumentos x) {
    const Tipo tipo = TipoEn(x[3]);
    const int lugares = static_cast<int>(std::clamp<Int128>(x[1].exacto, -400, 400));
    const bool truncar = x[2].exacto != 0;
    if (!tipo.EsReal()) return RedondearExacto(x[0], lugares, truncar, tipo);
    const double factor = std::pow(10.0, lugares);
    const double ampliado = x[0].real * factor;
    if (!std::isfinite(ampliado) || factor == 0) return Valor::DeReal(factor == 0 ? 0 : x[0].real);
    return Valor::DeReal((truncar ? std::trunc(ampliado) : std::round(ampliado)) / factor);
}

Resultado<Valor> Absoluto(Argumentos x) {
    QUIMO_TRY(const Int128 digitos, LeerExacto(x[0], TipoEn(x[1])));
    return Valor::De(digitos < 0 ? -digitos : digitos);
}

Resultado<Valor> AlEntero(Argumentos x, bool arriba) {
    const Tipo tipo = TipoEn(x[1]);
    if (tipo.EsReal()) return Valor::DeReal(arriba ? std::ceil(x[0].real) : std::floor(x[0].real));
    QUIMO_TRY(const Int128 digitos, LeerExacto(x[0], tipo));
    const Int128 unidad = *PotenciaDeDiez(tipo.escala);
    Int128 entero = digitos / unidad;
    const Int128 resto = digitos % unidad;
    if (arriba && resto > 0) ++entero;
    if (!arriba && resto < 0) --entero;
    // NUMERIC loses its decimals, MONEY keeps them.
    if (tipo.EsMoneda()) return EnTipo(CambiarEscala(entero, 0, tipo.escala), tipo);
    return Valor::De(entero);
}

Resultado<Valor> Techo(Argumentos x) { return AlEntero(x, true); }
Resultado<Valor> Piso(Argumentos x) { return AlEntero(x, false); }

Resultado<Valor> Signo(Argumentos x) {
    const Tipo tipo = TipoEn(x[1]);
    if (tipo.EsReal()) return Valor::DeReal(x[0].real > 0 ? 1 : x[0].real < 0 ? -1 : 0);
    QUIMO_TRY(const Int128 digitos, LeerExacto(x[0], tipo));
    const Int128 uno = *PotenciaDeDiez(tipo.escala);
    return Valor::De(digitos > 0 ? uno : digitos < 0 ? -uno : 0);
}

Resultado<Valor> RealFinito(double real) {
    if (std::isfinite(real)) return Valor::DeReal(real);
    return std::isnan(real) ? OperacionRealInvalida() : Desbordamiento("expression", "float");
}

/// q_elevar(base, exponent, type of the base)
Resultado<Valor> Elevar(Argumentos x) {
    const Tipo tipo = TipoEn(x[2]);
    QUIMO_TRY(const Valor base, Normalizar(x[0], tipo));
    QUIMO_TRY(const Valor real, Convertir(base, tipo, TipoReal()));
    QUIMO_TRY(const Valor potencia, RealFinito(std::pow(real.real, x[1].real)));
    return Convertir(potencia, TipoReal(), tipo);
}

template <double (*kFuncion)(double)>
Resultado<Valor> DeReales(Argumentos x) {
    return RealFinito(kFuncion(x[0].real));
}

Resultado<Valor> Potencia(Argumentos x) { return RealFinito(std::pow(x[0].real, x[1].real)); }

/// q_es_numero(x, type)
Resultado<Valor> EsNumero(Argumentos x) {
    const Tipo tipo = TipoEn(x[1]);
    if (x[0].EsNulo()) return Valor::De(0);
    if (!tipo.EsTexto()) return Valor::De(tipo.EsNumero() ? 1 : 0);
    const std::string_view texto = Recortar(x[0].texto);
    if (texto.empty()) return Valor::De(0);
    const bool exacto = LeerDecimal(texto, true).has_value();
    const bool real = Convertir(x[0], tipo, TipoReal()).has_value();
    return Valor::De(exacto || real ? 1 : 0);
}

/// q_bytes(x, type)
Resultado<Valor> Bytes(Argumentos x) {
    const Tipo tipo = TipoEn(x[1]);
    if (tipo.EsTexto())
        return Valor::De(ContarCaracteres(x[0].texto) * (tipo.EsNacional() ? 2 : 1));
    if (tipo.EsBinario()) return Valor::De(static_cast<int>(x[0].texto.size()));
    if (tipo.clase == Clase::UniqueIdentifier) return Valor::De(16);
    if (tipo.clase == Clase::Bit || tipo.clase == Clase::TinyInt) return Valor::De(1);
    if (tipo.clase == Clase::SmallInt) return Valor::De(2);
    if (tipo.clase == Clase::Numeric) {
        const int p = tipo.precision;
        return Valor::De(p <= 9 ? 5 : p <= 19 ? 9 : p <= 28 ? 13 : 17);
    }
    const bool cuatro = tipo.clase == Clase::Int || tipo.clase == Clase::SmallMoney ||
                        tipo.clase == Clase::Real || tipo.clase == Clase::SmallDateTime;
    return Valor::De(cuatro ? 4 : 8);
}

}  // namespace

std::string AnchoABytes(Int128 valor) {
    std::string bytes(kBytesAncho, '\0');
    auto resto = static_cast<base::UInt128>(valor);
    for (std::size_t i = kBytesAncho; i > 0; --i) {
        bytes[i - 1] = static_cast<char>(static_cast<unsigned char>(resto & 0xFFU));
        resto >>= 8U;
    }
    bytes[0] = static_cast<char>(static_cast<unsigned char>(bytes[0]) ^ 0x80U);
    return bytes;
}

Int128 BytesAAncho(std::string_view bytes) {
    base::UInt128 valor = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        auto byte = static_cast<unsigned char>(bytes[i]);
        if (i == 0) byte = static_cast<unsigned char>(byte ^ 0x80U);
        valor = valor << 8U | byte;
    }
    return static_cast<Int128>(valor);
}

Resultado<Int128> LeerExacto(const Valor& valor, const Tipo& tipo) {
    if (valor.forma == Valor::Forma::Exacto) return valor.exacto;
    if (valor.forma == Valor::Forma::Bytes && valor.texto.size() == kBytesAncho) {
        return BytesAAncho(valor.texto);
    }
    return Desborde(tipo);
}

Resultado<Valor> Normalizar(const Valor& valor, const Tipo& tipo) {
    if (valor.EsNulo()) return valor;
    if (tipo.EsExacto() || tipo.EsFecha()) {
        QUIMO_TRY(const Int128 digitos, LeerExacto(valor, tipo));
        return Valor::De(digitos);
    }
    if (tipo.EsReal() && valor.forma == Valor::Forma::Exacto) {
        return Valor::DeReal(static_cast<double>(valor.exacto));
    }
    return valor;
}

std::span<const FuncionEscalar> FuncionesDeNumero() {
    static constexpr auto kFunciones = std::to_array<FuncionEscalar>({
        {"q_mas", 5, Mas},
        {"q_menos", 5, Menos},
        {"q_por", 5, Por},
        {"q_entre", 5, Entre},
        {"q_resto", 5, Resto},
        {"q_cociente", 2, Cociente},
        {"q_modulo", 2, Modulo},
        {"q_ancho", 1, Ancho},
        {"q_clave", 2, Clave},
        {"q_cv", 4, ConvertirValor},
        {"q_no_nulo", 4, NoNulo, true},
        {"q_redondear", 4, RedondearValor},
        {"q_absoluto", 2, Absoluto},
        {"q_techo", 2, Techo},
        {"q_piso", 2, Piso},
        {"q_signo", 2, Signo},
        {"q_elevar", 3, Elevar},
        {"q_raiz", 1, DeReales<std::sqrt>},
        {"q_exp", 1, DeReales<std::exp>},
        {"q_log", 1, DeReales<std::log>},
        {"q_log10", 1, DeReales<std::log10>},
        {"q_seno", 1, DeReales<std::sin>},
        {"q_coseno", 1, DeReales<std::cos>},
        {"q_tangente", 1, DeReales<std::tan>},
        {"q_potencia", 2, Potencia},
        {"q_es_numero", 2, EsNumero, true},
        {"q_bytes", 2, Bytes},
    });
    return kFunciones;
}

}  // namespace quimo::tsql
