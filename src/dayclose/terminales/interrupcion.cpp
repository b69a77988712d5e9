#include "dayclose/terminales/interrupcion.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

Interrupcion DeFallo(const base::Error& error, const QString& sobre) {
    qint64 numero = kErrorArchivo;
    switch (error.codigo) {
        case base::Error::Codigo::Formato:
            numero = kBaseDanada;
            break;
        case base::Error::Codigo::NoSoportado:
            numero = kBaseNoSoportada;
            break;
        case base::Error::Codigo::NoEncontrado:
            numero = kTablaAusente;
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
