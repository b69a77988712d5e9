#include "dayclose/cierre/trabajo_terminal.h"

#include <algorithm>

#include <QFileInfo>

#include "data/transaccion.h"
#include "dayclose/cierre/base_nueva.h"
#include "dayclose/cierre/colisiones.h"
#include "dayclose/cierre/distribucion.h"
#include "dayclose/cierre/folios.h"
#include "dayclose/cierre/lectura_terminal.h"
#include "dayclose/cierre/traspaso.h"
#include "dayclose/cierre/turno_cierre.h"
#include "foundation/parametros.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Fila;
using data::Transaccion;
using foundation::Botones;
using foundation::ClsAdo;
using foundation::Icono;
using foundation::Respuesta;

namespace {

constexpr int kVueltasMax = 20;

Interrupcion Rechazo(const QString& texto) { return {Interrupcion::Motivo::SinEmpezar, 0, texto}; }

/// The day that a file is of: that of its orders, else what it says of itself. A damaged one may
/// not tell, and is kept under the present working date. A file of another terminal is refused.
ResultadoCierre<QString> FechaDeArchivo(ClsAdo& ado, const QString& ruta,
                                        const Terminal& terminal) {
    if (const auto base = jet::BaseDatos::Abrir(ruta.toStdString())) {
        const auto suyos = LeerParametrosTerminal(*base);
        if (suyos && suyos->terminal != 0 && suyos->terminal != terminal.id) {
            return Rechazo(u"El archivo es de la terminal número %1, y %2 es la número %3."_s
                               .arg(suyos->terminal)
                               .arg(terminal.nombre)
                               .arg(terminal.id));
        }
        const auto fechas = FechasDeOrdenes(*base);
        if (fechas && !fechas->isEmpty() && foundation::EsFechaTrabajo(fechas->last())) {
            return fechas->last();
        }
        if (suyos && foundation::EsFechaTrabajo(suyos->fecha_trabajo)) return suyos->fecha_trabajo;
    }
    auto actual = foundation::Parametros(ado).Cadena(foundation::parametro::kFechaTrabajo);
    if (!actual) return actual.error();
    return *std::move(actual);
}

QString Resumida(const Comparacion& comparacion) {
    return u"%1 renglones nuevos, %2 ya estaban, %3 distintos"_s.arg(comparacion.Nuevas())
        .arg(comparacion.Iguales())
        .arg(comparacion.Distintas());
}

}  // namespace

TrabajoTerminal::TrabajoTerminal(ClsAdo& ado, TerminalShare& share, const data::Reloj& reloj,
                                 const QString& carpeta, OpcionesCierre opciones)
    : contexto_(ContextoCierre::De(ado, share, reloj, carpeta, opciones)) {}

ResultadoCierre<Terminal> TrabajoTerminal::Preparar(const QString& terminal) {
    QUIMO_TRY(const auto pendiente, CierrePendiente::Leer(contexto_.ado.Conexion()));
    if (pendiente) {
        return Rechazo(u"El cierre del "_s + foundation::FechaTrabajoVisible(pendiente->Fecha()) +
                       u" está pendiente. Continúelo o descártelo antes."_s);
    }
    QUIMO_TRY(const QVector<Terminal> todas, TodasLasTerminales(contexto_.ado));
    QStringList nombres;
    for (const Terminal& otra : todas) {
        if (otra.nombre.compare(terminal, Qt::CaseInsensitive) == 0) return otra;
        nombres << otra.nombre;
    }
    return Rechazo(u"No hay ninguna terminal que se llame '%1'. Las terminales son: %2."_s.arg(
        terminal, nombres.join(u", "_s)));
}

