#include "dayclose/cierre/cierre_pendiente.h"

#include <algorithm>

#include "data/consultar.h"
#include "dayclose/terminales/tablas_ventas.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::FalloSql;
using data::Fila;
using data::SqlConnection;
using data::Transaccion;

namespace {

QString MarcaDeVersion(qsizetype numero) { return u"*version-"_s + QString::number(numero); }

/// Tables as bits, in the order in which they are copied.
int MascaraDe(const QStringList& tablas) {
    int mascara = 0;
    int bit = 1;
    for (const DefCopia& copia : Copias()) {
        if (tablas.contains(QString::fromUtf16(copia.tabla))) mascara |= bit;
        bit <<= 1;
    }
    return mascara;
}

QStringList TablasDe(int mascara) {
    QStringList tablas;
    int bit = 1;
    for (const DefCopia& copia : Copias()) {
        if ((mascara & bit) != 0) tablas << QString::fromUtf16(copia.tabla);
        bit <<= 1;
    }
    return tablas;
}

CierrePendiente::Hecho Ejecutar(Transaccion& transaccion, const QString& sentencia,
                                const QVector<QVariant>& valores = {}) {
    return data::HechoDe(transaccion.Ejecutar(sentencia, valores));
}

}  // namespace

base::Result<std::optional<CierrePendiente>, FalloSql> CierrePendiente::Leer(
    SqlConnection& conexion) {
    QUIMO_TRY(
        const QVector<Fila> cierres,
        data::Consultar(conexion, u"SELECT Fecha_Cierre,Paso,Inicio FROM Cierre_Pendiente"_s));
    if (cierres.isEmpty()) return std::optional<CierrePendiente>();
    CierrePendiente cierre;
    cierre.fecha_ = cierres.first()[0].toString();
    cierre.paso_ = static_cast<Paso>(cierres.first()[1].toInt());
    cierre.inicio_ = cierres.first()[2].toDateTime();
    QUIMO_TRY(
        const QVector<Fila> avances,
        data::Consultar(
            conexion, u"SELECT Nombre_Term,Tabla,Estado,Detalle,ID_Terminal FROM Cierre_Avance"_s));
    for (const Fila& fila : avances) {
        const QString terminal = fila[0].toString();
        cierre.avances_[terminal].insert(fila[1].toString(), {fila[2].toInt(), fila[3].toString()});
        cierre.terminales_.insert(terminal, fila[4].toInt());
    }
    return std::optional<CierrePendiente>(std::move(cierre));
}

base::Result<CierrePendiente, FalloSql> CierrePendiente::Iniciar(Transaccion& transaccion,
                                                                 const QString& fecha,
                                                                 const QDateTime& ahora) {
    CierrePendiente cierre;
    QUIMO_TRY_VOID(cierre.Olvidar(transaccion));
    cierre.fecha_ = fecha;
    cierre.inicio_ = ahora;
    QUIMO_TRY_VOID(Ejecutar(
        transaccion, u"INSERT INTO Cierre_Pendiente (Fecha_Cierre,Paso,Inicio) VALUES (?,?,?)"_s,
        {fecha, static_cast<int>(cierre.paso_), ahora}));
    return cierre;
}

CierrePendiente::Hecho CierrePendiente::Avanzar(Transaccion& transaccion, dayclose::Paso paso) {
    QUIMO_TRY_VOID(Ejecutar(transaccion,
                            u"UPDATE Cierre_Pendiente SET Paso=? WHERE Fecha_Cierre=?"_s,
                            {static_cast<int>(paso), fecha_}));
    paso_ = paso;
    return {};
}

CierrePendiente::Hecho CierrePendiente::Anotar(Transaccion& transaccion, int id_terminal,
                                               const QString& terminal, const QString& marca,
                                               const Avance& avance) {
    // What the table holds decides, not what this object remembers: a mark may have gone with a
    // transaction that was rolled back.
    QUIMO_TRY(const qint64 cambiadas,
              data::AfectadasDe(transaccion.Ejecutar(
                  u"UPDATE Cierre_Avance SET Estado=?,Detalle=? WHERE Nombre_Term=? AND Tabla=?"_s,
                  {avance.estado, avance.detalle, terminal, marca})));
    if (cambiadas < 1) {
        QUIMO_TRY_VOID(Ejecutar(transaccion,
                                u"INSERT INTO Cierre_Avance "
                                u"(ID_Terminal,Nombre_Term,Tabla,Estado,Detalle) "
                                u"VALUES (?,?,?,?,?)"_s,
                                {id_terminal, terminal, marca, avance.estado, avance.detalle}));
    }
    avances_[terminal].insert(marca, avance);
    terminales_.insert(terminal, id_terminal);
    return {};
}

CierrePendiente::Hecho CierrePendiente::AnotarVersion(Transaccion& transaccion, int id_terminal,
                                                      const QString& terminal,
                                                      const VersionCopiada& version) {
    return Anotar(transaccion, id_terminal, terminal,
                  MarcaDeVersion(Versiones(terminal).size() + 1),
                  {MascaraDe(version.tablas), version.sha256});
}

std::optional<Avance> CierrePendiente::De(const QString& terminal, const QString& marca) const {
    const auto marcas = avances_.constFind(terminal);
    if (marcas == avances_.constEnd()) return std::nullopt;
    const auto avance = marcas->constFind(marca);
    if (avance == marcas->constEnd()) return std::nullopt;
    return *avance;
}

QVector<VersionCopiada> CierrePendiente::Versiones(const QString& terminal) const {
    QVector<VersionCopiada> versiones;
    while (const auto version = De(terminal, MarcaDeVersion(versiones.size() + 1))) {
        versiones.append({version->detalle, TablasDe(version->estado)});
    }
    return versiones;
}

bool CierrePendiente::SeCopio(const QString& terminal, const QString& sha256) const {
    const QVector<VersionCopiada> versiones = Versiones(terminal);
    return std::any_of(versiones.begin(), versiones.end(),
                       [&](const VersionCopiada& version) { return version.sha256 == sha256; });
}

bool CierrePendiente::Conoce(const QString& terminal, const QString& sha256) const {
    for (const char16_t* marca : {kArchivo, kRecibido}) {
        const auto conocida = De(terminal, QString::fromUtf16(marca));
        if (conocida && conocida->detalle == sha256) return true;
    }
    return SeCopio(terminal, sha256);
}

Apartada CierrePendiente::EstaApartada(const QString& terminal) const {
    const auto apartada = De(terminal, QString::fromUtf16(kApartada));
    return apartada ? static_cast<Apartada>(apartada->estado) : Apartada::No;
}

CierrePendiente::Hecho CierrePendiente::Olvidar(Transaccion& transaccion) {
    QUIMO_TRY_VOID(Ejecutar(transaccion, u"DELETE FROM Cierre_Avance"_s));
    QUIMO_TRY_VOID(Ejecutar(transaccion, u"DELETE FROM Cierre_Pendiente"_s));
    return {};
}

}  // namespace quimo::dayclose
