#pragma once

#include "tsql/traduccion/contexto_interno.h"

namespace quimo::tsql {

/// Writes FROM, and puts the names that it brings into a query's scope.
class TraductorFuentes {
public:
    TraductorFuentes(Contexto& contexto, Valorador& valores, Subconsultas& consultas)
        : contexto_(contexto), valores_(valores), consultas_(consultas) {}

    Resultado<std::string> Desde(const std::vector<FuentePtr>& fuentes, Ambito& ambito);
    /// A table with an alias of its own, which the plan stands on from now on.
    TablaAmbito AmbitoDe(const TablaPtr& tabla, const std::string& expuesto);

private:
    /// The two sides of a join as they stand in SQL.
    struct Lados {
        std::string izquierda;
        std::string derecha;
        bool enteros = false;  ///< one of them is the whole join already
    };

    Resultado<std::string> FuenteSql(const Fuente& fuente, Ambito& ambito);
    Resultado<std::string> JoinSql(const Fuente& fuente, Ambito& ambito);
    Resultado<Lados> LadosSql(const Fuente& fuente, Ambito& ambito);
    Resultado<Lados> ConGrupos(const Fuente& fuente, const Fuente& opcional, Ambito& ambito);
    std::optional<std::string> OpcionalFiltrada(const Fuente& fuente, const Ambito& ambito,
                                                std::size_t marca);
    Resultado<std::string> TablaSql(const Fuente& fuente, Ambito& ambito);
    Resultado<std::string> ComunSql(std::size_t marco, std::size_t cual,
                                    const std::string& expuesto, Ambito& ambito);
    Resultado<std::string> VistaSql(const NombreObjeto& nombre, const std::string& expuesto,
                                    Ambito& ambito);
    Resultado<std::string> DerivadaSql(const Consulta& consulta, const std::string& nombre,
                                       const std::vector<std::string>& columnas, Ambito& ambito,
                                       Ambito* padre);
    Resultado<TablaAmbito> TablaDerivada(const ConsultaSql& dentro, const std::string& nombre,
                                         const std::vector<std::string>& columnas);

    Contexto& contexto_;
    Valorador& valores_;
    Subconsultas& consultas_;
};

/// Adds a table to those that a query sees.
Hecho Exponer(TablaAmbito tabla, Ambito& ambito);

}  // namespace quimo::tsql