/// What the file is, before its rows are looked at: of this terminal, and of which day.
ResultadoCierre<void> TrabajoTerminal::Revisar(const Terminal& terminal, const QString& ruta,
                                               const QString& fecha) {
    QUIMO_TRY(const QVector<HallazgoPrevio> hallazgos,
              BuscarColisiones({{terminal.nombre, terminal.id, ruta}}, fecha));
    if (hallazgos.isEmpty()) return {};
    QStringList lineas;
    for (const HallazgoPrevio& hallazgo : hallazgos) {
        lineas << hallazgo.texto;
        contexto_.resumen.avisos << hallazgo.texto;
    }
    if (contexto_.ado.Dialogo().Preguntar(
            u"El archivo tiene algo que conviene revisar:\n\n"_s + lineas.join(u"\n\n"_s) +
                u"\n\nAceptar trae sus ventas; Cancelar no cambia nada."_s,
            Botones::AceptarCancelar, Icono::Exclamacion) == Respuesta::Aceptar) {
        return {};
    }
    return Rechazo(u"No se trajo nada."_s);
}

ResultadoCierre<OpcionesCopia> TrabajoTerminal::Decidir(const Terminal& terminal,
                                                        const Comparacion& comparacion,
                                                        const QString& fecha) {
    OpcionesCopia opciones;
    opciones.fecha = fecha;
    opciones.presentes = OpcionesCopia::Presentes::PasarIguales;
    opciones.distintas = OpcionesCopia::Distintas::Pasar;
    opciones.detener = contexto_.opciones.detener;
    opciones.tablas = TablasDeVentas();
    if (comparacion.Distintas() == 0) return opciones;
    constexpr qsizetype kEjemplos = 5;
    const QString mas = comparacion.Distintas() > kEjemplos ? u"\n..."_s : QString();
    const Respuesta respuesta = contexto_.ado.Dialogo().Preguntar(
        u"%1 renglones de %2 ya están en el servidor con otros datos:\n%3%4\n\nSí pone los del "
        u"archivo en su lugar; No deja los del servidor y trae sólo los que faltan."_s
            .arg(comparacion.Distintas())
            .arg(terminal.nombre, comparacion.ejemplos.mid(0, kEjemplos).join(u'\n'), mas),
        Botones::SiNo, Icono::Pregunta);
    if (respuesta == Respuesta::Si) {
        opciones.distintas = OpcionesCopia::Distintas::Actualizar;
    } else {
        traida_->quedan_distintas = true;
    }
    return opciones;
}

ResultadoCierre<void> TrabajoTerminal::Copiar(const Terminal& terminal, const BaseTerminal& base,
                                              const OpcionesCopia& opciones) {
    FallaCopia falla;
    {
        QUIMO_TRY(auto transaccion, Transaccion::Iniciar(contexto_.ado.Conexion()));
        auto copiadas = CopiarTerminal(contexto_.ado, base, opciones);
        if (copiadas) {
            traida_->copiadas = *std::move(copiadas);
            QUIMO_TRY_VOID(PonerFolios(contexto_.ado, Folios::SinBajar));
            QUIMO_TRY_VOID(transaccion.Confirmar());
            return {};
        }
        falla = std::move(copiadas).error();
    }
    return ExplicarFalla(contexto_.ado.Conexion(), std::move(falla), terminal.nombre);
}

/// Brings the sales of a file in. `ruta` is a working copy, which a mended one may replace.
ResultadoCierre<void> TrabajoTerminal::Incorporar(const Terminal& terminal, const QString& ruta) {
    ClsAdo& ado = contexto_.ado;
    QUIMO_TRY(const QString fecha, FechaDeArchivo(ado, ruta, terminal));
    traida_ = ResumenTraida();
    traida_->terminal = terminal.nombre;
    QUIMO_TRY(const Archivado archivado, contexto_.archivo.Agregar(ruta, fecha, terminal.nombre));
    traida_->archivo = archivado.ruta;
    QUIMO_TRY(const ArchivoContado contado,
              ContarArchivo(ado, contexto_.archivo, ruta, fecha, terminal.nombre));
    traida_->cifras = contado.cifras;
    QUIMO_TRY(const BaseTerminal base, BaseTerminal::Abrir(ruta, terminal.nombre));
    const auto abierta = jet::BaseDatos::Abrir(ruta.toStdString());
    if (!abierta) return DeTerminal(DeFallo(abierta.error(), terminal.nombre), terminal.nombre);
    const auto fechas = FechasDeOrdenes(*abierta);
    if (!fechas) return DeTerminal(DeFallo(fechas.error(), terminal.nombre), terminal.nombre);
    traida_->fechas = *fechas;
    QUIMO_TRY_VOID(Revisar(terminal, ruta, fecha));
    QUIMO_TRY(traida_->comparacion, CompararTerminal(ado, base));
    contexto_.Progreso(terminal.nombre + u": "_s + Resumida(traida_->comparacion));
    QUIMO_TRY(const OpcionesCopia opciones, Decidir(terminal, traida_->comparacion, fecha));
    return Copiar(terminal, base, opciones);
}

