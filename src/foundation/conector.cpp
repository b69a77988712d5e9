#include "foundation/conector.h"

#include "data/embebido/conexion_embebida.h"
#include "data/odbc/conexion_odbc.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

data::DatosConexion AccesoDelPrograma(const QString& servidor, const QString& base_de_datos) {
    return {servidor, base_de_datos, qEnvironmentVariable("QUIMO_BD_USUARIO", u"quimo_db"_s),
            qEnvironmentVariable("QUIMO_BD_CLAVE", u"kobrin4821"_s)};
}

data::Conector CrearConector(const data::Reloj& reloj, SiFalta si_falta) {
    return [&reloj, si_falta](const data::DatosConexion& datos)
               -> base::Result<std::unique_ptr<data::SqlConnection>, data::FalloSql> {
        if (datos.servidor.compare(QStringView(kServidorEmbebido), Qt::CaseInsensitive) == 0) {
            return data::AbrirEmbebida(datos.base_de_datos, reloj, si_falta == SiFalta::Crear);
        }
        return data::odbc::AbrirOdbc(datos);
    };
}

}  // namespace quimo::foundation
