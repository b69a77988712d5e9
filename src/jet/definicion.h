#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quimo::jet {

/// The numbers are those of the file.
enum class TipoColumna : std::uint8_t {
    Logico = 0x01,
    Byte = 0x02,
    Entero = 0x03,
    Largo = 0x04,
    Moneda = 0x05,
    Simple = 0x06,
    Doble = 0x07,
    Fecha = 0x08,
    Binario = 0x09,
    Texto = 0x0A,
    Ole = 0x0B,
    Memo = 0x0C,
    Guid = 0x0F,
    Numerico = 0x10,
    Bloque = 0x11,  ///< opaque bytes of application tables; read only. Other numbers: the same
};

/// A column as its maker describes it. Names are UTF-8, here and below.
struct DefColumna {
    std::string nombre;
    TipoColumna tipo = TipoColumna::Largo;
    int largo = 0;            ///< Texto: characters, 1-255; Binario: bytes, 1-510; others: ignored
    bool comprimido = false;  ///< Texto and Memo: may be stored one byte per character
    bool autonumerico = false;  ///< Largo only, at most one per table
    int precision = 18;         ///< Numerico: 1-28
    int escala = 0;             ///< Numerico: 0-precision
};

struct ColumnaDeIndice {
    std::string nombre;
    bool descendente = false;
};

/// A logical index. `foranea` marks one half of a relationship; it is only ever read.
struct DefIndice {
    std::string nombre;
    std::vector<ColumnaDeIndice> columnas;  ///< 1-10
    bool primaria = false;                  ///< implies unico and requerido
    bool unico = false;
    bool requerido = false;     ///< no NULL in any of its columns
    bool ignora_nulos = false;  ///< rows whose columns are all NULL get no entry
    bool foranea = false;
};

struct DefTabla {
    std::string nombre;
    std::vector<DefColumna> columnas;  ///< in their natural order, which is the order of row values
    std::vector<DefIndice> indices;
};

/// How a database or a column sorts its texts: a language and the version of its rules.
struct OrdenTexto {
    int lcid = 0;
    int version = 0;

    /// Keys of that order can be computed. The only one is General (0x0409, version 0).
    bool SeEscribe() const { return *this == OrdenTexto{0x0409, 0}; }
    /// "español tradicional (0x040A)".
    std::string Nombre() const;
    bool operator==(const OrdenTexto&) const = default;
};

/// A relationship as MSysRelationships describes it: rows of `tabla` name rows of `referida`.
struct Relacion {
    std::string nombre;
    std::string tabla;
    std::string referida;
    std::vector<std::pair<std::string, std::string>> columnas;  ///< of tabla, of referida
    std::uint32_t banderas = 0;

    /// The file asks its writers to keep it. Otherwise it only joins tables in queries.
    bool Exigida() const { return (banderas & 0x00000002U) == 0; }
    bool ActualizaEnCascada() const { return (banderas & 0x00000100U) != 0; }
    bool BorraEnCascada() const { return (banderas & 0x00001000U) != 0; }
};

}  // namespace quimo::jet
