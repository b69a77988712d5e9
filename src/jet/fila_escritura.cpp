// The stored form of values and rows.

#include <bit>
#include <cmath>
#include <limits>

#include "jet/fila.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kComprimidoMin = 3;
constexpr std::size_t kComprimidoMax = 1024;
constexpr std::size_t kLargoMax = 0x3FFFFFFF;  // bytes of a long value
constexpr char16_t kMarcaComprimido = 0xFEFF;  // its two bytes mean compressed text

Error NoCabe(const Esquema& esquema, std::size_t columna, const std::string& por_que) {
    return {Error::Codigo::Datos,
            "Un valor no cabe en " + NombrarColumna(esquema, columna) + ": " + por_que + "."};
}

Error OtroTipo(const Esquema& esquema, std::size_t columna) {
    return {Error::Codigo::Datos,
            "Un valor no es del tipo de " + NombrarColumna(esquema, columna) + ".",
            "type 0x" + std::to_string(static_cast<int>(esquema.tabla.columnas[columna].tipo))};
}

template <std::size_t kBytes>
Celda CeldaDe(std::uint64_t crudo) {
    Celda celda{.tiene_valor = true};
    celda.bytes.resize(kBytes);
    for (std::size_t i = 0; i < kBytes; ++i) {
        celda.bytes[i] = static_cast<std::uint8_t>(crudo >> (8 * i));
    }
    return celda;
}

/// The number of a value for a floating-point column.
std::optional<double> ComoDoble(const Valor& valor) {
    if (const auto* d = std::get_if<double>(&valor)) return *d;
    if (const auto* f = std::get_if<float>(&valor)) return *f;
    if (const auto* i = std::get_if<std::int32_t>(&valor)) return *i;
    return std::nullopt;
}

Result<Celda> CifrarEntero(const Esquema& esquema, std::size_t columna, std::int32_t valor) {
    const TipoColumna tipo = esquema.tabla.columnas[columna].tipo;
    if (tipo == TipoColumna::Largo) return CeldaDe<4>(static_cast<std::uint32_t>(valor));
    const bool byte = tipo == TipoColumna::Byte;
    const std::int32_t menor = byte ? 0 : std::numeric_limits<std::int16_t>::min();
    const std::int32_t mayor = byte ? 255 : std::numeric_limits<std::int16_t>::max();
    if (valor < menor || valor > mayor) {
        return NoCabe(esquema, columna, std::to_string(valor) + " está fuera de su rango");
    }
    const auto crudo = static_cast<std::uint64_t>(valor);
    return byte ? CeldaDe<1>(crudo) : CeldaDe<2>(crudo);
}

Result<Celda> CifrarFlotante(const Esquema& esquema, std::size_t columna, const Valor& valor) {
    const auto numero = ComoDoble(valor);
    if (!numero) return OtroTipo(esquema, columna);
    if (!std::isfinite(*numero)) return NoCabe(esquema, columna, "no es un número finito");
    if (esquema.tabla.columnas[columna].tipo == TipoColumna::Doble) {
        return CeldaDe<8>(std::bit_cast<std::uint64_t>(*numero));
    }
    const auto simple = static_cast<float>(*numero);
    if (static_cast<double>(simple) != *numero) {
        return NoCabe(esquema, columna, "perdería precisión");
    }
    return CeldaDe<4>(std::bit_cast<std::uint32_t>(simple));
}

Result<Celda> CifrarFecha(const Esquema& esquema, std::size_t columna, const Valor& valor) {
    const auto* fecha = std::get_if<Fecha>(&valor);
    if (fecha == nullptr) return OtroTipo(esquema, columna);
    if (!fecha->ACivil())
        return NoCabe(esquema, columna, "la fecha está fuera de los años 100 a 9999");
    const double dias = fecha->dias == 0 ? 0.0 : fecha->dias;  // -0.0 would be another key
    return CeldaDe<8>(std::bit_cast<std::uint64_t>(dias));
}

Result<Celda> CifrarNumerico(const Esquema& esquema, std::size_t columna, const Valor& valor) {
    const DefColumna& def = esquema.tabla.columnas[columna];
    base::Decimal original;
    if (const auto* d = std::get_if<base::Decimal>(&valor)) {
        original = *d;
    } else if (const auto* i = std::get_if<std::int32_t>(&valor)) {
        original = {*i, 0};
    } else {
        return OtroTipo(esquema, columna);
    }
    const auto ajustado = original.ConEscala(def.escala);
    if (!ajustado || !(*ajustado == original)) {
        return NoCabe(esquema, columna, original.ATexto() + " tiene demasiados decimales o cifras");
    }
    base::Int128 limite = 1;
    for (int i = 0; i < def.precision; ++i)
        limite *= 10;
    const base::Int128 magnitud = ajustado->digitos < 0 ? -ajustado->digitos : ajustado->digitos;
    if (magnitud >= limite) {
        return NoCabe(esquema, columna, original.ATexto() + " tiene demasiadas cifras");
    }
    Celda celda{.tiene_valor = true};
    celda.bytes.assign(TamanoFijo(TipoColumna::Numerico), 0);
    celda.bytes[0] = ajustado->digitos < 0 ? 0x80 : 0;
    for (std::size_t i = 0; i < 4; ++i) {
        PonerU32(celda.bytes.data() + 1 + 4 * i,
                 static_cast<std::uint32_t>(magnitud >> (96 - 32 * i) & 0xFFFFFFFF));
    }
    return celda;
}

