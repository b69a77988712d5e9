#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"

namespace quimo::jet {

/// What became of one table.
struct TablaReparada {
    std::string nombre;
    std::int64_t leidas = 0;      ///< rows in the copy
    std::int64_t declaradas = 0;  ///< rows that the damaged file says it has
    /// Pages and rows that are not in the copy, each with its place and why (Spanish). The list
    /// ends after a thousand, and says so.
    std::vector<std::string> ilegibles;
};

struct InformeReparacion {
    std::vector<TablaReparada> tablas;
    /// What else the copy does not have: an index whose keys cannot be computed, relationships,
    /// queries, linked tables (Spanish).
    std::vector<std::string> faltas;

    /// Nothing is missing from the copy.
    bool Completa() const;
    /// Rows in the copy.
    std::int64_t Renglones() const;
};

/// Writes a sound copy of a damaged file: every row that can be read, one by one, in the order of
/// the file; rows counted anew, indexes and maps made anew, properties of columns and the
/// autonumber kept. A row that repeats the key of an earlier one is left out and told as
/// unreadable; so is whatever else cannot be kept: nothing is dropped in silence. The copy is
/// verified before it is put in its place. `destino` is replaced whole; `origen` is never written
/// to.
///
/// Errors: those of BaseDatos::Abrir for a file that is none, is of another format, enciphered or
/// protected; Datos when both are the same file; Formato when not even the names of the tables can
/// be found; those of saving.
base::Result<InformeReparacion> Reparar(const std::string& origen, const std::string& destino);
/// The same from the bytes of a file to those of its copy.
base::Result<InformeReparacion> RepararImagen(std::vector<std::uint8_t> imagen,
                                              std::vector<std::uint8_t>& copia);

}  // namespace quimo::jet
