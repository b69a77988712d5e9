#pragma once

#include "tsql/traduccion/consultas_interno.h"

namespace quimo::tsql {

/// Writes INSERT, UPDATE and DELETE. One of these serves for one statement.
class TraductorEscritura {
public:
    TraductorEscritura(Contexto& contexto, TraductorConsultas& consultas)
        : contexto_(contexto), consultas_(consultas), valores_(consultas.Expresiones()) {}

    Resultado<Plan> InsertarEn(const Insertar& insertar);
    Resultado<Plan> ActualizarEn(const Actualizar& actualizar);
    Resultado<Plan> BorrarDe(const Borrar& borrar);

private:
    /// The columns that an INSERT fills: those it gives values for, then the others.
    struct Destinos {
        std::vector<int> columnas;
        std::string nombres;
        std::vector<std::string> defectos;
    };
    /// SET columns and their values, each in its own list.
    struct Escritas {
        std::vector<int> columnas;
        std::vector<std::string> valores;
    };
    /// FROM, and which of its tables is the one that is written to.
    struct Escenario {
        std::string sql;
        std::size_t cual = 0;
    };

    Resultado<TablaPtr> TablaEscrita(const NombreObjeto& nombre);
    Resultado<std::vector<int>> ColumnasDadas(const Insertar& insertar, Plan& plan) const;
    Resultado<Destinos> DestinosDe(const Insertar& insertar, Plan& plan);
    Resultado<std::string> FilaDeValores(const Insertar& insertar, const std::vector<ExprPtr>& fila,
                                         const Destinos& destinos, const Tabla& tabla);
    Resultado<std::string> FilasDeConsulta(const Insertar& insertar, const Destinos& destinos,
                                           const Tabla& tabla);
    Resultado<Termino> Defecto(const ColumnaTabla& columna, const Tabla& tabla);
    Resultado<Escritas> Asignaciones(const Actualizar& actualizar, const Tabla& tabla,
                                     Ambito& ambito);
    Resultado<Plan> ActualizarUna(const Actualizar& actualizar);
    Resultado<Plan> ActualizarDesde(const Actualizar& actualizar);
    Resultado<Escenario> EscenarioDe(const NombreObjeto& nombre,
                                     const std::vector<FuentePtr>& fuentes, Ambito& ambito);
    Resultado<std::size_t> Blanco(const NombreObjeto& nombre, const Ambito& ambito) const;
    Resultado<std::string> DondeSql(const ExprPtr& donde, Ambito& ambito);
    Resultado<std::string> TopeSql(const ExprPtr& tope);

    Contexto& contexto_;
    TraductorConsultas& consultas_;
    Valorador& valores_;
};

}  // namespace quimo::tsql
