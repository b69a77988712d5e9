#pragma once

#include "tsql/traduccion/contexto_interno.h"

namespace quimo::tsql {

/// Writes the conditions that compare values.
class TraductorPredicados {
public:
    TraductorPredicados(Contexto& contexto, Valorador& valores, Subconsultas& consultas)
        : contexto_(contexto), valores_(valores), consultas_(consultas) {}

    Resultado<Termino> Comparacion(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Entre(const Expr& expr, Ambito& ambito);
    Resultado<Termino> EnLista(const Expr& expr, Ambito& ambito);
    Resultado<Termino> EnConsulta(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Cuantificada(const Expr& expr, Ambito& ambito);
    Resultado<Termino> EsNulo(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Como(const Expr& expr, Ambito& ambito);

private:
    Contexto& contexto_;
    Valorador& valores_;
    Subconsultas& consultas_;
};

}  // namespace quimo::tsql
