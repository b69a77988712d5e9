#include "data/sql_connection.h"

namespace quimo::data {

RespuestaSql SqlConnection::EjecutarVarias(const QStringList& sentencias) {
    RespuestaSql todas;
    todas.resultados.reserve(sentencias.size());
    for (const QString& sentencia : sentencias) {
        RespuestaSql una = Ejecutar(sentencia);
        todas.mensajes += una.mensajes;
        if (una.fallo) {
            todas.fallo = std::move(una.fallo);
            break;
        }
        todas.resultados.append(una.resultados.isEmpty() ? ResultadoSql()
                                                         : std::move(una.resultados.last()));
    }
    return todas;
}

}  // namespace quimo::data
