#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tsql/lectura/catalogo.h"
#include "tsql/lectura/parser.h"

namespace quimo::tsql {

struct ColumnaAmbito {
    std::string nombre;
    std::string sql;
    Tipo tipo;
    bool admite_nulos = true;
};

/// A table of FROM: how it may be named and what columns it has.
struct TablaAmbito {
    std::string expuesto;  ///< alias, or the table's name
    std::string alias_sql;
    std::vector<ColumnaAmbito> columnas;
    TablaPtr tabla;  ///< none of a query in parentheses

    /// Position of one of its own columns; -1 for any other.
    std::ptrdiff_t PosicionDe(const ColumnaAmbito* columna) const;
};

enum class Clausula { Lista, Donde, Teniendo, Orden, Grupo, Union, Asignacion };

/// The names that are seen from one query, and how far its rows are grouped.
struct Ambito {
    Ambito* padre = nullptr;
    std::vector<TablaAmbito> tablas;
    Clausula clausula = Clausula::Lista;
    bool agrupado = false;
    bool libre = false;  ///< inside an aggregate or a grouped expression
    std::vector<ExprPtr> grupos;
};

/// The column that an expression names in this query, not in those around it; none when it names
/// none of these.
Resultado<const ColumnaAmbito*> BuscarColumna(const Expr& expr, const Ambito& ambito);

/// The value of a constant expression, which from now on belongs to the tree's form. `lote` is the
/// text whose constants the tree names by position; it may be null.
std::optional<Literal> Fijar(const Expr& expr, Lote* lote);

/// Whether two expressions say the same, names looked up.
bool DicenLoMismo(const Expr& a, const Expr& b, const Ambito& ambito, Lote* lote);

}  // namespace quimo::tsql
