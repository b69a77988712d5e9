#include "dayclose/cierre/manejador_fallas.h"

#include <QThread>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

Interrupcion Detenido() {
    return {Interrupcion::Motivo::Detenido, 0,
            u"El cierre se detuvo porque se pidió terminar el programa."_s};
}

ResultadoCierre<bool> ManejadorFallas::Esperar(const QString& terminal) {
    constexpr int kIntentosPorAviso = 500;
    if (reintentos_ % kIntentosPorAviso == 0) {
        dialogos_.Progreso(
            u"Esperando a que la terminal %1 se cierre (intento %2 de %3)"_s.arg(terminal)
                .arg(reintentos_ + 1)
                .arg(kReintentosMax));
    }
    ++reintentos_;
    dialogos_.ProcesarEventos();
    if (detener_ && detener_()) return Detenido();
    if (pausa_ms_ > 0) QThread::msleep(static_cast<unsigned long>(pausa_ms_));
    return true;
}

ResultadoCierre<bool> ManejadorFallas::Decidir(const QString& terminal, const FalloArchivo& fallo) {
    if (fallo.numero == FalloArchivo::kPermisoDenegado) {
        if (reintentos_ < kReintentosMax) return Esperar(terminal);
        abierta_ = true;
        dialogos_.Avisar(u"La terminal "_s + terminal + u" no se cerro"_s, Icono::Critico);
        return false;
    }
    if (!fallo.EsDeComunicacion()) {
        // A disk of our own that fails or is full is no terminal's matter: without that one it
        // stays so.
        if (fallo.propio || fallo.numero == FalloArchivo::kDiscoLleno) return fallo;
        return DeTerminal(fallo, terminal);
    }
    if (fase_ == Fase::Distribuir) {
        lista_ << terminal + u' ' + fallo.descripcion;
        return false;
    }
    omitida_ = true;
    // The question names only the terminal; why it cannot be reached stands before it.
    dialogos_.Progreso(fallo.descripcion);
    switch (dialogos_.Preguntar(u"Falla de comunicación con "_s + terminal,
                                Botones::AbortarReintentarIgnorar, Icono::Exclamacion)) {
        case Respuesta::Reintentar:
            return true;
        case Respuesta::Ignorar:
            return false;
        case Respuesta::Abortar:
        case Respuesta::Aceptar:
        case Respuesta::Cancelar:
        case Respuesta::Si:
        case Respuesta::No:
        case Respuesta::Terminar:
        case Respuesta::Apartar:
            break;
    }
    return Interrupcion{Interrupcion::Motivo::Abortado};
}

}  // namespace quimo::dayclose
