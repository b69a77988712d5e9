#include "data/embebido/vistas_sistema.h"

#include <array>

namespace quimo::data::embebido {

namespace {

using tsql::Clase;
using tsql::Tipo;

struct Vista {
    std::string_view nombre;
    std::string_view consulta;
    /// Name and kind of each column: t text, i INT.
    std::vector<std::pair<std::string_view, char>> columnas;
};

// 'V' and 'P' of a module are told apart by the word behind CREATE in its text.
constexpr std::string_view kObjetos =
    "SELECT nombre AS name,id AS object_id,'U ' AS type,'USER_TABLE' AS type_desc FROM "
    "_quimo_tablas "
    "UNION ALL SELECT nombre,1000000000+row_number() OVER (ORDER BY clave)-1,"
    "CASE upper(substr(ltrim(substr(texto,7)),1,1)) WHEN 'V' THEN 'V ' WHEN 'F' THEN 'FN' ELSE 'P "
    "' "
    "END,CASE upper(substr(ltrim(substr(texto,7)),1,1)) WHEN 'V' THEN 'VIEW' WHEN 'F' THEN "
    "'SQL_SCALAR_FUNCTION' ELSE 'SQL_STORED_PROCEDURE' END FROM _quimo_modulos";

constexpr std::string_view kColumnas =
    "SELECT 'dbo' AS TABLE_SCHEMA,t.nombre AS TABLE_NAME,c.nombre AS COLUMN_NAME,c.orden+1 AS "
    "ORDINAL_POSITION,CASE c.nulos WHEN 1 THEN 'YES' ELSE 'NO' END AS IS_NULLABLE,"
    "CASE c.tipo&255 WHEN 1 THEN 'binary' WHEN 2 THEN 'varbinary' WHEN 3 THEN 'char' WHEN 4 THEN "
    "'varchar' WHEN 5 THEN 'nchar' WHEN 6 THEN 'nvarchar' WHEN 7 THEN 'uniqueidentifier' WHEN 8 "
    "THEN "
    "'image' WHEN 9 THEN 'text' WHEN 10 THEN 'ntext' WHEN 11 THEN 'bit' WHEN 12 THEN 'tinyint' "
    "WHEN "
    "13 THEN 'smallint' WHEN 14 THEN 'int' WHEN 15 THEN 'bigint' WHEN 16 THEN 'smallmoney' WHEN 17 "
    "THEN 'money' WHEN 18 THEN 'numeric' WHEN 19 THEN 'real' WHEN 20 THEN 'float' WHEN 21 THEN "
    "'smalldatetime' ELSE 'datetime' END AS DATA_TYPE,CASE WHEN c.tipo&255 BETWEEN 1 AND 10 THEN "
    "((c.tipo>>8)&65535)-1 END AS CHARACTER_MAXIMUM_LENGTH,CASE WHEN c.tipo&255 BETWEEN 12 AND 18 "
    "THEN (c.tipo>>24)&255 END AS NUMERIC_PRECISION,CASE WHEN c.tipo&255 BETWEEN 12 AND 18 THEN "
    "(c.tipo>>32)&255 END AS NUMERIC_SCALE,CASE c.defecto WHEN '' THEN NULL ELSE c.defecto END AS "
    "COLUMN_DEFAULT FROM _quimo_columnas c JOIN _quimo_tablas t ON t.id=c.tabla";

std::vector<Vista> Definiciones() {
    return {
        {"information_schema.tables",
         "SELECT 'dbo' AS TABLE_SCHEMA,nombre AS TABLE_NAME,'BASE TABLE' AS TABLE_TYPE FROM "
         "_quimo_tablas UNION ALL SELECT 'dbo',nombre,'VIEW' FROM _quimo_modulos WHERE "
         "upper(substr(ltrim(substr(texto,7)),1,1))='V'",
         {{"TABLE_SCHEMA", 't'}, {"TABLE_NAME", 't'}, {"TABLE_TYPE", 't'}}},
        {"information_schema.columns",
         kColumnas,
         {{"TABLE_SCHEMA", 't'},
          {"TABLE_NAME", 't'},
          {"COLUMN_NAME", 't'},
          {"ORDINAL_POSITION", 'i'},
          {"IS_NULLABLE", 't'},
          {"DATA_TYPE", 't'},
          {"CHARACTER_MAXIMUM_LENGTH", 'i'},
          {"NUMERIC_PRECISION", 'i'},
          {"NUMERIC_SCALE", 'i'},
          {"COLUMN_DEFAULT", 't'}}},
        {"sys.objects",
         kObjetos,
         {{"name", 't'}, {"object_id", 'i'}, {"type", 't'}, {"type_desc", 't'}}},
        {"sys.tables",
         "SELECT nombre AS name,id AS object_id FROM _quimo_tablas",
         {{"name", 't'}, {"object_id", 'i'}}},
        {"sysobjects",
         "SELECT name,object_id AS id,type AS xtype,type FROM (SELECT * FROM OBJETOS)",
         {{"name", 't'}, {"id", 'i'}, {"xtype", 't'}, {"type", 't'}}},
    };
}

}  // namespace

std::vector<tsql::TablaPtr> VistasDelSistema() {
    std::vector<tsql::TablaPtr> vistas;
    std::int64_t id = -1;
    for (const Vista& definicion : Definiciones()) {
        tsql::Tabla vista;
        vista.id = id--;
        vista.nombre = definicion.nombre;
        vista.del_sistema = true;
        vista.sql = definicion.consulta;
        const auto marca = vista.sql.find("SELECT * FROM OBJETOS");
        if (marca != std::string::npos) vista.sql.replace(marca, 21, kObjetos);
        vista.sql = "(" + vista.sql + ")";
        for (const auto& [nombre, clase] : definicion.columnas) {
            tsql::ColumnaTabla columna;
            columna.nombre = nombre;
            columna.tipo =
                clase == 'i' ? tsql::TipoEntero(Clase::Int) : tsql::TipoTexto(Clase::NVarChar, 128);
            vista.columnas.push_back(std::move(columna));
        }
        vistas.push_back(std::make_shared<const tsql::Tabla>(std::move(vista)));
    }
    return vistas;
}

}  // namespace quimo::data::embebido
