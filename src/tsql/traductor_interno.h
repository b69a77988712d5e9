#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/conversion.h"
#include "tsql/traductor.h"

namespace quimo::tsql {

using Hecho = base::Result<void, ErrorSql>;

/// How strongly the outermost operator of a piece of SQL binds, as the engine reads it.
enum class Fuerza { O, Y, No, Igual, Orden, Bits, Suma, Producto, Union, Cotejo, Unaria, Atomo };

/// A piece of SQL with its T-SQL type.
struct Termino {
    std::string sql;
    Tipo tipo;
    Fuerza fuerza = Fuerza::Atomo;
    bool admite_nulos = true;
    bool nulo = false;     ///< the word NULL
    bool columna = false;  ///< a bare column
    bool constante = false;
    const Expr* expr = nullptr;
};

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
    TablaPtr tabla;
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
    std::vector<Termino> claves;  ///< what the groups are translated to
};

/// The pieces of a query with one key to group by, from which the row of one key can be asked for.
struct PiezasDeGrupo {
    std::vector<std::string> lista;
    std::string desde;
    std::string donde;
    Termino clave;
};

struct ConsultaSql {
    std::string sql;
    std::vector<ColumnaSalida> columnas;
    std::vector<std::string> variables;
    bool una_fila = false;
    std::optional<PiezasDeGrupo> grupo;
};

class Traductor {
public:
    explicit Traductor(const Entorno& entorno) : entorno_(entorno) {}

