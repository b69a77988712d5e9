#include "foundation/conector.h"

#include "foundation/embedded/conexion_embebida.h"
#include "foundation/odbc/conexion_odbc.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

DatosConexion AccesoDelPrograma(const QString& servidor, const QString& base_de_datos) {
    return {servidor, base_de_datos, qEnvironmentVariable("QUIMO_BD_USUARIO", u"quimo_db"_s),
            qEnvironmentVariable("QUIMO_BD_CLAVE", u"kobrin4821"_s)};
}

Conector CrearConector(const Reloj& reloj, SiFalta si_falta) {
    return
        [&reloj, si_falta](
            const DatosConexion& datos) -> base::Result<std::unique_ptr<SqlConnection>, FalloSql> {
            if (datos.servidor.compare(QStringView(kServidorEmbebido), Qt::CaseInsensitive) == 0) {
                return AbrirEmbebida(datos.base_de_datos, reloj, si_falta == SiFalta::Crear);
            }
            return odbc::AbrirOdbc(datos);
        };
}

}  // namespace quimo::foundation
