#include "base/descriptor.h"

#include <cerrno>

#include <unistd.h>

namespace quimo::base {

Descriptor& Descriptor::operator=(Descriptor&& otro) noexcept {
    if (this != &otro) {
        static_cast<void>(Cerrar());
        fd_ = otro.Soltar();
    }
    return *this;
}

int Descriptor::Cerrar() {
    if (fd_ < 0) return 0;
    return ::close(Soltar()) != 0 ? errno : 0;
}

}  // namespace quimo::base
