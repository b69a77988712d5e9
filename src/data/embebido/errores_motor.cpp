#include "data/embebido/errores_motor.h"

#include <utility>

namespace quimo::data::embebido {

using tsql::CrearError;

namespace {

// Numbers that are made here and asked for as well, and numbers of what others make.
constexpr int kColumnaDesconocida = 207;
constexpr int kObjetoDesconocido = 208;
constexpr int kFechaMalEscrita = 241;
constexpr int kConversionFallida = 245;
constexpr int kConflicto = 547;
constexpr int kSinMemoria = 701;
constexpr int kBaseOcupada = 1222;
constexpr int kFalloInterno = 8630;

/// The last severity of what is only told.
constexpr int kSoloAviso = 10;
constexpr int kDeRecursos = 17;
constexpr int kDelMedio = 24;

constexpr const char* kEstadoGeneral = "HY000";
constexpr const char* kEstadoDeAviso = "01000";
constexpr const char* kEstadoDeIntegridad = "23000";
constexpr const char* kEstadoSinTransaccion = "25000";
constexpr const char* kEstadoSinTabla = "42S02";
constexpr const char* kEstadoDeSentencia = "42000";

ErrorSql Nuevo(int nativo, std::string mensaje, const char* sqlstate = kEstadoDeSentencia) {
    return {.nativo = nativo, .mensaje = std::move(mensaje), .sqlstate = sqlstate};
}

ErrorSql DelMotor(int nativo, std::string mensaje, int severidad) {
    ErrorSql error = Nuevo(nativo, std::move(mensaje), kEstadoGeneral);
    error.severidad = severidad;
    return error;
}

ErrorSql Lanzado(int nativo, std::string mensaje, int severidad) {
    ErrorSql error = Nuevo(nativo, std::move(mensaje),
                           severidad <= kSoloAviso ? kEstadoDeAviso : kEstadoDeSentencia);
    error.severidad = severidad;
    return error;
}

}  // namespace

ErrorSql BaseNoAbre(const std::string& archivo, const std::string& motivo) {
    ErrorSql error = CrearError(4060, archivo);
    error.mensaje += " " + motivo;
    return error;
}
ErrorSql BaseDeOtroPrograma() {
    return Nuevo(4060, "The file holds a database of another program.", "08004");
}
ErrorSql BaseDesconocida(const std::string& nombre) { return CrearError(911, nombre); }
ErrorSql BaseOcupada() { return CrearError(kBaseOcupada); }
ErrorSql BaseSoloLectura(const std::string& archivo) {
    return DelMotor(
        3906, "Failed to update database \"" + archivo + "\" because the database is read-only.",
        kDeRecursos);
}
ErrorSql DiscoLleno(const std::string& archivo) {
    ErrorSql error = CrearError(9002, archivo);
    error.severidad = kDeRecursos;
    return error;
}
ErrorSql FalloDeDisco(const std::string& motivo) {
    return DelMotor(823, "The operating system returned an error to the engine: " + motivo + ".",
                    kDelMedio);
}
ErrorSql SinMemoria() {
    return DelMotor(kSinMemoria, "There is insufficient system memory to run this query.",
                    kDeRecursos);
}
ErrorSql FalloInterno(const std::string& motivo) {
    return DelMotor(kFalloInterno, "Internal Query Processor Error: " + motivo + ".", kDeRecursos);
}

ErrorSql SinTransaccionQueConfirmar() { return CrearError(3902); }
ErrorSql SinTransaccionQueRevertir() { return CrearError(3903); }
ErrorSql SinTransaccionQueGuardar() {
    return Nuevo(628, "Cannot issue SAVE TRANSACTION when there is no active transaction.",
                 kEstadoSinTransaccion);
}
ErrorSql PuntoDesconocido(const std::string& nombre) { return CrearError(6401, nombre); }
ErrorSql TransaccionDeshecha() { return CrearError(3998); }
ErrorSql TransaccionesDisparejas(int antes, int despues) {
    return CrearError(266, std::to_string(antes), std::to_string(despues));
}

ErrorSql ProcedimientoDesconocido(const std::string& nombre) { return CrearError(2812, nombre); }
ErrorSql RutinasDemasiadoAnidadas(int limite) { return CrearError(217, std::to_string(limite)); }
ErrorSql ParametroDesconocido(const std::string& parametro, const std::string& rutina) {
    return CrearError(8145, parametro, rutina);
}
ErrorSql ParametroRepetido(const std::string& parametro) { return CrearError(8143, parametro); }
ErrorSql ParametroSinSalida(const std::string& parametro) { return CrearError(8162, parametro); }
ErrorSql ParametroFaltante(const std::string& rutina, const std::string& parametro) {
    return CrearError(201, rutina, parametro);
}
ErrorSql RegresoConValor() { return CrearError(178); }
ErrorSql VariableDeTipoLargo() { return CrearError(2739); }
ErrorSql FuncionFallida(const std::optional<ErrorSql>& causa) {
    if (!causa) return CrearError(2528, "The function failed.");
    return Nuevo(causa->nativo, causa->mensaje, causa->sqlstate.c_str());
}
ErrorSql InsertExecAnidado() { return Nuevo(8164, "An INSERT EXEC statement cannot be nested."); }
ErrorSql RevertirEnInsertExec() { return CrearError(3915); }
ErrorSql ConfirmarEnInsertExec() { return CrearError(3916); }
ErrorSql SentenciaTerminada() {
    ErrorSql error = CrearError(3621);
    error.severidad = 0;
    return error;
}
ErrorSql CandadoSinTener(const std::string& recurso) { return CrearError(1223, recurso); }
ErrorSql MasDeUnValor() { return CrearError(512); }

ErrorSql OpcionDesconocida(const std::string& opcion, const std::string& clase) {
    return CrearError(195, opcion, clase);
}
ErrorSql TablaSinIdentidad(const std::string& tabla) { return CrearError(8106, tabla); }
ErrorSql IdentidadYaAbierta(const std::string& abierta, const std::string& tabla) {
    return CrearError(8107, abierta, tabla);
}
ErrorSql Aviso(const std::string& texto) {
    ErrorSql aviso = Nuevo(0, texto, kEstadoDeAviso);
    aviso.severidad = 0;
    return aviso;
}
ErrorSql ErrorLanzado(const std::string& texto, int severidad) {
    return Lanzado(50000, texto, severidad);
}
ErrorSql ErrorLanzado(int numero, int severidad) {
    return Lanzado(numero, "Error " + std::to_string(numero) + ".", severidad);
}
ErrorSql HallazgoDeRevision(int numero, const std::string& mensaje) {
    return Nuevo(numero, mensaje);
}
ErrorSql FinDeRevision(std::size_t hallazgos, const std::string& base) {
    ErrorSql fin = Nuevo(8989,
                         "CHECKDB found 0 allocation errors and " + std::to_string(hallazgos) +
                             " consistency errors in database '" + base + "'.",
                         kEstadoDeAviso);
    fin.severidad = kSoloAviso;
    return fin;
}

ErrorSql NombreOcupado(const std::string& nombre) { return CrearError(2714, nombre); }
ErrorSql ColumnaYaEsta(const std::string& columna, const std::string& tabla) {
    return CrearError(2705, columna, tabla);
}
ErrorSql ColumnaFaltante(const std::string& columna) { return CrearError(1911, columna); }
ErrorSql ColumnaSinNombreEnInto() {
    return Nuevo(1038,
                 "An object or column name is missing or empty. For SELECT INTO statements, verify "
                 "each column has a name.");
}
ErrorSql DosIdentidades(const std::string& tabla) { return CrearError(2744, tabla); }
ErrorSql IdentidadDeTipoInvalido(const std::string& columna) {
    return Nuevo(2749,
                 "Identity column '" + columna +
                     "' must be of data type int, bigint, smallint, tinyint, or decimal or numeric "
                     "with a scale of 0, unencrypted, and constrained to be nonnullable.");
}
ErrorSql DosValoresPorDefecto() { return Nuevo(1781, "Column already has a DEFAULT bound to it."); }
ErrorSql DosClavesPrimarias(const std::string& tabla) { return CrearError(8110, tabla); }
ErrorSql PrimariaConNulos(const std::string& tabla) { return CrearError(8111, tabla); }
ErrorSql ForaneaSinColumna(const std::string& foranea, const std::string& columna,
                           const std::string& tabla) {
    return CrearError(1769, foranea, columna, tabla);
}
ErrorSql ForaneaSinTabla(const std::string& foranea, const std::string& referida) {
    return CrearError(1767, foranea, referida);
}
ErrorSql ForaneaSinColumnaReferida(const std::string& foranea, const std::string& columna,
                                   const std::string& referida) {
    return CrearError(1770, foranea, columna, referida);
}
ErrorSql ForaneaSinClave(const std::string& referida, const std::string& foranea) {
    return CrearError(1776, referida, foranea);
}
ErrorSql IndiceSinTabla(const std::string& tabla) {
    return Nuevo(1088,
                 "Cannot find the object \"" + tabla +
                     "\" because it does not exist or you do not have permissions.",
                 kEstadoSinTabla);
}
ErrorSql IndiceYaEsta(const std::string& indice, const std::string& tabla) {
    return CrearError(1913, indice, tabla);
}
ErrorSql IndiceConRepetidos(const std::string& objeto, const std::string& indice) {
    return CrearError(1505, objeto, indice);
}
ErrorSql ModuloDeOtraClase(const std::string& nombre) { return CrearError(2010, nombre); }
ErrorSql CambioSinTabla(const std::string& tabla) { return CrearError(4902, tabla); }
ErrorSql CambioSinColumna(const std::string& cambio, const std::string& columna,
                          const std::string& tabla) {
    return CrearError(4924, cambio, columna, tabla);
}
ErrorSql CambioImpedido(const std::string& cambio) { return CrearError(4922, cambio); }
ErrorSql CambioEnTransaccion() {
    return Nuevo(226, "ALTER TABLE statement not allowed within multi-statement transaction.");
}
ErrorSql CambioRompeReferencias(const std::string& tabla) {
    return RestriccionIncumplida(
        "The ALTER TABLE statement conflicted with the FOREIGN KEY constraint of table \"dbo." +
        tabla + "\".");
}
ErrorSql ColumnaNuevaSinValor(const std::string& columna, const std::string& tabla) {
    return CrearError(4901, columna, tabla);
}
ErrorSql DependeDeColumna(const std::string& clase, const std::string& cual,
                          const std::string& columna) {
    return CrearError(5074, clase, cual, columna);
}
ErrorSql RestriccionDesconocida(const std::string& nombre) { return CrearError(3728, nombre); }
ErrorSql VaciarSinTabla(const std::string& tabla) { return CrearError(4701, tabla); }
ErrorSql VaciarTablaReferida(const std::string& tabla) { return CrearError(4712, tabla); }
ErrorSql QuitarLoQueNoEsta(const std::string& clase, const std::string& nombre) {
    return CrearError(3701, clase, nombre);
}
ErrorSql QuitarTablaReferida(const std::string& tabla) { return CrearError(3726, tabla); }
ErrorSql QuitarIndiceDeRestriccion(const std::string& indice) {
    return Nuevo(3723,
                 "An explicit DROP INDEX is not allowed on index '" + indice +
                     "'. It is being used for constraint enforcement.",
                 kEstadoSinTabla);
}

ErrorSql ClaveRepetida(const std::string& clase, const std::string& restriccion,
                       const std::string& objeto) {
    return CrearError(2627, clase, restriccion, objeto);
}
ErrorSql IndiceUnicoRepetido(const std::string& objeto, const std::string& indice) {
    return CrearError(2601, objeto, indice);
}
ErrorSql RestriccionIncumplida(const std::string& mensaje) {
    return Nuevo(kConflicto, mensaje, kEstadoDeIntegridad);
}

bool EsSoloAviso(const ErrorSql& error) { return error.severidad <= kSoloAviso; }
bool EsObjetoDesconocido(const ErrorSql& error) { return error.nativo == kObjetoDesconocido; }
bool EsNombreDesconocido(const ErrorSql& error) {
    return error.nativo == kObjetoDesconocido || error.nativo == kColumnaDesconocida;
}
bool EsTextoSinConvertir(const ErrorSql& error) {
    return error.nativo == kConversionFallida || error.nativo == kFechaMalEscrita;
}
bool EsBaseOcupada(const ErrorSql& error) { return error.nativo == kBaseOcupada; }
bool EsSinMemoria(const ErrorSql& error) { return error.nativo == kSinMemoria; }
bool EsFalloInterno(const ErrorSql& error) { return error.nativo == kFalloInterno; }

}  // namespace quimo::data::embebido
