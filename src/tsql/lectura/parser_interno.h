#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/lectura/cursor_interno.h"

namespace quimo::tsql {

// Recursive descent over the tokens of one text. What stands inside something of another kind is
// read through a narrow interface: queries in expressions, statements in definitions.

class LectorDeConsultas {
public:
    LectorDeConsultas() = default;
    LectorDeConsultas(const LectorDeConsultas&) = delete;
    LectorDeConsultas& operator=(const LectorDeConsultas&) = delete;
    virtual ~LectorDeConsultas() = default;

    virtual Resultado<ConsultaPtr> LeerConsulta() = 0;
};

class LectorDeSentencias {
public:
    LectorDeSentencias() = default;
    LectorDeSentencias(const LectorDeSentencias&) = delete;
    LectorDeSentencias& operator=(const LectorDeSentencias&) = delete;
    virtual ~LectorDeSentencias() = default;

    /// Up to the word, which is not read; up to the end of the text without one.
    virtual Resultado<std::vector<SentenciaPtr>> SentenciasHasta(std::string_view fin) = 0;
};

/// Counts a node's levels; fails when there are too many.
Resultado<ExprPtr> Cerrar(Expr expr);

template <typename T>
SentenciaPtr Hacer(T que) {
    return std::make_shared<const Sentencia>(Sentencia{std::move(que)});
}

class ParserExpresiones {
public:
    ParserExpresiones(Cursor& cursor, LectorDeConsultas& consultas)
        : cursor_(cursor), consultas_(consultas) {}

    Resultado<ExprPtr> Expresion();        // a value
    Resultado<ExprPtr> Condicion();        // true, false or unknown
    Resultado<ExprPtr> ValorOCondicion();  // either
    Resultado<ExprPtr> Unaria();
    Resultado<ExprPtr> DeToken(ClaseExpr clase);
    Resultado<std::vector<ExprPtr>> ListaDeExpresiones();
    Resultado<std::vector<OrdenItem>> Orden();
    Resultado<Argumento> LeerArgumento();
    Resultado<Tipo> LeerTipo(bool en_conversion);

private:
    Resultado<ExprPtr> Binaria(int minimo);
    Resultado<ExprPtr> Negada();
    Resultado<ExprPtr> Predicado(ExprPtr izquierda);
    Resultado<ExprPtr> Comparacion(ExprPtr izquierda, std::string operador);
    Resultado<ExprPtr> Primario();
    Resultado<ExprPtr> Parentesis();
    Resultado<ExprPtr> Caso();
    Resultado<ExprPtr> Conversion();
    Resultado<ExprPtr> ColumnaOFuncion();
    Resultado<ExprPtr> Llamada(std::vector<std::string> partes);
    Resultado<std::shared_ptr<const Ventana>> Sobre();
    Resultado<ExprPtr> Valor(ExprPtr expr) const;
    Resultado<Tipo> ConLongitud(Clase clase, bool en_conversion);

    Cursor& cursor_;
    LectorDeConsultas& consultas_;
};

class ParserConsultas final : public LectorDeConsultas {
public:
    explicit ParserConsultas(Cursor& cursor) : cursor_(cursor), expresiones_(cursor, *this) {}

    ParserExpresiones& Expresiones() { return expresiones_; }
    Resultado<ConsultaPtr> LeerConsulta() override;
    Resultado<std::vector<FuentePtr>> Fuentes();
    Hecho Tope(ExprPtr& tope, bool* porciento);
    Hecho Sugerencias();

private:
    Resultado<ConsultaPtr> Union();
    Resultado<ConsultaPtr> Interseccion();
    Resultado<ConsultaPtr> TerminoConsulta();
    Resultado<Seleccion> LeerSeleccion();
    Resultado<ItemSeleccion> Item();
    Hecho Alias(std::string& alias);
    Resultado<FuentePtr> FuenteUnida();
    Resultado<FuentePtr> FuenteSimple();
    Resultado<FuentePtr> FuenteDerivada();

    Cursor& cursor_;
    ParserExpresiones expresiones_;
};

/// CREATE, ALTER and DROP.
class ParserDefiniciones {
public:
    ParserDefiniciones(Cursor& cursor, ParserConsultas& consultas, LectorDeSentencias& sentencias)
        : cursor_(cursor),
          consultas_(consultas),
          expresiones_(consultas.Expresiones()),
          sentencias_(sentencias) {}

    Resultado<SentenciaPtr> LeerCreate();
    Resultado<SentenciaPtr> LeerAlter();
    Resultado<SentenciaPtr> LeerDrop();
    Resultado<std::shared_ptr<CrearTabla>> CuerpoDeTabla(NombreObjeto nombre);

private:
    Hecho ElementoDeTabla(CrearTabla& tabla);
    Hecho LeerColumna(std::vector<ColumnaDef>& columnas,
                      std::vector<RestriccionDef>& restricciones);
    Hecho ColumnaCalculadaPor(ColumnaDef& columna);
    Hecho AtributoDeColumna(ColumnaDef& columna, std::vector<RestriccionDef>& restricciones,
                            bool& hubo);
    Resultado<RestriccionDef> LeerRestriccion(const std::string& columna);
    Hecho Clave(RestriccionDef& restriccion, const std::string& columna);
    Hecho Defecto(RestriccionDef& restriccion, const std::string& columna);
    Resultado<Referencia> LeerReferencia();
    Hecho OpcionesDeIndice();
    Resultado<std::string> TextoEntreParentesis();
    Resultado<SentenciaPtr> LeerIndice();
    Resultado<SentenciaPtr> LeerModulo(bool cambiar);
    Hecho CuerpoDeVista(CrearModulo& vista);
    Hecho CuerpoDeRutina(CrearModulo& rutina);
    Hecho LeerParametros(std::vector<ParametroRutina>& parametros);
    Resultado<SentenciaPtr> LeerAlterTable();
    Resultado<SentenciaPtr> AgregarATabla(CambiarTabla cambio);
    bool EmpiezaRestriccion() const;

    Cursor& cursor_;
    ParserConsultas& consultas_;
    ParserExpresiones& expresiones_;
    LectorDeSentencias& sentencias_;
};

class ParserSentencias final : public LectorDeSentencias {
public:
    explicit ParserSentencias(Cursor& cursor)
        : cursor_(cursor),
          consultas_(cursor),
          expresiones_(consultas_.Expresiones()),
          definiciones_(cursor, consultas_, *this) {}

    Hecho LeerTodo();
    Resultado<std::vector<SentenciaPtr>> SentenciasHasta(std::string_view fin) override;

private:
    Resultado<SentenciaPtr> LeerSentencia();
    Resultado<SentenciaPtr> Despachar();
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
    Resultado<SentenciaPtr> LeerCreate() { return definiciones_.LeerCreate(); }
    Resultado<SentenciaPtr> LeerAlter() { return definiciones_.LeerAlter(); }
    Resultado<SentenciaPtr> LeerDrop() { return definiciones_.LeerDrop(); }
    Resultado<SentenciaPtr> LeerUse();
    Resultado<SentenciaPtr> LeerDbcc();

    Cursor& cursor_;
    ParserConsultas consultas_;
    ParserExpresiones& expresiones_;
    ParserDefiniciones definiciones_;
};

}  // namespace quimo::tsql
