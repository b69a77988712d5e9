#pragma once

namespace quimo::app {

/// Long work that must not be cut anywhere: while it lives, the signals that end a program (TERM,
/// INT, HUP) only ask it to end, and a reader of the standard output that goes away does not kill
/// it. One at a time.
class PedidoDeTerminar {
public:
    PedidoDeTerminar();
    PedidoDeTerminar(const PedidoDeTerminar&) = delete;
    PedidoDeTerminar& operator=(const PedidoDeTerminar&) = delete;
    ~PedidoDeTerminar();

    /// Whether the work is to end at its next safe point.
    static bool Hay();
};

}  // namespace quimo::app
