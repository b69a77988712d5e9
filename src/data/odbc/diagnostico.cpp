#include "data/odbc/diagnostico.h"

#include <algorithm>
#include <array>

#include <QRegularExpression>

#include "data/fallos.h"
#include "data/odbc/fallos_odbc.h"

using namespace Qt::StringLiterals;

namespace quimo::data::odbc {

namespace {

constexpr int kRegistrosMax = 200;
// Of the server: a login that it refuses, a reference that does not hold.
constexpr int kLoginRechazado = 18456;
constexpr int kReferencia = 547;
// The state that every driver tells a refused login by, and the one that says nothing.
constexpr QLatin1StringView kLoginNegado("28000");
constexpr QLatin1StringView kSinDetalle("HY000");
// FreeTDS numbers what its own side finds from 20000 on.
constexpr int kFreeTdsDesde = 20000;
constexpr int kFreeTdsHasta = 20999;

bool EsDelCliente(int nativo) {
    // Numbers of the network layers are below those of the server's login and database errors.
    constexpr int kPrimeroDelServidor = 4000;
    return nativo < kPrimeroDelServidor || (nativo >= kFreeTdsDesde && nativo <= kFreeTdsHasta) ||
           (nativo >= 10000 && nativo < 12000);  // WSA numbers
}

/// The driver's own text is shown, not that of a data source that does not exist.
void ConNumero(ErrorProveedor& error) {
    if (error.nativo == kFuenteNoHallada) error.nativo = kSinNumero;
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
    return kPrefijoDelServidor + texto;
}

bool EsMensaje(const ErrorProveedor& registro) { return registro.sqlstate.startsWith(u"01"_s); }

bool EsConexionPerdida(const QVector<ErrorProveedor>& errores) {
    // Link down, connection not open, lost while a transaction ended; the server is being stopped.
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
        errores.append(SinExplicacion());
    }
    if (!conexion_perdida) {
        // A warning must not pass for the failure, and the server's word comes before the driver's.
        std::stable_partition(errores.begin(), errores.end(),
                              [](const ErrorProveedor& error) { return !EsMensaje(error); });
    }
    ErrorProveedor& primero = errores.first();
    fallo.numero = conexion_perdida ? FalloSql::kConexionPerdida : ClaseDeFallo(primero.sqlstate);
    if (fallo.numero == FalloSql::kServidorAusente) {
        if (EsDelCliente(primero.nativo)) primero.nativo = kServidorNoHallado;
    } else if (fallo.numero == FalloSql::kSentencia) {
        ConNumero(primero);
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
        return error.sqlstate == kLoginNegado || error.nativo == kLoginRechazado;
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
        errores.first().sqlstate = kLoginNegado;
    } else if (Adelantar(errores, del_estado("IM"_L1))) {
        errores.first().nativo = kFuenteNoHallada;
    } else if (Adelantar(errores, del_estado("08"_L1)) ||
               Adelantar(errores, del_estado("HYT0"_L1)) || EsConexionPerdida(errores)) {
        Adelantar(errores, del_estado("08001"_L1));
        errores.first().nativo = kServidorNoHallado;
    } else if (Adelantar(errores, [](const ErrorProveedor& error) {
                   return !EsMensaje(error) && error.sqlstate != kSinDetalle;
               })) {
        fallo.numero = FalloSql::kSentencia;
        ConNumero(errores.first());
    } else {
        fallo.numero = FalloSql::kOtroAlAbrir;
    }
    fallo.errores = std::move(errores);
    return fallo;
}

}  // namespace quimo::data::odbc
