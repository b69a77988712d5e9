#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/definicion.h"
#include "jet/esquema.h"
#include "jet/tipos_fila.h"

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
    bool EsEnlazada() const { return tipo == kEnlazada || tipo == kEnlazadaOdbc; }
    /// Tables and queries share one space of names.
    bool CompiteEnNombres() const { return EsTabla() || EsEnlazada() || tipo == kConsulta; }
    bool EsDeSistema() const { return (static_cast<std::uint32_t>(banderas) & 0x80000002U) != 0; }
    std::uint32_t Pagina() const { return static_cast<std::uint32_t>(id) & 0x00FFFFFFU; }
};

/// The objects of a database, in the order of the catalogue, and the tables and queries among them
/// by their folded names.
struct Catalogo {
    std::vector<ObjetoCatalogo> objetos;
    std::map<std::string, std::size_t> por_nombre;
    std::set<Binario> con_permisos;  // who gets rights on a new table; empty until one is made

    void Agregar(ObjetoCatalogo objeto);
    /// The table, linked table or query of that name, without case; nullptr if there is none.
    const ObjetoCatalogo* Buscar(std::string_view nombre) const;
};

/// Read once for each open file. Formato when two tables have one name or one definition.
Result<std::shared_ptr<const Catalogo>> LeerCatalogo(Almacen& almacen);
/// The definition of a local table, by its name without case.
Result<std::shared_ptr<const Esquema>> BuscarEsquema(Almacen& almacen, std::string_view nombre);

/// Adds what a row of MSysRelationships says; rows of one name belong together.
void AgregarRelacion(const Esquema& esquema, const Fila& fila, std::vector<Relacion>& relaciones);
/// All of MSysRelationships. Nothing when the file has no such table.
Result<std::vector<Relacion>> LeerRelaciones(Almacen& almacen);
/// The sort order that page 0 names.
OrdenTexto OrdenDeCabecera(const Pagina& cabecera);

/// Checks page 0: that it is a database of this format, in the clear and without a password.
Result<void> ComprobarCabecera(Almacen& almacen);
/// The same without minding that the file may have been cut in the middle of a page.
Result<void> ComprobarFormato(Almacen& almacen);
/// The header page of a new database.
Pagina CabeceraNueva();
/// The block of the header that is kept obfuscated, in the clear. 128 bytes from 0x18 on.
std::array<std::uint8_t, 128> BloqueEnClaro(const Pagina& cabecera);

/// The local time of this machine, for creation dates.
Fecha Ahora();
/// Makes the pages and catalogue rows of a table and returns the page of its definition, which must
/// be a possible one.
Result<std::uint32_t> AgregarTabla(Almacen& almacen, const DefTabla& definicion);
/// Fills a store without pages with the smallest database.
Result<void> LlenarBaseNueva(Almacen& almacen);

}  // namespace quimo::jet
