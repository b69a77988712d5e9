#include "dayclose/cierre/fin_de_dia.h"

#include <QFile>

#include "data/transaccion.h"
#include "dayclose/cierre/base_nueva.h"
#include "dayclose/cierre/distribucion.h"
#include "dayclose/cierre/fecha_trabajo.h"
#include "dayclose/cierre/resumen_cierre.h"
#include "dayclose/cierre/reunion.h"
#include "dayclose/cierre/traspaso.h"
#include "dayclose/cierre/turno_cierre.h"
#include "dayclose/terminales/archivos.h"
#include "foundation/parametros.h"

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

Interrupcion SinEmpezar(const QString& texto) {
    return {Interrupcion::Motivo::SinEmpezar, 0, texto};
}

ResultadoCierre<QString> LeerCadena(ClsAdo& ado, const char16_t* clave) {
    auto valor = Parametros(ado).Cadena(clave);
    if (valor) return std::move(valor).value();
    if (valor.error().numero == data::FalloSql::kSinRegistro) {
        return ParametroErroneo(u"Falta el parámetro "_s + QString::fromUtf16(clave) +
                                u" en la tabla Parametros."_s);
    }
    return valor.error();
}

QString Visible(const CierrePendiente& cierre) {
    return foundation::FechaTrabajoVisible(cierre.Fecha());
}

}  // namespace

FinDeDia::FinDeDia(ClsAdo& ado, TerminalShare& share, const data::Reloj& reloj,
                   const QString& carpeta, OpcionesCierre opciones)
    : contexto_(ContextoCierre::De(ado, share, reloj, carpeta, opciones)) {}

ResultadoCierre<CierrePendiente> FinDeDia::Avanzar() {
    ClsAdo& ado = contexto_.ado;
    contexto_.Progreso(u"Avanzando la fecha de trabajo"_s);
    // The date moves on, the queues are emptied and the close is remembered at once: after a power
    // cut either all of it happened or nothing.
    QUIMO_TRY(auto transaccion, data::Transaccion::Iniciar(ado.Conexion()));
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
    QUIMO_TRY(CierrePendiente cierre,
              CierrePendiente::Iniciar(transaccion, fecha, contexto_.reloj.Ahora()));
    QUIMO_TRY_VOID(transaccion.Confirmar());
    return cierre;
}

/// What lies in the terminals' folders belongs to the close that fetched it: a later one must not
/// take it for a terminal's sales.
void FinDeDia::BorrarCopiasLocales() {
    const auto terminales = TodasLasTerminales(contexto_.ado);
    if (!terminales) return;
    for (const Terminal& terminal : *terminales) {
        if (EsNombreDeEquipo(terminal.nombre)) QFile::remove(contexto_.CopiaLocal(terminal.nombre));
    }
}

/// Which close is run: the one that did not end, or none yet.
ResultadoCierre<void> FinDeDia::Elegir() {
    QUIMO_TRY(cierre_, CierrePendiente::Leer(contexto_.ado.Conexion()));
    using Pendiente = OpcionesCierre::Pendiente;
    const Pendiente modo = contexto_.opciones.pendiente;
    if (!cierre_) {
        if (modo != Pendiente::Continuar) return {};
        return SinEmpezar(u"No hay ningún cierre pendiente"_s);
    }
    if (modo == Pendiente::Rechazar) {
        const QString fecha = Visible(*cierre_);
        cierre_.reset();
        return SinEmpezar(u"El cierre del "_s + fecha +
                          u" no terminó. Use --continuar para continuarlo, o --descartar para "
                          u"dejarlo."_s);
    }
    if (modo == Pendiente::Preguntar &&
        contexto_.ado.Dialogo().Preguntar(
            u"El cierre del "_s + Visible(*cierre_) + u" no terminó. ¿Desea continuarlo?"_s,
            Botones::SiNo, Icono::Pregunta) != Respuesta::Si) {
        QUIMO_TRY_VOID(ConfirmarDescarte());
        cierre_.reset();
    }
    return {};
}

