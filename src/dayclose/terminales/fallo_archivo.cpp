#include "dayclose/terminales/fallo_archivo.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

struct TextoDeFallo {
    int numero = 0;
    const char16_t* texto = nullptr;
};

constexpr TextoDeFallo kTextos[] = {
    {FalloArchivo::kNombreIncorrecto, u"Nombre o número de archivo incorrecto"},
    {FalloArchivo::kNoEncontrado, u"No se encontró el archivo"},
    {FalloArchivo::kDiscoLleno, u"Disco lleno"},
    {FalloArchivo::kPermisoDenegado, u"Permiso denegado"},
    {FalloArchivo::kAccesoRuta, u"Error de acceso a la ruta o al archivo"},
    {FalloArchivo::kRutaNoEncontrada, u"No se encontró la ruta de acceso"},
    {FalloArchivo::kCambiado, u"El archivo cambió después de guardarse y no se reemplazó"},
};
constexpr TextoDeFallo kOtro = {FalloArchivo::kErrorDispositivo, u"Error de E/S en el dispositivo"};

}  // namespace

FalloArchivo FalloDeNumero(int numero, const QString& ruta) {
    const auto* hallado =
        std::find_if(std::begin(kTextos), std::end(kTextos),
                     [&](const TextoDeFallo& texto) { return texto.numero == numero; });
    const TextoDeFallo& cual = hallado == std::end(kTextos) ? kOtro : *hallado;
    return {numero, QString::fromUtf16(cual.texto) + u": "_s + ruta, false};
}

FalloArchivo FalloDeNumero(int numero, const QString& ruta, const QString& motivo) {
    FalloArchivo fallo = FalloDeNumero(numero, ruta);
    fallo.descripcion += u" ("_s + motivo + u')';
    return fallo;
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
