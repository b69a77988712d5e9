#include <algorithm>

#include "tsql/decimales.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

std::string Texto(int numero) { return std::to_string(numero); }

/// Digits of an exact number once it has the given decimals.
int CifrasEn(const Tipo& tipo, int escala) {
    return std::max(tipo.precision, 1) + escala - tipo.escala;
}

std::string NombreDe(char operador) {
    if (operador == '+') return "add";
    if (operador == '-') return "subtract";
    if (operador == '*') return "multiply";
    if (operador == '/') return "divide";
    if (operador == '%') return "modulo";
    return std::string("'") + operador + "'";
}

/// The operands as they are, joined by an operator that the engine has.
Termino Unir(const Termino& a, const Termino& b, const std::string& signo, Fuerza fuerza,
             const Tipo& tipo) {
    const auto derecha = static_cast<Fuerza>(static_cast<int>(fuerza) + 1);
    return {Par(a, fuerza) + signo + Par(b, derecha), tipo, fuerza,
            a.admite_nulos || b.admite_nulos};
}

Termino Llamar(const std::string& funcion, const Termino& a, const Termino& b, const Tipo& tipo) {
    return {funcion + "(" + a.sql + "," + b.sql + "," + Texto(a.tipo.escala) + "," +
                Texto(b.tipo.escala) + "," + TipoSqlTexto(tipo) + ")",
            tipo, Fuerza::Atomo, a.admite_nulos || b.admite_nulos};
}

}  // namespace

/// Brings an exact number to more decimals.
std::string Traductor::Escalar(const Termino& termino, int de, int a) {
    if (a <= de) return termino.sql;
    return Par(termino, Fuerza::Producto) + "*" + TextoDecimal(*PotenciaDeDiez(a - de), 0);
}

Resultado<Termino> Traductor::Aritmetica(char operador, Termino a, Termino b) {
    if (a.nulo && b.nulo) {
        a.tipo = TipoEntero(Clase::Int);
        return a;
    }
    if (operador == '+' && (a.tipo.EsTexto() || a.nulo) && (b.tipo.EsTexto() || b.nulo)) {
        return Concatenar(std::move(a), std::move(b));
    }
    if (a.tipo.EsFecha() || b.tipo.EsFecha()) {
        return AritmeticaFecha(operador, std::move(a), std::move(b));
    }
    const Tipo mayor = a.tipo.clase >= b.tipo.clase ? a.tipo : b.tipo;
    if (!mayor.EsNumero()) {
        return CrearError(8117, std::string(NombreClase(mayor.clase)), NombreDe(operador));
    }
    const bool bits = a.tipo.clase == Clase::Bit && b.tipo.clase == Clase::Bit;
    const bool de_bits = operador == '&' || operador == '|' || operador == '^';
    if (bits && !de_bits) return CrearError(402, "bit", "bit", NombreDe(operador));
    // The operand of the lower precedence becomes the other's type.
    for (Termino* t : {&a, &b}) {
        if (t->nulo) t->tipo = mayor;
        if (!t->tipo.EsNumero()) {
            QUIMO_TRY(*t, Convertir(std::move(*t), mayor));
        }
        if (mayor.EsReal() && !t->tipo.EsReal()) {
            QUIMO_TRY(*t, Convertir(std::move(*t), TipoReal()));
        }
        if (mayor.EsMoneda() && t->tipo.EsEntero() &&
            (operador == '+' || operador == '-' || operador == '%')) {
            QUIMO_TRY(*t, Convertir(std::move(*t), TipoMoneda()));
        }
    }
    if (de_bits) {
        if (!a.tipo.EsEntero() || !b.tipo.EsEntero()) {
            return CrearError(402, std::string(NombreClase(a.tipo.clase)),
                              std::string(NombreClase(b.tipo.clase)), NombreDe(operador));
        }
        if (operador != '^') return Unir(a, b, std::string(1, operador), Fuerza::Bits, mayor);
        const std::string x = Par(a, Fuerza::Atomo);
        const std::string y = Par(b, Fuerza::Atomo);
        return Termino{"(" + x + "|" + y + ")-(" + x + "&" + y + ")", mayor, Fuerza::Suma};
    }
    const Tipo tipo = TipoAritmetico(operador, a.tipo, b.tipo);
    if (operador == '*') return Producir(tipo, a, b);
    if (operador == '/') return Cociente(tipo, a, b);
    if (operador == '%' && tipo.EsReal()) {
        return CrearError(402, std::string(NombreClase(a.tipo.clase)),
                          std::string(NombreClase(b.tipo.clase)), "modulo");
    }
    if (operador != '%') return SumaExacta(operador, tipo, a, b);
    const int escala = std::max(a.tipo.escala, b.tipo.escala);
    if (std::max(CifrasEn(a.tipo, escala), CifrasEn(b.tipo, escala)) > 19 || a.tipo.EsAncho() ||
        b.tipo.EsAncho()) {
        return Llamar("q_resto", a, b, tipo);
    }
    return Termino{"q_modulo(" + Escalar(a, a.tipo.escala, escala) + "," +
                       Escalar(b, b.tipo.escala, escala) + ")",
                   tipo, Fuerza::Atomo, a.admite_nulos || b.admite_nulos};
}

