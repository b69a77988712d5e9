#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "data/embebido/sesion.h"
#include "data/embebido/valores_qt.h"

namespace quimo::data::embebido {

/// How a statement ended: the next one follows, or a loop, a procedure or the whole text is left.
enum class Flujo { Sigue, Rompe, Continua, Regresa, Aborta };

/// A result set kept for INSERT ... EXEC.
struct ConjuntoInterno {
    std::vector<tsql::ColumnaSalida> columnas;
    std::vector<std::vector<Valor>> filas;
};

/// Runs the statements of a text, of its procedures and functions, and gathers what they leave.
class Interprete {
public:
    Interprete(Sesion& sesion, RespuestaSql& respuesta) : sesion_(sesion), respuesta_(respuesta) {}

    void Correr(LoteListo& lote, const std::vector<ValorConTipo>& parametros);
    /// A function written in T-SQL, called from a statement that is running.
    Resultado<Valor> LlamarFuncion(const std::string& nombre, tsql::Argumentos argumentos);
    /// Tells an error of the text itself.
    void Informar(const ErrorSql& error);

private:
    /// Variables of one text, procedure or function, while it runs.
    struct Marco {
        explicit Marco(LoteListo& lote_) : lote(lote_) {}
        LoteListo& lote;
        const std::vector<ValorConTipo>* parametros = nullptr;
        std::map<std::string, ValorConTipo> variables = {};
        std::vector<std::string> temporales = {};  ///< tables that end with it
        bool es_rutina = false;
        bool es_funcion = false;
        tsql::Tipo retorno = {};
        Valor valor = {};
        std::string procedimiento = {};
    };

    // Control
    Flujo Lista(const std::vector<tsql::SentenciaPtr>& sentencias, Marco& marco);
    Flujo Una(const tsql::Sentencia& sentencia, Marco& marco);
    Resultado<Flujo> Hacer(const tsql::Sentencia& sentencia, Marco& marco);
    Resultado<Flujo> HacerSi(const tsql::Si& si, Marco& marco);
    Resultado<Flujo> HacerMientras(const tsql::Mientras& mientras, Marco& marco);
    Resultado<Flujo> HacerRegresar(const tsql::Regresar& regresar, Marco& marco);
    Hecho HacerDeclarar(const tsql::Declarar& declarar, Marco& marco);
    Hecho HacerAsignar(const tsql::Asignar& asignar, Marco& marco);
    Hecho HacerOpcion(const tsql::Opcion& opcion);
    Hecho HacerImprimir(const tsql::Imprimir& imprimir, Marco& marco);
    Hecho HacerLanzar(const tsql::LanzarError& lanzar, Marco& marco);
    Hecho HacerTransaccion(const tsql::Transaccion& transaccion);
    Hecho HacerRevisarBase(const tsql::RevisarBase& revisar);
    void Terminar(Marco& marco);

    // Statements
    Hecho HacerSelect(const tsql::Seleccionar& seleccionar, const void* clave, Marco& marco);
    Hecho HacerSelectInto(const tsql::Seleccionar& seleccionar, Marco& marco);
    Hecho HacerInsert(const tsql::Insertar& insertar, Marco& marco);
    Hecho HacerInsertExec(const tsql::Insertar& insertar, Marco& marco);
    Hecho HacerTruncar(const tsql::Truncar& truncar);
    Hecho HacerDefinicion(const tsql::Sentencia& sentencia, Marco& marco);
    Resultado<Flujo> HacerExec(const tsql::Ejecutar& ejecutar, Marco& marco);
    static bool EsDeCandados(const tsql::NombreObjeto& nombre);
    Resultado<Flujo> HacerCandado(const tsql::Ejecutar& ejecutar, Marco& marco);
    Resultado<std::map<std::string, ValorConTipo>> ArgumentosDe(
        const tsql::Ejecutar& ejecutar, std::span<const std::string_view> nombres, Marco& marco);
    int TomarCandado(const std::string& recurso, std::int64_t plazo_ms);
    Resultado<Flujo> HacerTexto(const tsql::Ejecutar& ejecutar, Marco& marco);
    Hecho Argumentos(const tsql::Ejecutar& ejecutar, const tsql::CrearModulo& modulo, Marco& marco,
                     Marco& nuevo);
    Hecho Devolver(const tsql::Ejecutar& ejecutar, const tsql::CrearModulo& modulo, Marco& marco,
                   const Marco& nuevo);

    // Plans
    using Traduccion = std::function<Resultado<tsql::Plan>(const tsql::Entorno&)>;
    tsql::Entorno EntornoDe(Marco& marco) const;
    Resultado<PlanListo*> Preparar(const void* clave, Marco& marco, const Traduccion& traducir);
    bool Vigente(const PlanListo& listo) const;
    Hecho Ligar(PlanListo& listo, const Marco& marco);
    Resultado<ValorConTipo> Evaluar(const tsql::Expr& expr, Marco& marco);
    Resultado<bool> Cumple(const tsql::Expr& condicion, Marco& marco);
    Hecho Leer(PlanListo& listo, Marco& marco);
    Hecho LeerVariables(PlanListo& listo, Marco& marco);
    Hecho Escribir(PlanListo& listo, const std::string& verbo, const Marco& marco);
    Hecho Numerar(PlanListo& listo, const std::string& verbo, const Marco& marco);
    Hecho PasoDeEscritura(PlanListo& listo, const std::string& verbo, const Marco& marco);
    Resultado<bool> SinPartes(int codigo);
    Resultado<bool> EscribirPorPartes(const PlanListo& listo, const Marco& marco);
    ErrorSql FalloDe(int codigo);
    void Contar(std::int64_t filas);
    Hecho Comprobar(const std::vector<tsql::SentenciaPtr>& sentencias, Marco& marco);
    Hecho ComprobarUna(const tsql::Sentencia& sentencia, Marco& marco);

    Sesion& sesion_;
    RespuestaSql& respuesta_;
    std::vector<ConjuntoInterno>* captura_ = nullptr;
    std::int64_t filas_por_partes_ = -1;  ///< rows of the last write that was done row by row
};

}  // namespace quimo::data::embebido
