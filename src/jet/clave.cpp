#include "jet/clave.h"

#include <bit>
#include <cstdio>
#include <string>

#include "base/texto.h"
#include "jet/fila.h"
#include "jet/texto.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kBloque = 8;
constexpr std::uint8_t kSigueBloque = 9;

using Bytes = std::vector<std::uint8_t>;

/// Complements the bytes from there on.
void Complementar(Bytes& clave, std::size_t desde) {
    for (std::size_t i = desde; i < clave.size(); ++i) {
        clave[i] = static_cast<std::uint8_t>(~clave[i]);
    }
}

void AgregarBigEndian(Bytes& clave, std::uint64_t valor, int bytes) {
    for (int i = bytes - 1; i >= 0; --i)
        clave.push_back(static_cast<std::uint8_t>(valor >> (8 * i)));
}

/// Sorts like the number: positive ones get the top bit, negative ones are complemented.
template <typename Entero>
Entero OrdenarFlotante(Entero crudo) {
    constexpr Entero kSigno = Entero{1} << (8 * sizeof(Entero) - 1);
    return (crudo & kSigno) != 0 ? ~crudo : crudo | kSigno;
}

void AgregarNumerico(const base::Decimal& decimal, bool descendente, Bytes& clave) {
    const std::size_t desde = clave.size();
    const bool negativo = decimal.digitos < 0;
    const base::Int128 magnitud = negativo ? -decimal.digitos : decimal.digitos;
    clave.push_back(0);
    for (int i = 15; i >= 0; --i) {
        clave.push_back(static_cast<std::uint8_t>(magnitud >> (8 * i) & 0xFF));
    }
    if (negativo != descendente) Complementar(clave, desde);
    // The sign byte is the same in both directions.
    clave[desde] = negativo ? 0x00 : 0xFF;
}

void AgregarBinario(std::span<const std::uint8_t> bytes, bool descendente, Bytes& clave) {
    while (!bytes.empty()) {
        const auto bloque = bytes.first(std::min(kBloque, bytes.size()));
        bytes = bytes.subspan(bloque.size());
        const std::size_t desde = clave.size();
        clave.insert(clave.end(), bloque.begin(), bloque.end());
        clave.resize(desde + kBloque, 0);
        if (bytes.empty()) clave.push_back(static_cast<std::uint8_t>(bloque.size()));
        if (descendente) Complementar(clave, desde);
        if (!bytes.empty()) clave.push_back(kSigueBloque);
    }
}

Error SinPeso(const Esquema& esquema, std::size_t columna, char32_t letra) {
    std::array<char, 12> codigo{};
    std::snprintf(codigo.data(), codigo.size(), "U+%04X", static_cast<unsigned>(letra));
    std::string visible = "\uFFFD";
    if (letra < 0xD800 || letra > 0xDFFF) {
        visible.clear();
        base::AgregarCaracter(visible, letra);
    }
    return {Error::Codigo::NoSoportado,
            "La letra «" + visible + "» (" + codigo.data() + ") no se puede usar en " +
                NombrarColumna(esquema, columna) + ", que forma parte de un índice."};
}

/// Types whose keys have one size. False for a value of another type.
bool AgregarSimple(const DefColumna& def, const Valor& valor, Bytes& clave) {
    constexpr std::uint64_t kSigno = std::uint64_t{1} << 63;
    switch (def.tipo) {
        case TipoColumna::Byte:
        case TipoColumna::Entero:
        case TipoColumna::Largo: {
            const auto* n = std::get_if<std::int32_t>(&valor);
            if (n == nullptr) return false;
            const int bytes = static_cast<int>(TamanoFijo(def.tipo));
            const auto signo = def.tipo == TipoColumna::Byte ? 0U : 1U << (8 * bytes - 1);
            AgregarBigEndian(clave, static_cast<std::uint32_t>(*n) ^ signo, bytes);
            return true;
        }
        case TipoColumna::Moneda: {
            const auto* importe = std::get_if<base::Dinero>(&valor);
            if (importe == nullptr) return false;
            AgregarBigEndian(clave, static_cast<std::uint64_t>(importe->Diezmilesimas()) ^ kSigno,
                             8);
            return true;
        }
        case TipoColumna::Simple: {
            const auto* n = std::get_if<float>(&valor);
            if (n == nullptr) return false;
            AgregarBigEndian(clave, OrdenarFlotante(std::bit_cast<std::uint32_t>(*n)), 4);
            return true;
        }
        case TipoColumna::Doble: {
            const auto* n = std::get_if<double>(&valor);
            if (n == nullptr) return false;
            AgregarBigEndian(clave, OrdenarFlotante(std::bit_cast<std::uint64_t>(*n)), 8);
            return true;
        }
        case TipoColumna::Fecha: {
            const auto* f = std::get_if<Fecha>(&valor);
            if (f == nullptr) return false;
            AgregarBigEndian(clave, OrdenarFlotante(std::bit_cast<std::uint64_t>(f->dias)), 8);
            return true;
        }
        case TipoColumna::Logico:
        case TipoColumna::Binario:
        case TipoColumna::Texto:
        case TipoColumna::Ole:
        case TipoColumna::Memo:
        case TipoColumna::Guid:
        case TipoColumna::Numerico:
        case TipoColumna::Bloque:
            return false;
    }
    return false;
}

