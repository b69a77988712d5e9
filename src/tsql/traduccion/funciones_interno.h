#pragma once

#include "tsql/traduccion/agregados_interno.h"
#include "tsql/traduccion/contexto_interno.h"

namespace quimo::tsql {

/// Writes the calls of functions, the dialect's own and those written in T-SQL.
class TraductorFunciones {
public:
    TraductorFunciones(Contexto& contexto, Valorador& valores)
        : contexto_(contexto), valores_(valores), agregados_(contexto, valores) {}

    Resultado<Termino> Funcion(const Expr& expr, Ambito& ambito);

private:
    Resultado<std::vector<Termino>> Argumentos(const Expr& expr, Ambito& ambito,
                                               std::size_t desde = 0);
    Resultado<Termino> Sencilla(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Fecha(const Expr& expr, Ambito& ambito);
    Resultado<Termino> IsNull(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Coalesce(const Expr& expr, Ambito& ambito);
    Resultado<Termino> NullIf(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Subcadena(const Expr& expr, Ambito& ambito);
    Resultado<Termino> DeNumero(const Expr& expr, Ambito& ambito);
    Resultado<Termino> DelTipo(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Propia(const Expr& expr, Ambito& ambito);
    Resultado<Termino> EnSitio(const CrearModulo& funcion, const ExprPtr& cuerpo,
                               const std::vector<Termino>& argumentos);
    Resultado<Termino> ConvertirA(Termino termino, const Tipo& tipo) const;

    Contexto& contexto_;
    Valorador& valores_;
    TraductorAgregados agregados_;
};

}  // namespace quimo::tsql
