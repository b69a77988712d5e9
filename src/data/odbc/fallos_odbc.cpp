#include "data/odbc/fallos_odbc.h"

#include "data/fallos.h"

using namespace Qt::StringLiterals;

namespace quimo::data::odbc {

namespace {

// The server's own numbers.
constexpr int kObjetoDesconocido = 208;
constexpr int kConversionNoAdmitida = 257;
constexpr int kBaseNoAbre = 4060;
constexpr int kPuntoDesconocido = 6401;

FalloSql Propio(FalloSql::Numero numero, QLatin1StringView sqlstate, int nativo,
                const QString& descripcion) {
    return {numero, {ErrorProveedor{QString(sqlstate), nativo, u"QUIMO"_s, descripcion}}};
}

}  // namespace

FalloSql AdministradorSinRespuesta() {
    return Propio(FalloSql::kServidorAusente, "HY001"_L1, kFuenteNoHallada,
                  u"El administrador de controladores ODBC no responde."_s);
}

FalloSql SinControladores(const QStringList& buscados) {
    return Propio(FalloSql::kServidorAusente, kSinControlador, kFuenteNoHallada,
                  u"No hay un controlador ODBC para SQL Server instalado; se buscó: "_s +
                      buscados.join(u", "_s));
}

FalloSql ServidorSinNombre() {
    return Propio(FalloSql::kServidorAusente, "08001"_L1, kServidorNoHallado,
                  u"Falta el nombre del servidor."_s);
}

FalloSql BaseSinNombre() {
    return Propio(FalloSql::kServidorAusente, "08004"_L1, kBaseNoAbre,
                  u"Falta el nombre de la base de datos."_s);
}

FalloSql ValorNoSeEscribe(const QString& palabra) {
    return Propio(FalloSql::kSentencia, "HY000"_L1, kSinNumero,
                  u"El controlador ODBC no admite el valor de "_s + palabra +
                      u": contiene signos que no se pueden escribir en la conexión."_s);
}

FalloSql TransaccionPerdida() {
    return Propio(FalloSql::kConexionPerdida, "08S01"_L1, 0,
                  u"La transacción se perdió con la conexión: nada de ella quedó guardado."_s);
}

FalloSql ParametroSinTipo(const char* tipo) {
    return Propio(FalloSql::kSentencia, "22018"_L1, kConversionNoAdmitida,
                  u"Un valor de tipo %1 no se puede enviar a la base de datos."_s.arg(
                      QString::fromLatin1(tipo)));
}

FalloSql TablaDesconocida(const QString& tabla) {
    return Propio(FalloSql::kSentencia, "42S02"_L1, kObjetoDesconocido,
                  kPrefijoDelServidor + u"Invalid object name '%1'."_s.arg(tabla));
}

ErrorProveedor SinExplicacion() {
    return {u"HY000"_s, kSinNumero, u"ODBC"_s, u"El controlador ODBC falló sin decir por qué."_s};
}

ErrorProveedor ValorIlegible(const QString& origen, const QString& motivo) {
    return {u"22018"_s, kSinNumero, origen, motivo};
}

bool EsPuntoDesconocido(const FalloSql& fallo) { return fallo.Nativo() == kPuntoDesconocido; }

}  // namespace quimo::data::odbc