Error NoEsClave(const Esquema& esquema, std::size_t columna) {
    return {Error::Codigo::Datos, "Un valor no es del tipo de " + NombrarColumna(esquema, columna) +
                                      ", que es de un índice."};
}

Result<void> AgregarTexto(const Esquema& esquema, const IndiceReal::Columna& columna,
                          const Valor& valor, Bytes& clave) {
    const auto* texto = std::get_if<std::u16string>(&valor);
    if (texto == nullptr) return NoEsClave(esquema, columna.posicion);
    const ColumnaFisica& fisica = esquema.fisicas[columna.posicion];
    const OrdenTexto orden{fisica.orden, fisica.version_orden};
    if (!orden.SeEscribe()) {
        return Error{Error::Codigo::NoSoportado,
                     "No se puede escribir en " + NombrarColumna(esquema, columna.posicion) +
                         ", que está en un índice y ordena los textos en " + orden.Nombre() +
                         ": solo se sabe escribir en el orden General (0x0409)."};
    }
    const std::size_t desde = clave.size();
    if (const auto sin_peso = AgregarPesos(*texto, clave)) {
        return SinPeso(esquema, columna.posicion, *sin_peso);
    }
    if (columna.descendente) {
        Complementar(clave, desde);
        clave.push_back(0x00);
    }
    return {};
}

}  // namespace

Result<void> ComprobarOrden(const Esquema& esquema, const IndiceReal& indice) {
    for (const IndiceReal::Columna& c : indice.columnas) {
        Bytes clave;
        if (!EsTexto(esquema.tabla.columnas[c.posicion].tipo)) continue;
        QUIMO_TRY_VOID(AgregarTexto(esquema, c, std::u16string(), clave));
    }
    return {};
}

Result<void> AgregarClave(const Esquema& esquema, const IndiceReal::Columna& columna,
                          const Valor& valor, std::vector<std::uint8_t>& clave) {
    const DefColumna& def = esquema.tabla.columnas[columna.posicion];
    const bool descendente = columna.descendente;
    const bool logico = def.tipo == TipoColumna::Logico;
    if (EsNulo(valor) && !logico) {
        clave.push_back(descendente ? 0xFF : 0x00);
        return {};
    }
    clave.push_back(descendente ? 0x80 : 0x7F);
    const std::size_t desde = clave.size();
    if (logico) {
        const auto* b = std::get_if<bool>(&valor);
        if (b == nullptr && !EsNulo(valor)) return NoEsClave(esquema, columna.posicion);
        clave.push_back((b != nullptr && *b) != descendente ? 0x00 : 0xFF);
    } else if (EsTexto(def.tipo)) {
        return AgregarTexto(esquema, columna, valor, clave);
    } else if (def.tipo == TipoColumna::Binario || def.tipo == TipoColumna::Guid) {
        const auto* bytes = std::get_if<Binario>(&valor);
        const auto* guid = std::get_if<Guid>(&valor);
        if ((def.tipo == TipoColumna::Guid ? guid == nullptr : bytes == nullptr)) {
            return NoEsClave(esquema, columna.posicion);
        }
        AgregarBinario(guid != nullptr ? std::span<const std::uint8_t>(guid->bytes) : *bytes,
                       descendente, clave);
    } else if (def.tipo == TipoColumna::Numerico) {
        const auto* decimal = std::get_if<base::Decimal>(&valor);
        if (decimal == nullptr) return NoEsClave(esquema, columna.posicion);
        AgregarNumerico(*decimal, descendente, clave);
    } else {
        if (!AgregarSimple(def, valor, clave)) return NoEsClave(esquema, columna.posicion);
        if (descendente) Complementar(clave, desde);
    }
    return {};
}

Result<std::vector<std::uint8_t>> ClaveDeValores(const Esquema& esquema, const IndiceReal& indice,
                                                 std::span<const Valor> valores) {
    Bytes clave;
    if (valores.size() > indice.columnas.size()) {
        return Error{Error::Codigo::Datos, "El índice " + indice.nombre + " de la tabla " +
                                               esquema.tabla.nombre + " no tiene tantas columnas."};
    }
    for (std::size_t i = 0; i < valores.size(); ++i) {
        QUIMO_TRY_VOID(AgregarClave(esquema, indice.columnas[i], valores[i], clave));
    }
    return clave;
}

Result<std::vector<std::uint8_t>> ClaveDeFila(const Esquema& esquema, const IndiceReal& indice,
                                              const Fila& fila) {
    Bytes clave;
    for (const IndiceReal::Columna& c : indice.columnas) {
        QUIMO_TRY_VOID(AgregarClave(esquema, c, fila[c.posicion], clave));
    }
    return clave;
}

std::size_t NulosDeClave(const Esquema& esquema, const IndiceReal& indice, const Fila& fila) {
    std::size_t nulos = 0;
    for (const IndiceReal::Columna& c : indice.columnas) {
        const bool logico = esquema.tabla.columnas[c.posicion].tipo == TipoColumna::Logico;
        if (!logico && EsNulo(fila[c.posicion])) ++nulos;
    }
    return nulos;
}

}  // namespace quimo::jet