Result<Celda> CifrarGuid(const Esquema& esquema, std::size_t columna, const Valor& valor) {
    const auto* guid = std::get_if<Guid>(&valor);
    if (guid == nullptr) return OtroTipo(esquema, columna);
    static constexpr std::array<std::uint8_t, 16> kOrden = {3, 2, 1,  0,  5,  4,  7,  6,
                                                            8, 9, 10, 11, 12, 13, 14, 15};
    Celda celda{.tiene_valor = true};
    for (const std::uint8_t i : kOrden)
        celda.bytes.push_back(guid->bytes.at(i));
    return celda;
}

Result<Celda> CifrarTextos(const Esquema& esquema, std::size_t columna, const Valor& valor) {
    const DefColumna& def = esquema.tabla.columnas[columna];
    const auto* texto = std::get_if<std::u16string>(&valor);
    if (texto == nullptr) return OtroTipo(esquema, columna);
    if (!texto->empty() && texto->front() == kMarcaComprimido) {
        return NoCabe(esquema, columna, "el texto empieza con el carácter U+FEFF");
    }
    Celda celda{.tiene_valor = true};
    if (def.tipo == TipoColumna::Memo) {
        if (texto->size() > kLargoMax / 2)
            return NoCabe(esquema, columna, "el texto es demasiado largo");
        celda.bytes = CifrarTexto(*texto, def.comprimido);
        celda.por_guardar = true;
        return celda;
    }
    const std::size_t maximo = esquema.fisicas[columna].bytes / 2U;
    if (texto->size() > maximo) {
        return NoCabe(esquema, columna,
                      "el texto mide " + std::to_string(texto->size()) +
                          " caracteres y el máximo es " + std::to_string(maximo));
    }
    if (esquema.fisicas[columna].fija) {
        std::u16string relleno = *texto;
        relleno.resize(maximo, u' ');
        celda.bytes = CifrarTexto(relleno, false);
        celda.bytes.resize(esquema.fisicas[columna].bytes, 0);
    } else {
        celda.bytes = CifrarTexto(*texto, def.comprimido);
    }
    return celda;
}

Result<Celda> CifrarBytes(const Esquema& esquema, std::size_t columna, const Valor& valor) {
    const auto* bytes = std::get_if<Binario>(&valor);
    if (bytes == nullptr) return OtroTipo(esquema, columna);
    Celda celda{.tiene_valor = true, .bytes = *bytes};
    const ColumnaFisica& fisica = esquema.fisicas[columna];
    const bool ole = esquema.tabla.columnas[columna].tipo == TipoColumna::Ole;
    celda.por_guardar = ole;
    const std::size_t maximo = ole ? kLargoMax : fisica.bytes;
    if (bytes->size() > maximo || (fisica.fija && bytes->size() != maximo)) {
        return NoCabe(esquema, columna,
                      "mide " + std::to_string(bytes->size()) + " bytes y el máximo es " +
                          std::to_string(maximo));
    }
    return celda;
}

std::size_t LargoDeMascara(const Esquema& esquema) { return (esquema.ranuras_columna + 7U) / 8U; }

}  // namespace

