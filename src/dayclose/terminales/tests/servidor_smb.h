#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <sys/types.h>

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace quimo::dayclose::pruebas {

/// A real file server on a loopback port, with its settings, passwords and folders in a temporary
/// directory. It serves the share `quimo` to guests and the share `clave` to the user who runs the
/// test, with `kClave`. A file grows to `kBytesMax` at most: then its disk is full. Ended with the
/// object; it also ends by itself when the test dies, for then its input closes.
class ServidorSmb {
public:
    static constexpr char kClave[] = "s3creta, con ñ";
    static constexpr qint64 kBytesMax = 64 << 20;

    ServidorSmb() = default;
    ServidorSmb(const ServidorSmb&) = delete;
    ServidorSmb& operator=(const ServidorSmb&) = delete;
    ~ServidorSmb() { Matar(); }

    /// False, with the reason on standard error, when it does not serve within a while. Also starts
    /// a killed server again, on the same port.
    bool Arrancar();
    /// Ends the server and the processes of its connections at once, as a power cut does.
    void Matar();
    /// It stays connected and answers nothing more; `Matar` ends it.
    void Congelar() const;
    /// Ends the processes of the open connections only.
    void MatarConexiones() const;

    quint16 Puerto() const { return puerto_; }
    QString Usuario() const;
    /// A file of a share, by its path on this computer.
    QString Ruta(const QString& recurso, const QString& nombre) const {
        return carpeta_.filePath(recurso + u'/' + nombre);
    }

private:
    bool Preparar();
    std::vector<pid_t> Conexiones() const;

    QTemporaryDir carpeta_;
    QProcess proceso_;
    quint16 puerto_ = 0;
};

/// A socket bound to a free port of the loopback address, and its port.
int SocketEnLoopback();
quint16 PuertoDe(int fd);
/// A socket that calls a loopback port and does not wait for the answer.
int LlamarALoopback(quint16 puerto);

/// Writes a file with these bytes, folders included.
void EscribirArchivo(const QString& ruta, const QByteArray& contenido);
/// A file's bytes; "no está" when there is none.
QByteArray LeerArchivo(const QString& ruta);
/// The SHA-256 of some bytes, as the close writes it.
QString Sha256De(const QByteArray& contenido);

/// Runs `accion` in another thread as soon as a file has this many bytes; ends when it has run or
/// when the object goes. Whether it ran is asked at the end.
class CuandoCrezca {
public:
    CuandoCrezca(const QString& ruta, qint64 bytes, std::function<void()> accion);
    ~CuandoCrezca();
    bool Corrio();

private:
    struct Estado;
    std::unique_ptr<Estado> estado_;
};

}  // namespace quimo::dayclose::pruebas
