#pragma once

#include "security/cifrador.h"

namespace quimo::security {

/// The RC4 stream cipher, in which employees' passwords are stored. Of the key the first 256 bytes
/// count.
class clsRC4 final : public Cifrador {  // NOLINT(readability-identifier-naming): a fixed name
protected:
    Bytes Cifrar(QByteArray claro, const QByteArray& clave, const Avance& avance) const override;
    Bytes Descifrar(QByteArray cifrado, const QByteArray& clave,
                    const Avance& avance) const override;
};

}  // namespace quimo::security
