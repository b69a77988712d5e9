#include "traductor_prueba.h"

#include <algorithm>

namespace quimo::tsql {

namespace {

struct Traduccion {
    const Entorno& entorno;

    Resultado<Plan> operator()(const Seleccionar& que) const {
        return TraducirConsulta(*que.consulta, entorno);
    }
    Resultado<Plan> operator()(const Insertar& que) const { return TraducirInsertar(que, entorno); }
    Resultado<Plan> operator()(const Actualizar& que) const {
        return TraducirActualizar(que, entorno);
    }
    Resultado<Plan> operator()(const Borrar& que) const { return TraducirBorrar(que, entorno); }
    template <typename Otra>
    Resultado<Plan> operator()(const Otra& /*otra*/) const {
        return SintaxisIncorrecta("una sentencia que no se traduce");
    }
};

}  // namespace

const CatalogoPrueba& EsquemaPrueba() {
    static const CatalogoPrueba catalogo{
        "CREATE TABLE A (ID INT NOT NULL PRIMARY KEY, n INT NULL, s SMALLINT, b BIT, m MONEY, "
        "p NUMERIC(9,2), w NUMERIC(30,4), f FLOAT, t VARCHAR(20), u NVARCHAR(10), c CHAR(5), "
        "d DATETIME, bin VARBINARY(8), uid UNIQUEIDENTIFIER, dia VARCHAR(8))",
        "CREATE TABLE B (ID INT NOT NULL PRIMARY KEY, ID_A INT, z INT, y MONEY)",
        "CREATE TABLE I (ID INT IDENTITY(1,1) NOT NULL PRIMARY KEY, v INT DEFAULT 5, "
        "calc AS v*2, obligado VARCHAR(5) NOT NULL DEFAULT 'x')",
        "CREATE TABLE [de \"todo\"] ([la 'llave'] INT)",
        "CREATE INDEX IX_dia ON A (dia)",
        "CREATE INDEX IX_z ON B (z)",
        "CREATE VIEW V (clave, total) AS SELECT ID, m FROM A WHERE n > 1",
        "CREATE VIEW Vuelta AS SELECT clave FROM Vuelta",
        "CREATE FUNCTION dbo.Doble (@x INT) RETURNS INT AS BEGIN RETURN @x*2 END",
        "CREATE FUNCTION dbo.Suma (@x INT) RETURNS INT AS BEGIN RETURN @x+@x END",
        "CREATE FUNCTION dbo.Larga (@x INT) RETURNS INT AS BEGIN SET @x=@x+1 RETURN @x END"};
    return catalogo;
}

TraductorPrueba::TraductorPrueba() {
    entorno.catalogo = &EsquemaPrueba();
    entorno.tipo_variable = [](const std::string& nombre) -> std::optional<Tipo> {
        if (nombre == "@n") return TipoEntero(Clase::Int);
        if (nombre == "@t") return TipoTexto(Clase::VarChar, 5);
        return std::nullopt;
    };
    entorno.parametros = {TipoEntero(Clase::Int)};
}

Resultado<Plan> TraductorPrueba::Traducir(const std::string& tsql, Constantes constantes) {
    QUIMO_TRY(lote, LeerLote(tsql, constantes));
    entorno.lote = &lote;
    return std::visit(Traduccion{entorno}, lote.sentencias[0]->que);
}

std::string SinComillas(std::string sql) {
    sql.erase(std::remove(sql.begin(), sql.end(), '"'), sql.end());
    return sql;
}

}  // namespace quimo::tsql
