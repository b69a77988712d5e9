#pragma once

#include <string>
#include <utility>

#include "base/result.h"

namespace quimo::tsql {

/// A failure as the server tells it: native number, SQLSTATE and the server's English wording.
/// Texts are UTF-8.
struct ErrorSql {
    int nativo = 0;
    std::string mensaje;
    std::string sqlstate = "42000";
    int severidad = 16;

    /// The statement list stops here: a conversion that failed, a name that is not there, bad
    /// syntax. Other failures undo their statement only and the list goes on.
    bool AbortaLote() const;
};

template <typename T>
using Resultado = base::Result<T, ErrorSql>;

/// The error of a native number. Each %1, %2... of the server's wording is replaced by the
/// arguments; the SQLSTATE is the one the driver reports for the number.
ErrorSql CrearError(int nativo, const std::string& uno = {}, const std::string& dos = {},
                    const std::string& tres = {});

// The errors of reading, translating and computing, by what they say. Types, functions and columns
// are named as the message shows them.

// Texts that cannot be read
ErrorSql SintaxisIncorrecta(const std::string& palabra, const std::string& lugar = {});
ErrorSql PalabraClaveIncorrecta(const std::string& palabra, const std::string& lugar);
ErrorSql TextoSinCerrar(const std::string& texto);
ErrorSql ComentarioSinCerrar();
ErrorSql RealFueraDeRango(const std::string& cifras);
ErrorSql NumeroFueraDeRango(const std::string& cifras);
ErrorSql MonedaMalEscrita();
ErrorSql DemasiadoAnidado();
ErrorSql VistasDemasiadoAnidadas(const std::string& limite);
ErrorSql CondicionEsperada(const std::string& cerca);
ErrorSql TipoDesconocido(const std::string& nombre);
ErrorSql PrecisionExcesiva(const std::string& precision);
ErrorSql EscalaExcesiva(const std::string& escala, const std::string& precision);

// Names
ErrorSql ColumnaDesconocida(const std::string& nombre);
ErrorSql ColumnaAmbigua(const std::string& nombre);
ErrorSql ColumnaSinDueno(const std::string& nombre_completo);
ErrorSql PrefijoDesconocido(const std::string& prefijo);
ErrorSql ObjetoDesconocido(const std::string& nombre);
ErrorSql NombresExpuestosIguales(const std::string& uno, const std::string& otro);
ErrorSql VariableSinDeclarar(const std::string& nombre);
ErrorSql ParametrosDeMenos(const std::string& marcas, const std::string& dados);
ErrorSql FuncionDesconocida(const std::string& nombre);
ErrorSql FuncionPropiaDesconocida(const std::string& esquema, const std::string& nombre_completo);
ErrorSql ColumnaSinNombre(const std::string& lugar, const std::string& tabla);
ErrorSql ColumnaDosVeces(const std::string& columna, const std::string& tabla);
ErrorSql ColumnasSinNombrar(const std::string& tabla);
ErrorSql NombresDeMas(const std::string& tabla);

// Queries
ErrorSql UnaSolaExpresion();
ErrorSql AsignacionConLectura();
ErrorSql ListasDesiguales();
ErrorSql SinTablaQueListar();
ErrorSql LugarDeOrdenFueraDeRango(const std::string& lugar);
ErrorSql OrdenFueraDeLaLista();
ErrorSql AgregadoFueraDeLugar();
ErrorSql AgregadoDentroDeAgregado();
ErrorSql AgregadoEnGrupo();
ErrorSql AgregadoEnAsignacion();
ErrorSql GrupoSinColumna();
ErrorSql ColumnaFueraDelGrupo(const std::string& columna, const std::string& clausula);

// Functions and operators
ErrorSql ArgumentosExactos(const std::string& funcion, const std::string& cuantos);
ErrorSql ArgumentosEntre(const std::string& funcion, const std::string& rango);
ErrorSql ParametrosDeMas(const std::string& funcion);
ErrorSql ArgumentosInsuficientes(const std::string& funcion);
ErrorSql ParteDeFechaDesconocida(const std::string& parte, const std::string& funcion);
ErrorSql ParametroInvalido(const std::string& cual, const std::string& funcion);
ErrorSql ArgumentoDeTipoInvalido(const std::string& tipo, const std::string& cual,
                                 const std::string& funcion);
ErrorSql OperandoDeTipoInvalido(const std::string& tipo, const std::string& operador);
ErrorSql OperadorIncompatible(const std::string& tipo, const std::string& otro,
                              const std::string& operador);
ErrorSql CasoSinTipo();
ErrorSql CoalesceSinTipo();
ErrorSql LongitudInvalida(const std::string& funcion);
ErrorSql LongitudInvalidaDeTrozo();
ErrorSql EscapeInvalido(const std::string& escape);
ErrorSql DivisionEntreCero();
ErrorSql OperacionRealInvalida();

// Conversions
ErrorSql TiposIncompatibles(const std::string& de, const std::string& a);
ErrorSql ConversionImplicitaProhibida(const std::string& de, const std::string& a);
ErrorSql ConversionImposible(const std::string& de, const std::string& a);
ErrorSql ConversionFallida(const std::string& de, const std::string& valor, const std::string& a);
ErrorSql Desbordamiento(const std::string& de, const std::string& a);
ErrorSql DesbordamientoDeEntero(const std::string& de, const std::string& valor);
ErrorSql DesbordamientoDeCorto(const std::string& de, const std::string& valor,
                               const std::string& a);
ErrorSql ValorFueraDeTipo(const std::string& tipo, const std::string& valor);
ErrorSql RealDesbordado(const std::string& tipo, const std::string& valor);
ErrorSql MonedaSinEspacio(const std::string& a);
ErrorSql FechaMalEscrita();
ErrorSql FechaFueraDeRango(const std::string& de, const std::string& a);
ErrorSql SumaDeFechaDesbordada(const std::string& tipo);
ErrorSql DiferenciaDeFechasDesbordada();
ErrorSql EstiloDesconocido(const std::string& estilo, const std::string& de, const std::string& a);
ErrorSql UuidMalEscrito();
ErrorSql TextoRecortado();

// Writing
ErrorSql MenosValoresQueColumnas();
ErrorSql MasValoresQueColumnas();
ErrorSql MenosItemsQueColumnas();
ErrorSql MasItemsQueColumnas();
ErrorSql ValoresNoCorresponden();
ErrorSql ColumnaRepetida(const std::string& columna);
ErrorSql ColumnaCalculada(const std::string& columna);
ErrorSql ColumnaSinNulos(const std::string& columna, const std::string& tabla,
                         const std::string& verbo);
ErrorSql IdentidadNoPermitida(const std::string& tabla);
ErrorSql IdentidadRequerida(const std::string& tabla);
ErrorSql IdentidadNoSeCambia(const std::string& columna);
ErrorSql VistaNoEditable(const std::string& nombre);

}  // namespace quimo::tsql
