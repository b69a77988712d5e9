#pragma once

#include <optional>
#include <string>

#include "tsql/valores/error_sql.h"

namespace quimo::data::embebido {

using tsql::ErrorSql;

// The errors of running statements, by what they say; those of reading and translating them are in
// tsql/error_sql.h. Number, SQLSTATE and wording are the server's. Objects are named as the message
// shows them.

// The file and the machine under it
ErrorSql BaseNoAbre(const std::string& archivo, const std::string& motivo);
ErrorSql BaseDeOtroPrograma();
ErrorSql BaseDesconocida(const std::string& nombre);
ErrorSql BaseOcupada();
ErrorSql BaseSoloLectura(const std::string& archivo);
ErrorSql DiscoLleno(const std::string& archivo);
ErrorSql FalloDeDisco(const std::string& motivo);
ErrorSql SinMemoria();
/// The engine below refused what it was given: a mistake of the translation.
ErrorSql FalloInterno(const std::string& motivo);

// Transactions
ErrorSql SinTransaccionQueConfirmar();
ErrorSql SinTransaccionQueRevertir();
ErrorSql SinTransaccionQueGuardar();
ErrorSql PuntoDesconocido(const std::string& nombre);
/// A transaction was ended by what went wrong in it.
ErrorSql TransaccionDeshecha();
ErrorSql TransaccionesDisparejas(int antes, int despues);

// Procedures, functions and their variables
ErrorSql ProcedimientoDesconocido(const std::string& nombre);
ErrorSql RutinasDemasiadoAnidadas(int limite);
ErrorSql ParametroDesconocido(const std::string& parametro, const std::string& rutina);
ErrorSql ParametroRepetido(const std::string& parametro);
ErrorSql ParametroSinSalida(const std::string& parametro);
ErrorSql ParametroFaltante(const std::string& rutina, const std::string& parametro);
ErrorSql RegresoConValor();
ErrorSql VariableDeTipoLargo();
/// What a statement fails with when a function that it called failed with `causa`.
ErrorSql FuncionFallida(const std::optional<ErrorSql>& causa);
ErrorSql InsertExecAnidado();
ErrorSql RevertirEnInsertExec();
ErrorSql ConfirmarEnInsertExec();
/// Follows the errors that told already why a statement was given up.
ErrorSql SentenciaTerminada();
ErrorSql CandadoSinTener(const std::string& recurso);
ErrorSql MasDeUnValor();

// SET, PRINT, RAISERROR, DBCC
ErrorSql OpcionDesconocida(const std::string& opcion, const std::string& clase);
ErrorSql TablaSinIdentidad(const std::string& tabla);
ErrorSql IdentidadYaAbierta(const std::string& abierta, const std::string& tabla);
/// A message: not an error, nothing fails with it.
ErrorSql Aviso(const std::string& texto);
/// RAISERROR with a text of its own, or with a number in place of one.
ErrorSql ErrorLanzado(const std::string& texto, int severidad);
ErrorSql ErrorLanzado(int numero, int severidad);
ErrorSql HallazgoDeRevision(int numero, const std::string& mensaje);
ErrorSql FinDeRevision(std::size_t hallazgos, const std::string& base);

// Definitions
ErrorSql NombreOcupado(const std::string& nombre);
ErrorSql ColumnaYaEsta(const std::string& columna, const std::string& tabla);
ErrorSql ColumnaFaltante(const std::string& columna);
ErrorSql ColumnaSinNombreEnInto();
ErrorSql DosIdentidades(const std::string& tabla);
ErrorSql IdentidadDeTipoInvalido(const std::string& columna);
ErrorSql DosValoresPorDefecto();
ErrorSql DosClavesPrimarias(const std::string& tabla);
ErrorSql PrimariaConNulos(const std::string& tabla);
ErrorSql ForaneaSinColumna(const std::string& foranea, const std::string& columna,
                           const std::string& tabla);
ErrorSql ForaneaSinTabla(const std::string& foranea, const std::string& referida);
ErrorSql ForaneaSinColumnaReferida(const std::string& foranea, const std::string& columna,
                                   const std::string& referida);
ErrorSql ForaneaSinClave(const std::string& referida, const std::string& foranea);
ErrorSql IndiceSinTabla(const std::string& tabla);
ErrorSql IndiceYaEsta(const std::string& indice, const std::string& tabla);
ErrorSql IndiceConRepetidos(const std::string& objeto, const std::string& indice);
ErrorSql ModuloDeOtraClase(const std::string& nombre);
ErrorSql CambioSinTabla(const std::string& tabla);
ErrorSql CambioSinColumna(const std::string& cambio, const std::string& columna,
                          const std::string& tabla);
ErrorSql CambioImpedido(const std::string& cambio);
ErrorSql CambioEnTransaccion();
ErrorSql CambioRompeReferencias(const std::string& tabla);
ErrorSql ColumnaNuevaSinValor(const std::string& columna, const std::string& tabla);
ErrorSql DependeDeColumna(const std::string& clase, const std::string& cual,
                          const std::string& columna);
ErrorSql RestriccionDesconocida(const std::string& nombre);
ErrorSql VaciarSinTabla(const std::string& tabla);
ErrorSql VaciarTablaReferida(const std::string& tabla);
ErrorSql QuitarLoQueNoEsta(const std::string& clase, const std::string& nombre);
ErrorSql QuitarTablaReferida(const std::string& tabla);
ErrorSql QuitarIndiceDeRestriccion(const std::string& indice);

// Rows that a constraint refuses
ErrorSql ClaveRepetida(const std::string& clase, const std::string& restriccion,
                       const std::string& objeto);
ErrorSql IndiceUnicoRepetido(const std::string& objeto, const std::string& indice);
ErrorSql RestriccionIncumplida(const std::string& mensaje);

// What code asks of an error before it goes on.
bool EsSoloAviso(const ErrorSql& error);
bool EsObjetoDesconocido(const ErrorSql& error);
/// A table, column or other object that is not known: it may be known to another process.
bool EsNombreDesconocido(const ErrorSql& error);
/// A text that does not say a number or date.
bool EsTextoSinConvertir(const ErrorSql& error);
bool EsBaseOcupada(const ErrorSql& error);
bool EsSinMemoria(const ErrorSql& error);
bool EsFalloInterno(const ErrorSql& error);

}  // namespace quimo::data::embebido
