#include "data/fallos.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace quimo::data {

FalloSql::Numero ClaseDeFallo(QStringView sqlstate) {
    // Out of time, the server does not answer, it has no such database.
    static constexpr std::array kSinServidor = {"HYT00"_L1, "HYT01"_L1, "08001"_L1, "08004"_L1};
    if (sqlstate.startsWith("23"_L1)) return FalloSql::kIntegridad;
    const bool ausente =
        std::any_of(kSinServidor.begin(), kSinServidor.end(),
                    [sqlstate](QLatin1StringView estado) { return sqlstate == estado; });
    return ausente ? FalloSql::kServidorAusente : FalloSql::kSentencia;
}

FalloSql ConexionCerrada(QStringView origen) {
    return {FalloSql::kConexionCerrada,
            {ErrorProveedor{u"08003"_s, 0, origen.toString(), u"La conexión está cerrada."_s}}};
}

}  // namespace quimo::data
