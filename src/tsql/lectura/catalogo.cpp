#include "tsql/lectura/catalogo.h"

#include <algorithm>

#include "tsql/valores/texto.h"

namespace quimo::tsql {

int Tabla::Columna(std::string_view nombre_columna) const {
    for (std::size_t i = 0; i < columnas.size(); ++i) {
        if (MismoNombre(columnas[i].nombre, nombre_columna)) return static_cast<int>(i);
    }
    return -1;
}

const ColumnaTabla* Tabla::Identidad() const {
    const auto donde = std::find_if(columnas.begin(), columnas.end(),
                                    [](const ColumnaTabla& c) { return c.identidad; });
    return donde == columnas.end() ? nullptr : &*donde;
}

const Indice* Tabla::Primaria() const {
    const auto donde = std::find_if(indices.begin(), indices.end(), [](const Indice& i) {
        return i.clase == Indice::Clase::Primaria;
    });
    return donde == indices.end() ? nullptr : &*donde;
}

int Tabla::ColumnaFila() const {
    const Indice* primaria = Primaria();
    if (primaria == nullptr || primaria->columnas.size() != 1) return -1;
    const ColumnaTabla& columna = columnas[static_cast<std::size_t>(primaria->columnas[0])];
    const bool entero = columna.tipo.clase == Clase::Int || columna.tipo.clase == Clase::BigInt;
    return entero && columna.calculada.empty() ? primaria->columnas[0] : -1;
}

}  // namespace quimo::tsql
