#pragma once

#include <cstdint>
#include <string>
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

}  // namespace quimo::jet
