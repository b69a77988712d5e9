#include "servidor_tds.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QRegularExpression>

#include "tds_codigo.h"

namespace quimo::data::odbc {

namespace {

constexpr int kPaquete = 4096;
constexpr int kCabecera = 8;
constexpr quint8 kTexto = 0x01;
constexpr quint8 kLlamada = 0x03;
constexpr quint8 kRespuesta = 0x04;
constexpr quint8 kAtencion = 0x06;
constexpr quint8 kAcceso = 0x10;
constexpr quint8 kPrevio = 0x12;

bool LeerTodo(int enlace, char* destino, std::size_t largo) {
    while (largo > 0) {
        const ssize_t leidos = recv(enlace, destino, largo, 0);
        if (leidos <= 0) return false;
        destino += leidos;
        largo -= static_cast<std::size_t>(leidos);
    }
    return true;
}

struct Mensaje {
    quint8 tipo = 0;
    QByteArray cuerpo;
};

/// A message out of its packets; type 0 when the connection is gone.
Mensaje Recibir(int enlace) {
    Mensaje mensaje;
    while (true) {
        std::array<char, kCabecera> cabecera = {};
        if (!LeerTodo(enlace, cabecera.data(), cabecera.size())) return {};
        const int largo = static_cast<quint8>(cabecera[2]) * 256 + static_cast<quint8>(cabecera[3]);
        QByteArray parte(std::max(largo - kCabecera, 0), '\0');
        if (!LeerTodo(enlace, parte.data(), static_cast<std::size_t>(parte.size()))) return {};
        mensaje.tipo = static_cast<quint8>(cabecera[0]);
        mensaje.cuerpo += parte;
        if ((cabecera[1] & 1) != 0) return mensaje;
    }
}

void Enviar(int enlace, const QByteArray& tokens, bool entera = true) {
    int numero = 1;
    for (qsizetype i = 0; i < tokens.size(); i += kPaquete - kCabecera) {
        const QByteArray parte = tokens.mid(i, kPaquete - kCabecera);
        const auto largo = static_cast<int>(parte.size()) + kCabecera;
        const bool ultimo = entera && i + parte.size() == tokens.size();
        QByteArray paquete;
        for (const int byte :
             {int{kRespuesta}, ultimo ? 1 : 0, largo / 256, largo % 256, 0, 51, numero++ % 256, 0})
            paquete.append(static_cast<char>(byte));
        paquete += parte;
        const char* resto = paquete.constData();
        auto faltan = static_cast<std::size_t>(paquete.size());
        while (faltan > 0) {
            const ssize_t enviados = send(enlace, resto, faltan, MSG_NOSIGNAL);
            if (enviados <= 0) return;
            resto += enviados;
            faltan -= static_cast<std::size_t>(enviados);
        }
    }
}

QString CampoDeAcceso(const QByteArray& cuerpo, int lugar, bool disfrazado) {
    LectorTds lector(cuerpo);
    lector.Saltar(lugar);
    const auto desde = static_cast<qint64>(lector.Entero(2));
    const auto largo = static_cast<qint64>(lector.Entero(2));
    QByteArray bytes = cuerpo.mid(desde, largo * 2);
    for (char& byte : bytes) {
        if (!disfrazado) break;
        const int claro = static_cast<quint8>(byte) ^ 0xA5;
        byte = static_cast<char>(((claro & 0x0F) << 4) | (claro >> 4));
    }
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()), largo);
}

RespuestaSql Rechazo(QVector<ErrorProveedor> errores) {
    RespuestaSql respuesta;
    respuesta.fallo = FalloSql{FalloSql::kSentencia, std::move(errores)};
    return respuesta;
}

/// A text with its parameters, which come named @P1, @P2 ... in their order.
struct Pedido {
    QString texto;
    QVector<QVariant> parametros;
};

Pedido LeerPedido(const Mensaje& mensaje) {
    LectorTds lector(mensaje.cuerpo);
    lector.Saltar(static_cast<qint64>(lector.Entero(4)) - 4);
    if (mensaje.tipo == kTexto) {
        return {lector.Utf16((mensaje.cuerpo.size() - lector.Lugar()) / 2), {}};
    }
    const auto nombre = static_cast<qint64>(lector.Entero(2));
    if (nombre == 0xFFFF) {
        lector.Entero(2);
    } else {
        lector.Utf16(nombre);
    }
    lector.Entero(2);
    static const QRegularExpression kMarca(QStringLiteral("@P\\d+"));
    Pedido pedido{LeerParametro(lector).toString().replace(kMarca, QStringLiteral("?")), {}};
    LeerParametro(lector);  // what the parameters are declared as
    while (!lector.Fin())
        pedido.parametros << LeerParametro(lector);
    return pedido;
}

}  // namespace

ServidorTds::ServidorTds(NuevaSesion nueva_sesion, Falla falla)
    : nueva_sesion_(std::move(nueva_sesion)), falla_(falla) {
    escucha_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in direccion = {};
    direccion.sin_family = AF_INET;
    direccion.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t largo = sizeof direccion;
    QUIMO_CHECK(bind(escucha_, reinterpret_cast<sockaddr*>(&direccion), largo) == 0);
    QUIMO_CHECK(listen(escucha_, 8) == 0);
    QUIMO_CHECK(getsockname(escucha_, reinterpret_cast<sockaddr*>(&direccion), &largo) == 0);
    puerto_ = ntohs(direccion.sin_port);
    hilo_ = std::thread([this] { Escuchar(); });
}

