#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tsql/lectura/lexer.h"

namespace quimo::tsql {

struct Expr;
struct Consulta;
struct Fuente;
struct Sentencia;
using ExprPtr = std::shared_ptr<const Expr>;
using ConsultaPtr = std::shared_ptr<const Consulta>;
using FuentePtr = std::shared_ptr<const Fuente>;
using SentenciaPtr = std::shared_ptr<const Sentencia>;

enum class ClaseExpr {
    Literal,
    Nulo,
    Columna,     ///< partes: [table,] column
    Asterisco,   ///< partes: [table], in a select list or COUNT
    Variable,    ///< texto: @name in lower case
    Global,      ///< texto: @@NAME in upper case
    Parametro,   ///< indice: which ?
    Unaria,      ///< texto: - + ~ NOT
    Binaria,     ///< texto: the operator
    Funcion,     ///< texto: name in upper case; partes: owner and name when it has an owner
    Caso,        ///< hijos: [operand,] when, then, ..., [else]; see `simple` and `con_sino`
    Conversion,  ///< tipo; hijos: value [, style]; texto: CAST or CONVERT
    Entre,       ///< hijos: value, from, to
    EnLista,     ///< hijos: value, items...
    EnConsulta,  ///< hijos: value; consulta
    Existe,      ///< consulta
    EsNulo,      ///< hijos: value
    Como,        ///< hijos: value, pattern [, escape]
    Subconsulta,
    Cuantificada,  ///< texto: operator; hijos: value; consulta; distinto: ALL
};

struct OrdenItem;
/// OVER (PARTITION BY ... ORDER BY ...)
struct Ventana {
    std::vector<ExprPtr> particion;
    std::vector<OrdenItem> orden;
};

struct Expr {
    ClaseExpr clase = ClaseExpr::Nulo;
    int altura = 1;  ///< levels below, itself included
    std::string texto = {};
    std::vector<std::string> partes = {};
    std::vector<ExprPtr> hijos = {};
    ConsultaPtr consulta = {};
    std::shared_ptr<const Ventana> ventana = {};
    Tipo tipo = {};
    int indice = -1;  ///< of the text's constant or ?; -1: the constant is in `literal`
    std::optional<Literal> literal = {};
    bool negado = false;    ///< NOT IN, NOT LIKE, NOT BETWEEN, IS NOT NULL
    bool distinto = false;  ///< COUNT(DISTINCT x); of a quantified comparison: ALL
    bool simple = false;
    bool con_sino = false;

    bool EsCondicion() const;
};

/// SUM, COUNT and the like over the rows of a group.
bool EsAgregado(const Expr& expr);
/// The same anywhere in it, but for what stands inside other queries.
bool TieneAgregado(const Expr& expr);
bool TieneVentana(const Expr& expr);

/// [[database.]owner.]object
struct NombreObjeto {
    std::string base;
    std::string esquema;
    std::string objeto;

