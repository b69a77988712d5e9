#include "dayclose/smb_share.h"

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

RutaRed Parcial(const RutaRed& ruta) { return ruta.Junto(u".parcial"_s); }
RutaRed Anterior(const RutaRed& ruta) { return ruta.Junto(u".anterior"_s); }

/// What lies at a name, after undoing a replacement that was interrupted between its renames.
ResultadoArchivo<std::optional<EstadoRemoto>> Presente(ConexionSmb& conexion, const RutaRed& ruta) {
    QUIMO_TRY(const auto estado, conexion.Mirar(ruta));
    if (estado) return estado;
    QUIMO_TRY(const auto anterior, conexion.Mirar(Anterior(ruta)));
    if (!anterior) return anterior;
    QUIMO_TRY_VOID(conexion.Renombrar(Anterior(ruta), ruta));
    return anterior;
}

/// 76 unless there is such a share or folder.
ResultadoArchivo<void> ExigirCarpeta(ConexionSmb& conexion, const RutaRed& carpeta) {
    QUIMO_TRY(const auto estado, conexion.Mirar(carpeta));
    if (estado && estado->es_carpeta) return {};
    return FalloDeNumero(FalloArchivo::kRutaNoEncontrada, carpeta.Texto());
}

/// 70 when somebody has the file open.
ResultadoArchivo<void> ExigirLibre(ConexionSmb& conexion, const RutaRed& ruta) {
    QUIMO_TRY(ArchivoSmb archivo, conexion.AbrirArchivo(ruta, O_RDWR, Compartir::Nada));
    return archivo.Cerrar();
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
    FalloArchivo fallo = FalloDeNumero(FalloArchivo::kAccesoRuta, ruta.Texto());
    fallo.descripcion += u" (el equipo no guardó el archivo entero)"_s;
    return fallo;
}

/// Puts the new file in the destination's place.
ResultadoArchivo<void> Colocar(ConexionSmb& conexion, const RutaRed& ruta, bool hay_anterior) {
    if (!hay_anterior) return conexion.Renombrar(Parcial(ruta), ruta);
    QUIMO_TRY(const auto resto, conexion.Mirar(Anterior(ruta)));
    if (resto) QUIMO_TRY_VOID(conexion.Borrar(Anterior(ruta)));
    QUIMO_TRY_VOID(conexion.Renombrar(ruta, Anterior(ruta)));
    auto colocado = conexion.Renombrar(Parcial(ruta), ruta);
    if (!colocado) {
        // Should this fail as well, the next operation does it: see `Presente`.
        static_cast<void>(conexion.Renombrar(Anterior(ruta), ruta));
        return colocado;
    }
    // The new file is in its place: a rest that cannot be deleted now is deleted the next time.
    static_cast<void>(conexion.Borrar(Anterior(ruta)));
    return {};
}

ResultadoArchivo<void> Reemplazar(ConexionSmb& conexion, const QString& local,
                                  const RutaRed& ruta) {
    QUIMO_TRY(const auto estado, Presente(conexion, ruta));
    if (estado) {
        QUIMO_TRY_VOID(ExigirLibre(conexion, ruta));
    } else {
        QUIMO_TRY_VOID(ExigirCarpeta(conexion, ruta.Carpeta()));
    }
    auto hecho = Escribir(conexion, local, Parcial(ruta));
    if (hecho) hecho = Colocar(conexion, ruta, estado.has_value());
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
                   QUIMO_TRY(ArchivoSmb entrada,
                             conexion.AbrirArchivo(ruta, O_RDONLY, Compartir::SoloLectura));
                   return EscribirCon(
                       local, [&](const Sumidero& sumidero) { return entrada.Recorrer(sumidero); });
               });
}

ResultadoArchivo<void> SmbShare::Llevar(const QString& local, const QString& remoto) {
    return Con(remoto, [&](ConexionSmb& conexion, const RutaRed& ruta) {
        return Reemplazar(conexion, local, ruta);
    });
}

}  // namespace quimo::dayclose