Termino Traductor::SumaExacta(char operador, const Tipo& tipo, const Termino& a, const Termino& b) {
    const std::string signo(1, operador);
    if (tipo.EsReal()) return Unir(a, b, signo, Fuerza::Suma, tipo);
    const int escala = std::max(a.tipo.escala, b.tipo.escala);
    const bool nativa = !a.tipo.EsAncho() && !b.tipo.EsAncho() && CifrasEn(a.tipo, escala) <= 19 &&
                        CifrasEn(b.tipo, escala) <= 19;
    if (!nativa || (tipo.clase == Clase::Numeric && tipo.escala != escala)) {
        return Llamar(operador == '+' ? "q_mas" : "q_menos", a, b, tipo);
    }
    const auto llevar = [escala](const Termino& t) {
        Termino igual = t;
        if (t.tipo.escala < escala) {
            igual.sql = Escalar(t, t.tipo.escala, escala);
            igual.fuerza = Fuerza::Producto;
        }
        return igual;
    };
    return Unir(llevar(a), llevar(b), signo, Fuerza::Suma, tipo);
}

Termino Traductor::Producir(const Tipo& tipo, const Termino& a, const Termino& b) {
    const bool reales = tipo.EsReal();
    const bool enteros = tipo.EsEntero();
    const bool moneda = tipo.EsMoneda() && (a.tipo.EsEntero() || b.tipo.EsEntero());
    const bool corto = tipo.clase == Clase::Numeric &&
                       a.tipo.precision + b.tipo.precision <= kDigitosNativos &&
                       tipo.escala == a.tipo.escala + b.tipo.escala;
    if (reales || enteros || moneda || corto) return Unir(a, b, "*", Fuerza::Producto, tipo);
    return Llamar("q_por", a, b, tipo);
}

Termino Traductor::Cociente(const Tipo& tipo, const Termino& a, const Termino& b) {
    const bool directa = tipo.EsReal() || tipo.EsEntero() || (tipo.EsMoneda() && b.tipo.EsEntero());
    if (!directa) return Llamar("q_entre", a, b, tipo);
    return Termino{"q_cociente(" + a.sql + "," + b.sql + ")", tipo, Fuerza::Atomo,
                   a.admite_nulos || b.admite_nulos};
}

Resultado<Termino> Traductor::AritmeticaFecha(char operador, Termino a, Termino b) {
    if (operador != '+' && operador != '-') {
        return CrearError(402, std::string(NombreClase(a.tipo.clase)),
                          std::string(NombreClase(b.tipo.clase)), NombreDe(operador));
    }
    const Tipo tipo = a.tipo.EsFecha() ? a.tipo : b.tipo;
    for (Termino* t : {&a, &b}) {
        if (!t->tipo.EsFecha()) {
            QUIMO_TRY(*t, Convertir(std::move(*t), TipoFecha()));
        }
    }
    return Termino{
        "q_sumar_dias(" + a.sql + "," + (operador == '-' ? "-1" : "1") + "," + b.sql + ")", tipo,
        Fuerza::Atomo, a.admite_nulos || b.admite_nulos};
}

std::optional<Termino> Traductor::ConversionNativa(const Termino& t, const Tipo& a) const {
    const Tipo& de = t.tipo;
    Termino igual = t;
    igual.tipo = a;
    if (t.nulo || de == a) return igual;
    if (de.EsTexto() && a.EsTexto()) {
        const bool cabe = a.longitud < 0 || (de.longitud > 0 && de.longitud <= a.longitud);
        if (cabe && (!a.LongitudFija() || (de.LongitudFija() && de.longitud == a.longitud))) {
            return igual;
        }
        return std::nullopt;
    }
    if (de.EsEntero() && a.EsTexto()) {
        const bool cabe = a.longitud < 0 || a.longitud > TipoEntero(de.clase).precision;
        if (!cabe || a.LongitudFija()) return std::nullopt;
        igual.sql = "CAST(" + t.sql + " AS TEXT)";
        igual.fuerza = Fuerza::Atomo;
        return igual;
    }
    if (de.EsFecha() && a.clase == Clase::DateTime) return igual;
    if (de.EsReal() && a.clase == Clase::Float) return igual;
    if (a.clase == Clase::Float && de.EsExacto() && !de.EsAncho()) {
        igual.sql = "CAST(" + t.sql + " AS REAL)";
        igual.fuerza = Fuerza::Atomo;
        if (de.escala > 0) {
            igual.sql += "/" + TextoDecimal(*PotenciaDeDiez(de.escala), 0) + ".0";
            igual.fuerza = Fuerza::Producto;
        }
        return igual;
    }
    if (!de.EsExacto() || !a.EsExacto() || de.EsAncho() || a.EsAncho()) return std::nullopt;
    if (de.EsEntero() && a.EsEntero()) {
        if (a.clase >= de.clase) return igual;
        return std::nullopt;
    }
    const int enteros = std::max(de.precision, 1) - de.escala;
    const int enteros_a = a.clase == Clase::SmallMoney ? 5
                          : a.EsMoneda()               ? 14
                                                       : a.precision - a.escala;
    if (a.EsEntero() || a.escala < de.escala || enteros > enteros_a) return std::nullopt;
    if (a.escala > de.escala) {
        igual.sql = Escalar(t, de.escala, a.escala);
        igual.fuerza = Fuerza::Producto;
    }
    return igual;
}

}  // namespace quimo::tsql
