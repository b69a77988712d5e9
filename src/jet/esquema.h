#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/definicion.h"
#include "jet/formato.h"

namespace quimo::jet {

/// How a column lies in the file.
struct ColumnaFisica {
    std::uint16_t numero = 0;  // its bit in the null mask
    bool fija = false;         // in the fixed part of the row
    std::uint16_t ranura_variable = 0;
    std::uint16_t desplazamiento = 0;  // in the fixed part
    std::uint16_t bytes = 0;           // stored size, or the limit of a variable one
    std::uint8_t banderas = 0;
    std::uint16_t orden = 0;  // sort order of texts
    std::uint8_t version_orden = 0;
    std::optional<Puntero> mapa_largos = std::nullopt;  // Memo and OLE
    std::optional<Puntero> mapa_largos_libres = std::nullopt;
};

/// Where the entries of one or more logical indexes are kept.
struct IndiceReal {
    struct Columna {
        std::size_t posicion = 0;  // in Esquema::fisicas
        bool descendente = false;
    };
    std::vector<Columna> columnas;
    Puntero mapa;
    std::uint32_t raiz = 0;
    std::uint8_t banderas = 0;
    bool primario = false;
    std::string nombre;  // of a logical index that uses it

    bool Unico() const { return primario || (banderas & 0x01) != 0; }
    bool IgnoraNulos() const { return (banderas & 0x02) != 0; }
    bool Requerido() const { return primario || (banderas & 0x08) != 0; }
};

/// A table definition as parsed from the file.
struct Esquema {
    DefTabla tabla;
    std::uint32_t pagina = 0;
    std::uint8_t clase = 0;  // 0x4E user table, 0x53 system table
    std::uint16_t ranuras_columna = 0;
    std::uint16_t ranuras_variables = 0;
    std::vector<ColumnaFisica> fisicas;  // parallel to tabla.columnas
    std::vector<IndiceReal> reales;
    std::vector<std::size_t> real_de;   // parallel to tabla.indices
    std::vector<std::uint32_t> cadena;  // its definition pages
    Puntero propias;
    Puntero libres;
    std::optional<std::size_t> autonumerica;
    std::size_t parte_fija = 0;   // bytes of the fixed part
    std::size_t largo = 0;        // of the definition, as parsed
    std::size_t largo_dicho = 0;  // as the definition says

    bool EsDeSistema() const { return clase == kClaseSistema || pagina == kPaginaCatalogo; }
    /// Position of the column with that name, without case.
    std::optional<std::size_t> BuscarColumna(std::string_view nombre) const;
    /// Position of the logical index with that name, without case.
    std::optional<std::size_t> BuscarIndice(std::string_view nombre) const;

    static constexpr std::uint8_t kClaseUsuario = 0x4E;
    static constexpr std::uint8_t kClaseSistema = 0x53;
};

/// Offsets of the counters in a definition.
constexpr std::size_t kPosFilas = 0x10;
constexpr std::size_t kPosAutonumerico = 0x14;
constexpr std::size_t kPosContadores = 0x3F;
constexpr std::size_t kLargoContador = 12;

/// Reads and checks the definition that begins on that page.
Result<std::shared_ptr<const Esquema>> LeerEsquema(Almacen& almacen, std::uint32_t pagina,
                                                   const std::string& nombre);

/// The stored size of a type that always has the same, else 0.
std::size_t TamanoFijo(TipoColumna tipo);
bool EsLargo(TipoColumna tipo);
bool EsTexto(TipoColumna tipo);
/// Whether values of that type can be written.
bool SeEscribe(TipoColumna tipo);

}  // namespace quimo::jet
