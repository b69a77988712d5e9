#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/lectura/ast.h"

namespace quimo::tsql {

struct ColumnaTabla {
    std::string nombre;
    Tipo tipo;
    bool admite_nulos = true;
    bool identidad = false;
    std::int64_t semilla = 1;
    std::int64_t incremento = 1;
    std::string defecto = {};  ///< T-SQL of the default; empty without one
    std::string nombre_defecto = {};
    std::string calculada = {};  ///< T-SQL of a computed column
    bool persistida = false;
};

struct Indice {
    enum class Clase { Primaria, Unica, IndiceUnico, Indice };
    std::string nombre;
    Clase clase = Clase::Indice;
    std::vector<int> columnas;  ///< positions in Tabla::columnas
};

struct Foranea {
    std::string nombre;
    std::vector<std::string> columnas;
    std::string tabla;
    std::vector<std::string> columnas_referidas;
    std::string al_borrar;
    std::string al_cambiar;
};

struct Comprobacion {
    std::string nombre;
    std::string texto;
    std::string columna;  ///< of a check declared with a column
};

/// A table as T-SQL knows it. Kept whole and never changed: a new definition is a new object.
struct Tabla {
    std::int64_t id = 0;
    std::string nombre;
    bool temporal = false;
    bool del_sistema = false;
    std::vector<ColumnaTabla> columnas;
    std::vector<Indice> indices;
    std::vector<Foranea> foraneas;
    std::vector<Comprobacion> comprobaciones;
    std::string
        sql;  ///< what stands for it in FROM: the quoted name, or the query of a system view

    /// Position of a column by its name without case; -1 when there is none.
    int Columna(std::string_view nombre_columna) const;
    const ColumnaTabla* Identidad() const;
    const Indice* Primaria() const;
    /// The column that is the row's own number in the engine: the only column of the primary key,
    /// when it is an INT or BIGINT. -1 when there is none.
    int ColumnaFila() const;
};

using TablaPtr = std::shared_ptr<const Tabla>;
using ModuloPtr = std::shared_ptr<const CrearModulo>;

/// What names mean. Names are looked up without case.
class Catalogo {
public:
    Catalogo() = default;
    Catalogo(const Catalogo&) = delete;
    Catalogo& operator=(const Catalogo&) = delete;
    virtual ~Catalogo() = default;

    virtual TablaPtr BuscarTabla(const NombreObjeto& nombre) const = 0;
    /// A view, procedure or function.
    virtual ModuloPtr BuscarModulo(const NombreObjeto& nombre) const = 0;
};

}  // namespace quimo::tsql
