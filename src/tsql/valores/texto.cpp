#include "tsql/valores/texto.h"

#include <algorithm>
#include <array>

namespace quimo::tsql {

namespace {

/// Base letter and rank of its accent, for U+00C0 to U+017F, lower case.
struct Peso {
    char32_t base = 0;
    int acento = 0;
};

constexpr std::u32string_view kBases1 =  // U+00E0 to U+00FF
    U"aaaaaa\u00E6ceeeeiiii\u00F0nooooo\u00F7ouuuuy\u00FEy";
constexpr std::u32string_view kBases2 =  // U+0100 to U+017F
    U"aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiii\u0133\u0133jjkk\u0138llllll"
    U"\u0140\u0140llnnnnnn\u0149\u014B\u014Boooooo\u0153\u0153rrrrrrssssssssttttttuuuuuuuuuuuu"
    U"wwyyyzzzzzzs";

Peso PesoDe(char32_t c) {
    c = Minuscula(c);
    if (c >= 0xE0 && c <= 0xFF) {
        const char32_t base = kBases1[c - 0xE0];
        return {base, base == c ? 0 : static_cast<int>(c)};
    }
    if (c >= 0x100 && c <= 0x17F) {
        const char32_t base = kBases2[c - 0x100];
        return {base, base == c ? 0 : static_cast<int>(c)};
    }
    return {c, 0};
}

/// Signs before digits before letters, as the server's Latin order has them.
std::uint32_t Orden(char32_t base) {
    constexpr std::uint32_t kCifras = 0x200000;
    constexpr std::uint32_t kLetras = 0x400000;
    if (base >= U'0' && base <= U'9') return kCifras + base;
    if (base >= U'a' && base <= U'z') return kLetras + (base << 8);
    if (base >= 0xC0) return kLetras + (base << 8);
    return base;
}

bool EnClase(char32_t c, std::u32string_view clase) {
    const bool negada = !clase.empty() && clase.front() == U'^';
    if (negada) clase.remove_prefix(1);
    const auto orden = [](char32_t x) {
        const Peso p = PesoDe(x);
        return std::pair(Orden(p.base), p.acento);
    };
    const auto buscado = orden(c);
    bool esta = false;
    for (std::size_t i = 0; i < clase.size() && !esta; ++i) {
        if (i + 2 < clase.size() && clase[i + 1] == U'-') {
            esta = buscado >= orden(clase[i]) && buscado <= orden(clase[i + 2]);
            i += 2;
        } else {
            esta = buscado == orden(clase[i]);
        }
    }
    return esta != negada;
}

/// What one element of a pattern accepts.
struct Elemento {
    enum class Clase { Letra, Uno, Varios, Conjunto };
    Clase clase = Clase::Letra;
    char32_t letra = 0;
    std::u32string_view conjunto = {};
};

Elemento Leer(std::u32string_view patron, std::size_t& i, char32_t escape) {
    const char32_t c = patron[i++];
    if (escape != 0 && c == escape && i < patron.size()) {
        return {Elemento::Clase::Letra, patron[i++]};
    }
    if (c == U'%') return {Elemento::Clase::Varios};
    if (c == U'_') return {Elemento::Clase::Uno};
    if (c == U'[') {
        const auto fin = patron.find(U']', i + (i < patron.size() && patron[i] == U'^' ? 2 : 1));
        if (fin != std::u32string_view::npos) {
            const auto conjunto = patron.substr(i, fin - i);
            i = fin + 1;
            return {Elemento::Clase::Conjunto, 0, conjunto};
        }
    }
    return {Elemento::Clase::Letra, c};
}

bool Acepta(const Elemento& elemento, char32_t c) {
    if (elemento.clase == Elemento::Clase::Uno) return true;
    if (elemento.clase == Elemento::Clase::Conjunto) return EnClase(c, elemento.conjunto);
    return Minuscula(c) == Minuscula(elemento.letra);
}

/// Where a % was last seen, to try one character more.
struct Regreso {
    std::size_t patron = std::u32string_view::npos;
    std::size_t texto = 0;
};

}  // namespace

std::u32string ACaracteres(std::string_view texto) {
    std::u32string caracteres;
    caracteres.reserve(texto.size());
    for (std::size_t i = 0; i < texto.size();)
        caracteres.push_back(SiguienteCaracter(texto, i));
    return caracteres;
}

std::string AUtf8(std::u32string_view caracteres) {
    std::string texto;
    texto.reserve(caracteres.size());
    for (const char32_t c : caracteres)
        AgregarCaracter(texto, c);
    return texto;
}

int ContarCaracteres(std::string_view texto) {
    int cuenta = 0;
    for (std::size_t i = 0; i < texto.size(); ++cuenta) {
        if (static_cast<unsigned char>(texto[i]) < 0x80) {
            ++i;
        } else {
            SiguienteCaracter(texto, i);
        }
    }
    return cuenta;
}

std::size_t BytesDe(std::string_view texto, int caracteres) {
    std::size_t i = 0;
    while (i < texto.size() && caracteres-- > 0)
        SiguienteCaracter(texto, i);
    return i;
}

int Comparar(std::string_view a, std::string_view b) {
    a = SinBlancosAlFinal(a);
    b = SinBlancosAlFinal(b);
    std::size_t i = 0;
    std::size_t j = 0;
    int acento = 0;
    // A text that ends is read on as blanks, so that 'a' and 'a ' keep one place.
    while (i < a.size() || j < b.size()) {
        const Peso pa = i < a.size() ? PesoDe(SiguienteCaracter(a, i)) : Peso{U' '};
        const Peso pb = j < b.size() ? PesoDe(SiguienteCaracter(b, j)) : Peso{U' '};
        if (pa.base != pb.base) return Orden(pa.base) < Orden(pb.base) ? -1 : 1;
        if (acento == 0) acento = pa.acento - pb.acento;
    }
    return acento;
}

bool MismoNombre(std::string_view a, std::string_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    // Most names are ASCII, and most comparisons end at their first letters.
    while (i < a.size() && j < b.size()) {
        const auto x = static_cast<unsigned char>(a[i]);
        const auto y = static_cast<unsigned char>(b[j]);
        if (x < 0x80U && y < 0x80U) {
            const auto baja = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c | 0x20U : c; };
            if (baja(x) != baja(y)) return false;
            ++i;
            ++j;
            continue;
        }
        if (Minuscula(SiguienteCaracter(a, i)) != Minuscula(SiguienteCaracter(b, j))) return false;
    }
    return i == a.size() && j == b.size();
}