ResultadoCierre<void> TrabajoTerminal::CorrerTraer(const QString& archivo,
                                                   const QString& terminal) {
    QUIMO_TRY(const TurnoCierre turno,
              TurnoCierre::Tomar(contexto_.ado.Conexion(), contexto_.opciones.quien,
                                 contexto_.reloj.Ahora()));
    QUIMO_TRY(const Terminal esta, Preparar(terminal));
    if (!QFileInfo(archivo).isFile()) return Rechazo(u"No existe el archivo "_s + archivo);
    const foundation::PunteroOcupado ocupado(contexto_.ado.Dialogo());
    QUIMO_TRY_VOID(CrearCarpeta(contexto_.CarpetaLocal(esta.nombre)));
    const ArchivoTemporal trabajo(contexto_.CarpetaLocal(esta.nombre) + u"/traido.mdb"_s);
    QUIMO_TRY(const Copiado copiado, CopiarEntero(archivo, trabajo.Ruta()));
    static_cast<void>(copiado);
    return Incorporar(esta, trabajo.Ruta());
}

/// False: the terminal's file changed meanwhile, and everything is looked at again.
ResultadoCierre<bool> TrabajoTerminal::EnviarUnaVez(const Terminal& terminal) {
    const QString remoto = contexto_.Remoto(terminal.nombre);
    const ArchivoTemporal trabajo(contexto_.CarpetaLocal(terminal.nombre) + u"/traido.mdb"_s);
    const auto intentar = [&](const auto& operacion) -> ResultadoCierre<void> {
        QUIMO_TRY(const bool hecho, contexto_.fallas.Ejecutar(terminal.nombre, operacion));
        if (hecho) return {};
        return Interrupcion{Interrupcion::Motivo::Error, FalloArchivo::kPermisoDenegado,
                            contexto_.fallas.Lista().isEmpty()
                                ? u"La terminal "_s + terminal.nombre + u" no se cerro"_s
                                : contexto_.fallas.Lista().last()};
    };
    QString presente;
    QUIMO_TRY_VOID(intentar([&]() -> ResultadoArchivo<void> {
        presente.clear();
        QUIMO_TRY(const bool existe, contexto_.share.Existe(remoto));
        if (!existe) return {};
        QUIMO_TRY(const Copiado copiado, contexto_.share.Traer(remoto, trabajo.Ruta()));
        presente = copiado.sha256;
        return {};
    }));
    ContadoresMinimos minimos;
    if (!presente.isEmpty()) {
        QUIMO_TRY_VOID(Incorporar(terminal, trabajo.Ruta()));
        const auto base = jet::BaseDatos::Abrir(trabajo.Ruta().toStdString());
        if (!base) return DeFallo(base.error(), terminal.nombre);
        const auto suyos = LeerParametrosTerminal(*base);
        if (!suyos) return DeFallo(suyos.error(), terminal.nombre);
        minimos = {suyos->folio_comanda, suyos->folio_pago};
    }
    QUIMO_TRY(BaseNueva nueva, BaseNueva::Preparar(contexto_.ado, contexto_.carpeta));
    QUIMO_TRY_VOID(nueva.Adaptar(terminal, minimos));
    bool cambio = false;
    QUIMO_TRY_VOID(intentar([&]() -> ResultadoArchivo<void> {
        auto hecho = contexto_.share.Llevar(nueva.Archivo(), remoto, presente);
        cambio = !hecho && hecho.error().numero == FalloArchivo::kCambiado;
        if (cambio) return {};
        return hecho;
    }));
    if (cambio) return false;
    contexto_.resumen.avisos += nueva.Avisos();
    return true;
}

