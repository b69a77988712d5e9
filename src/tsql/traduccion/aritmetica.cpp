#include <algorithm>

#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/valores/decimales.h"

namespace quimo::tsql {

namespace {

constexpr int kCifrasDe64Bits = 19;

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
    const Fuerza derecha = MasFuerte(fuerza);
    return {Par(a, fuerza) + signo + Par(b, derecha), tipo, fuerza,
            a.admite_nulos || b.admite_nulos};
}

Termino Llamar(const std::string& funcion, const Termino& a, const Termino& b, const Tipo& tipo) {
    return {funcion + "(" + a.sql + "," + b.sql + "," + Texto(a.tipo.escala) + "," +
                Texto(b.tipo.escala) + "," + TipoSqlTexto(tipo) + ")",
            tipo, Fuerza::Atomo, a.admite_nulos || b.admite_nulos};
}

Termino SumaExacta(char operador, const Tipo& tipo, const Termino& a, const Termino& b) {
    const std::string signo(1, operador);
    if (tipo.EsReal()) return Unir(a, b, signo, Fuerza::Suma, tipo);
    const int escala = std::max(a.tipo.escala, b.tipo.escala);
    const bool nativa = !a.tipo.EsAncho() && !b.tipo.EsAncho() &&
                        CifrasEn(a.tipo, escala) <= kCifrasDe64Bits &&
                        CifrasEn(b.tipo, escala) <= kCifrasDe64Bits;
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

Termino Producir(const Tipo& tipo, const Termino& a, const Termino& b) {
    const bool reales = tipo.EsReal();
    const bool enteros = tipo.EsEntero();
    const bool moneda = tipo.EsMoneda() && (a.tipo.EsEntero() || b.tipo.EsEntero());
    const bool corto = tipo.clase == Clase::Numeric &&
                       a.tipo.precision + b.tipo.precision <= kDigitosNativos &&
                       tipo.escala == a.tipo.escala + b.tipo.escala;
    if (reales || enteros || moneda || corto) return Unir(a, b, "*", Fuerza::Producto, tipo);
    return Llamar("q_por", a, b, tipo);
}

Termino Cociente(const Tipo& tipo, const Termino& a, const Termino& b) {
    const bool directa = tipo.EsReal() || tipo.EsEntero() || (tipo.EsMoneda() && b.tipo.EsEntero());
    if (!directa) return Llamar("q_entre", a, b, tipo);
    return Termino{"q_cociente(" + a.sql + "," + b.sql + ")", tipo, Fuerza::Atomo,
                   a.admite_nulos || b.admite_nulos};
}

Resultado<Termino> AritmeticaFecha(char operador, Termino a, Termino b, OrdenFecha orden) {
    if (operador != '+' && operador != '-') {
        return OperadorIncompatible(std::string(NombreClase(a.tipo.clase)),
                                    std::string(NombreClase(b.tipo.clase)), NombreDe(operador));
    }
    const Tipo tipo = a.tipo.EsFecha() ? a.tipo : b.tipo;
    for (Termino* t : {&a, &b}) {
        if (!t->tipo.EsFecha()) {
            QUIMO_TRY(*t, Convertir(std::move(*t), TipoFecha(), orden));
        }
    }
    return Termino{
        "q_sumar_dias(" + a.sql + "," + (operador == '-' ? "-1" : "1") + "," + b.sql + ")", tipo,
        Fuerza::Atomo, a.admite_nulos || b.admite_nulos};
}

Termino Concatenar(const Termino& a, const Termino& b) {
    const Tipo comun = TipoComun(a.tipo, b.tipo);
    Tipo tipo = TipoTexto(comun.EsNacional() ? Clase::NVarChar : Clase::VarChar, 0);
    const int maximo = comun.EsNacional() ? kLongitudMaxima / 2 : kLongitudMaxima;
    const bool sin_limite = a.tipo.longitud < 0 || b.tipo.longitud < 0;
    tipo.longitud = sin_limite ? -1 : std::min(a.tipo.longitud + b.tipo.longitud, maximo);
    if (tipo.longitud == 0) tipo.longitud = 1;
    return {Par(a, Fuerza::Union) + "||" + Par(b, Fuerza::Cotejo), tipo, Fuerza::Union,
            a.admite_nulos || b.admite_nulos};
}

/// Brings the operand of the lower precedence to the other's type.
Hecho Acercar(Termino& t, const Tipo& mayor, char operador, OrdenFecha orden) {
    if (t.nulo) t.tipo = mayor;
    if (!t.tipo.EsNumero()) {
        QUIMO_TRY(t, Convertir(std::move(t), mayor, orden));
    }
    if (mayor.EsReal() && !t.tipo.EsReal()) {
        QUIMO_TRY(t, Convertir(std::move(t), TipoReal(), orden));
    }
    if (mayor.EsMoneda() && t.tipo.EsEntero() &&
        (operador == '+' || operador == '-' || operador == '%')) {
        QUIMO_TRY(t, Convertir(std::move(t), TipoMoneda(), orden));
    }
    return {};
}

Resultado<Termino> DeBits(char operador, const Termino& a, const Termino& b, const Tipo& mayor) {
    if (!a.tipo.EsEntero() || !b.tipo.EsEntero()) {
        return OperadorIncompatible(std::string(NombreClase(a.tipo.clase)),
                                    std::string(NombreClase(b.tipo.clase)), NombreDe(operador));
    }
    if (operador != '^') return Unir(a, b, std::string(1, operador), Fuerza::Bits, mayor);
    const std::string x = Par(a, Fuerza::Atomo);
    const std::string y = Par(b, Fuerza::Atomo);
    return Termino{"(" + x + "|" + y + ")-(" + x + "&" + y + ")", mayor, Fuerza::Suma};
}

Resultado<Termino> Resto(const Tipo& tipo, const Termino& a, const Termino& b) {
    if (tipo.EsReal()) {
        return OperadorIncompatible(std::string(NombreClase(a.tipo.clase)),
                                    std::string(NombreClase(b.tipo.clase)), "modulo");
    }
    const int escala = std::max(a.tipo.escala, b.tipo.escala);
    if (std::max(CifrasEn(a.tipo, escala), CifrasEn(b.tipo, escala)) > kCifrasDe64Bits ||
        a.tipo.EsAncho() || b.tipo.EsAncho()) {
        return Llamar("q_resto", a, b, tipo);
    }
    return Termino{"q_modulo(" + Escalar(a, a.tipo.escala, escala) + "," +
                       Escalar(b, b.tipo.escala, escala) + ")",
                   tipo, Fuerza::Atomo, a.admite_nulos || b.admite_nulos};
}

}  // namespace

Resultado<Termino> Aritmetica(char operador, Termino a, Termino b, OrdenFecha orden) {
    if (a.nulo && b.nulo) {
        a.tipo = TipoEntero(Clase::Int);
        return a;
    }
    if (operador == '+' && (a.tipo.EsTexto() || a.nulo) && (b.tipo.EsTexto() || b.nulo)) {
        return Concatenar(a, b);
    }
    if (a.tipo.EsFecha() || b.tipo.EsFecha()) {
        return AritmeticaFecha(operador, std::move(a), std::move(b), orden);
    }
    const Tipo mayor = a.tipo.clase >= b.tipo.clase ? a.tipo : b.tipo;
    if (!mayor.EsNumero()) {
        return OperandoDeTipoInvalido(std::string(NombreClase(mayor.clase)), NombreDe(operador));
    }
    const bool bits = a.tipo.clase == Clase::Bit && b.tipo.clase == Clase::Bit;
    const bool de_bits = operador == '&' || operador == '|' || operador == '^';
    if (bits && !de_bits) return OperadorIncompatible("bit", "bit", NombreDe(operador));
    for (Termino* t : {&a, &b})
        QUIMO_TRY_VOID(Acercar(*t, mayor, operador, orden));
    if (de_bits) return DeBits(operador, a, b, mayor);
    const Tipo tipo = TipoAritmetico(operador, a.tipo, b.tipo);
    if (operador == '*') return Producir(tipo, a, b);
    if (operador == '/') return Cociente(tipo, a, b);
    if (operador == '%') return Resto(tipo, a, b);
    return SumaExacta(operador, tipo, a, b);
}

}  // namespace quimo::tsql
