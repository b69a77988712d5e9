#include "base/sha256.h"

#include <array>

#include <nettle/base16.h>
#include <nettle/sha2.h>

namespace quimo::base {

struct Sha256::Estado {
    sha256_ctx contexto;
};

Sha256::Sha256() : estado_(std::make_unique<Estado>()) { sha256_init(&estado_->contexto); }
Sha256::Sha256(Sha256&&) noexcept = default;
Sha256& Sha256::operator=(Sha256&&) noexcept = default;
Sha256::~Sha256() = default;

void Sha256::Agregar(const void* datos, std::size_t bytes) {
    sha256_update(&estado_->contexto, bytes, static_cast<const std::uint8_t*>(datos));
}

std::string Sha256::Terminar() {
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> resumen{};
    sha256_digest(&estado_->contexto, resumen.size(), resumen.data());
    std::string cifras(BASE16_ENCODE_LENGTH(SHA256_DIGEST_SIZE), '\0');
    base16_encode_update(cifras.data(), resumen.size(), resumen.data());
    return cifras;
}

}  // namespace quimo::base
