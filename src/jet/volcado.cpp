#include "jet/volcado.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <vector>

#include "base/texto.h"
#include "jet/fila.h"
#include "jet/tabla.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kBufer = 1 << 16;
constexpr char32_t kReemplazo = 0xFFFD;
constexpr std::string_view kHexadecimal = "0123456789abcdef";

void AgregarDosCifras(std::string& salida, int n) {
    salida.push_back(static_cast<char>('0' + n / 10));
    salida.push_back(static_cast<char>('0' + n % 10));
}

void AgregarEscape(std::string& salida, char16_t c) {
    switch (c) {
        case u'"':
            salida += "\\\"";
            return;
        case u'\\':
            salida += "\\\\";
            return;
        case u'\n':
            salida += "\\n";
            return;
        case u'\r':
            salida += "\\r";
            return;
        case u'\t':
            salida += "\\t";
            return;
        default:
            salida += "\\u";
            for (int i = 12; i >= 0; i -= 4)
                salida.push_back(kHexadecimal[(c >> i) & 0xF]);
    }
}

constexpr bool SinEscapeEnJson(char16_t c) {
    return c >= 0x20 && c < 0x7F && c != u'"' && c != u'\\';
}

/// Appends the ASCII characters from i on that `simple` admits, and moves i past them.
template <typename Simple>
void AgregarTramo(std::string& salida, std::u16string_view texto, std::size_t& i, Simple simple) {
    std::size_t fin = i;
    while (fin < texto.size() && simple(texto[fin]))
        ++fin;
    const std::size_t antes = salida.size();
    salida.resize(antes + fin - i);
    for (std::size_t k = antes; i < fin; ++i, ++k)
        salida[k] = static_cast<char>(texto[i]);
}

/// Appends the character at i, which is not ASCII, and moves i past it. Returns false for a
/// surrogate without its other half, and appends nothing.
bool AgregarAmplio(std::string& salida, std::u16string_view texto, std::size_t& i) {
    const char16_t c = texto[i++];
    if (EsSustitutaAlta(c) && i < texto.size() && EsSustitutaBaja(texto[i])) {
        base::AgregarCaracter(salida, UnirSustitutas(c, texto[i++]));
        return true;
    }
    if (EsSustitutaAlta(c) || EsSustitutaBaja(c)) return false;
    base::AgregarCaracter(salida, c);
    return true;
}

/// A text in quotes; a surrogate without its other half is kept as an escape.
void AgregarTextoJson(std::string& salida, std::u16string_view texto) {
    salida.push_back('"');
    for (std::size_t i = 0; i < texto.size();) {
        AgregarTramo(salida, texto, i, SinEscapeEnJson);
        if (i == texto.size()) break;
        const char16_t c = texto[i];
        if (c < 0x80) {
            AgregarEscape(salida, c);
            ++i;
        } else if (!AgregarAmplio(salida, texto, i)) {
            AgregarEscape(salida, c);
        }
    }
    salida.push_back('"');
}

template <typename T>
void AgregarNumero(std::string& salida, T numero) {
    std::array<char, 40> texto{};
    const auto fin = std::to_chars(texto.data(), texto.data() + texto.size(), numero).ptr;
    const std::string_view escrito(texto.data(), static_cast<std::size_t>(fin - texto.data()));
    salida += escrito;
    if constexpr (std::is_floating_point_v<T>) {
        if (escrito.find_first_of(".e") == std::string_view::npos) salida += ".0";
    }
}

void AgregarDinero(std::string& salida, base::Dinero importe) {
    constexpr std::uint64_t kUno = 10000;
    const std::int64_t crudo = importe.Diezmilesimas();
    const std::uint64_t magnitud =
        crudo < 0 ? ~static_cast<std::uint64_t>(crudo) + 1 : static_cast<std::uint64_t>(crudo);
    if (crudo < 0) salida.push_back('-');
    AgregarNumero(salida, magnitud / kUno);
    salida.push_back('.');
    AgregarDosCifras(salida, static_cast<int>(magnitud % kUno / 100));
    AgregarDosCifras(salida, static_cast<int>(magnitud % 100));
}