/// A close that is left behind cannot be gone on with any more.
ResultadoCierre<void> FinDeDia::ConfirmarDescarte() {
    const QString fecha = Visible(*cierre_);
    const QString pregunta =
        u"El cierre del %1 se dejará sin terminar y se empezará uno nuevo. Lo que copió se queda, "
        u"y "
        u"los archivos de las terminales quedan guardados en la carpeta archivo. ¿Está seguro?"_s
            .arg(fecha);
    if (contexto_.ado.Dialogo().Preguntar(pregunta, Botones::SiNo, Icono::Exclamacion) ==
        Respuesta::Si) {
        return {};
    }
    cierre_.reset();
    return SinEmpezar(u"El cierre del "_s + fecha + u" sigue pendiente."_s);
}

ResultadoCierre<void> FinDeDia::Empezar() {
    contexto_.Progreso(u"Revisando la plantilla de las terminales"_s);
    QUIMO_TRY_VOID(BaseNueva::Ensayar(contexto_.ado, contexto_.carpeta));
    BorrarCopiasLocales();
    QUIMO_TRY(CierrePendiente nuevo, Avanzar());
    cierre_ = std::move(nuevo);
    return {};
}

ResultadoCierre<void> FinDeDia::Correr() {
    ClsAdo& ado = contexto_.ado;
    QUIMO_TRY(TurnoCierre turno, TurnoCierre::Tomar(ado.Conexion(), contexto_.opciones.quien,
                                                    contexto_.reloj.Ahora()));
    contexto_.turno = &turno;
    auto corrido = CorrerEnTurno();
    contexto_.turno = nullptr;
    return corrido;
}

ResultadoCierre<void> FinDeDia::CorrerEnTurno() {
    ClsAdo& ado = contexto_.ado;
    QUIMO_TRY_VOID(RevisarOmitidas(contexto_));
    QUIMO_TRY_VOID(Elegir());
    // It asks the user rarely; the rest of the time the pointer says that it is at work.
    const foundation::PunteroOcupado ocupado(ado.Dialogo());
    BorrarRestos(contexto_.carpeta);
    if (!cierre_) QUIMO_TRY_VOID(Empezar());
    contexto_.resumen.fecha = cierre_->Fecha();
    return Recorrer();
}

ResultadoCierre<void> FinDeDia::Recorrer() {
    QUIMO_TRY(contexto_.directorio,
              LeerCadena(contexto_.ado, foundation::parametro::kDirectorioTerminal));
    QUIMO_TRY_VOID(ApartarOmitidas(contexto_, *cierre_));
    if (cierre_->PasoActual() == Paso::Reunir) {
        QUIMO_TRY_VOID(ReunirTerminales(contexto_, *cierre_));
    } else if (cierre_->PasoActual() == Paso::Transferir) {
        QUIMO_TRY_VOID(RevisarCopias(contexto_, *cierre_));
    }
    if (cierre_->PasoActual() == Paso::Transferir) {
        QUIMO_TRY_VOID(TransferirVentas(contexto_, *cierre_));
    }
    QUIMO_TRY_VOID(DistribuirCatalogos(contexto_, *cierre_));
    QUIMO_TRY_VOID(contexto_.PuntoSeguro());
    CompletarResumen(contexto_, *cierre_);
    QUIMO_TRY_VOID(TerminarCierre(contexto_, *cierre_));
    // From here on the day is closed: what is tidied up decides nothing.
    BorrarCopiasLocales();
    static_cast<void>(BorrarTemporales(contexto_.ado));
    return {};
}

QString FinDeDia::QueSigue() const {
    const auto pendiente = CierrePendiente::Leer(contexto_.ado.Conexion());
    if (!pendiente) return {};
    if (!*pendiente) return u"No quedó ningún cierre pendiente."_s;
    return u"El cierre del %1 quedó pendiente: nada de lo hecho se pierde. Continúelo desde Fin de "
           u"día, o con quimoctl cerrar ... --continuar."_s.arg(Visible(**pendiente));
}

