#pragma once

#include <memory>
#include <optional>
#include <utility>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "dayclose/terminales/archivos.h"
#include "dayclose/terminales/red_conf.h"

struct _SMBCCTX;
struct _SMBCFILE;

namespace quimo::dayclose {

/// A name of the network taken apart: "\\CAJA1\quimo\datos\Quimo_Terminal.mdb".
struct RutaRed {
    QString equipo;
    QString recurso;
    QStringList partes;  ///< folders and file inside the share; none for the share itself

    /// 52 for a name without computer, share and file, or with characters or folders that no such
    /// name has.
    static ResultadoArchivo<RutaRed> Leer(const QString& remoto);
    /// As the network writes it, for messages.
    QString Texto() const;
    /// The share itself, and the folder that holds the file.
    RutaRed Raiz() const { return {equipo, recurso, {}}; }
    RutaRed Carpeta() const { return {equipo, recurso, partes.mid(0, partes.size() - 1)}; }
    /// A file beside this one, named after it.
    RutaRed Junto(const QString& sufijo) const;
    /// The file beside this one that differs in what follows the last point.
    RutaRed ConExtension(const QString& extension) const;
};

/// What a remote name stands for.
struct EstadoRemoto {
    qint64 bytes = 0;
    bool es_carpeta = false;
    qint64 modificado_ns = 0;
    bool operator==(const EstadoRemoto&) const = default;
};

/// What the others may do with a file while we have it open.
enum class Compartir { Todo, SoloLectura, Nada };

class ArchivoSmb;

/// One computer's shares over SMB 2 or 3, with its login. It connects when it is first asked; a
/// connection that was lost is not made again. Each wait for the computer is bounded by `plazo_s`.
/// Must outlive the files it opens; one thread only.
///
/// Failures are the close's numbers: 70 a file that somebody holds open, 75 a refused login or
/// path, 76 a folder in whose place a file lies, 61 a full disk, 53 a name that is not there;
/// whatever else happens on the way to another computer, that it cannot be reached: 52.
class ConexionSmb {
public:
    /// Finds the computer; 52 when it does not answer.
    static ResultadoArchivo<std::unique_ptr<ConexionSmb>> Abrir(const RutaRed& ruta,
                                                                const AccesoRed& acceso);
    ConexionSmb(const ConexionSmb&) = delete;
    ConexionSmb& operator=(const ConexionSmb&) = delete;
    ~ConexionSmb();

    /// False when the connection to the path's share was lost.
    bool Viva(const RutaRed& ruta);
    /// Nothing when neither the file nor, perhaps, its folder or share is there.
    ResultadoArchivo<std::optional<EstadoRemoto>> Mirar(const RutaRed& ruta);
    ResultadoArchivo<ArchivoSmb> AbrirArchivo(const RutaRed& ruta, int modo, Compartir compartir);
    /// The new name must not exist: the library would delete a file that bears it first.
    ResultadoArchivo<void> Renombrar(const RutaRed& ruta, const RutaRed& nueva);
    ResultadoArchivo<void> Borrar(const RutaRed& ruta);

private:
    struct Acceso {
        QByteArray usuario;
        QByteArray clave;
        QByteArray dominio;
    };
    ConexionSmb(QString direccion, const AccesoRed& acceso);
    static void Identificar(_SMBCCTX* contexto, const char* servidor, const char* recurso,
                            char* dominio, int dominio_max, char* usuario, int usuario_max,
                            char* clave, int clave_max);
    bool Preparar(const AccesoRed& acceso);
    QByteArray Url(const RutaRed& ruta) const;

    QString direccion_;
    Acceso acceso_;
    _SMBCCTX* contexto_ = nullptr;
};

/// An open remote file; closed when it goes.
class ArchivoSmb {
public:
    ArchivoSmb(_SMBCCTX* contexto, _SMBCFILE* archivo, QString ruta)
        : contexto_(contexto), archivo_(archivo), ruta_(std::move(ruta)) {}
    ArchivoSmb(ArchivoSmb&& otro) noexcept
        : contexto_(otro.contexto_),
          archivo_(std::exchange(otro.archivo_, nullptr)),
          ruta_(std::move(otro.ruta_)) {}
    ArchivoSmb& operator=(ArchivoSmb&&) = delete;
    ~ArchivoSmb();

    ResultadoArchivo<EstadoRemoto> Mirar();
    /// Hands the whole file to a sink. A file that changes while it is read: 70.
    ResultadoArchivo<void> Recorrer(const Sumidero& sumidero);
    ResultadoArchivo<void> Escribir(const char* datos, qsizetype bytes);
    /// The server may refuse the last bytes only here.
    ResultadoArchivo<void> Cerrar();

private:
    _SMBCCTX* contexto_;
    _SMBCFILE* archivo_;
    QString ruta_;
};

}  // namespace quimo::dayclose