void AgregarHexadecimal(std::string& salida, const Binario& bytes) {
    for (const std::uint8_t b : bytes) {
        salida.push_back(kHexadecimal[b >> 4]);
        salida.push_back(kHexadecimal[b & 15]);
    }
}

/// False for a date out of range.
bool AgregarFecha(std::string& salida, Fecha fecha) {
    const auto civil = fecha.ACivil();
    if (!civil) return false;
    std::array<char, 19> texto = {'0', '0', '0', '0', '-', '0', '0', '-', '0', '0',
                                  'T', '0', '0', ':', '0', '0', ':', '0', '0'};
    const auto poner = [&texto](std::size_t i, int n) {
        texto.at(i) = static_cast<char>('0' + n / 10);
        texto.at(i + 1) = static_cast<char>('0' + n % 10);
    };
    poner(0, civil->ano / 100);
    poner(2, civil->ano % 100);
    poner(5, civil->mes);
    poner(8, civil->dia);
    poner(11, civil->hora);
    poner(14, civil->minuto);
    poner(17, civil->segundo);
    salida.append(texto.data(), texto.size());
    return true;
}

/// The plain form of a value that is neither NULL nor a text. False when it has none.
struct Sencillo {
    std::string& salida;

    bool operator()(std::monostate) const { return true; }
    bool operator()(const std::u16string&) const { return true; }
    bool operator()(bool b) const {
        salida += b ? "true" : "false";
        return true;
    }
    bool operator()(std::int32_t n) const {
        AgregarNumero(salida, n);
        return true;
    }
    bool operator()(float n) const {
        AgregarNumero(salida, n);
        return std::isfinite(n);
    }
    bool operator()(double n) const {
        AgregarNumero(salida, n);
        return std::isfinite(n);
    }
    bool operator()(base::Dinero importe) const {
        AgregarDinero(salida, importe);
        return true;
    }
    bool operator()(Fecha fecha) const { return AgregarFecha(salida, fecha); }
    bool operator()(const Binario& bytes) const {
        AgregarHexadecimal(salida, bytes);
        return true;
    }
    bool operator()(const Guid& guid) const {
        salida += guid.ATexto();
        return true;
    }
    bool operator()(const base::Decimal& decimal) const {
        salida += decimal.ATexto();
        return true;
    }
};

bool AgregarJson(std::string& salida, const Valor& valor) {
    if (EsNulo(valor)) {
        salida += "null";
        return true;
    }
    if (const auto* texto = std::get_if<std::u16string>(&valor)) {
        AgregarTextoJson(salida, *texto);
        return true;
    }
    const bool desnudo =
        std::holds_alternative<bool>(valor) || std::holds_alternative<std::int32_t>(valor) ||
        std::holds_alternative<float>(valor) || std::holds_alternative<double>(valor);
    if (!desnudo) salida.push_back('"');
    const bool bien = std::visit(Sencillo{salida}, valor);
    if (!desnudo) salida.push_back('"');
    return bien;
}

bool AgregarCsv(std::string& salida, const Valor& valor) {
    const auto* texto = std::get_if<std::u16string>(&valor);
    if (texto == nullptr) return std::visit(Sencillo{salida}, valor);
    // An empty text in quotes is told from NULL.
    const bool comillas =
        texto->empty() || std::any_of(texto->begin(), texto->end(), [](char16_t c) {
            return c == u',' || c == u'"' || c == u'\r' || c == u'\n';
        });
    if (comillas) salida.push_back('"');
    for (std::size_t i = 0; i < texto->size();) {
        AgregarTramo(salida, *texto, i, [](char16_t c) { return c < 0x80 && c != u'"'; });
        if (i == texto->size()) break;
        if ((*texto)[i] == u'"') {
            salida += "\"\"";
            ++i;
        } else if (!AgregarAmplio(salida, *texto, i)) {
            base::AgregarCaracter(salida, kReemplazo);
        }
    }
    if (comillas) salida.push_back('"');
    return true;
}

/// Gathers output into large pieces.
class Salida {
public:
    explicit Salida(const Receptor& receptor) : receptor_(receptor) { texto_.reserve(2 * kBufer); }
    std::string& Texto() { return texto_; }
    Result<void> Avanzar() { return texto_.size() < kBufer ? Result<void>() : Entregar(); }
    Result<void> Entregar() {
        if (!texto_.empty() && !receptor_(texto_)) {
            return Error{Error::Codigo::Archivo, "No se pudo escribir el volcado."};
        }
        texto_.clear();
        return {};
    }

private:
    const Receptor& receptor_;
    std::string texto_;
};

