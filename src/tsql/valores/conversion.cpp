#include "tsql/valores/conversion.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "tsql/valores/decimales.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

std::string Nombre(const Tipo& tipo) { return std::string(NombreClase(tipo.clase)); }

struct Rango {
    Int128 minimo = 0;
    Int128 maximo = 0;
};

Rango RangoDe(Clase clase) {
    constexpr Int128 kInt = std::numeric_limits<std::int32_t>::max();
    constexpr Int128 kBig = std::numeric_limits<std::int64_t>::max();
    if (clase == Clase::Bit) return {0, 1};
    if (clase == Clase::TinyInt) return {0, 255};
    if (clase == Clase::SmallInt) return {-32768, 32767};
    if (clase == Clase::Int || clase == Clase::SmallMoney) return {-kInt - 1, kInt};
    return {-kBig - 1, kBig};
}

ErrorSql Desborde(const Tipo& de, const Tipo& a) {
    const std::string origen = de.EsTexto() || de.clase == Clase::Numeric || de.EsReal() ||
                                       (de.EsEntero() && !a.EsEntero())
                                   ? Nombre(de)
                                   : "expression";
    return Desbordamiento(origen, Nombre(a));
}

Resultado<Valor> AEntero(Int128 entero, const Tipo& de, const Tipo& a) {
    if (a.clase == Clase::Bit) return Valor::De(entero != 0 ? 1 : 0);
    const Rango rango = RangoDe(a.clase);
    if (entero >= rango.minimo && entero <= rango.maximo) return Valor::De(entero);
    const bool corto = a.clase == Clase::TinyInt || a.clase == Clase::SmallInt;
    if (corto && de.EsEntero()) return ValorFueraDeTipo(Nombre(a), TextoDecimal(entero, 0));
    return Desborde(de, a);
}

Resultado<Valor> TextoAEntero(const Valor& valor, const Tipo& de, const Tipo& a) {
    const std::string_view texto = Recortar(valor.texto);
    if (a.clase == Clase::Bit) {
        if (MismoNombre(texto, "true")) return Valor::De(1);
        if (MismoNombre(texto, "false")) return Valor::De(0);
    }
    const auto numero = texto.empty() ? base::Decimal{} : LeerDecimal(texto, false);
    if (!numero || texto.find('.') != std::string_view::npos) {
        const bool cifras =
            texto.find_first_not_of("+-0123456789") == std::string_view::npos && texto.size() > 38;
        if (!cifras || a.clase == Clase::Bit)
            return ConversionFallida(Nombre(de), valor.texto, Nombre(a));
        return a.clase == Clase::BigInt ? Desbordamiento(Nombre(de), valor.texto)
                                        : DesbordamientoDeEntero(Nombre(de), valor.texto);
    }
    const Rango rango = RangoDe(a.clase);
    if (a.clase == Clase::Bit ||
        (numero->digitos >= rango.minimo && numero->digitos <= rango.maximo)) {
        return AEntero(numero->digitos, de, a);
    }
    if (a.clase == Clase::Int) return DesbordamientoDeEntero(Nombre(de), valor.texto);
    if (a.clase == Clase::BigInt) return Desbordamiento("expression", Nombre(a));
    return DesbordamientoDeCorto(Nombre(de), valor.texto,
                                 a.clase == Clase::TinyInt ? "INT1" : "INT2");
}

Int128 DiasRedondeados(std::int64_t ms) {
    const std::int64_t dia = kMilisegundosDia;
    const std::int64_t base = ms + dia / 2;
    return base >= 0 ? base / dia : -((dia - 1 - base) / dia);
}

