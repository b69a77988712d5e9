#pragma once

#include "tsql/traduccion/contexto_interno.h"
#include "tsql/traduccion/funciones_interno.h"
#include "tsql/traduccion/predicados_interno.h"

namespace quimo::tsql {

/// Writes expressions as SQL: values and conditions of any kind. What stands in parentheses as a
/// query is `consultas`' work.
class TraductorExpresiones final : public Valorador {
public:
    TraductorExpresiones(Contexto& contexto, Subconsultas& consultas)
        : contexto_(contexto),
          consultas_(consultas),
          predicados_(contexto, *this, consultas),
          funciones_(contexto, *this) {}

    Resultado<Termino> Valor(const ExprPtr& expr, Ambito& ambito) override;
    Resultado<Termino> ValorSuelto(const ExprPtr& expr, Ambito& ambito) override;
    std::size_t Marca() const override { return contexto_.ranuras.size(); }
    void Volver(std::size_t marca) override { contexto_.ranuras.resize(marca); }

private:
    Resultado<Termino> ValorSinGrupo(const Expr& expr, Ambito& ambito);
    Termino Constante(const Expr& expr);
    Resultado<Termino> Variable(const Expr& expr);
    Resultado<Termino> Parametro(const Expr& expr);
    Resultado<Termino> Global(const Expr& expr);
    Resultado<Termino> Columna(const Expr& expr, const Ambito& ambito) const;
    Resultado<Termino> Unaria(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Binaria(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Caso(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Conversion(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Subconsulta(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Existe(const Expr& expr, Ambito& ambito);

    Contexto& contexto_;
    Subconsultas& consultas_;
    TraductorPredicados predicados_;
    TraductorFunciones funciones_;
};

/// A column of FROM.
Termino TerminoDe(const ColumnaAmbito& columna);

}  // namespace quimo::tsql
