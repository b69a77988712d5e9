#include "dayclose/cierre_pendiente.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using foundation::Conjunto;
using foundation::FalloSql;
using foundation::Fila;
using foundation::RespuestaSql;
using foundation::SqlConnection;

namespace {

CierrePendiente::Hecho Ejecutar(SqlConnection& conexion, const QString& sentencia,
                                const QVector<QVariant>& valores = {}) {
    RespuestaSql respuesta = conexion.Ejecutar(sentencia, valores);
    if (respuesta.fallo) return *std::move(respuesta.fallo);
    return {};
}

base::Result<QVector<Fila>, FalloSql> Filas(SqlConnection& conexion, const QString& consulta) {
    RespuestaSql respuesta = conexion.Ejecutar(consulta);
    if (respuesta.fallo) return *std::move(respuesta.fallo);
    QUIMO_CHECK(!respuesta.resultados.isEmpty() && respuesta.resultados.first().conjunto);
    return respuesta.resultados.first().conjunto->filas;
}

}  // namespace

base::Result<std::optional<CierrePendiente>, FalloSql> CierrePendiente::Leer(
    SqlConnection& conexion) {
    QUIMO_TRY(const QVector<Fila> cierres,
              Filas(conexion, u"SELECT Fecha_Cierre,Paso FROM Cierre_Pendiente"_s));
    if (cierres.isEmpty()) return std::optional<CierrePendiente>();
    CierrePendiente cierre;
    cierre.fecha_ = cierres.first()[0].toString();
    cierre.paso_ = static_cast<Paso>(cierres.first()[1].toInt());
    QUIMO_TRY(const QVector<Fila> avances,
              Filas(conexion,
                    u"SELECT Nombre_Term,Tabla,Estado,Detalle,ID_Terminal "
                    u"FROM Cierre_Avance"_s));
    for (const Fila& fila : avances) {
        const QString terminal = fila[0].toString();
        cierre.avances_[terminal].insert(fila[1].toString(), {fila[2].toInt(), fila[3].toString()});
        cierre.terminales_.insert(terminal, fila[4].toInt());
    }
    return std::optional<CierrePendiente>(std::move(cierre));
}

base::Result<CierrePendiente, FalloSql> CierrePendiente::Iniciar(SqlConnection& conexion,
                                                                 const QString& fecha,
                                                                 const QDateTime& ahora) {
    CierrePendiente cierre;
    QUIMO_TRY_VOID(cierre.Olvidar(conexion));
    cierre.fecha_ = fecha;
    QUIMO_TRY_VOID(Ejecutar(
        conexion, u"INSERT INTO Cierre_Pendiente (Fecha_Cierre,Paso,Inicio) VALUES (?,?,?)"_s,
        {fecha, static_cast<int>(cierre.paso_), ahora}));
    return cierre;
}

CierrePendiente::Hecho CierrePendiente::Avanzar(SqlConnection& conexion, dayclose::Paso paso) {
    QUIMO_TRY_VOID(Ejecutar(conexion, u"UPDATE Cierre_Pendiente SET Paso=? WHERE Fecha_Cierre=?"_s,
                            {static_cast<int>(paso), fecha_}));
    paso_ = paso;
    return {};
}

CierrePendiente::Hecho CierrePendiente::Anotar(SqlConnection& conexion, int id_terminal,
                                               const QString& terminal, const QString& tabla,
                                               const Avance& avance) {
    if (De(terminal, tabla)) {
        QUIMO_TRY_VOID(Ejecutar(conexion,
                                u"UPDATE Cierre_Avance SET Estado=?,Detalle=? "
                                u"WHERE Nombre_Term=? AND Tabla=?"_s,
                                {avance.estado, avance.detalle, terminal, tabla}));
    } else {
        QUIMO_TRY_VOID(Ejecutar(conexion,
                                u"INSERT INTO Cierre_Avance "
                                u"(ID_Terminal,Nombre_Term,Tabla,Estado,Detalle) "
                                u"VALUES (?,?,?,?,?)"_s,
                                {id_terminal, terminal, tabla, avance.estado, avance.detalle}));
    }
    avances_[terminal].insert(tabla, avance);
    terminales_.insert(terminal, id_terminal);
    return {};
}

std::optional<Avance> CierrePendiente::De(const QString& terminal, const QString& tabla) const {
    const auto tablas = avances_.constFind(terminal);
    if (tablas == avances_.constEnd()) return std::nullopt;
    const auto avance = tablas->constFind(tabla);
    if (avance == tablas->constEnd()) return std::nullopt;
    return *avance;
}

CierrePendiente::Hecho CierrePendiente::Olvidar(SqlConnection& conexion) {
    QUIMO_TRY_VOID(Ejecutar(conexion, u"DELETE FROM Cierre_Avance"_s));
    QUIMO_TRY_VOID(Ejecutar(conexion, u"DELETE FROM Cierre_Pendiente"_s));
    avances_.clear();
    terminales_.clear();
    return {};
}

}  // namespace quimo::dayclose
