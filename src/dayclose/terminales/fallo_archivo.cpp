#include "dayclose/terminales/fallo_archivo.h"

#include <cerrno>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

FalloArchivo FalloDeNumero(int numero, const QString& ruta) {
    QString texto;
    switch (numero) {
        case FalloArchivo::kNombreIncorrecto:
            texto = u"Nombre o número de archivo incorrecto"_s;
            break;
        case FalloArchivo::kNoEncontrado:
            texto = u"No se encontró el archivo"_s;
            break;
        case FalloArchivo::kDiscoLleno:
            texto = u"Disco lleno"_s;
            break;
        case FalloArchivo::kPermisoDenegado:
            texto = u"Permiso denegado"_s;
            break;
        case FalloArchivo::kAccesoRuta:
            texto = u"Error de acceso a la ruta o al archivo"_s;
            break;
        case FalloArchivo::kRutaNoEncontrada:
            texto = u"No se encontró la ruta de acceso"_s;
            break;
        case FalloArchivo::kCambiado:
            texto = u"El archivo cambió después de guardarse y no se reemplazó"_s;
            break;
        default:
            texto = u"Error de E/S en el dispositivo"_s;
            break;
    }
    return {numero, texto + u": "_s + ruta, false};
}

FalloArchivo FalloDeErrno(int error, const QString& ruta) {
    switch (error) {
        case ENOENT:
            return FalloDeNumero(FalloArchivo::kNoEncontrado, ruta);
        case ENOTDIR:
            return FalloDeNumero(FalloArchivo::kRutaNoEncontrada, ruta);
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
            return FalloDeNumero(FalloArchivo::kAccesoRuta, ruta);
        case EBUSY:
        case ETXTBSY:
        case EAGAIN:
            return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta);
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return FalloDeNumero(FalloArchivo::kDiscoLleno, ruta);
        // What a mounted share answers when its computer has gone.
        case EHOSTDOWN:
        case EHOSTUNREACH:
        case ENETDOWN:
        case ENETUNREACH:
        case ECONNABORTED:
        case ECONNREFUSED:
        case ECONNRESET:
        case ENOTCONN:
        case ETIMEDOUT:
        case ESTALE:
        case ENXIO:
        case ENODEV:
        case EIO:
        case EINVAL:
        case ELOOP:
        case ENAMETOOLONG:
            return FalloDeNumero(FalloArchivo::kNombreIncorrecto, ruta);
        default:
            return FalloDeNumero(FalloArchivo::kErrorDispositivo, ruta);
    }
}

FalloArchivo FalloEnDisco(Disco disco, int error, const QString& ruta) {
    FalloArchivo fallo = FalloDeErrno(error, ruta);
    if (disco == Disco::Terminal || (error != EIO && error != ENXIO && error != ENODEV)) {
        return fallo;
    }
    fallo = FalloDeNumero(FalloArchivo::kErrorDispositivo, ruta);
    fallo.propio = true;
    return fallo;
}

}  // namespace quimo::dayclose
