#pragma once

#include "security/cifrador.h"

namespace quimo::security {

/// The DES block cipher, chained (CBC, first block with zeros). What is encrypted is a size
/// descriptor, four bytes with the length of the data, the highest first; then the data, then zeros
/// up to a multiple of eight bytes. Decryption fails (Formato) when the descriptor does not match.
/// The key's bytes beyond the eighth are folded (exclusive or) into the first eight; a shorter key
/// is filled with zeros.
class clsDES final : public Cifrador {  // NOLINT(readability-identifier-naming): a fixed name
protected:
    Bytes Cifrar(QByteArray claro, const QByteArray& clave, const Avance& avance) const override;
    Bytes Descifrar(QByteArray cifrado, const QByteArray& clave,
                    const Avance& avance) const override;
};

}  // namespace quimo::security
