#pragma once

#include <optional>
#include <vector>

#include "data/embebido/sesion.h"

namespace quimo::data::embebido {

/// An UPDATE whose keys pass through values that other rows of it still hold (ID=ID+1). The engine
/// refuses it row by row; here every key is first moved out of the way, and then all rows are
/// written. For one UPDATE, after the engine refused it.
class EscrituraPorPartes {
public:
    /// The plan must outlive it.
    EscrituraPorPartes(Sesion& sesion, const tsql::Plan& plan);

    /// Whether it can be done so: the statement changes keys, of kinds that have values to spare,
    /// and no reference of another table goes with them.
    bool Sirve() const;
    /// `lectura` gives, for each row, its rowid and the values that are to be written. Tells how
    /// many rows were; nothing, with nothing done, when keys repeat even so.
    Resultado<std::optional<std::int64_t>> Escribir(Preparada lectura);

private:
    struct FilaNueva {
        std::int64_t fila = 0;
        std::vector<Valor> valores;
    };
    Resultado<std::vector<FilaNueva>> LeerFilas(Preparada& lectura);
    Resultado<bool> Apartar(std::vector<FilaNueva>& filas);
    Resultado<bool> EscribirFilas(const std::vector<FilaNueva>& filas);
    Resultado<bool> Paso(Preparada& sentencia);

    Sesion& sesion_;
    const tsql::Plan& plan_;
    std::vector<int> claves_;  ///< columns of keys among those that are written
};

}  // namespace quimo::data::embebido
