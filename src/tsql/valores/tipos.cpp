#include "tsql/valores/tipos.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr int kEscalaMinima = 6;  // decimals that a division or product always keeps

constexpr auto kNombres =
    std::to_array<std::string_view>({"NULL",       "binary",        "varbinary", "char",
                                     "varchar",    "nchar",         "nvarchar",  "uniqueidentifier",
                                     "image",      "text",          "ntext",     "bit",
                                     "tinyint",    "smallint",      "int",       "bigint",
                                     "smallmoney", "money",         "numeric",   "real",
                                     "float",      "smalldatetime", "datetime"});

constexpr auto kSinonimos = std::to_array<std::pair<std::string_view, Clase>>({
    {"integer", Clase::Int},
    {"decimal", Clase::Numeric},
    {"dec", Clase::Numeric},
    {"double", Clase::Float},
    {"character", Clase::Char},
    {"sysname", Clase::NVarChar},
});

Tipo Acotar(int precision, int escala, bool suma) {
    if (precision > kDigitosMaximos) {
        const int enteros = precision - escala;
        if (suma) {
            escala = std::max(0, std::min(escala, kDigitosMaximos - (enteros - 1)));
        } else {
            escala = std::min(escala,
                              std::max(kDigitosMaximos - enteros, std::min(escala, kEscalaMinima)));
        }
        precision = kDigitosMaximos;
    }
    return TipoNumerico(precision, escala);
}

}  // namespace

Tipo TipoEntero(Clase clase) {
    int digitos = 1;
    if (clase == Clase::TinyInt) digitos = 3;
    if (clase == Clase::SmallInt) digitos = 5;
    if (clase == Clase::Int) digitos = 10;
    if (clase == Clase::BigInt) digitos = 19;
    return {clase, 0, digitos, 0};
}

Tipo TipoMoneda() { return {Clase::Money, 0, 19, 4}; }
Tipo TipoNumerico(int precision, int escala) { return {Clase::Numeric, 0, precision, escala}; }
Tipo TipoTexto(Clase clase, int longitud) { return {clase, longitud, 0, 0}; }
Tipo TipoReal() { return {Clase::Float, 0, 0, 0}; }
Tipo TipoFecha() { return {Clase::DateTime, 0, 0, 0}; }

std::string_view NombreClase(Clase clase) { return kNombres[static_cast<std::size_t>(clase)]; }

std::optional<Clase> ClasePorNombre(std::string_view nombre) {
    for (std::size_t i = 1; i < kNombres.size(); ++i) {
        if (MismoNombre(nombre, kNombres[i])) return static_cast<Clase>(i);
    }
    for (const auto& [sinonimo, clase] : kSinonimos) {
        if (MismoNombre(nombre, sinonimo)) return clase;
    }
    return std::nullopt;
}

std::int64_t Empaquetar(const Tipo& tipo) {
    return static_cast<std::int64_t>(tipo.clase) |
           static_cast<std::int64_t>(tipo.longitud + 1) << 8 |
           static_cast<std::int64_t>(tipo.precision) << 24 |
           static_cast<std::int64_t>(tipo.escala) << 32;
}

Tipo Desempaquetar(std::int64_t codigo) {
    const auto campo = [codigo](int desde, std::int64_t mascara) {
        return static_cast<int>((codigo >> desde) & mascara);
    };
    const int clase = std::min(campo(0, 0xFF), static_cast<int>(Clase::DateTime));
    return {static_cast<Clase>(clase), campo(8, 0xFFFF) - 1, campo(24, 0xFF), campo(32, 0xFF)};
}

Tipo ComoNumerico(const Tipo& tipo) {
    if (tipo.clase == Clase::SmallMoney) return TipoNumerico(10, 4);
    if (tipo.clase == Clase::Money) return TipoNumerico(19, 4);
    return TipoNumerico(std::max(tipo.precision, 1), tipo.escala);
}

Tipo TipoAritmetico(char operador, const Tipo& a, const Tipo& b) {
    const Tipo mayor = a.clase >= b.clase ? a : b;
    if (mayor.EsReal()) return a.clase == Clase::Real && b.clase == Clase::Real ? a : TipoReal();
    if (mayor.EsMoneda()) return mayor;
    if (mayor.EsEntero()) return TipoEntero(mayor.clase == Clase::Bit ? Clase::Int : mayor.clase);
    const Tipo x = ComoNumerico(a);
    const Tipo y = ComoNumerico(b);
    const int enteros = std::max(x.precision - x.escala, y.precision - y.escala);
    const int escala = std::max(x.escala, y.escala);
    if (operador == '*') return Acotar(x.precision + y.precision + 1, x.escala + y.escala, false);
    if (operador == '/') {
        const int cociente = std::max(kEscalaMinima, x.escala + y.precision + 1);
        return Acotar(x.precision - x.escala + y.escala + cociente, cociente, false);
    }
    if (operador == '%') {
        return Acotar(std::min(x.precision - x.escala, y.precision - y.escala) + escala, escala,
                      false);
    }
    return Acotar(enteros + escala + 1, escala, true);
}

Tipo TipoComun(const Tipo& a, const Tipo& b) {
    if (a.clase == Clase::Nulo) return b;
    if (b.clase == Clase::Nulo) return a;
    Tipo mayor = a.clase >= b.clase ? a : b;
    const Tipo& menor = a.clase >= b.clase ? b : a;
    if ((mayor.EsTexto() && menor.EsTexto()) || (mayor.EsBinario() && menor.EsBinario())) {
        const bool sin_limite = a.longitud < 0 || b.longitud < 0;
        mayor.longitud = sin_limite ? -1 : std::max(a.longitud, b.longitud);
        if (a.clase != b.clase && mayor.clase == Clase::NChar) mayor.clase = Clase::NVarChar;
        return mayor;
    }
    if (mayor.clase == Clase::Numeric && menor.EsExacto()) {
        const Tipo x = ComoNumerico(a);
        const Tipo y = ComoNumerico(b);
        const int escala = std::max(x.escala, y.escala);
        const int enteros = std::max(x.precision - x.escala, y.precision - y.escala);
        return TipoNumerico(std::min(enteros + escala, kDigitosMaximos), escala);
    }
    return mayor;
}

}  // namespace quimo::tsql