ResultadoCierre<void> TrabajoTerminal::CorrerEnviar(const QString& terminal) {
    ClsAdo& ado = contexto_.ado;
    QUIMO_TRY(const TurnoCierre turno, TurnoCierre::Tomar(ado.Conexion(), contexto_.opciones.quien,
                                                          contexto_.reloj.Ahora()));
    QUIMO_TRY(const Terminal esta, Preparar(terminal));
    QUIMO_TRY(const QVector<Terminal> activas, TerminalesPorMenu(ado));
    if (std::none_of(activas.begin(), activas.end(),
                     [&](const Terminal& activa) { return activa.id == esta.id; })) {
        return Rechazo(u"La terminal "_s + esta.nombre +
                       u" no está activa: sólo las activas reciben su base de datos."_s);
    }
    auto directorio =
        foundation::Parametros(ado).Cadena(foundation::parametro::kDirectorioTerminal);
    if (!directorio) return directorio.error();
    contexto_.directorio = *std::move(directorio);
    const foundation::PunteroOcupado ocupado(ado.Dialogo());
    QUIMO_TRY_VOID(CrearCarpeta(contexto_.CarpetaLocal(esta.nombre)));
    contexto_.fallas.Entrar(ManejadorFallas::Fase::Distribuir);
    contexto_.Progreso(u"Enviando catálogos a "_s + esta.nombre);
    for (int vuelta = 0; vuelta < kVueltasMax; ++vuelta) {
        QUIMO_TRY_VOID(contexto_.PuntoSeguro());
        QUIMO_TRY(const bool enviada, EnviarUnaVez(esta));
        if (!enviada) continue;
        contexto_.resumen.entregadas << esta.nombre;
        return {};
    }
    return SinReemplazo(esta.nombre, contexto_.Remoto(esta.nombre),
                        traida_ ? traida_->archivo : QString());
}

TrabajoTerminal::Desenlace TrabajoTerminal::Contar(ResultadoCierre<void> hecho) {
    if (hecho) {
        return traida_ && traida_->quedan_distintas ? Desenlace::Incompleto : Desenlace::Hecho;
    }
    const Interrupcion& fallo = hecho.error();
    foundation::Dialogos& dialogos = contexto_.ado.Dialogo();
    using Motivo = Interrupcion::Motivo;
    switch (fallo.motivo) {
        case Motivo::Detenido:
            dialogos.Avisar(u"Se pidió terminar el programa: no se cambió nada."_s,
                            Icono::Exclamacion);
            return Desenlace::Detenido;
        case Motivo::SinEmpezar:
        case Motivo::Abortado:
            dialogos.Avisar(fallo.descripcion, Icono::Exclamacion);
            return Desenlace::SinEmpezar;
        case Motivo::Error:
            break;
    }
    QString texto = QString::number(static_cast<qint32>(fallo.numero)) + u' ' + fallo.descripcion;
    if (!fallo.detalle.isEmpty()) texto += u"\n\n"_s + fallo.detalle;
    dialogos.Avisar(texto, Icono::Critico);
    return Desenlace::ConError;
}

TrabajoTerminal::Desenlace TrabajoTerminal::Traer(const QString& archivo, const QString& terminal) {
    return Contar(CorrerTraer(archivo, terminal));
}

TrabajoTerminal::Desenlace TrabajoTerminal::Enviar(const QString& terminal) {
    return Contar(CorrerEnviar(terminal));
}

}  // namespace quimo::dayclose
