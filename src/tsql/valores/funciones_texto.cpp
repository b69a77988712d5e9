#include <algorithm>
#include <array>
#include <random>

#include "tsql/valores/conversion.h"
#include "tsql/valores/decimales.h"
#include "tsql/valores/funciones.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

/// Positions and lengths are cut to what a text can have, so that nothing overflows.
std::int64_t Acotado(const Valor& valor) {
    constexpr std::int64_t kLimite = 1'000'000'000;
    return std::clamp(valor.Entero(), -kLimite, kLimite);
}

Valor Trozo(const std::string& texto, std::int64_t desde, std::int64_t largo) {
    const std::int64_t hasta = desde + largo;
    desde = std::max<std::int64_t>(desde, 0);
    if (hasta <= desde) return Valor::DeTexto({});
    const std::size_t inicio = BytesDe(texto, static_cast<int>(desde));
    const std::string_view resto = std::string_view(texto).substr(inicio);
    return Valor::DeTexto(
        std::string(resto.substr(0, BytesDe(resto, static_cast<int>(hasta - desde)))));
}

/// q_trozo(text, from, length)
Resultado<Valor> Subcadena(Argumentos x) {
    if (x[2].exacto < 0) return LongitudInvalidaDeTrozo();
    if (x[0].forma == Valor::Forma::Bytes) {
        const std::int64_t desde = std::max<std::int64_t>(Acotado(x[1]) - 1, 0);
        const std::int64_t hasta = std::max(Acotado(x[1]) - 1 + Acotado(x[2]), desde);
        const auto tamano = static_cast<std::int64_t>(x[0].texto.size());
        return Valor::DeBytes(x[0].texto.substr(static_cast<std::size_t>(std::min(desde, tamano)),
                                                static_cast<std::size_t>(hasta - desde)));
    }
    return Trozo(x[0].texto, Acotado(x[1]) - 1, Acotado(x[2]));
}

Resultado<Valor> Izquierda(Argumentos x) {
    if (x[1].exacto < 0) return LongitudInvalida("LEFT");
    return Trozo(x[0].texto, 0, Acotado(x[1]));
}

Resultado<Valor> Derecha(Argumentos x) {
    if (x[1].exacto < 0) return LongitudInvalida("RIGHT");
    const std::int64_t largo = ContarCaracteres(x[0].texto);
    return Trozo(x[0].texto, std::max<std::int64_t>(largo - Acotado(x[1]), 0), largo);
}

Resultado<Valor> Minusculas(Argumentos x) { return Valor::DeTexto(AMinusculas(x[0].texto)); }
Resultado<Valor> Mayusculas(Argumentos x) { return Valor::DeTexto(AMayusculas(x[0].texto)); }

Resultado<Valor> Ascii(Argumentos x) {
    if (x[0].texto.empty()) return Valor{};
    std::size_t i = 0;
    const char32_t c = SiguienteCaracter(x[0].texto, i);
    return Valor::De(c < 256 ? static_cast<int>(c) : '?');
}

Resultado<Valor> Unicode(Argumentos x) {
    if (x[0].texto.empty()) return Valor{};
    std::size_t i = 0;
    return Valor::De(static_cast<Int128>(SiguienteCaracter(x[0].texto, i)));
}

Resultado<Valor> Caracter(Argumentos x) {
    if (x[0].exacto < 0 || x[0].exacto > 0xFFFF) return Valor{};
    std::string texto;
    AgregarCaracter(texto, static_cast<char32_t>(x[0].exacto));
    return Valor::DeTexto(std::move(texto));
}

std::u32string Plegado(const std::string& texto) {
    std::u32string caracteres = ACaracteres(texto);
    std::transform(caracteres.begin(), caracteres.end(), caracteres.begin(), Minuscula);
    return caracteres;
}

/// q_posicion(what, in [, from])
Resultado<Valor> Posicion(Argumentos x) {
    if (x[0].EsNulo() || x[1].EsNulo()) return Valor{};
    const std::u32string que = Plegado(x[0].texto);
    const std::u32string donde = Plegado(x[1].texto);
    const std::int64_t desde = x.size() > 2 && !x[2].EsNulo() ? Acotado(x[2]) - 1 : 0;
    if (que.empty()) return Valor::De(0);
    const auto hallado =
        donde.find(que, static_cast<std::size_t>(std::max<std::int64_t>(desde, 0)));
    return Valor::De(hallado == std::u32string::npos ? 0 : static_cast<Int128>(hallado) + 1);
}

/// q_patron(pattern, in): where what stands between the outer % begins
Resultado<Valor> Patron(Argumentos x) {
    std::string patron = x[0].texto;
    const bool al_inicio = patron.empty() || patron.front() != '%';
    if (!al_inicio) patron.erase(0, 1);
    const std::string& texto = x[1].texto;
    int posicion = 1;
    for (std::size_t i = 0; i <= texto.size(); ++posicion) {
        if (Como(std::string_view(texto).substr(i), patron, 0)) return Valor::De(posicion);
        if (al_inicio || i == texto.size()) break;
        SiguienteCaracter(texto, i);
    }
    return Valor::De(0);
}

Resultado<Valor> Reemplazar(Argumentos x) {
    const std::u32string texto = ACaracteres(x[0].texto);
    const std::u32string plegado = Plegado(x[0].texto);
    const std::u32string que = Plegado(x[1].texto);
    if (que.empty()) return x[0];
    std::string salida;
    std::size_t i = 0;
    for (auto k = plegado.find(que); k != std::u32string::npos; k = plegado.find(que, i)) {
        salida += AUtf8(std::u32string_view(texto).substr(i, k - i)) + x[2].texto;
        i = k + que.size();
    }
    return Valor::DeTexto(salida + AUtf8(std::u32string_view(texto).substr(i)));
}

