#include "dayclose/terminales/smb_share.h"

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

RutaRed Parcial(const RutaRed& ruta) { return ruta.Junto(u".parcial"_s); }
RutaRed Anterior(const RutaRed& ruta) { return ruta.Junto(u".anterior"_s); }

/// What lies at a name, after finishing or undoing a replacement that was interrupted.
ResultadoArchivo<std::optional<EstadoRemoto>> Presente(ConexionSmb& conexion, const RutaRed& ruta) {
    QUIMO_TRY(const auto estado, conexion.Mirar(ruta));
    QUIMO_TRY(const auto anterior, conexion.Mirar(Anterior(ruta)));
    if (!anterior || anterior->es_carpeta) return estado;
    if (estado) {
        // Kept by whoever replaced it. What cannot be deleted now is deleted the next time.
        static_cast<void>(conexion.Borrar(Anterior(ruta)));
        return estado;
    }
    QUIMO_TRY_VOID(conexion.Renombrar(Anterior(ruta), ruta));
    return anterior;
}

/// 76 unless there is such a share or folder.
ResultadoArchivo<void> ExigirCarpeta(ConexionSmb& conexion, const RutaRed& carpeta) {
    QUIMO_TRY(const auto estado, conexion.Mirar(carpeta));
    if (estado && estado->es_carpeta) return {};
    return FalloDeNumero(FalloArchivo::kRutaNoEncontrada, carpeta.Texto());
}

FalloArchivo Cambiado(const RutaRed& ruta) {
    return FalloDeNumero(FalloArchivo::kCambiado, ruta.Texto());
}

/// 70 when somebody has the terminal's lock file open, or when nobody may look.
ResultadoArchivo<void> ExigirSinLdb(ConexionSmb& conexion, const RutaRed& ruta) {
    const auto abierto =
        conexion.AbrirArchivo(ruta.ConExtension(u".ldb"_s), O_RDONLY, Compartir::Nada);
    if (abierto || abierto.error().numero == FalloArchivo::kNoEncontrado) return {};
    if (abierto.error().numero == FalloArchivo::kNombreIncorrecto) return abierto.error();
    return FalloDeNumero(FalloArchivo::kPermisoDenegado, ruta.Texto());
}

/// 70 when somebody has the file open.
ResultadoArchivo<void> ExigirLibre(ConexionSmb& conexion, const RutaRed& ruta) {
    QUIMO_TRY_VOID(ExigirSinLdb(conexion, ruta));
    QUIMO_TRY(ArchivoSmb archivo, conexion.AbrirArchivo(ruta, O_RDWR, Compartir::Nada));
    return archivo.Cerrar();
}

/// The file's size and time, read while nobody else could open it; `kCambiado` when its contents
/// are not those expected.
ResultadoArchivo<EstadoRemoto> ExigirContenido(ConexionSmb& conexion, const RutaRed& ruta,
                                               const QString& sha256) {
    QUIMO_TRY_VOID(ExigirSinLdb(conexion, ruta));
    QUIMO_TRY(ArchivoSmb archivo, conexion.AbrirArchivo(ruta, O_RDWR, Compartir::Nada));
    QUIMO_TRY(const Copiado leido,
              Resumir([&](const Sumidero& sumidero) { return archivo.Recorrer(sumidero); }));
    QUIMO_TRY(const EstadoRemoto estado, archivo.Mirar());
    QUIMO_TRY_VOID(archivo.Cerrar());
    if (leido.sha256 != sha256) return Cambiado(ruta);
    return estado;
}

ResultadoArchivo<void> ExigirEstado(ConexionSmb& conexion, const RutaRed& ruta,
                                    const EstadoRemoto& esperado) {
    QUIMO_TRY(const auto estado, conexion.Mirar(ruta));
    return estado == esperado ? ResultadoArchivo<void>() : Cambiado(ruta);
}

/// Sends a local file under a remote name, replacing whatever has it.
ResultadoArchivo<void> Escribir(ConexionSmb& conexion, const QString& local, const RutaRed& ruta) {
    qint64 bytes = 0;
    {
        QUIMO_TRY(ArchivoSmb salida,
                  conexion.AbrirArchivo(ruta, O_WRONLY | O_CREAT | O_TRUNC, Compartir::Nada));
        QUIMO_TRY_VOID(RecorrerArchivo(local, [&](const char* datos, qsizetype cuantos) {
            bytes += cuantos;
            return salida.Escribir(datos, cuantos);
        }));
        QUIMO_TRY_VOID(salida.Cerrar());
    }
    QUIMO_TRY(const auto escrito, conexion.Mirar(ruta));
    if (escrito && escrito->bytes == bytes) return {};
    return FalloDeNumero(FalloArchivo::kAccesoRuta, ruta.Texto(),
                         u"el equipo no guardó el archivo entero"_s);
}

