#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tsql/reescritura/busqueda_de_grupo.h"
#include "tsql/traduccion/traductor.h"

namespace quimo::tsql {

using Hecho = base::Result<void, ErrorSql>;

/// What all parts of one translation share.
struct Contexto {
    explicit Contexto(const Entorno& entorno_dado) : entorno(entorno_dado) {}
    Contexto(const Contexto&) = delete;
    Contexto& operator=(const Contexto&) = delete;

    const Entorno& entorno;
    std::vector<Ranura> ranuras = {};
    std::vector<TablaPtr> usadas = {};
    /// WITH, those of the queries around included.
    std::vector<std::vector<ExpresionComun>> comunes = {};
    /// Arguments of the functions that are being put in place of their calls.
    std::vector<std::map<std::string, Termino>> sustituciones = {};
    int siguiente_tabla = 1;
    int vistas = 0;
    int niveles = 0;
    bool filtrando = false;  ///< a join's condition is being read a second time

    /// "?3": the place of a value that is bound; the same value has one place.
    std::string RanuraSql(Ranura ranura);
    std::string AliasNuevo() { return "\"t" + std::to_string(siguiente_tabla++) + "\""; }
    std::optional<Tipo> TipoDeVariable(const std::string& nombre) const;
    std::optional<Literal> Constante(const Expr& expr) const { return Fijar(expr, entorno.lote); }
    /// Hands the plan what it stands on. Nothing is translated after this.
    Plan Terminar(Plan plan) {
        plan.ranuras = std::move(ranuras);
        plan.usadas = std::move(usadas);
        return plan;
    }
};

/// Counts one level of nesting while it lives.
class Nivel {
public:
    explicit Nivel(Contexto& contexto) : niveles_(contexto.niveles) { ++niveles_; }
    Nivel(const Nivel&) = delete;
    Nivel& operator=(const Nivel&) = delete;
    ~Nivel() { --niveles_; }

    bool Pasa(int limite) const { return niveles_ > limite; }

private:
    int& niveles_;
};

struct ConsultaSql {
    std::string sql;
    std::vector<ColumnaSalida> columnas;  ///< named "q1", "q2"... in the SQL
    std::vector<std::string> variables;
    bool una_fila = false;
    std::optional<PiezasDeGrupo> grupo;
};

/// "q1" of the first column of a query, with its quotes.
std::string NombreQ(std::size_t indice);

/// Whoever writes the queries that stand inside expressions.
class Subconsultas {
public:
    Subconsultas() = default;
    Subconsultas(const Subconsultas&) = delete;
    Subconsultas& operator=(const Subconsultas&) = delete;
    virtual ~Subconsultas() = default;

    virtual Resultado<ConsultaSql> ConsultaEn(const Consulta& consulta, Ambito* padre) = 0;
};

}  // namespace quimo::tsql
