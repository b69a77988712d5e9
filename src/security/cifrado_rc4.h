#pragma once

#include "foundation/cifrado_contrasenas.h"
#include "security/cls_des.h"
#include "security/cls_rc4.h"

namespace quimo::security {

/// Passwords as the database stores them: RC4 with the program's key, as Base64.
class CifradoRc4 final : public foundation::CifradoContrasenas {
public:
    base::Result<void> Preparar() override;
    base::Result<QString> Descifrar(const QString& guardada) const override;

    /// The stored form of a password. One that is empty, or has characters outside the code page,
    /// which could never be typed again, is refused (Datos).
    base::Result<QString> Cifrar(const QString& contrasena) const;
    /// Uses this key instead of the environment's.
    void PonerClave(const QString& clave);

private:
    clsRC4 rc4_;
    clsDES des_;
};

}  // namespace quimo::security
