#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace quimo::base {

/// The SHA-256 digest of bytes that come a piece at a time. The day close reads every terminal's
/// file through it several times, so it is the library's that uses the processor's own
/// instructions.
class Sha256 {
public:
    Sha256();
    Sha256(Sha256&&) noexcept;
    Sha256& operator=(Sha256&&) noexcept;
    ~Sha256();

    void Agregar(const void* datos, std::size_t bytes);
    /// 64 lower-case hexadecimal digits. What is added afterwards begins another digest.
    std::string Terminar();

private:
    struct Estado;
    std::unique_ptr<Estado> estado_;
};

}  // namespace quimo::base
