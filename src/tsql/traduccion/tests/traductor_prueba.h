#pragma once

#include <string>

#include "catalogo_prueba.h"
#include "tsql/traduccion/traductor.h"

namespace quimo::tsql {

/// A table with a column of every kind, and what may stand around one.
const CatalogoPrueba& EsquemaPrueba();

/// Translates the first statement of a text over that schema. @n is an INT, @t a VARCHAR(5); there
/// is one parameter, an INT.
struct TraductorPrueba {
    TraductorPrueba();

    Resultado<Plan> Traducir(const std::string& tsql,
                             Constantes constantes = Constantes::EnElArbol);

    Entorno entorno;
    Lote lote;  ///< the text that was translated last
};

/// SQL without the quotes of its names.
std::string SinComillas(std::string sql);

}  // namespace quimo::tsql
