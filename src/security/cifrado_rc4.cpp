#include "security/cifrado_rc4.h"

#include "security/clave.h"
#include "security/pagina_codigos.h"

namespace quimo::security {

using base::Error;
using base::Result;

void CifradoRc4::PonerClave(const QString& clave) {
    rc4_.Key(clave);
    des_.Key(clave);
}

Result<void> CifradoRc4::Preparar() {
    QUIMO_TRY(const QString clave, LeerClave());
    PonerClave(clave);
    return {};
}

Result<QString> CifradoRc4::Descifrar(const QString& guardada) const {
    return rc4_.DecryptString(guardada, {}, Forma::Base64);
}

Result<QString> CifradoRc4::Cifrar(const QString& contrasena) const {
    if (contrasena.isEmpty()) {
        return Error{Error::Codigo::Datos, "La contraseña no puede estar vacía."};
    }
    if (!CabeEnPagina(contrasena)) {
        return Error{Error::Codigo::Datos,
                     "La contraseña lleva caracteres que no se pueden guardar."};
    }
    return rc4_.EncryptString(contrasena, {}, Forma::Base64);
}

}  // namespace quimo::security
