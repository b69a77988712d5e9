#include "data/odbc/diagnostico.h"

#include <algorithm>
#include <array>

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace quimo::data::odbc {

namespace {

constexpr QLatin1StringView kPrefijo("[Microsoft][ODBC SQL Server Driver][SQL Server]");
static_assert(kPrefijo.size() == 47);

constexpr int kRegistrosMax = 200;
constexpr int kServidorNoHallado = 6;
constexpr int kFuenteNoHallada = 0;
constexpr int kLoginRechazado = 18456;
constexpr int kReferencia = 547;
// FreeTDS numbers what its own side finds from 20000 on.
constexpr int kFreeTdsDesde = 20000;
constexpr int kFreeTdsHasta = 20999;

bool EsDelCliente(int nativo) {
    // Numbers of the network layers are below those of the server's login and database errors.
    constexpr int kPrimeroDelServidor = 4000;
    return nativo < kPrimeroDelServidor || (nativo >= kFreeTdsDesde && nativo <= kFreeTdsHasta) ||
           (nativo >= 10000 && nativo < 12000);  // WSA numbers
}

/// Puts the record first that `cual` picks. False when there is none.
template <typename Condicion>
bool Adelantar(QVector<ErrorProveedor>& errores, Condicion cual) {
    const auto hallado = std::find_if(errores.begin(), errores.end(), cual);
    if (hallado == errores.end()) return false;
    std::rotate(errores.begin(), hallado, hallado + 1);
    return true;
}

}  // namespace

QVector<ErrorProveedor> LeerDiagnosticos(SQLSMALLINT tipo, SQLHANDLE handle,
                                         const QString& origen) {
    QVector<ErrorProveedor> errores;
    QVector<SQLWCHAR> texto(1024);
    for (SQLSMALLINT numero = 1; numero <= kRegistrosMax; ++numero) {
        std::array<SQLWCHAR, 6> estado = {};
        SQLINTEGER nativo = 0;
        SQLSMALLINT largo = 0;
        const auto leer = [&] {
            return SQLGetDiagRecW(tipo, handle, numero, estado.data(), &nativo, texto.data(),
                                  static_cast<SQLSMALLINT>(texto.size()), &largo);
        };
        SQLRETURN leido = leer();
        if (SQL_SUCCEEDED(leido) && largo >= texto.size()) {
            texto.resize(largo + 1);
            leido = leer();
        }
        if (!SQL_SUCCEEDED(leido)) break;
        const qsizetype cabe = std::min<qsizetype>(largo, texto.size() - 1);
        const QString descripcion = QString::fromUtf16(
            reinterpret_cast<const char16_t*>(texto.constData()), std::max<qsizetype>(cabe, 0));
        const QString sqlstate =
            QString::fromUtf16(reinterpret_cast<const char16_t*>(estado.data()), 5);
        errores.append({sqlstate, nativo, origen, ConPrefijoComun(descripcion, sqlstate, nativo)});
    }
    return errores;
}

QString ConPrefijoComun(const QString& descripcion, const QString& sqlstate, int nativo) {
    static const QRegularExpression kDelServidor(u"^(?:\\[[^\\]]*\\])*?\\[SQL Server\\]"_s);
    const QRegularExpressionMatch prefijo = kDelServidor.match(descripcion);
    // FreeTDS puts the server's name before its own words too. An error of the server has a number;
    // what PRINT says has none.
    const bool de_freetds = (nativo >= kFreeTdsDesde && nativo <= kFreeTdsHasta) ||
                            (nativo == 0 && !sqlstate.startsWith(u"01"_s));
    if (!prefijo.hasMatch() || de_freetds) return descripcion;
    QString texto = descripcion.mid(prefijo.capturedLength());
    if (nativo == kReferencia) {
        static const QRegularExpression kTabla(
            u"database \"([^\"]*)\", table \"(?:[^\".]*\\.)?([^\"]*)\""_s);
        texto.replace(kTabla, u"database '\\1', table '\\2'"_s);
    }
    return kPrefijo + texto;
}

bool EsMensaje(const ErrorProveedor& registro) { return registro.sqlstate.startsWith(u"01"_s); }

bool EsConexionPerdida(const QVector<ErrorProveedor>& errores) {
    static constexpr std::array kEstados = {"08S01"_L1, "08003"_L1, "08007"_L1, "57P01"_L1,
                                            "57P02"_L1};
    // Read failed, write failed, unexpected end, connection dead.
    static constexpr std::array kFreeTds = {20004, 20006, 20017, 20047};
    return std::any_of(errores.begin(), errores.end(), [](const ErrorProveedor& error) {
        return std::any_of(kEstados.begin(), kEstados.end(),
                           [&](QLatin1StringView estado) { return error.sqlstate == estado; }) ||
               std::find(kFreeTds.begin(), kFreeTds.end(), error.nativo) != kFreeTds.end();
    });
}

FalloSql FalloDeSentencia(QVector<ErrorProveedor> errores, bool conexion_perdida) {
    FalloSql fallo;
    if (errores.isEmpty()) {
        errores.append(
            {u"HY000"_s, -1, u"ODBC"_s, u"El controlador ODBC falló sin decir por qué."_s});
    }
    if (!conexion_perdida) {
        // A warning must not pass for the failure, and the server's word comes before the driver's.
        std::stable_partition(errores.begin(), errores.end(),
                              [](const ErrorProveedor& error) { return !EsMensaje(error); });
    }
    const QString estado = errores.first().sqlstate;
    fallo.numero = FalloSql::kSentencia;
    if (conexion_perdida) {
        fallo.numero = FalloSql::kConexionPerdida;
    } else if (estado.startsWith(u"23"_s)) {
        fallo.numero = FalloSql::kIntegridad;
    } else if (estado == u"HYT00"_s || estado == u"HYT01"_s || estado == u"08001"_s ||
               estado == u"08004"_s) {
        fallo.numero = FalloSql::kServidorAusente;
        if (EsDelCliente(errores.first().nativo)) errores.first().nativo = kServidorNoHallado;
    } else if (errores.first().nativo == 0) {
        // 0 would be told as a data source that does not exist: the driver's own text is shown.
        errores.first().nativo = -1;
    }
    fallo.errores = std::move(errores);
    return fallo;
}

FalloSql FalloAlAbrir(QVector<ErrorProveedor> errores) {
    FalloSql fallo;
    const auto del_estado = [](QLatin1StringView principio) {
        return [principio](const ErrorProveedor& error) {
            return error.sqlstate.startsWith(principio);
        };
    };
    const auto rechazado = [](const ErrorProveedor& error) {
        return error.sqlstate == u"28000"_s || error.nativo == kLoginRechazado;
    };
    const auto del_servidor = [](const ErrorProveedor& error) {
        return !EsMensaje(error) && !EsDelCliente(error.nativo);
    };
    fallo.numero = FalloSql::kServidorAusente;
    if (std::any_of(errores.begin(), errores.end(), [&](const ErrorProveedor& error) {
            return del_servidor(error) && !rechazado(error);
        })) {
        // The server answered and says what is wrong, such as a database that it does not have
        // (the login that is refused with it is only a consequence).
        Adelantar(errores, [&](const ErrorProveedor& error) {
            return del_servidor(error) && !rechazado(error);
        });
    } else if (Adelantar(errores, rechazado)) {
        fallo.numero = FalloSql::kAccesoNegado;
        errores.first().sqlstate = u"28000"_s;
    } else if (Adelantar(errores, del_estado("IM"_L1))) {
        errores.first().nativo = kFuenteNoHallada;
    } else if (Adelantar(errores, del_estado("08"_L1)) ||
               Adelantar(errores, del_estado("HYT0"_L1)) || EsConexionPerdida(errores)) {
        Adelantar(errores, del_estado("08001"_L1));
        errores.first().nativo = kServidorNoHallado;
    } else if (Adelantar(errores, [](const ErrorProveedor& error) {
                   return !EsMensaje(error) && error.sqlstate != u"HY000"_s;
               })) {
        fallo.numero = FalloSql::kSentencia;
        if (errores.first().nativo == 0) errores.first().nativo = -1;
    } else {
        fallo.numero = FalloSql::kOtroAlAbrir;
    }
    fallo.errores = std::move(errores);
    return fallo;
}

FalloSql FalloPropio(qint64 numero, const QString& sqlstate, int nativo,
                     const QString& descripcion) {
    return {numero, {ErrorProveedor{sqlstate, nativo, u"QUIMO"_s, descripcion}}};
}

}  // namespace quimo::data::odbc
