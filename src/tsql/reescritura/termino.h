#pragma once

#include <string>

#include "tsql/lectura/ast.h"

namespace quimo::tsql {

/// How strongly the outermost operator of a piece of SQL binds, as the engine reads it.
enum class Fuerza { O, Y, No, Igual, Orden, Bits, Suma, Producto, Union, Cotejo, Unaria, Atomo };

/// A piece of the engine's SQL with its T-SQL type.
struct Termino {
    std::string sql;
    Tipo tipo;
    Fuerza fuerza = Fuerza::Atomo;
    bool admite_nulos = true;
    bool nulo = false;     ///< the word NULL
    bool columna = false;  ///< a bare column
    bool constante = false;
};

/// SQL in parentheses unless it binds at least as strongly as asked.
std::string Par(const Termino& termino, Fuerza minima);
/// The next stronger one: what the right side of an operator must bind by.
Fuerza MasFuerte(Fuerza fuerza);
/// A condition.
Termino Verdad(std::string sql, Fuerza fuerza);
/// A constant written into SQL.
std::string LiteralSql(const Literal& literal);

struct Ambito;

/// Whoever writes an expression of the tree as SQL.
class Valorador {
public:
    Valorador() = default;
    Valorador(const Valorador&) = delete;
    Valorador& operator=(const Valorador&) = delete;
    virtual ~Valorador() = default;

    virtual Resultado<Termino> Valor(const ExprPtr& expr, Ambito& ambito) = 0;
    /// A value whose length and digits mean nothing where it stands: compared or stored as it is.
    virtual Resultado<Termino> ValorSuelto(const ExprPtr& expr, Ambito& ambito) = 0;
    /// Where the values that the SQL asks for stand now. Going back to it forgets those that were
    /// asked for since, when the SQL that did is thrown away.
    virtual std::size_t Marca() const = 0;
    virtual void Volver(std::size_t marca) = 0;
};

}  // namespace quimo::tsql
