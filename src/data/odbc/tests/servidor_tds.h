#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "data/sql_connection.h"

namespace quimo::data::odbc {

/// A server on loopback that speaks the protocol of SQL Server, version 7.4, to a real driver. What
/// it answers to a text comes from a function of the test: fixed answers, or the embedded engine.
/// One thread for each connection; all end with the object.
class ServidorTds {
public:
    using Contestar = std::function<RespuestaSql(const QString&, const QVector<QVariant>&)>;
    /// Called once for each connection, in its thread.
    using NuevaSesion = std::function<Contestar()>;
    enum class Falla { Ninguna, CierraAlLlegar, CierraTrasElAcceso, Calla };
    /// What a client logged in with.
    struct Acceso {
        QString usuario;
        QString clave;
        QString base;
        QString aplicacion;
    };
    /// Texts that hold these: the connection is closed instead of an answer, in the middle of it,
    /// or the answer's last set breaks off with a division by zero.
    static constexpr char16_t kCorta[] = u"/*corta*/";
    static constexpr char16_t kCortaEnMedio[] = u"/*corta en medio*/";
    static constexpr char16_t kFallaEnMedio[] = u"/*falla en medio*/";
    /// Users whose login is refused: wrong password (18456), no such database (4060).
    static constexpr char16_t kUsuarioMalo[] = u"malo";
    static constexpr char16_t kUsuarioSinBase[] = u"sinbase";

    explicit ServidorTds(NuevaSesion nueva_sesion, Falla falla = Falla::Ninguna);
    ~ServidorTds();
    ServidorTds(const ServidorTds&) = delete;
    ServidorTds& operator=(const ServidorTds&) = delete;

    int Puerto() const { return puerto_; }
    QString Palabra() const { return QStringLiteral("127.0.0.1,%1").arg(puerto_); }
    QVector<Acceso> Accesos() const;
    /// The texts that came, in their order, those of the session itself included.
    QStringList Textos() const;

private:
    void Escuchar();
    void Atender(int enlace);
    bool Entrar(int enlace);
    void Conversar(int enlace, const Contestar& contestar);

    NuevaSesion nueva_sesion_;
    Falla falla_;
    int escucha_ = -1;
    int puerto_ = 0;
    std::atomic<bool> fin_ = false;
    mutable std::mutex candado_;
    QVector<Acceso> accesos_;
    QStringList textos_;
    std::vector<int> enlaces_;
    std::vector<std::thread> hilos_;
    std::thread hilo_;
};

}  // namespace quimo::data::odbc
