#include "dayclose/fin_de_dia.h"

#include "dayclose/distribucion.h"
#include "dayclose/fecha_trabajo.h"
#include "dayclose/reunion.h"
#include "dayclose/transferencia.h"
#include "foundation/parametros.h"
#include "foundation/transaccion.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using foundation::Botones;
using foundation::ClsAdo;
using foundation::Icono;
using foundation::Parametros;
using foundation::Respuesta;

namespace {

Interrupcion ParametroErroneo(const QString& texto) {
    return {Interrupcion::Motivo::Error, kParametroErroneo, texto};
}

ResultadoCierre<QString> LeerCadena(ClsAdo& ado, const char16_t* clave) {
    auto valor = Parametros(ado).Cadena(clave);
    if (valor) return std::move(valor).value();
    if (valor.error().numero == foundation::FalloSql::kSinRegistro) {
        return ParametroErroneo(u"Falta el parámetro "_s + QString::fromUtf16(clave) +
                                u" en la tabla Parametros."_s);
    }
    return DeFallo(valor.error());
}

}  // namespace

FinDeDia::FinDeDia(ClsAdo& ado, TerminalShare& share, const foundation::Reloj& reloj,
                   const QString& carpeta)
    : contexto_{ado,
                share,
                reloj,
                carpeta,
                ArchivoVentas(carpeta + u"/archivo"_s),
                ManejadorFallas(ado.Dialogo())} {}

ResultadoCierre<QString> FinDeDia::FechaPendiente(ClsAdo& ado) {
    QUIMO_INTENTAR(const auto pendiente, CierrePendiente::Leer(ado.Conexion()));
    return pendiente ? pendiente->Fecha() : QString();
}

ResultadoCierre<CierrePendiente> FinDeDia::Avanzar() {
    ClsAdo& ado = contexto_.ado;
    contexto_.Progreso(u"Avanzando la fecha de trabajo"_s);
    // The date moves on, the queues are emptied and the close is remembered at once: after a power
    // cut either all of it happened or nothing.
    QUIMO_INTENTAR(auto transaccion, foundation::Transaccion::Iniciar(ado.Conexion()));
    for (const QString& cola :
         {u"TransaccionesXTerminal"_s, u"Transacciones"_s, u"Control_Paquetes"_s}) {
        // Borrar has already told what the database refused.
        if (!ado.Borrar(nullptr, cola, std::nullopt, QString())) {
            return ParametroErroneo(u"No se pudo vaciar la tabla "_s + cola + u'.');
        }
    }
    QUIMO_TRY(const QString fecha, LeerCadena(ado, foundation::parametro::kFechaTrabajo));
    if (!foundation::EsFechaTrabajo(fecha)) {
        return ParametroErroneo(
            u"El parámetro FECHA_TRABAJO debe tener ocho dígitos (ddmmaaaa) y "
            u"tiene '"_s +
            fecha + u"'."_s);
    }
    if (!ado.Modificar(nullptr, u"Parametros"_s,
                       u"Valor_Cad='"_s + SiguienteFechaTrabajo(fecha) + u'\'',
                       u"ID_Parametro='FECHA_TRABAJO'"_s)) {
        return FalloPendiente(ado);
    }
    QUIMO_INTENTAR(CierrePendiente cierre,
                   CierrePendiente::Iniciar(ado.Conexion(), fecha, contexto_.reloj.Ahora()));
    QUIMO_INTENTAR_VOID(transaccion.Confirmar());
    return cierre;
}

ResultadoCierre<void> FinDeDia::Correr() {
    ClsAdo& ado = contexto_.ado;
    QUIMO_INTENTAR(auto pendiente, CierrePendiente::Leer(ado.Conexion()));
    if (pendiente && ado.Dialogo().Preguntar(
                         u"El cierre del "_s + foundation::FechaTrabajoVisible(pendiente->Fecha()) +
                             u" no terminó. ¿Desea continuarlo?"_s,
                         Botones::SiNo, Icono::Pregunta) != Respuesta::Si) {
        pendiente.reset();
    }
    // It asks the user rarely; the rest of the time the pointer says that it is at work.
    const foundation::PunteroOcupado ocupado(ado.Dialogo());
    if (!pendiente) {
        QUIMO_TRY(CierrePendiente nuevo, Avanzar());
        pendiente = std::move(nuevo);
    }
    contexto_.resumen.fecha = pendiente->Fecha();
    BorrarRestos(contexto_.carpeta);
    QUIMO_TRY(contexto_.directorio, LeerCadena(ado, foundation::parametro::kDirectorioTerminal));
    if (pendiente->PasoActual() == Paso::Reunir) {
        QUIMO_TRY_VOID(ReunirTerminales(contexto_, *pendiente));
    } else if (pendiente->PasoActual() == Paso::Transferir) {
        QUIMO_TRY_VOID(RevisarCopias(contexto_, *pendiente));
    }
    if (pendiente->PasoActual() == Paso::Transferir) {
        QUIMO_TRY_VOID(TransferirVentas(contexto_, *pendiente));
    }
    QUIMO_TRY_VOID(DistribuirCatalogos(contexto_, *pendiente));
    return BorrarTemporales(ado);
}

FinDeDia::Desenlace FinDeDia::Ejecutar() {
    foundation::Dialogos& dialogos = contexto_.ado.Dialogo();
    const auto corrido = Correr();
    if (corrido) {
        dialogos.Avisar(u"Proceso terminado"_s, Icono::Informacion);
        return Desenlace::Terminado;
    }
    const Interrupcion& interrupcion = corrido.error();
    if (interrupcion.motivo == Interrupcion::Motivo::Abortado) {
        dialogos.Avisar(u"Abortado"_s, Icono::Informacion);
        // What cannot be dropped now goes with the connection.
        static_cast<void>(BorrarTemporales(contexto_.ado));
        return Desenlace::Abortado;
    }
    dialogos.Avisar(
        QString::number(static_cast<qint32>(interrupcion.numero)) + u' ' + interrupcion.descripcion,
        Icono::Critico);
    return Desenlace::ConError;
}

}  // namespace quimo::dayclose
