#include "dayclose/terminales/equipo_red.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDeadlineTimer>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

constexpr std::size_t kDireccionesMax = 8;

std::vector<in_addr> Buscar(const std::string& nombre) {
    addrinfo pedido{};
    pedido.ai_family = AF_INET;
    pedido.ai_socktype = SOCK_STREAM;
    addrinfo* respuesta = nullptr;
    std::vector<in_addr> direcciones;
    if (::getaddrinfo(nombre.c_str(), nullptr, &pedido, &respuesta) != 0) return direcciones;
    for (const addrinfo* una = respuesta; una != nullptr; una = una->ai_next) {
        if (direcciones.size() == kDireccionesMax) break;
        sockaddr_in direccion{};
        std::memcpy(&direccion, una->ai_addr, sizeof direccion);
        direcciones.push_back(direccion.sin_addr);
    }
    ::freeaddrinfo(respuesta);
    return direcciones;
}

/// The system's look-up has no limit of its own: a thread waits for it, and is left to itself when
/// that takes too long.
std::vector<in_addr> BuscarConPlazo(const QString& nombre, std::chrono::seconds plazo) {
    auto promesa = std::make_shared<std::promise<std::vector<in_addr>>>();
    auto futuro = promesa->get_future();
    std::thread([promesa, texto = nombre.toStdString()] {
        promesa->set_value(Buscar(texto));
    }).detach();
    if (futuro.wait_for(plazo) != std::future_status::ready) return {};
    return futuro.get();
}

/// 0 when the port takes a connection, else the errno.
int Tocar(const in_addr& direccion, quint16 puerto, const QDeadlineTimer& plazo) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) return errno;
    sockaddr_in destino{};
    destino.sin_family = AF_INET;
    destino.sin_port = htons(puerto);
    destino.sin_addr = direccion;
    sockaddr generica{};
    static_assert(sizeof generica == sizeof destino);
    std::memcpy(&generica, &destino, sizeof destino);
    int error = ::connect(fd, &generica, sizeof destino) == 0 ? 0 : errno;
    if (error == EINPROGRESS) {
        pollfd espera{fd, POLLOUT, 0};
        int listo = 0;
        do {
            listo = ::poll(&espera, 1, static_cast<int>(plazo.remainingTime()));
        } while (listo < 0 && errno == EINTR);
        socklen_t largo = sizeof error;
        if (listo == 0) {
            error = ETIMEDOUT;
        } else if (listo < 0 || ::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &largo) != 0) {
            error = errno;
        }
    }
    ::close(fd);
    return error;
}

FalloArchivo Inalcanzable(const QString& ruta, const QString& motivo) {
    return FalloDeNumero(FalloArchivo::kNombreIncorrecto, ruta, motivo);
}

}  // namespace

ResultadoArchivo<QString> LocalizarEquipo(const QString& equipo, const AccesoRed& acceso,
                                          const QString& ruta) {
    const QString nombre = acceso.direccion.isEmpty() ? equipo : acceso.direccion;
    in_addr directa{};
    std::vector<in_addr> direcciones;
    if (::inet_pton(AF_INET, nombre.toUtf8().constData(), &directa) == 1) {
        direcciones.push_back(directa);
    } else {
        direcciones = BuscarConPlazo(nombre, std::chrono::seconds(acceso.plazo_s));
    }
    if (direcciones.empty()) {
        return Inalcanzable(ruta, u"no se encontró en la red el equipo "_s + nombre);
    }
    const QDeadlineTimer plazo(std::chrono::seconds(acceso.plazo_s));
    bool rechazado = false;
    for (const in_addr& direccion : direcciones) {
        const int error = Tocar(direccion, acceso.puerto, plazo);
        if (error == 0) {
            std::array<char, INET_ADDRSTRLEN> texto{};
            ::inet_ntop(AF_INET, &direccion, texto.data(), texto.size());
            return QString::fromLatin1(texto.data());
        }
        rechazado = rechazado || error == ECONNREFUSED;
    }
    if (rechazado) {
        return Inalcanzable(ruta, u"el equipo no comparte carpetas en el puerto "_s +
                                      QString::number(acceso.puerto));
    }
    return Inalcanzable(ruta, u"el equipo no contesta"_s);
}

}  // namespace quimo::dayclose