Resultado<Valor> ConvertirAEntero(const Valor& valor, const Tipo& de, const Tipo& a) {
    if (de.EsTexto()) return TextoAEntero(valor, de, a);
    if (de.EsFecha()) return AEntero(DiasRedondeados(valor.Entero()), de, a);
    if (de.EsReal()) {
        if (a.clase == Clase::Bit) return Valor::De(valor.real != 0 ? 1 : 0);
        if (!(std::abs(valor.real) < 1e37)) return Desborde(de, a);
        return AEntero(static_cast<Int128>(std::trunc(valor.real)), de, a);
    }
    if (de.EsBinario()) {
        Int128 entero = 0;
        for (const char c : valor.texto)
            entero = (entero << 8 | static_cast<unsigned char>(c)) & ((Int128{1} << 64) - 1);
        if (a.clase == Clase::Int) entero = static_cast<std::int32_t>(entero);
        return AEntero(static_cast<std::int64_t>(entero), de, a);
    }
    if (a.clase == Clase::Bit) return Valor::De(valor.exacto != 0 ? 1 : 0);
    const auto redondeo = de.EsMoneda() ? Redondeo::MitadesAfuera : Redondeo::Truncar;
    return AEntero(*CambiarEscala(valor.exacto, de.escala, 0, redondeo), de, a);
}

/// Digits with their scale, of any number or text.
Resultado<base::Decimal> LeerExacto(const Valor& valor, const Tipo& de, const Tipo& a) {
    if (de.EsTexto()) {
        const auto numero = LeerDecimal(valor.texto, a.EsMoneda());
        if (numero) return *numero;
        if (a.EsMoneda()) return MonedaMalEscrita();
        return ConversionImposible(Nombre(de), Nombre(a));
    }
    if (de.EsReal()) {
        const auto digitos = DeReal(valor.real, a.escala);
        if (!digitos) return Desborde(de, a);
        return base::Decimal{*digitos, a.escala};
    }
    if (de.EsFecha()) {
        const auto digitos =
            DeReal(static_cast<double>(valor.Entero()) / kMilisegundosDia, a.escala);
        return base::Decimal{*digitos, a.escala};
    }
    return base::Decimal{valor.exacto, de.escala};
}

Resultado<Valor> ConvertirAExacto(const Valor& valor, const Tipo& de, const Tipo& a) {
    QUIMO_TRY(const base::Decimal numero, LeerExacto(valor, de, a));
    const auto digitos = CambiarEscala(numero.digitos, numero.escala, a.escala);
    if (!digitos) return Desborde(de, a);
    if (a.EsMoneda()) {
        const Rango rango = RangoDe(a.clase);
        if (*digitos < rango.minimo || *digitos > rango.maximo) return Desborde(de, a);
    } else if (ContarCifras(*digitos) > a.precision) {
        return Desborde(de, a);
    }
    return Valor::De(*digitos);
}

Resultado<Valor> ConvertirAReal(const Valor& valor, const Tipo& de, const Tipo& a) {
    double real = valor.real;
    if (de.EsTexto()) {
        std::string_view texto = Recortar(valor.texto);
        if (!texto.empty() && texto.front() == '+') texto.remove_prefix(1);
        real = 0;
        const auto [fin, error] = std::from_chars(texto.data(), texto.data() + texto.size(), real);
        const bool letras = texto.find_first_of("nNiIxX") != std::string_view::npos;
        if (!texto.empty() &&
            (error != std::errc() || fin != texto.data() + texto.size() || letras)) {
            return ConversionImposible(Nombre(de), Nombre(a));
        }
    } else if (de.EsFecha()) {
        real = static_cast<double>(valor.Entero()) / kMilisegundosDia;
    } else if (!de.EsReal()) {
        real = AReal(valor.exacto, de.escala);
    }
    if (a.clase == Clase::Real) {
        if (std::abs(real) > static_cast<double>(std::numeric_limits<float>::max())) {
            return RealDesbordado("real", RealATexto(real, 0));
        }
        real = static_cast<double>(static_cast<float>(real));
    }
    return Valor::DeReal(real);
}

Resultado<Valor> AjustarFecha(std::int64_t ms, const Tipo& de, const Tipo& a) {
    if (a.clase == Clase::SmallDateTime) {
        constexpr std::int64_t kMinuto = 60'000;
        const std::int64_t redondeado = (ms + kMinuto / 2) / kMinuto * kMinuto;
        if (ms < 0 || redondeado >= 65536 * kMilisegundosDia) {
            return FechaFueraDeRango(Nombre(de), Nombre(a));
        }
        return Valor::De(redondeado);
    }
    if (ms < kFechaMinima || ms > kFechaMaxima) return Desbordamiento("expression", Nombre(a));
    return Valor::De(RedondearFecha(ms));
}

