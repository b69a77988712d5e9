#include "data/consultar.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace quimo::data {

base::Result<void, FalloSql> HechoDe(RespuestaSql respuesta) {
    if (respuesta.fallo) return *std::move(respuesta.fallo);
    return {};
}

base::Result<qint64, FalloSql> AfectadasDe(RespuestaSql respuesta) {
    if (respuesta.fallo) return *std::move(respuesta.fallo);
    return respuesta.resultados.isEmpty() ? 0 : respuesta.resultados.last().afectadas;
}

base::Result<Conjunto, FalloSql> ConjuntoDe(RespuestaSql respuesta) {
    if (respuesta.fallo) return *std::move(respuesta.fallo);
    for (ResultadoSql& resultado : respuesta.resultados) {
        if (resultado.conjunto) return *std::move(resultado.conjunto);
    }
    return FalloSql::De(FalloSql::kSinConjunto, u"Recordset"_s,
                        u"La sentencia no devuelve registros."_s);
}

base::Result<void, FalloSql> Correr(SqlConnection& conexion, const QString& tsql,
                                    const QVector<QVariant>& parametros) {
    return HechoDe(conexion.Ejecutar(tsql, parametros));
}

base::Result<QVector<Fila>, FalloSql> Consultar(SqlConnection& conexion, const QString& tsql,
                                                const QVector<QVariant>& parametros) {
    QUIMO_TRY(Conjunto conjunto, ConjuntoDe(conexion.Ejecutar(tsql, parametros)));
    return std::move(conjunto.filas);
}

base::Result<Fila, FalloSql> ConsultarFila(SqlConnection& conexion, const QString& tsql,
                                           const QVector<QVariant>& parametros) {
    QUIMO_TRY(const QVector<Fila> filas, Consultar(conexion, tsql, parametros));
    return filas.value(0);
}

}  // namespace quimo::data