FinDeDia::Desenlace FinDeDia::Contar(Interrupcion interrupcion) {
    foundation::Dialogos& dialogos = contexto_.ado.Dialogo();
    using Motivo = Interrupcion::Motivo;
    switch (interrupcion.motivo) {
        case Motivo::Abortado:
            dialogos.Avisar(u"Abortado"_s, Icono::Informacion);
            // What cannot be dropped now goes with the connection.
            static_cast<void>(BorrarTemporales(contexto_.ado));
            return Desenlace::Abortado;
        case Motivo::SinEmpezar:
            dialogos.Avisar(interrupcion.descripcion, Icono::Exclamacion);
            return Desenlace::SinEmpezar;
        case Motivo::Detenido:
            dialogos.Avisar(interrupcion.descripcion + u"\n\n"_s + QueSigue(), Icono::Exclamacion);
            return Desenlace::Detenido;
        case Motivo::Error:
            break;
    }
    QStringList partes;
    if (!interrupcion.dicha) {
        partes << QString::number(static_cast<qint32>(interrupcion.numero)) + u' ' +
                      interrupcion.descripcion;
        if (!interrupcion.detalle.isEmpty()) partes << interrupcion.detalle;
    }
    const QString sigue = QueSigue();
    if (!sigue.isEmpty()) partes << sigue;
    if (!partes.isEmpty()) dialogos.Avisar(partes.join(u"\n\n"_s), Icono::Critico);
    return Desenlace::ConError;
}

FinDeDia::Desenlace FinDeDia::Ejecutar() {
    auto corrido = Correr();
    if (corrido) {
        contexto_.ado.Dialogo().Avisar(u"Proceso terminado"_s, Icono::Informacion);
        return contexto_.resumen.Completo() ? Desenlace::Terminado : Desenlace::Incompleto;
    }
    if (cierre_) CompletarResumen(contexto_, *cierre_);
    return Contar(std::move(corrido).error());
}

ResultadoCierre<void> FinDeDia::DescartarPendiente() {
    ClsAdo& ado = contexto_.ado;
    QUIMO_TRY(const TurnoCierre turno, TurnoCierre::Tomar(ado.Conexion(), contexto_.opciones.quien,
                                                          contexto_.reloj.Ahora()));
    QUIMO_TRY(auto pendiente, CierrePendiente::Leer(ado.Conexion()));
    if (!pendiente) return SinEmpezar(u"No hay ningún cierre pendiente"_s);
    const QString fecha = Visible(*pendiente);
    for (const QString& pregunta :
         {u"El cierre del %1 no terminó. Al descartarlo ya no se podrá continuar: lo que copió se "
          u"queda, y los archivos de las terminales quedan guardados en la carpeta archivo. ¿Desea "
          u"descartarlo?"_s.arg(fecha),
          u"¿Está seguro de descartar el cierre del %1?"_s.arg(fecha)}) {
        if (ado.Dialogo().Preguntar(pregunta, Botones::SiNo, Icono::Pregunta) != Respuesta::Si) {
            return SinEmpezar(u"El cierre del "_s + fecha + u" sigue pendiente."_s);
        }
    }
    QUIMO_TRY(auto transaccion, data::Transaccion::Iniciar(ado.Conexion()));
    QUIMO_TRY_VOID(pendiente->Olvidar(transaccion));
    QUIMO_TRY_VOID(transaccion.Confirmar());
    BorrarCopiasLocales();
    ado.Dialogo().Avisar(
        u"Se descartó el cierre del %1. Lo que falte de sus ventas se trae con: quimoctl cerrar "
        u"... "
        u"--traer ARCHIVO --terminal NOMBRE"_s.arg(fecha),
        Icono::Informacion);
    return {};
}

bool FinDeDia::Descartar() {
    auto hecho = DescartarPendiente();
    if (hecho) return true;
    Contar(std::move(hecho).error());
    return false;
}

}  // namespace quimo::dayclose
