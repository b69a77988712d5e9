#include "dayclose/terminales/interrupcion.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

qint64 NumeroDeAusente(Buscado buscado) {
    switch (buscado) {
        case Buscado::Archivo:
            return FalloArchivo::kNoEncontrado;
        case Buscado::Columna:
            return kColumnaAusente;
        case Buscado::Tabla:
            break;
    }
    return kTablaAusente;
}

}  // namespace

Interrupcion DeFallo(const base::Error& error, const QString& sobre, Buscado buscado) {
    qint64 numero = kErrorArchivo;
    switch (error.codigo) {
        case base::Error::Codigo::Formato:
            numero = kBaseDanada;
            break;
        case base::Error::Codigo::NoSoportado:
            numero = kBaseNoSoportada;
            break;
        case base::Error::Codigo::NoEncontrado:
            numero = NumeroDeAusente(buscado);
            break;
        case base::Error::Codigo::Restriccion:
            numero = kClaveRepetida;
            break;
        case base::Error::Codigo::Datos:
            numero = kDatoNoCabe;
            break;
        case base::Error::Codigo::DiscoLleno:
            numero = FalloArchivo::kDiscoLleno;
            break;
        case base::Error::Codigo::Bloqueado:
            numero = FalloArchivo::kPermisoDenegado;
            break;
        case base::Error::Codigo::Archivo:
        case base::Error::Codigo::Interno:
            break;
    }
    return {Interrupcion::Motivo::Error, numero,
            sobre + u": "_s + QString::fromStdString(error.mensaje)};
}

}  // namespace quimo::dayclose