ServidorTds::~ServidorTds() {
    fin_ = true;
    hilo_.join();
    for (const int enlace : enlaces_)
        shutdown(enlace, SHUT_RDWR);
    for (std::thread& hilo : hilos_)
        hilo.join();
    for (const int enlace : enlaces_)
        close(enlace);
    close(escucha_);
}

QVector<ServidorTds::Acceso> ServidorTds::Accesos() const {
    const std::lock_guard guardia(candado_);
    return accesos_;
}

QStringList ServidorTds::Textos() const {
    const std::lock_guard guardia(candado_);
    return textos_;
}

void ServidorTds::Escuchar() {
    constexpr int kVuelta_ms = 20;
    while (!fin_) {
        pollfd espera = {escucha_, POLLIN, 0};
        if (poll(&espera, 1, kVuelta_ms) <= 0) continue;
        const int enlace = accept4(escucha_, nullptr, nullptr, SOCK_CLOEXEC);
        if (enlace < 0) continue;
        enlaces_.push_back(enlace);
        hilos_.emplace_back([this, enlace] { Atender(enlace); });
    }
}

void ServidorTds::Atender(int enlace) {
    if (falla_ == Falla::CierraAlLlegar || !Entrar(enlace)) {
        shutdown(enlace, SHUT_RDWR);
        return;
    }
    const Contestar contestar = nueva_sesion_();
    Conversar(enlace, contestar);
    shutdown(enlace, SHUT_RDWR);
}

bool ServidorTds::Entrar(int enlace) {
    Mensaje mensaje = Recibir(enlace);
    if (falla_ == Falla::Calla) {
        Recibir(enlace);  // until the client gives up
        return false;
    }
    if (mensaje.tipo == kPrevio) {
        // Version, encryption: not supported, instance, thread, one answer at a time.
        const QByteArray opciones(
            "\x00\x00\x1a\x00\x06\x01\x00\x20\x00\x01\x02\x00\x21\x00\x01\x03\x00\x22\x00\x00"
            "\x04\x00\x22\x00\x01\xff\x0f\x00\x07\xd0\x00\x00\x02\x00\x00",
            35);
        Enviar(enlace, opciones);
        mensaje = Recibir(enlace);
    }
    if (mensaje.tipo != kAcceso || falla_ == Falla::CierraTrasElAcceso) return false;
    const Acceso acceso = {
        CampoDeAcceso(mensaje.cuerpo, 40, false), CampoDeAcceso(mensaje.cuerpo, 44, true),
        CampoDeAcceso(mensaje.cuerpo, 68, false), CampoDeAcceso(mensaje.cuerpo, 48, false)};
    {
        const std::lock_guard guardia(candado_);
        accesos_ << acceso;
    }
    const ErrorProveedor rechazado = {
        {}, 18456, {}, QStringLiteral("Login failed for user '%1'.").arg(acceso.usuario)};
    if (acceso.usuario == QString::fromUtf16(kUsuarioMalo)) {
        Enviar(enlace, TokensDeRespuesta(Rechazo({rechazado})));
        return false;
    }
    if (acceso.usuario == QString::fromUtf16(kUsuarioSinBase)) {
        const QString texto =
            QStringLiteral("Cannot open database \"%1\" requested by the login. The login failed.")
                .arg(acceso.base);
        Enviar(enlace, TokensDeRespuesta(Rechazo({{{}, 4060, {}, texto}, rechazado})));
        return false;
    }
    Enviar(enlace, TokensDeAcceso(acceso.base));
    return true;
}

void ServidorTds::Conversar(int enlace, const Contestar& contestar) {
    while (true) {
        const Mensaje mensaje = Recibir(enlace);
        if (mensaje.tipo == kAtencion) {
            Enviar(enlace, QByteArray("\xfd\x20\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00", 13));
            continue;
        }
        if (mensaje.tipo != kTexto && mensaje.tipo != kLlamada) return;
        const Pedido pedido = LeerPedido(mensaje);
        {
            const std::lock_guard guardia(candado_);
            textos_ << pedido.texto;
        }
        const auto pide = [&](const char16_t* clave) {
            return pedido.texto.contains(QString::fromUtf16(clave));
        };
        if (pide(kCorta)) return;
        QByteArray tokens = TokensDeRespuesta(contestar(pedido.texto, pedido.parametros));
        if (pide(kCortaEnMedio)) {
            Enviar(enlace, tokens.left(tokens.size() / 2), false);
            return;
        }
        if (pide(kFallaEnMedio)) {
            constexpr int kHecho = 13;  // what tells that the set is at its end
            tokens.chop(kHecho);
            tokens += TokensDeRespuesta(
                Rechazo({{{}, 8134, {}, QStringLiteral("Divide by zero error encountered.")}}));
        }
        Enviar(enlace, tokens);
    }
}

}  // namespace quimo::data::odbc
