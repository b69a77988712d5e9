#include "foundation/dialogos.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

QString NombreDeRespuesta(Respuesta respuesta) {
    switch (respuesta) {
        case Respuesta::Aceptar:
            return u"Aceptar"_s;
        case Respuesta::Cancelar:
            return u"Cancelar"_s;
        case Respuesta::Si:
            return u"Sí"_s;
        case Respuesta::No:
            return u"No"_s;
        case Respuesta::Abortar:
            return u"Anular"_s;
        case Respuesta::Reintentar:
            return u"Reintentar"_s;
        case Respuesta::Ignorar:
            return u"Omitir"_s;
        case Respuesta::Terminar:
            return u"Terminar"_s;
        case Respuesta::Apartar:
            return u"Apartar"_s;
    }
    return {};
}

QVector<Respuesta> RespuestasDe(Botones botones) {
    switch (botones) {
        case Botones::Aceptar:
            return {Respuesta::Aceptar};
        case Botones::AceptarCancelar:
            return {Respuesta::Aceptar, Respuesta::Cancelar};
        case Botones::SiNo:
            return {Respuesta::Si, Respuesta::No};
        case Botones::SiNoCancelar:
            return {Respuesta::Si, Respuesta::No, Respuesta::Cancelar};
        case Botones::AbortarReintentarIgnorar:
            return {Respuesta::Abortar, Respuesta::Reintentar, Respuesta::Ignorar};
        case Botones::TerminarApartar:
            return {Respuesta::Apartar, Respuesta::Terminar};
    }
    return {};
}

}  // namespace quimo::foundation