Resultado<Valor> Repetir(Argumentos x) {
    if (x[1].exacto < 0) return Valor{};
    const auto tamano = std::max<std::size_t>(x[0].texto.size(), 1);
    const auto veces = std::min<std::size_t>(static_cast<std::size_t>(Acotado(x[1])),
                                             static_cast<std::size_t>(kLongitudMaxima) / tamano);
    std::string salida;
    for (std::size_t i = 0; i < veces; ++i)
        salida += x[0].texto;
    return Valor::DeTexto(std::move(salida));
}

Resultado<Valor> Invertir(Argumentos x) {
    std::u32string caracteres = ACaracteres(x[0].texto);
    std::reverse(caracteres.begin(), caracteres.end());
    return Valor::DeTexto(AUtf8(caracteres));
}

/// q_injertar(text, from, length, what)
Resultado<Valor> Injertar(Argumentos x) {
    if (x[0].EsNulo() || x[1].EsNulo() || x[2].EsNulo()) return Valor{};
    const std::int64_t largo = ContarCaracteres(x[0].texto);
    const std::int64_t desde = Acotado(x[1]) - 1;
    const std::int64_t quitar = Acotado(x[2]);
    if (desde < 0 || desde >= largo || quitar < 0) return Valor{};
    return Valor::DeTexto(Trozo(x[0].texto, 0, desde).texto + x[3].texto +
                          Trozo(x[0].texto, desde + quitar, largo).texto);
}

/// q_str(number [, length [, decimals]])
Resultado<Valor> Str(Argumentos x) {
    constexpr std::int64_t kLargo = 10;
    constexpr int kDecimalesMaximos = 16;
    for (const Valor& valor : x) {
        if (valor.EsNulo()) return Valor{};
    }
    const std::int64_t largo = x.size() > 1 ? Acotado(x[1]) : kLargo;
    int decimales = x.size() > 2 ? static_cast<int>(Acotado(x[2])) : 0;
    if (largo < 1 || largo > kLongitudMaxima || decimales < 0) return Valor{};
    decimales = std::min(decimales, kDecimalesMaximos);
    const auto cabe = static_cast<std::size_t>(largo);
    std::string texto;
    for (int d = decimales;; --d) {
        const auto digitos = DeReal(x[0].real, d);
        if (!digitos || d < 0) return Valor::DeTexto(std::string(cabe, '*'));
        texto = TextoDecimal(*digitos, d);
        if (texto.size() <= cabe) break;
        if (d == 0) return Valor::DeTexto(std::string(cabe, '*'));
    }
    return Valor::DeTexto(std::string(cabe - texto.size(), ' ') + texto);
}

Resultado<Valor> Citar(Argumentos x) {
    const std::string signo = x.size() > 1 ? x[1].texto : "[";
    const char abre = signo.empty() ? '[' : signo[0] == ']' ? '[' : signo[0];
    const char cierra = abre == '[' ? ']' : abre == '(' ? ')' : abre == '{' ? '}' : abre;
    std::string salida(1, abre);
    for (const char c : x[0].texto) {
        if (c == cierra) salida.push_back(c);
        salida.push_back(c);
    }
    return Valor::DeTexto(salida + cierra);
}

Resultado<Valor> Concatenar(Argumentos x) {
    std::string salida;
    for (const Valor& valor : x)
        salida += valor.texto;
    return Valor::DeTexto(std::move(salida));
}

/// q_como(text, pattern [, escape])
Resultado<Valor> EsComo(Argumentos x) {
    char32_t escape = 0;
    if (x.size() > 2) {
        if (ContarCaracteres(x[2].texto) != 1) return EscapeInvalido(x[2].texto);
        std::size_t i = 0;
        escape = SiguienteCaracter(x[2].texto, i);
    }
    return Valor::De(Como(x[0].texto, x[1].texto, escape) ? 1 : 0);
}

Resultado<Valor> NuevoId(Argumentos /*x*/) {
    std::random_device azar;
    std::string texto;
    constexpr std::string_view kCifras = "0123456789ABCDEF";
    for (int i = 0; i < 32; ++i) {
        if (i == 8 || i == 12 || i == 16 || i == 20) texto.push_back('-');
        unsigned cifra = azar() & 15U;
        if (i == 12) cifra = 4;
        if (i == 16) cifra = 8U | (cifra & 3U);
        texto.push_back(kCifras[cifra]);
    }
    return Valor::DeTexto(std::move(texto));
}

}  // namespace

std::span<const FuncionEscalar> FuncionesDeTexto() {
    static constexpr auto kFunciones = std::to_array<FuncionEscalar>({
        {"q_trozo", 3, Subcadena},
        {"q_izquierda", 2, Izquierda},
        {"q_derecha", 2, Derecha},
        {"q_minusculas", 1, Minusculas},
        {"q_mayusculas", 1, Mayusculas},
        {"q_ascii", 1, Ascii},
        {"q_unicode", 1, Unicode},
        {"q_char", 1, Caracter},
        {"q_posicion", -1, Posicion, true},
        {"q_patron", 2, Patron},
        {"q_reemplazar", 3, Reemplazar},
        {"q_repetir", 2, Repetir},
        {"q_invertir", 1, Invertir},
        {"q_injertar", 4, Injertar, true},
        {"q_str", -1, Str, true},
        {"q_citar", -1, Citar},
        {"q_concatenar", -1, Concatenar, true},
        {"q_como", 2, EsComo},
        {"q_como", 3, EsComo},
        {"q_nuevo_id", 0, NuevoId, false, false},
    });
    return kFunciones;
}

}  // namespace quimo::tsql