std::string_view SinBlancosAlFinal(std::string_view texto) {
    while (!texto.empty() && texto.back() == ' ')
        texto.remove_suffix(1);
    return texto;
}

std::string_view Recortar(std::string_view texto) {
    texto = SinBlancosAlFinal(texto);
    while (!texto.empty() && texto.front() == ' ')
        texto.remove_prefix(1);
    return texto;
}

bool Como(std::string_view texto, std::string_view patron, char32_t escape) {
    const std::u32string t = ACaracteres(texto);
    const std::u32string p = ACaracteres(patron);
    std::size_t i = 0;
    std::size_t j = 0;
    Regreso regreso;
    while (true) {
        if (j == p.size()) {
            // Blanks that the pattern does not name are left over at the end of a text.
            if (t.find_first_not_of(U' ', i) == std::u32string::npos) return true;
        } else {
            std::size_t siguiente = j;
            const Elemento elemento = Leer(p, siguiente, escape);
            if (elemento.clase == Elemento::Clase::Varios) {
                regreso = {siguiente, i};
                j = siguiente;
                continue;
            }
            if (i < t.size() && Acepta(elemento, t[i])) {
                ++i;
                j = siguiente;
                continue;
            }
        }
        if (regreso.patron == std::u32string_view::npos || regreso.texto >= t.size()) return false;
        i = ++regreso.texto;
        j = regreso.patron;
    }
}

std::string EntreApostrofes(std::string_view texto) {
    std::string salida = "'";
    for (const char c : texto) {
        if (c == '\'') salida.push_back('\'');
        salida.push_back(c);
    }
    return salida + "'";
}

std::string EntreComillas(std::string_view nombre) {
    std::string salida;
    salida.reserve(nombre.size() + 2);
    salida.push_back('"');
    if (nombre.find('"') == std::string_view::npos) {
        salida.append(nombre);
        salida.push_back('"');
        return salida;
    }
    for (const char c : nombre) {
        if (c == '"') salida.push_back('"');
        salida.push_back(c);
    }
    return salida + "\"";
}

}  // namespace quimo::tsql
