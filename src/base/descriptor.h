#pragma once

#include <utility>

namespace quimo::base {

/// Closes a file descriptor when it goes. Moves, never copies.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& otro) noexcept : fd_(otro.Soltar()) {}
    Descriptor& operator=(Descriptor&& otro) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { static_cast<void>(Cerrar()); }

    /// -1 for none.
    int Fd() const { return fd_; }
    int Soltar() { return std::exchange(fd_, -1); }
    /// 0, or the errno: a network file may refuse its last bytes only here.
    int Cerrar();

private:
    int fd_ = -1;
};

}  // namespace quimo::base
