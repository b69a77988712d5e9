#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tsql/lectura/catalogo.h"
#include "tsql/lectura/parser.h"
#include "tsql/valores/fechas.h"

namespace quimo::tsql {

/// What the engine binds to one ?N of a translated statement.
struct Ranura {
    enum class Origen {
        Literal,    ///< constant number `indice` of the text
        Parametro,  ///< parameter number `indice` of the call
        Variable,   ///< `nombre`, with @
        Global,     ///< `nombre`: @@ROWCOUNT, GETDATE and the like
    };
    Origen origen = Origen::Literal;
    int indice = -1;
    std::string nombre = {};
    Tipo tipo = {};
};

struct ColumnaSalida {
    std::string nombre;
    Tipo tipo;
    bool admite_nulos = true;
};

/// A statement in the engine's own SQL. Its functions (q_...) and its text order (QUIMO) are the
/// ones of funciones.h.
struct Plan {
    std::string sql;
    std::vector<Ranura> ranuras;          ///< ranuras[0] is ?1
    std::vector<ColumnaSalida> columnas;  ///< of a query
    std::vector<std::string> variables;   ///< SELECT @x = ...: which variable each column goes to
    TablaPtr tabla;                       ///< that is written to
    /// Of an UPDATE: its rows' numbers and new values, to write them one after the other when keys
    /// pass through values that others still hold.
    std::string sql_filas = {};
    std::vector<int> columnas_escritas = {};
    bool identidad_automatica = false;  ///< the engine numbers the rows
    bool identidad_explicita = false;   ///< the statement gives the numbers
    std::vector<TablaPtr> usadas;       ///< tables that the plan stands on
};

/// What a text means depends on where it is run.
struct Entorno {
    const Catalogo* catalogo = nullptr;
    /// Type of a declared variable; nothing for an unknown one.
    std::function<std::optional<Tipo>(const std::string&)> tipo_variable = {};
    std::vector<Tipo> parametros = {};
    OrdenFecha orden = OrdenFecha::Dma;
    std::string base = {};             ///< the database's name
    std::string identity_insert = {};  ///< table whose identity column takes values, lower case
    Lote* lote = nullptr;              ///< whose constants are read; may be null
};

Resultado<Plan> TraducirConsulta(const Consulta& consulta, const Entorno& entorno);
/// One value or one condition (1 or 0), as a query of one row.
Resultado<Plan> TraducirValor(const Expr& expr, const Entorno& entorno);
Resultado<Plan> TraducirInsertar(const Insertar& insertar, const Entorno& entorno);
/// The INSERT of one row of given values, for rows that come from a procedure.
Resultado<Plan> TraducirInsertarFila(const Insertar& insertar, const std::vector<Tipo>& tipos,
                                     const Entorno& entorno);
Resultado<Plan> TraducirActualizar(const Actualizar& actualizar, const Entorno& entorno);
Resultado<Plan> TraducirBorrar(const Borrar& borrar, const Entorno& entorno);

/// An expression of a table's own definition (computed column, check): what it yields and its SQL,
/// with columns by their bare names.
struct ExpresionDeTabla {
    std::string sql;
    Tipo tipo;
    bool admite_nulos = true;
};
Resultado<ExpresionDeTabla> TraducirDeTabla(const std::string& texto, const Tabla& tabla,
                                            const Entorno& entorno);

}  // namespace quimo::tsql