Resultado<Valor> ConvertirAFecha(const Valor& valor, const Tipo& de, const Tipo& a,
                                 const OpcionesConversion& opciones) {
    if (de.EsFecha()) return AjustarFecha(valor.Entero(), de, a);
    if (de.EsTexto()) {
        const auto leida = LeerFecha(valor.texto, OrdenDeEstilo(opciones.estilo, opciones.orden));
        if (leida.fallo == FalloFecha::Forma) return FechaMalEscrita();
        if (leida.fallo == FalloFecha::Rango) return FechaFueraDeRango(Nombre(de), Nombre(a));
        return AjustarFecha(leida.milisegundos, de, a);
    }
    const double dias = de.EsReal() ? valor.real : AReal(valor.exacto, de.escala);
    if (!(std::abs(dias) < 4e6)) return Desbordamiento("expression", Nombre(a));
    return AjustarFecha(std::llround(dias * kMilisegundosDia), de, a);
}

std::string MonedaATexto(Int128 valor, int estilo) {
    if (estilo == 2 || estilo == 126) return TextoDecimal(valor, 4);
    std::string texto = TextoDecimal(*CambiarEscala(valor, 4, 2), 2);
    if (estilo == 1) {
        const std::ptrdiff_t inicio = valor < 0 ? 1 : 0;
        for (auto i = static_cast<std::ptrdiff_t>(texto.size()) - 6; i > inicio; i -= 3) {
            texto.insert(static_cast<std::size_t>(i), 1, ',');
        }
    }
    return texto;
}

bool EsUuid(std::string_view texto) {
    if (texto.size() != 36) return false;
    for (std::size_t i = 0; i < texto.size(); ++i) {
        const bool guion = i == 8 || i == 13 || i == 18 || i == 23;
        const bool hex =
            std::string_view("0123456789abcdefABCDEF").find(texto[i]) != std::string_view::npos;
        if (guion ? texto[i] != '-' : !hex) return false;
    }
    return true;
}

Resultado<std::string> Escribir(const Valor& valor, const Tipo& de, int estilo) {
    if (de.EsTexto() || de.clase == Clase::UniqueIdentifier || de.EsBinario()) return valor.texto;
    if (de.EsFecha()) return FechaATexto(valor.Entero(), estilo);
    if (de.EsReal()) return RealATexto(valor.real, estilo);
    if (de.EsMoneda()) return MonedaATexto(valor.exacto, estilo);
    return TextoDecimal(valor.exacto, de.escala);
}

Resultado<Valor> AjustarTexto(std::string texto, const Tipo& de, const Tipo& a, Destino destino) {
    if (a.longitud < 0 || a.clase == Clase::Text || a.clase == Clase::NText) {
        return Valor::DeTexto(std::move(texto));
    }
    const bool corto = static_cast<int>(texto.size()) <= a.longitud;
    if (!corto && ContarCaracteres(texto) > a.longitud) {
        if (de.EsEntero()) return Valor::DeTexto("*");
        if (de.EsMoneda()) return MonedaSinEspacio(Nombre(a));
        if (de.EsNumero()) return Desborde(de, a);
        const std::size_t bytes = BytesDe(texto, a.longitud);
        if (destino == Destino::Columna &&
            texto.find_first_not_of(' ', bytes) != std::string::npos) {
            return TextoRecortado();
        }
        texto.resize(bytes);
    } else if (a.LongitudFija()) {
        const int faltan = a.longitud - ContarCaracteres(texto);
        texto.append(static_cast<std::size_t>(std::max(faltan, 0)), ' ');
    }
    return Valor::DeTexto(std::move(texto));
}

