#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/esquema.h"
#include "jet/tabla.h"

/// The tables of a database are rows of MSysObjects.
namespace quimo::jet {

struct ObjetoCatalogo {
    std::int32_t id = 0;
    std::int32_t padre = 0;
    std::string nombre;
    std::int32_t tipo = 0;
    std::int32_t banderas = 0;
    Valor dueno;

    static constexpr std::int32_t kTabla = 1;
    static constexpr std::int32_t kEnlazadaOdbc = 4;
    static constexpr std::int32_t kConsulta = 5;
    static constexpr std::int32_t kEnlazada = 6;

    bool EsTabla() const { return tipo == kTabla; }
    bool EsDeSistema() const { return (static_cast<std::uint32_t>(banderas) & 0x80000002U) != 0; }
    std::uint32_t Pagina() const { return static_cast<std::uint32_t>(id) & 0x00FFFFFFU; }
};

/// All objects. Formato when two tables have one name or one definition.
Result<std::vector<ObjetoCatalogo>> LeerCatalogo(Almacen& almacen);
/// The definition of a local table, by its name without case.
Result<std::shared_ptr<const Esquema>> BuscarEsquema(Almacen& almacen, std::string_view nombre);

/// Checks page 0: that it is a database of this format, in the clear and without a password.
Result<void> ComprobarCabecera(Almacen& almacen);
/// The header page of a new database.
Pagina CabeceraNueva();
/// The block of the header that is kept obfuscated, in the clear. 128 bytes from 0x18 on.
std::array<std::uint8_t, 128> BloqueEnClaro(const Pagina& cabecera);

/// The local time of this machine, for creation dates.
Fecha Ahora();
/// Makes the pages and catalogue rows of a table. The definition must be a possible one.
Result<void> AgregarTabla(Almacen& almacen, const DefTabla& definicion);
/// Fills a store without pages with the smallest database.
Result<void> LlenarBaseNueva(Almacen& almacen);

}  // namespace quimo::jet
