#pragma once

#include <filesystem>
#include <span>
#include <string_view>

#include "base/result.h"
#include "jet/definicion.h"

namespace quimo::dayclose {

/// One column of a terminal's database. The length counts for texts only.
struct CampoPlantilla {
    std::string_view nombre;
    int largo = 0;
    jet::TipoColumna tipo = jet::TipoColumna::Largo;
    bool comprimido = false;
};

/// One table of a terminal's database. Its first `clave` columns are the primary key; 0: without
/// one. `indice` names a column with an index of its own that allows repeated values.
struct TablaPlantilla {
    std::string_view nombre;
    std::span<const CampoPlantilla> campos;
    int clave = 1;
    std::string_view indice = {};
};

/// The 40 tables that a terminal's program expects: the sales it writes and the catalogues it sells
/// from.
std::span<const TablaPlantilla> TablasPlantilla();

/// The same table as the file library takes it.
jet::DefTabla Definicion(const TablaPlantilla& tabla);

/// Writes an empty terminal database with all tables. Refuses an existing file (Restriccion); on
/// any error there is no file.
base::Result<void> EscribirPlantilla(const std::filesystem::path& ruta);

}  // namespace quimo::dayclose