std::vector<std::uint8_t> CifrarTexto(std::u16string_view texto, bool comprimible) {
    bool comprimir =
        comprimible && texto.size() >= kComprimidoMin && texto.size() <= kComprimidoMax;
    for (std::size_t i = 0; comprimir && i < texto.size(); ++i) {
        comprimir = texto[i] >= 0x01 && texto[i] <= 0xFF;
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(2 + texto.size() * (comprimir ? 1 : 2));
    if (comprimir) bytes = {0xFF, 0xFE};
    for (const char16_t c : texto) {
        bytes.push_back(static_cast<std::uint8_t>(c & 0xFF));
        if (!comprimir) bytes.push_back(static_cast<std::uint8_t>(c >> 8));
    }
    return bytes;
}

Result<Celda> CifrarValor(const Esquema& esquema, std::size_t columna, const Valor& valor) {
    const TipoColumna tipo = esquema.tabla.columnas[columna].tipo;
    if (EsNulo(valor)) return Celda{};
    const auto* entero = std::get_if<std::int32_t>(&valor);
    switch (tipo) {
        case TipoColumna::Logico:
            if (const auto* b = std::get_if<bool>(&valor)) return Celda{.tiene_valor = *b};
            return OtroTipo(esquema, columna);
        case TipoColumna::Byte:
        case TipoColumna::Entero:
        case TipoColumna::Largo:
            if (entero == nullptr) return OtroTipo(esquema, columna);
            return CifrarEntero(esquema, columna, *entero);
        case TipoColumna::Moneda: {
            const auto* dinero = std::get_if<base::Dinero>(&valor);
            if (dinero == nullptr && entero == nullptr) return OtroTipo(esquema, columna);
            const auto importe = dinero != nullptr ? *dinero : base::Dinero::DeEntero(*entero);
            return CeldaDe<8>(static_cast<std::uint64_t>(importe.Diezmilesimas()));
        }
        case TipoColumna::Simple:
        case TipoColumna::Doble:
            return CifrarFlotante(esquema, columna, valor);
        case TipoColumna::Fecha:
            return CifrarFecha(esquema, columna, valor);
        case TipoColumna::Binario:
        case TipoColumna::Ole:
            return CifrarBytes(esquema, columna, valor);
        case TipoColumna::Texto:
        case TipoColumna::Memo:
            return CifrarTextos(esquema, columna, valor);
        case TipoColumna::Guid:
            return CifrarGuid(esquema, columna, valor);
        case TipoColumna::Numerico:
            return CifrarNumerico(esquema, columna, valor);
        case TipoColumna::Bloque:
            break;
    }
    return OtroTipo(esquema, columna);
}

std::optional<Celda> CeldaDeFila(const Esquema& esquema, const VistaFila& vista,
                                 std::size_t columna) {
    const ColumnaFisica& fisica = esquema.fisicas[columna];
    Celda celda{.tiene_valor = vista.Bit(fisica)};
    if (esquema.tabla.columnas[columna].tipo == TipoColumna::Logico || !celda.tiene_valor) {
        return celda;
    }
    if (!fisica.fija && fisica.ranura_variable >= vista.Variables()) return Celda{};
    const auto bytes = vista.Bytes(fisica);
    if (!bytes) return std::nullopt;
    celda.bytes.assign(bytes->begin(), bytes->end());
    return celda;
}

std::size_t LargoDeFila(const Esquema& esquema, std::span<const Celda> celdas) {
    std::size_t largo = 2 + esquema.parte_fija + LargoDeMascara(esquema);
    if (esquema.ranuras_variables > 0) largo += 4 + 2 * std::size_t{esquema.ranuras_variables};
    for (std::size_t i = 0; i < celdas.size(); ++i) {
        if (!esquema.fisicas[i].fija) largo += celdas[i].bytes.size();
    }
    return largo;
}

std::vector<std::uint8_t> ArmarFila(const Esquema& esquema, std::span<const Celda> celdas) {
    std::vector<std::uint8_t> fila(2 + esquema.parte_fija, 0);
    fila.reserve(LargoDeFila(esquema, celdas));
    PonerU16(fila.data(), esquema.ranuras_columna);
    std::vector<const Celda*> variables(esquema.ranuras_variables, nullptr);
    std::vector<std::uint8_t> mascara(LargoDeMascara(esquema), 0);
    for (std::size_t i = 0; i < celdas.size(); ++i) {
        const ColumnaFisica& fisica = esquema.fisicas[i];
        const Celda& celda = celdas[i];
        if (!fisica.fija) variables[fisica.ranura_variable] = &celda;
        if (!celda.tiene_valor) continue;
        auto& octeto = mascara[fisica.numero / 8U];
        octeto = static_cast<std::uint8_t>(octeto | 1U << (fisica.numero % 8U));
        if (fisica.fija) {
            std::copy(celda.bytes.begin(), celda.bytes.end(),
                      fila.begin() + 2 + fisica.desplazamiento);
        }
    }
    if (esquema.ranuras_variables > 0) {
        std::vector<std::size_t> posiciones;
        for (const Celda* celda : variables) {
            posiciones.push_back(fila.size());
            if (celda != nullptr) fila.insert(fila.end(), celda->bytes.begin(), celda->bytes.end());
        }
        posiciones.push_back(fila.size());
        const auto agregar = [&fila](std::size_t v) {
            fila.push_back(static_cast<std::uint8_t>(v));
            fila.push_back(static_cast<std::uint8_t>(v >> 8));
        };
        for (std::size_t i = posiciones.size(); i > 0; --i)
            agregar(posiciones[i - 1]);
        agregar(variables.size());
    }
    fila.insert(fila.end(), mascara.begin(), mascara.end());
    return fila;
}

}  // namespace quimo::jet
