#include "dayclose/contexto_cierre.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

ResultadoCierre<bool> ManejadorFallas::Decidir(const QString& terminal, const FalloArchivo& fallo) {
    if (fallo.numero == FalloArchivo::kPermisoDenegado) {
        if (reintentos_ < kReintentosMax) {
            ++reintentos_;
            return true;
        }
        dialogos_.Avisar(u"La terminal "_s + terminal + u" no se cerro"_s, Icono::Critico);
        return false;
    }
    if (!fallo.EsDeComunicacion()) return DeFallo(fallo);
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
            break;
    }
    return Interrupcion{Interrupcion::Motivo::Abortado};
}

QString ContextoCierre::Remoto(const QString& terminal) const {
    return u"\\\\"_s + terminal + u'\\' + directorio + u"\\Quimo_Terminal.mdb"_s;
}

QString ContextoCierre::CopiaLocal(const QString& terminal) const {
    return CarpetaLocal(terminal) + u"/Quimo_Terminal.mdb"_s;
}

bool EsNombreDeEquipo(const QString& nombre) {
    return !nombre.isEmpty() && !nombre.startsWith(u'.') && !nombre.contains(u'/') &&
           !nombre.contains(u'\\') && !nombre.contains(u'\0');
}

Interrupcion FalloPendiente(const foundation::ClsAdo& ado) {
    QUIMO_CHECK(ado.Pendiente().has_value());
    return DeFallo(*ado.Pendiente());
}

ResultadoCierre<QVector<foundation::Fila>> LeerFilas(foundation::ClsAdo& ado,
                                                     const QString& consulta) {
    foundation::RecordsetPtr filas;
    if (!ado.Consultar(filas, consulta)) return FalloPendiente(ado);
    return filas->Filas();
}

}  // namespace quimo::dayclose
