#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tsql/parser.h"

namespace quimo::tsql {

using Hecho = base::Result<void, ErrorSql>;

/// Recursive descent over the tokens of one text. Depth is limited, so that no text can exhaust
/// the stack.
class Parser {
public:
    Parser(std::string_view texto, Lexico lexico, Constantes constantes);

    Resultado<Lote> LeerTodo();
    Resultado<ExprPtr> LeerSuelta();

private:
    static constexpr int kNivelesMaximos = 120;
    static constexpr int kAlturaMaxima = 400;
    static constexpr std::size_t kSentenciasMaximas = 100'000;

    /// Counts one level of nesting while it lives.
    class Nivel {
    public:
        explicit Nivel(int& niveles) : niveles_(niveles) { ++niveles_; }
        Nivel(const Nivel&) = delete;
        Nivel& operator=(const Nivel&) = delete;
        ~Nivel() { --niveles_; }

    private:
        int& niveles_;
    };

    // Tokens
    const Token& Actual() const { return tokens_[i_]; }
    const Token& Mirar(std::size_t cuantos) const {
        return tokens_[std::min(i_ + cuantos, tokens_.size() - 1)];
    }
    bool EsPalabra(std::string_view palabra, std::size_t adelante = 0) const;
    bool EsSigno(std::string_view signo, std::size_t adelante = 0) const;
    bool Fin() const { return Actual().clase == Token::Clase::Fin; }
    bool Aceptar(std::string_view palabra_o_signo);
    Hecho Exigir(std::string_view palabra_o_signo);
    ErrorSql Sintaxis() const;
    ErrorSql SintaxisEn(std::size_t token) const;
    bool HayNombre(std::size_t adelante = 0) const;
    Resultado<std::string> Nombre();
    Resultado<NombreObjeto> Objeto();
    Resultado<std::vector<std::string>> ListaDeNombres();
    Resultado<std::int64_t> EnteroFijo();
    std::string Desde(std::size_t primer_token) const;
    Hecho Profundo() const;

    // Expressions
    Resultado<ExprPtr> Expresion();  // a value
    Resultado<ExprPtr> Condicion();  // true, false or unknown
    Resultado<ExprPtr> Binaria(int minimo);
    Resultado<ExprPtr> Unaria();
    Resultado<ExprPtr> Predicado(ExprPtr izquierda);
    Resultado<ExprPtr> Comparacion(ExprPtr izquierda, std::string operador);
    Resultado<ExprPtr> Primario();
    Resultado<ExprPtr> Parentesis();
    Resultado<ExprPtr> Caso();
    Resultado<ExprPtr> Conversion();
    Resultado<ExprPtr> ColumnaOFuncion();
    Resultado<ExprPtr> Llamada(std::vector<std::string> partes, std::size_t posicion);
    Resultado<std::shared_ptr<const Ventana>> Sobre();
    Resultado<ExprPtr> DeToken(ClaseExpr clase);
    Resultado<ExprPtr> Cerrar(Expr expr) const;
    Resultado<ExprPtr> Valor(ExprPtr expr) const;
    Resultado<std::vector<ExprPtr>> ListaDeExpresiones();
    Resultado<Tipo> LeerTipo(bool en_conversion);
    Resultado<Tipo> ConLongitud(Clase clase, bool en_conversion);

    // Queries
    Resultado<ConsultaPtr> LeerConsulta();
    Resultado<ConsultaPtr> Union();
    Resultado<ConsultaPtr> Interseccion();
    Resultado<ConsultaPtr> TerminoConsulta();
    Resultado<ConsultaPtr> Combinar(Combinacion como, ConsultaPtr a, ConsultaPtr b) const;
    Resultado<Seleccion> LeerSeleccion();
    Hecho Tope(ExprPtr& tope, bool* porciento);
    Resultado<ItemSeleccion> Item();
    Resultado<std::vector<FuentePtr>> Fuentes();
    Resultado<FuentePtr> FuenteUnida();
    Resultado<FuentePtr> FuenteSimple();
    Hecho Alias(std::string& alias);
    Hecho Sugerencias();
    Resultado<std::vector<OrdenItem>> Orden();
    bool EmpiezaConsulta(std::size_t adelante = 0) const;

    // Statements
    Resultado<SentenciaPtr> LeerSentencia();
    Resultado<SentenciaPtr> Despachar();
    Resultado<std::vector<SentenciaPtr>> SentenciasHasta(std::string_view fin);
    Resultado<SentenciaPtr> LeerSelect();
    Resultado<SentenciaPtr> LeerWith();
    Resultado<SentenciaPtr> LeerInsert();
    Hecho Valores(Insertar& insertar);
    Resultado<SentenciaPtr> LeerUpdate();
    Resultado<Asignacion> LeerAsignacion();
    Resultado<SentenciaPtr> LeerDelete();
    Resultado<SentenciaPtr> LeerTruncate();
    Resultado<SentenciaPtr> LeerExec();
    Resultado<SentenciaPtr> LeerLlamada();
    Hecho Argumentos(Ejecutar& ejecutar);
    Resultado<Argumento> LeerArgumento();
    Resultado<SentenciaPtr> LeerDeclare();
    Resultado<SentenciaPtr> LeerSet();
    Resultado<SentenciaPtr> LeerOpcion();
    Resultado<SentenciaPtr> LeerIf();
    Resultado<SentenciaPtr> LeerWhile();
    Resultado<SentenciaPtr> LeerBegin();
    Resultado<SentenciaPtr> LeerTransaccion(Transaccion::Clase clase);
    Resultado<SentenciaPtr> LeerReturn();
    Resultado<SentenciaPtr> LeerPrint();
    Resultado<SentenciaPtr> LeerRaiserror();
    Resultado<SentenciaPtr> LeerCreate();
    Resultado<SentenciaPtr> LeerAlter();
    Resultado<SentenciaPtr> LeerDrop();
    Resultado<SentenciaPtr> LeerUse();
    Resultado<SentenciaPtr> LeerDbcc();

    // Definitions
    Resultado<std::shared_ptr<CrearTabla>> CuerpoDeTabla(NombreObjeto nombre);
    Hecho ElementoDeTabla(CrearTabla& tabla);
    Hecho LeerColumna(std::vector<ColumnaDef>& columnas,
                      std::vector<RestriccionDef>& restricciones);
    Hecho AtributoDeColumna(ColumnaDef& columna, std::vector<RestriccionDef>& restricciones,
                            bool& hubo);
    Resultado<RestriccionDef> LeerRestriccion(const std::string& columna);
    Hecho Clave(RestriccionDef& restriccion, const std::string& columna);
    Resultado<Referencia> LeerReferencia();
    Hecho OpcionesDeIndice();
    Resultado<std::string> TextoEntreParentesis();
    Resultado<SentenciaPtr> LeerIndice();
    Resultado<SentenciaPtr> LeerModulo(bool cambiar);
    Hecho LeerParametros(std::vector<ParametroRutina>& parametros);
    Resultado<SentenciaPtr> LeerAlterTable();
    Resultado<SentenciaPtr> AgregarATabla(CambiarTabla cambio);
    bool EmpiezaRestriccion() const;

    template <typename T>
    SentenciaPtr Hacer(std::size_t posicion, T que) const {
        return std::make_shared<const Sentencia>(Sentencia{posicion, std::move(que)});
    }

    std::string_view texto_;
    std::vector<Token> tokens_;
    std::size_t i_ = 0;
    int niveles_ = 0;
    Constantes constantes_;
    Lote lote_;
};

}  // namespace quimo::tsql