    bool EsTemporal() const { return !objeto.empty() && objeto.front() == '#'; }
    /// As the text wrote it: "dbo.Menu".
    std::string Completo() const;
};

struct OrdenItem {
    ExprPtr expr;
    bool descendente = false;
};

struct ItemSeleccion {
    ExprPtr expr;
    std::string alias;
    std::string variable;  ///< SELECT @x = expr
};

/// `Delante` is Cruzada with its left side gone through first; no text says so, only a rewrite.
enum class TipoJoin { Coma, Interna, Izquierda, Derecha, Completa, Cruzada, Delante };

/// What stands behind FROM: a table, a query in parentheses, or a join of two of these.
struct Fuente {
    enum class Clase { Tabla, Derivada, Join };
    Clase clase = Clase::Tabla;
    NombreObjeto nombre = {};
    std::string alias = {};
    std::vector<std::string> columnas = {};
    ConsultaPtr consulta = {};
    TipoJoin join = TipoJoin::Coma;
    FuentePtr izquierda = {};
    FuentePtr derecha = {};
    ExprPtr condicion = {};
};

struct Seleccion {
    bool distinto = false;
    ExprPtr tope;
    bool tope_porciento = false;
    std::vector<ItemSeleccion> items;
    std::optional<NombreObjeto> en;  ///< SELECT ... INTO
    std::vector<FuentePtr> fuentes;
    ExprPtr donde;
    std::vector<ExprPtr> grupos;
    ExprPtr teniendo;
};

/// WITH name [(columns)] AS (query)
struct ExpresionComun {
    std::string nombre;
    std::vector<std::string> columnas;
    ConsultaPtr consulta;
};

enum class Combinacion { Simple, Union, UnionTodo, Excepto, Interseccion };

struct Consulta {
    Combinacion combinacion = Combinacion::Simple;
    std::optional<Seleccion> simple = {};
    ConsultaPtr izquierda = {};
    ConsultaPtr derecha = {};
    std::vector<OrdenItem> orden = {};
    std::vector<ExpresionComun> comunes = {};
    int altura = 1;
};

struct Insertar;
struct Ejecutar;

struct Seleccionar {
    ConsultaPtr consulta;
};
struct Insertar {
    NombreObjeto tabla;
    std::vector<std::string> columnas;
    std::vector<std::vector<ExprPtr>> filas;  ///< VALUES; a missing expression is DEFAULT
    ConsultaPtr consulta;
    std::shared_ptr<const Ejecutar> ejecutar;
    bool por_defecto = false;  ///< DEFAULT VALUES
};
struct Asignacion {
    std::string columna;
    ExprPtr expr;  ///< missing: DEFAULT
};
struct Actualizar {
    NombreObjeto tabla;
    ExprPtr tope;
    std::vector<Asignacion> asignaciones;
    std::vector<FuentePtr> fuentes;
    ExprPtr donde;
};
struct Borrar {
    NombreObjeto tabla;
    ExprPtr tope;
    std::vector<FuentePtr> fuentes;
    ExprPtr donde;
};
struct Truncar {
    NombreObjeto tabla;
};

struct Referencia {
    NombreObjeto tabla;
    std::vector<std::string> columnas;
    std::string al_borrar;  ///< "CASCADE", "SET NULL", "SET DEFAULT" or empty
    std::string al_cambiar;
};
struct RestriccionDef {
    enum class Clase { Primaria, Unica, Foranea, Comprobacion, Defecto };
    Clase clase = Clase::Primaria;
    std::string nombre = {};
    std::vector<std::string> columnas = {};
    Referencia referencia = {};
    std::string texto = {};  ///< of a check or a default
    bool agrupada = false;
};
struct ColumnaDef {
    std::string nombre;
    Tipo tipo;
    std::optional<bool> admite_nulos;
    bool identidad = false;
    std::int64_t semilla = 1;
    std::int64_t incremento = 1;
    std::string calculada;  ///< expression of a computed column
    bool persistida = false;
};
struct CrearTabla {
    NombreObjeto tabla;
    std::vector<ColumnaDef> columnas;
    std::vector<RestriccionDef> restricciones;
};
struct CambiarTabla {
    enum class Clase {
        AgregarColumnas,
        AgregarRestricciones,
        QuitarColumna,
        QuitarRestriccion,
        CambiarColumna
    };
    NombreObjeto tabla;
    Clase clase = Clase::AgregarColumnas;
    std::vector<ColumnaDef> columnas;
    std::vector<RestriccionDef> restricciones;
    std::vector<std::string> nombres;
};
struct CrearIndice {
    std::string nombre;
    NombreObjeto tabla;
    bool unico = false;
    std::vector<std::string> columnas;
};
struct ParametroRutina {
    std::string nombre;   ///< with @, in lower case
    std::string escrito;  ///< as it was written, for messages
    Tipo tipo;
    ExprPtr defecto;
    bool salida = false;
};
/// CREATE or ALTER of a view, procedure or function. The text is kept as it was written.
struct CrearModulo {
    enum class Clase { Vista, Procedimiento, Funcion };
    Clase clase = Clase::Procedimiento;
    bool cambiar = false;
    NombreObjeto nombre = {};
    std::vector<std::string> columnas = {};  ///< of a view
    ConsultaPtr consulta = {};               ///< of a view
    std::vector<ParametroRutina> parametros = {};
    Tipo retorno = {};
    std::vector<SentenciaPtr> cuerpo = {};
    std::string texto = {};
};
struct Quitar {
    std::string clase;  ///< TABLE, INDEX, VIEW, PROCEDURE, FUNCTION
    std::vector<NombreObjeto> nombres;
    bool si_existe = false;
};

struct Argumento {
    std::string nombre;  ///< @name = value
    ExprPtr valor;       ///< missing: DEFAULT
    bool salida = false;
};
struct Ejecutar {
    NombreObjeto nombre;
    std::string variable;  ///< @x = procedure
    std::vector<Argumento> argumentos;
    ExprPtr texto;  ///< EXEC ('text')
};

struct Variable {
    std::string nombre;
    Tipo tipo;
    ExprPtr inicial;
};
struct Declarar {
    std::vector<Variable> variables;
    std::shared_ptr<const CrearTabla> tabla;  ///< DECLARE @t TABLE
};
struct Asignar {
    std::string variable;
    ExprPtr expr;
};
struct Opcion {
    std::string nombre;
    std::string valor;
    NombreObjeto tabla;  ///< of IDENTITY_INSERT
};
struct Si {
    ExprPtr condicion;
    SentenciaPtr entonces;
    SentenciaPtr sino;
};
struct Mientras {
    ExprPtr condicion;
    SentenciaPtr cuerpo;
};
struct Bloque {
    std::vector<SentenciaPtr> sentencias;
};
struct Salto {
    bool continuar = false;
};
struct Regresar {
    ExprPtr expr;
};
struct Imprimir {
    ExprPtr expr;
};
struct LanzarError {
    std::vector<ExprPtr> argumentos;  ///< message, severity, state, substitutions
};
struct Transaccion {
    enum class Clase { Iniciar, Confirmar, Revertir, Guardar };
    Clase clase = Clase::Iniciar;
    std::string nombre = {};
};
/// DBCC CHECKDB of the database that is open.
struct RevisarBase {
    bool en_filas = false;     ///< TABLERESULTS: a result set instead of messages
    bool solo_fallas = false;  ///< NO_INFOMSGS
};

struct Sentencia {
    std::variant<Seleccionar, Insertar, Actualizar, Borrar, Truncar, CrearTabla, CambiarTabla,
                 CrearIndice, CrearModulo, Quitar, Ejecutar, Declarar, Asignar, Opcion, Si,
                 Mientras, Bloque, Salto, Regresar, Imprimir, LanzarError, Transaccion, RevisarBase>
        que;
};

}  // namespace quimo::tsql
