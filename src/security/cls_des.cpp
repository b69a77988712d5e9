#include "security/cls_des.h"

#include <array>

#include <nettle/cbc.h>
#include <nettle/des.h>

#include <QtEndian>

#include "base/check.h"

namespace quimo::security {

namespace {

constexpr qsizetype kDescriptor = 4;
constexpr qsizetype kBloque = DES_BLOCK_SIZE;

struct Estado {
    des_ctx ctx;
    std::array<unsigned char, DES_BLOCK_SIZE> iv;
};

Estado Preparar(const QByteArray& clave) {
    std::array<unsigned char, DES_KEY_SIZE> doblada = {};
    for (qsizetype i = 0; i < clave.size(); ++i) {
        auto& byte = doblada[static_cast<std::size_t>(i % kBloque)];
        byte = static_cast<unsigned char>(byte ^ static_cast<unsigned char>(clave[i]));
    }
    Estado estado = {};
    // It only tells whether the key is one of the weak ones, which are keys all the same.
    static_cast<void>(des_set_key(&estado.ctx, doblada.data()));
    return estado;
}

}  // namespace

Cifrador::Bytes clsDES::Cifrar(QByteArray claro, const QByteArray& clave,
                               const Avance& avance) const {
    QUIMO_CHECK(claro.size() <= kArchivoMax);
    std::array<char, kDescriptor> descriptor = {};
    qToBigEndian(static_cast<quint32>(claro.size()), descriptor.data());
    claro.prepend(descriptor.data(), kDescriptor);
    claro.append((kBloque - claro.size() % kBloque) % kBloque, '\0');
    Estado estado = Preparar(clave);
    PorTramos(claro, avance, [&estado](unsigned char* bytes, std::size_t cuantos) {
        cbc_encrypt(&estado.ctx, reinterpret_cast<nettle_cipher_func*>(des_encrypt), kBloque,
                    estado.iv.data(), cuantos, bytes, bytes);
    });
    return claro;
}

Cifrador::Bytes clsDES::Descifrar(QByteArray cifrado, const QByteArray& clave,
                                  const Avance& avance) const {
    const base::Error descriptor_malo{base::Error::Codigo::Formato,
                                      "Incorrect size descriptor in DES decryption"};
    if (cifrado.isEmpty() || cifrado.size() % kBloque != 0) return descriptor_malo;
    Estado estado = Preparar(clave);
    PorTramos(cifrado, avance, [&estado](unsigned char* bytes, std::size_t cuantos) {
        cbc_decrypt(&estado.ctx, reinterpret_cast<nettle_cipher_func*>(des_decrypt), kBloque,
                    estado.iv.data(), cuantos, bytes, bytes);
    });
    const qsizetype largo = qFromBigEndian<quint32>(cifrado.constData());
    const qsizetype relleno = cifrado.size() - kDescriptor - largo;
    if (relleno < 0 || relleno >= kBloque) return descriptor_malo;
    return cifrado.mid(kDescriptor, largo);
}

}  // namespace quimo::security