    Resultado<Plan> Consultar(const Consulta& consulta);
    Resultado<Plan> Evaluar(const Expr& expr);
    Resultado<Plan> InsertarEn(const Insertar& insertar);
    Resultado<Plan> InsertarFila(const Insertar& insertar, const std::vector<Tipo>& tipos);
    Resultado<Plan> ActualizarEn(const Actualizar& actualizar);
    Resultado<Plan> BorrarDe(const Borrar& borrar);
    Resultado<ExpresionDeTabla> DeTabla(const std::string& texto, const Tabla& tabla);

private:
    // Expressions
    Resultado<Termino> Valor(const ExprPtr& expr, Ambito& ambito);
    Resultado<Termino> ValorSinGrupo(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Condicion(const ExprPtr& expr, Ambito& ambito);
    /// A value whose length and digits mean nothing where it stands: compared or stored as it is.
    Resultado<Termino> ValorSuelto(const ExprPtr& expr, Ambito& ambito);
    Resultado<Termino> Literales(const Expr& expr);
    Termino Columna(const ColumnaAmbito& columna) const;
    Resultado<Termino> ResolverColumna(const Expr& expr, Ambito& ambito);
    Resultado<const ColumnaAmbito*> BuscarColumna(const Expr& expr, const Ambito& ambito) const;
    Resultado<Termino> Global(const Expr& expr);
    Resultado<Termino> Unaria(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Binaria(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Aritmetica(char operador, Termino a, Termino b);
    Resultado<Termino> AritmeticaFecha(char operador, Termino a, Termino b);
    Termino Cociente(const Tipo& tipo, const Termino& a, const Termino& b);
    Termino Producir(const Tipo& tipo, const Termino& a, const Termino& b);
    Termino SumaExacta(char operador, const Tipo& tipo, const Termino& a, const Termino& b);
    Resultado<Termino> Concatenar(Termino a, Termino b);
    Resultado<Termino> Caso(const Expr& expr, Ambito& ambito);
    Resultado<Termino> ConversionExplicita(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Subconsulta(const Expr& expr, Ambito& ambito);

    // Comparisons
    Resultado<Termino> CompararTerminos(std::string_view operador, Termino a, Termino b);
    Hecho Igualar(Termino& a, Termino& b);
    Resultado<Termino> Entre(const Expr& expr, Ambito& ambito);
    Resultado<Termino> EnLista(const Expr& expr, Ambito& ambito);
    Resultado<Termino> EnConsulta(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Cuantificada(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Como(const Expr& expr, Ambito& ambito);
    std::optional<Termino> FechaDeTrabajo(const ExprPtr& expr, Ambito& ambito,
                                          std::string& control);
    Resultado<Termino> ConControl(Termino termino, const std::string& control) const;

    // Conversions
    Resultado<Termino> Convertir(Termino termino, const Tipo& a, int estilo = 0);
    Resultado<Termino> Asignar(Termino termino, const ColumnaTabla& columna, const Tabla& tabla,
                               std::string_view verbo);
    std::optional<Termino> ConversionNativa(const Termino& termino, const Tipo& a) const;
    Termino LlamarConversion(const Termino& termino, const Tipo& a, int estilo,
                             Destino destino) const;
    static std::string Escalar(const Termino& termino, int de, int a);

    // Functions
    Resultado<Termino> Funcion(const Expr& expr, Ambito& ambito);
    Resultado<std::vector<Termino>> Argumentos(const Expr& expr, Ambito& ambito,
                                               std::size_t desde = 0);
    Resultado<Termino> FuncionPropia(const Expr& expr, Ambito& ambito);
    Resultado<Termino> FuncionDeTabla(const Expr& expr, Ambito& ambito);
    Resultado<Termino> FuncionEspecial(const Expr& expr, Ambito& ambito, bool& encontrada);
    Resultado<Termino> Agregado(const Expr& expr, Ambito& ambito);
    Resultado<Termino> CuerpoDeAgregado(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Promedio(const Termino& dentro, const std::string& distinto,
                                const std::string& sobre);
    Resultado<std::string> Sobre(const Ventana& ventana, Ambito& ambito);
    Resultado<Termino> FuncionFecha(const Expr& expr, Ambito& ambito);
    Resultado<Termino> IsNull(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Coalesce(const Expr& expr, Ambito& ambito);
    Resultado<Termino> NullIf(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Subcadena(const Expr& expr, Ambito& ambito);
    Resultado<Termino> Redondear(const Expr& expr, Ambito& ambito);

    // Queries
    Resultado<ConsultaSql> ConsultaEn(const Consulta& consulta, Ambito* padre);
    Resultado<ConsultaSql> Combinada(const Consulta& consulta, Ambito* padre);
    Resultado<ConsultaSql> Simple(const Consulta& consulta, Ambito* padre);
    class Producto;
    /// The same answer without making a product of sources that no condition joins.
    std::optional<Consulta> SinProducto(const Consulta& consulta, const Ambito& ambito) const;
    std::optional<Consulta> ExtremoPorRangos(const Consulta& consulta, const Ambito& ambito) const;
    /// The numbers of a type whose text is LIKE 'digits%'; nothing for other patterns.
    using Rangos = std::vector<std::pair<std::int64_t, std::int64_t>>;
    std::optional<Rangos> RangosDePrefijo(const Expr& como, const Tipo& tipo) const;
    static Termino EnRangos(const Termino& numero, const Rangos& rangos, bool negado);
    Resultado<std::vector<Termino>> Lista(const Seleccion& seleccion, Ambito& ambito,
                                          ConsultaSql& salida);
    Hecho Expandir(const Expr& asterisco, const Ambito& ambito, std::vector<Termino>& terminos,
                   ConsultaSql& salida) const;
    Hecho Agrupar(const Seleccion& seleccion, Ambito& ambito, std::string& sql);
    Resultado<std::string> Ordenar(const Consulta& consulta, const std::vector<Termino>& terminos,
                                   const ConsultaSql& salida, Ambito& ambito);
    Resultado<std::string> ItemDeOrden(const OrdenItem& item, const Seleccion& seleccion,
                                       const std::vector<Termino>& terminos,
                                       const ConsultaSql& salida, Ambito& ambito);
    Resultado<std::string> Limite(const Seleccion& seleccion, const std::string& sql);
    Resultado<std::string> Desde(const std::vector<FuentePtr>& fuentes, Ambito& ambito);
    Resultado<std::string> FuenteSql(const Fuente& fuente, Ambito& ambito);
    Resultado<std::string> JoinSql(const Fuente& fuente, Ambito& ambito);
    Resultado<std::optional<std::string>> ConGrupos(const Fuente& fuente, Ambito& ambito,
                                                    std::string& izquierda, std::string& derecha);
    bool BuscarGrupo(const Fuente& fuente, const Fuente& opcional, const ConsultaSql& dentro,
                     TablaAmbito& tabla, Ambito& ambito);
    std::optional<std::string> FiltrarOpcional(const Fuente& fuente, const Ambito& ambito);
    Resultado<std::string> TablaSql(const Fuente& fuente, Ambito& ambito);
    Resultado<std::string> DerivadaSql(const Consulta& consulta, const std::string& nombre,
                                       const std::vector<std::string>& columnas, Ambito& ambito,
                                       Ambito* padre);
    Resultado<TablaAmbito> TablaDerivada(const ConsultaSql& dentro, const std::string& nombre,
                                         const std::vector<std::string>& columnas);
    Hecho Exponer(TablaAmbito tabla, Ambito& ambito) const;
    static std::string Cotejada(const Termino& termino);
    static std::string ClaveDeOrden(const Termino& termino);

    // Writing
    Resultado<TablaPtr> TablaEscrita(const NombreObjeto& nombre);
    struct Destinos {
        std::vector<int> columnas;
        std::string nombres;
        std::string automatica;  ///< the numbering call, when the engine numbers the rows
        std::vector<std::string> defectos;
    };
    Resultado<Destinos> DestinosDe(const Insertar& insertar, Plan& plan);
    Resultado<std::string> FilaDeValores(const Insertar& insertar, const std::vector<ExprPtr>& fila,
                                         const Destinos& destinos, const Tabla& tabla);
    Resultado<Termino> Defecto(const ColumnaTabla& columna, const Tabla& tabla);
    /// SET columns and their values, each in its own list.
    struct Escritas {
        std::vector<int> columnas;
        std::vector<std::string> valores;
    };
    Resultado<Escritas> Asignaciones(const Actualizar& actualizar, const Tabla& tabla,
                                     Ambito& ambito);
    Resultado<std::size_t> Escenario(const NombreObjeto& nombre,
                                     const std::vector<FuentePtr>& fuentes, Ambito& ambito,
                                     std::string& sql);
    Resultado<Plan> ActualizarDesde(const Actualizar& actualizar, Plan plan);
    TablaAmbito AmbitoDe(const TablaPtr& tabla, const std::string& expuesto);
    Resultado<std::size_t> Blanco(const NombreObjeto& nombre, const Ambito& ambito) const;

    // Shared
    std::string Ranura(tsql::Ranura ranura);
    /// The value of a constant expression, which from now on belongs to the tree's form.
    std::optional<Literal> Fijar(const Expr& expr) const;
    bool Igual(const Expr& a, const Expr& b, const Ambito& ambito) const;
    Plan Terminar(ConsultaSql consulta);

    const Entorno& entorno_;
    std::vector<tsql::Ranura> ranuras_;
    std::vector<TablaPtr> usadas_;
    std::vector<std::vector<ExpresionComun>> comunes_;
    /// Arguments of the functions that are being put in place of their calls.
    std::vector<std::map<std::string, Termino>> sustituciones_;
    int siguiente_tabla_ = 1;
    int vistas_ = 0;
    int niveles_ = 0;
    bool filtrando_ = false;  ///< a join's condition is being read a second time
};

/// SQL in parentheses unless it binds at least as strongly as asked.
std::string Par(const Termino& termino, Fuerza minima);
bool TieneAgregado(const Expr& expr);
bool EsAgregado(const Expr& expr);
/// A constant written into SQL.
std::string LiteralSql(const Literal& literal);
std::string TipoSqlTexto(const Tipo& tipo);

}  // namespace quimo::tsql
