#pragma once

#include "tsql/traduccion/contexto_interno.h"

namespace quimo::tsql {

/// Writes aggregates and the functions of windows.
class TraductorAgregados {
public:
    TraductorAgregados(Contexto& contexto, Valorador& valores)
        : contexto_(contexto), valores_(valores) {}

    /// An aggregate over the groups of the query that it belongs to, or over a window.
    Resultado<Termino> Agregado(const Expr& expr, Ambito& ambito);

private:
    Resultado<Termino> Cuerpo(const Expr& expr, Ambito& ambito);
    Resultado<Termino> DeVentana(const Expr& expr, const std::string& sobre, Ambito& ambito);
    Resultado<Termino> Estadistica(const std::string& nombre, const Termino& dentro,
                                   const std::string& distinto, const std::string& sobre) const;
    Resultado<std::string> Sobre(const Ventana& ventana, Ambito& ambito);

    Contexto& contexto_;
    Valorador& valores_;
};

/// ROW_NUMBER and the like, which stand with OVER alone.
bool EsDeVentana(std::string_view funcion);

}  // namespace quimo::tsql