/// Puts the new file in the place of the expected one.
ResultadoArchivo<void> Colocar(ConexionSmb& conexion, const RutaRed& ruta, const QString& sha256) {
    if (sha256.isEmpty()) {
        QUIMO_TRY(const auto estado, conexion.Mirar(ruta));
        if (estado) return Cambiado(ruta);
        return conexion.Renombrar(Parcial(ruta), ruta);
    }
    QUIMO_TRY(const EstadoRemoto esperado, ExigirContenido(conexion, ruta, sha256));
    QUIMO_TRY_VOID(ExigirEstado(conexion, ruta, esperado));
    QUIMO_TRY_VOID(conexion.Renombrar(ruta, Anterior(ruta)));
    // Nobody finds it under this name any more: what is there now cannot change again.
    auto colocado = ExigirEstado(conexion, Anterior(ruta), esperado);
    if (colocado) colocado = conexion.Renombrar(Parcial(ruta), ruta);
    if (!colocado) {
        // Should this fail as well, the next operation does it: see `Presente`.
        static_cast<void>(conexion.Renombrar(Anterior(ruta), ruta));
        return colocado;
    }
    // The new file is in its place: a rest that cannot be deleted now is deleted the next time.
    static_cast<void>(conexion.Borrar(Anterior(ruta)));
    return {};
}

ResultadoArchivo<void> Reemplazar(ConexionSmb& conexion, const QString& local, const RutaRed& ruta,
                                  const QString& esperado, const std::function<void()>& antes) {
    QUIMO_TRY(const auto estado, Presente(conexion, ruta));
    if (estado) {
        QUIMO_TRY_VOID(ExigirLibre(conexion, ruta));
    } else {
        QUIMO_TRY_VOID(ExigirCarpeta(conexion, ruta.Carpeta()));
    }
    if (estado.has_value() == esperado.isEmpty()) return Cambiado(ruta);
    auto hecho = Escribir(conexion, local, Parcial(ruta));
    if (hecho && antes) antes();
    if (hecho) hecho = Colocar(conexion, ruta, esperado);
    if (!hecho && hecho.error().numero != FalloArchivo::kNombreIncorrecto) {
        // Where the computer is gone nothing can be cleaned; the next upload writes over it.
        static_cast<void>(conexion.Borrar(Parcial(ruta)));
    }
    return hecho;
}

}  // namespace

template <typename Operacion>
auto SmbShare::Con(const QString& remoto, Operacion operacion)
    -> decltype(operacion(std::declval<ConexionSmb&>(), std::declval<const RutaRed&>())) {
    QUIMO_TRY(const RutaRed ruta, RutaRed::Leer(remoto));
    const std::string clave = ruta.equipo.toLower().toStdString();
    const auto abierta = conexiones_.find(clave);
    if (abierta != conexiones_.end() && !abierta->second->Viva(ruta)) conexiones_.erase(abierta);
    if (!conexiones_.contains(clave)) {
        QUIMO_TRY(auto nueva, ConexionSmb::Abrir(ruta, configuracion_.Para(ruta.equipo)));
        conexiones_.emplace(clave, std::move(nueva));
    }
    auto hecho = operacion(*conexiones_.at(clave), ruta);
    if (!hecho && hecho.error().EsDeComunicacion()) conexiones_.erase(clave);
    return hecho;
}

ResultadoArchivo<bool> SmbShare::Existe(const QString& remoto) {
    return Con(remoto, [](ConexionSmb& conexion, const RutaRed& ruta) -> ResultadoArchivo<bool> {
        QUIMO_TRY(const auto estado, Presente(conexion, ruta));
        if (!estado) QUIMO_TRY_VOID(ExigirCarpeta(conexion, ruta.Raiz()));
        return estado && !estado->es_carpeta;
    });
}

ResultadoArchivo<Copiado> SmbShare::Traer(const QString& remoto, const QString& local) {
    return Con(remoto,
               [&](ConexionSmb& conexion, const RutaRed& ruta) -> ResultadoArchivo<Copiado> {
                   QUIMO_TRY(const auto estado, Presente(conexion, ruta));
                   if (!estado) {
                       QUIMO_TRY_VOID(ExigirCarpeta(conexion, ruta.Carpeta()));
                       return FalloDeNumero(FalloArchivo::kNoEncontrado, remoto);
                   }
                   QUIMO_TRY_VOID(ExigirSinLdb(conexion, ruta));
                   QUIMO_TRY(ArchivoSmb entrada,
                             conexion.AbrirArchivo(ruta, O_RDONLY, Compartir::SoloLectura));
                   return EscribirCon(
                       local, [&](const Sumidero& sumidero) { return entrada.Recorrer(sumidero); });
               });
}

ResultadoArchivo<void> SmbShare::Llevar(const QString& local, const QString& remoto,
                                        const QString& esperado) {
    return Con(remoto, [&](ConexionSmb& conexion, const RutaRed& ruta) {
        return Reemplazar(conexion, local, ruta, esperado, antes_de_reemplazar);
    });
}

}  // namespace quimo::dayclose