Resultado<Valor> ConvertirABinario(const Valor& valor, const Tipo& de, const Tipo& a,
                                   Destino destino) {
    std::string bytes = valor.texto;
    if (de.EsExacto()) {
        int largo = 8;
        if (de.clase == Clase::Int) largo = 4;
        if (de.clase == Clase::SmallInt) largo = 2;
        if (de.clase == Clase::TinyInt || de.clase == Clase::Bit) largo = 1;
        bytes.clear();
        for (int i = largo - 1; i >= 0; --i) {
            bytes.push_back(
                static_cast<char>(static_cast<std::uint64_t>(valor.exacto) >> (8 * i) & 0xFF));
        }
        const int sobran = largo - a.longitud;
        if (a.longitud >= 0 && sobran > 0) bytes.erase(0, static_cast<std::size_t>(sobran));
        if (a.clase == Clase::Binary && sobran < 0) {
            bytes.insert(0, static_cast<std::size_t>(-sobran), '\0');
        }
    }
    if (a.longitud >= 0 && static_cast<int>(bytes.size()) > a.longitud) {
        if (destino == Destino::Columna) return TextoRecortado();
        bytes.resize(static_cast<std::size_t>(a.longitud));
    }
    if (a.clase == Clase::Binary)
        bytes.resize(static_cast<std::size_t>(std::max(a.longitud, 0)), '\0');
    return Valor::DeBytes(std::move(bytes));
}

}  // namespace

std::string RealATexto(double valor, int estilo) {
    std::array<char, 64> texto{};
    const int cifras = estilo == 0 ? 6 : estilo == 1 ? 8 : 16;
    int largo = 0;
    if (estilo == 0) {
        largo = std::snprintf(texto.data(), texto.size(), "%.*g", cifras, valor);
    } else {
        largo = std::snprintf(texto.data(), texto.size(), "%.*e", cifras - 1, valor);
    }
    std::string salida(texto.data(), static_cast<std::size_t>(largo));
    const auto e = salida.find('e');
    if (e != std::string::npos && salida.size() - e == 4) salida.insert(e + 2, 1, '0');
    return salida;
}

Resultado<std::string> FechaATexto(std::int64_t milisegundos, int estilo) {
    auto texto = FormatearFecha(milisegundos, estilo);
    if (!texto) return EstiloDesconocido(std::to_string(estilo), "datetime", "character string");
    return *std::move(texto);
}

Resultado<Valor> Convertir(const Valor& valor, const Tipo& de, const Tipo& a,
                           const OpcionesConversion& opciones) {
    if (valor.EsNulo() || a.clase == Clase::Nulo) return valor;
    if (a.EsEntero()) return ConvertirAEntero(valor, de, a);
    if (a.EsExacto()) return ConvertirAExacto(valor, de, a);
    if (a.EsReal()) return ConvertirAReal(valor, de, a);
    if (a.EsFecha()) return ConvertirAFecha(valor, de, a, opciones);
    if (a.EsBinario()) return ConvertirABinario(valor, de, a, opciones.destino);
    QUIMO_TRY(std::string texto, Escribir(valor, de, opciones.estilo));
    if (a.clase == Clase::UniqueIdentifier) {
        const std::string mayusculas = AMayusculas(texto);
        if (!EsUuid(mayusculas)) return UuidMalEscrito();
        return Valor::DeTexto(mayusculas);
    }
    return AjustarTexto(std::move(texto), de, a, opciones.destino);
}

Resultado<bool> PermiteImplicita(const Tipo& de, const Tipo& a) {
    if (de.clase == Clase::Nulo || a.clase == Clase::Nulo) return true;
    const auto uuid = [](const Tipo& t) { return t.clase == Clase::UniqueIdentifier; };
    if ((uuid(de) && !uuid(a) && !a.EsTexto()) || (uuid(a) && !uuid(de) && !de.EsTexto())) {
        return TiposIncompatibles(Nombre(de), Nombre(a));
    }
    const bool texto_a_binario = de.EsTexto() && a.EsBinario();
    if (texto_a_binario || (de.EsFecha() && (a.EsNumero() || a.EsBinario()))) {
        return ConversionImplicitaProhibida(Nombre(de), Nombre(a));
    }
    return true;
}

}  // namespace quimo::tsql