Error SinForma(const Tabla& tabla, std::size_t columna) {
    return {Error::Codigo::Formato,
            "Un valor de la columna " + tabla.Definicion().columnas[columna].nombre +
                " de la tabla " + tabla.Nombre() + " no es un número o una fecha posible."};
}

Result<void> VolcarFilas(const Tabla& tabla, Salida& salida) {
    std::vector<std::string> claves;
    for (const DefColumna& columna : tabla.Definicion().columnas) {
        std::string clave = claves.empty() ? "{" : ", ";
        AgregarTextoJson(clave, AUtf16(columna.nombre));
        claves.push_back(clave + ": ");
    }
    std::string& texto = salida.Texto();
    AgregarTextoJson(texto, AUtf16(tabla.Nombre()));
    texto += ": [";
    QUIMO_TRY(Cursor cursor, tabla.Recorrer());
    bool hay_filas = false;
    while (true) {
        QUIMO_TRY(const bool hay, cursor.Siguiente());
        if (!hay) break;
        texto += hay_filas ? ",\n  " : "\n  ";
        if (claves.empty()) texto += "{";
        for (std::size_t i = 0; i < claves.size(); ++i) {
            texto += claves[i];
            if (!AgregarJson(texto, cursor.Valores()[i])) return SinForma(tabla, i);
        }
        texto += "}";
        hay_filas = true;
        QUIMO_TRY_VOID(salida.Avanzar());
    }
    texto += hay_filas ? "\n ]" : "]";
    return {};
}

Result<void> VolcarTablas(const BaseDatos& base, const std::vector<std::string>& nombres,
                          const Receptor& receptor) {
    Salida salida(receptor);
    salida.Texto() += "{";
    for (std::size_t i = 0; i < nombres.size(); ++i) {
        QUIMO_TRY(const Tabla tabla, base.AbrirTabla(nombres[i]));
        salida.Texto() += i == 0 ? "\n " : ",\n ";
        QUIMO_TRY_VOID(VolcarFilas(tabla, salida));
    }
    salida.Texto() += nombres.empty() ? "}\n" : "\n}\n";
    return salida.Entregar();
}

}  // namespace

Result<void> VolcarBase(const BaseDatos& base, const Receptor& receptor) {
    QUIMO_TRY(const std::vector<std::string> nombres, base.Tablas());
    return VolcarTablas(base, nombres, receptor);
}

Result<void> VolcarTabla(const BaseDatos& base, std::string_view tabla, const Receptor& receptor) {
    return VolcarTablas(base, {std::string(tabla)}, receptor);
}

Result<void> VolcarCsv(const BaseDatos& base, std::string_view nombre, const Receptor& receptor) {
    QUIMO_TRY(const Tabla tabla, base.AbrirTabla(nombre));
    Salida salida(receptor);
    std::string& texto = salida.Texto();
    bool primera = true;
    for (const DefColumna& columna : tabla.Definicion().columnas) {
        if (!primera) texto.push_back(',');
        primera = false;
        AgregarCsv(texto, AUtf16(columna.nombre));
    }
    texto.push_back('\n');
    QUIMO_TRY(Cursor cursor, tabla.Recorrer());
    while (true) {
        QUIMO_TRY(const bool hay, cursor.Siguiente());
        if (!hay) return salida.Entregar();
        const Fila& fila = cursor.Valores();
        for (std::size_t i = 0; i < fila.size(); ++i) {
            if (i > 0) texto.push_back(',');
            if (!AgregarCsv(texto, fila[i])) return SinForma(tabla, i);
        }
        texto.push_back('\n');
        QUIMO_TRY_VOID(salida.Avanzar());
    }
}

Receptor HaciaFlujo(std::ostream& flujo) {
    return [&flujo](std::string_view texto) {
        flujo.write(texto.data(), static_cast<std::streamsize>(texto.size()));
        return flujo.good();
    };
}

}  // namespace quimo::jet
