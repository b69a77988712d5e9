#include "security/cls_rc4.h"

#include <algorithm>

#include <nettle/arcfour.h>

namespace quimo::security {

Cifrador::Bytes clsRC4::Cifrar(QByteArray claro, const QByteArray& clave,
                               const Avance& avance) const {
    arcfour_ctx estado = {};
    arcfour_set_key(
        &estado,
        std::min(static_cast<std::size_t>(clave.size()), std::size_t{ARCFOUR_MAX_KEY_SIZE}),
        reinterpret_cast<const unsigned char*>(clave.constData()));
    PorTramos(claro, avance, [&estado](unsigned char* bytes, std::size_t cuantos) {
        arcfour_crypt(&estado, cuantos, bytes, bytes);
    });
    return claro;
}

Cifrador::Bytes clsRC4::Descifrar(QByteArray cifrado, const QByteArray& clave,
                                  const Avance& avance) const {
    return Cifrar(std::move(cifrado), clave, avance);
}

}  // namespace quimo::security
