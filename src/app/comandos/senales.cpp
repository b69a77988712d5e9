#include "app/comandos/senales.h"

#include <array>
#include <csignal>
#include <utility>

#include "app/comandos/consola.h"

namespace quimo::app {

namespace {

volatile std::sig_atomic_t pedido = 0;

constexpr std::array kSenales = {SIGTERM, SIGINT, SIGHUP};

std::array<struct sigaction, kSenales.size()> anteriores;
struct sigaction tuberia_anterior;

void Anotar(int /*senal*/) { pedido = 1; }

}  // namespace

PedidoDeTerminar::PedidoDeTerminar() {
    pedido = 0;
    struct sigaction accion {};
    sigemptyset(&accion.sa_mask);
    accion.sa_handler = Anotar;
    // A write that is under way goes on: the work ends between two steps, not within one.
    accion.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kSenales.size(); ++i)
        ::sigaction(kSenales[i], &accion, &anteriores[i]);
    accion.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &accion, &tuberia_anterior);
}

PedidoDeTerminar::~PedidoDeTerminar() {
    for (std::size_t i = 0; i < kSenales.size(); ++i)
        ::sigaction(kSenales[i], &anteriores[i], nullptr);
    ::sigaction(SIGPIPE, &tuberia_anterior, nullptr);
}

bool PedidoDeTerminar::Hay() { return pedido != 0 || SalidaCerrada(); }

}  // namespace quimo::app
