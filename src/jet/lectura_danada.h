#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "jet/almacen.h"
#include "jet/catalogo.h"
#include "jet/esquema.h"
#include "jet/pagina_datos.h"
#include "jet/tipos_fila.h"

/// Reading a file of which parts are damaged or lost. Nothing here ends at the first error.
namespace quimo::jet {

/// What could not be read, each with its place. It does not grow without bounds.
class Quejas {
public:
    explicit Quejas(std::vector<std::string>& lista) : lista_(lista) {}
    void Anotar(std::string queja);

private:
    std::vector<std::string>& lista_;
};

/// Knows which data page belongs to which table from both sides, the tables' maps and the pages'
/// own headers, so that a fault in one of them loses nothing.
class LecturaDanada {
public:
    /// Takes a row: its identity and its bytes, valid until the next row.
    using Receptora = std::function<void(IdFila, std::span<const std::uint8_t>)>;

    /// Goes over all pages of the file once.
    explicit LecturaDanada(Almacen& almacen);

    /// Enters a table, before the rows of any table are read.
    void Conocer(const Esquema& esquema);
    /// Every row that is there, in the order of the file.
    void Recorrer(const Esquema& esquema, Quejas& quejas, const Receptora& recibir);
    /// Pages with rows that say they are of that table but that nothing else confirms: its map does
    /// not name them and the file calls them free. Recorrer leaves them out.
    std::vector<std::uint32_t> Dudosas(const Esquema& esquema) const;
    /// First pages of user tables that nobody has entered and the file does not call free.
    std::vector<std::uint32_t> DefinicionesSueltas() const;

private:
    struct Ficha {
        std::uint8_t tipo = 0;
        bool ilegible = false;
        bool con_filas = false;
        std::uint32_t dueno = 0;     // as its header says
        std::uint32_t de_quien = 0;  // the table whose map names it
    };
    bool EstaLibre(std::uint32_t pagina) const {
        return pagina < libres_.size() && libres_[pagina];
    }
    bool EsDefinicion(std::uint32_t pagina) const {
        return pagina < paginas_.size() && paginas_[pagina].tipo == kPaginaDefinicion;
    }
    std::set<std::uint32_t> PaginasDe(const Esquema& esquema, Quejas& quejas) const;
    void RecorrerPagina(std::uint32_t numero, Quejas& quejas, const Receptora& recibir);
    std::optional<FilaCruda> Seguir(FilaCruda fila);

    Almacen& almacen_;
    std::vector<Ficha> paginas_;
    std::vector<bool> libres_;
    std::set<std::uint32_t> cadenas_;  // pages of the definitions that were entered
    std::map<std::uint32_t, std::vector<std::uint32_t>> faltan_;  // named by a map, past the end
    std::set<std::uint32_t> propias_;  // pages of the table that is walked
    std::set<Puntero> llegadas_;       // moved content that one of its rows led to
};

}  // namespace quimo::jet
