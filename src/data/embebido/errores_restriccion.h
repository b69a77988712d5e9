#pragma once

#include <string>

#include "data/embebido/sesion.h"

namespace quimo::data::embebido {

/// Tells a failed write as the server does: which constraint refused it, on which table and column.
/// `repetir` runs the same write once more, so that a reference that does not hold can be found.
class ErrorDeRestriccion {
public:
    ErrorDeRestriccion(Sesion& sesion, tsql::TablaPtr tabla, std::string verbo)
        : sesion_(sesion), tabla_(std::move(tabla)), verbo_(std::move(verbo)) {}

    ErrorSql Explicar(int codigo, const std::function<int()>& repetir);

private:
    ErrorSql SinNulos(const std::string& mensaje) const;
    ErrorSql Repetida(const std::string& mensaje) const;
    ErrorSql Comprobacion(const std::string& mensaje) const;
    ErrorSql Referencia(const std::function<int()>& repetir);
    void Examinar(int codigo, ErrorSql& hallado);
    bool Viola(const tsql::Tabla& hija, const tsql::Foranea& foranea, const tsql::Tabla& madre);
    ErrorSql Conflicto(const std::string& clase, const std::string& nombre,
                       const std::string& tabla, const std::vector<std::string>& columnas) const;

    Sesion& sesion_;
    tsql::TablaPtr tabla_;
    std::string verbo_;
};

}  // namespace quimo::data::embebido
