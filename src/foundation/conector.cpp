#include "foundation/conector.h"

#include "foundation/embedded/conexion_embebida.h"
#include "foundation/odbc/conexion_odbc.h"

namespace quimo::foundation {

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
