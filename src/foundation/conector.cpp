#include "foundation/conector.h"

#include "foundation/embedded/conexion_embebida.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

Conector CrearConector(const Reloj& reloj, SiFalta si_falta) {
    return
        [&reloj, si_falta](
            const DatosConexion& datos) -> base::Result<std::unique_ptr<SqlConnection>, FalloSql> {
            if (datos.servidor.compare(QStringView(kServidorEmbebido), Qt::CaseInsensitive) == 0) {
                return AbrirEmbebida(datos.base_de_datos, reloj, si_falta == SiFalta::Crear);
            }
            return FalloSql{
                FalloSql::kServidorAusente,
                {ErrorProveedor{
                    u"IM002"_s, 6, u"QUIMO"_s,
                    u"Esta versión solo abre bases de datos con el servidor 'embebido'."_s}}};
        };
}

}  // namespace quimo::foundation
