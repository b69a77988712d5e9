#include "dayclose/cierre/lectura_terminal.h"

#include <QFile>

#include "jet/reparacion.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

namespace {

ResultadoCierre<ValoresCifras> Contar(const QString& ruta, const QString& terminal) {
    QUIMO_TRY(const BaseTerminal base, BaseTerminal::Abrir(ruta, terminal));
    QUIMO_TRY_VOID(base.Verificar());
    return base.Contar();
}

/// Puts a mended copy in the damaged file's place, if every row can be read and the user wants it.
/// False: the failure stands.
ResultadoCierre<bool> Reparar(foundation::ClsAdo& ado, const ArchivoVentas& archivo,
                              const QString& ruta, const QString& fecha, const QString& terminal,
                              const QString& dano) {
    const ArchivoTemporal copia(ruta + u".reparada"_s);
    const auto informe = jet::Reparar(ruta.toStdString(), copia.Ruta().toStdString());
    if (!informe || !informe->Completa()) return false;
    const QString pregunta =
        u"%1\n\nSe leyeron completos %2 renglones de %3 tablas, y con ellos se hizo una copia "
        u"sana. "
        u"El archivo dañado queda guardado. ¿Desea usar la copia?"_s.arg(dano)
            .arg(informe->Renglones())
            .arg(informe->tablas.size());
    if (ado.Dialogo().Preguntar(pregunta, Botones::SiNo, Icono::Exclamacion) != Respuesta::Si) {
        return false;
    }
    QUIMO_TRY(const Archivado guardada, archivo.Agregar(copia.Ruta(), fecha, terminal));
    QUIMO_TRY(const Copiado puesta, CopiarEntero(guardada.ruta, ruta));
    static_cast<void>(puesta);
    return true;
}

}  // namespace

ResultadoCierre<ArchivoContado> ContarArchivo(foundation::ClsAdo& ado, const ArchivoVentas& archivo,
                                              const QString& ruta, const QString& fecha,
                                              const QString& terminal, const QString& sha256) {
    ArchivoContado contado;
    contado.recibido = sha256;
    if (sha256.isEmpty()) {
        QUIMO_TRY(contado.recibido, Sha256DeArchivo(ruta));
    }
    auto cifras = Contar(ruta, terminal);
    if (!cifras && cifras.error().numero == kBaseDanada) {
        QUIMO_TRY(contado.reparada,
                  Reparar(ado, archivo, ruta, fecha, terminal, cifras.error().descripcion));
        if (contado.reparada) cifras = Contar(ruta, terminal);
    }
    if (!cifras) return DeTerminal(std::move(cifras).error(), terminal);
    contado.cifras = *cifras;
    contado.sha256 = contado.recibido;
    if (contado.reparada) {
        QUIMO_TRY(contado.sha256, Sha256DeArchivo(ruta));
    }
    return contado;
}

ResultadoCierre<Traida> TraerTerminal(ContextoCierre& contexto, const QString& fecha,
                                      const QString& terminal) {
    ManejadorFallas& fallas = contexto.fallas;
    fallas.Empezar();
    const auto sin_comunicacion = [] { return Traida{Apartada::SinComunicacion, {}, {}}; };
    QUIMO_TRY(const bool con_carpeta, fallas.Ejecutar(terminal, [&]() -> ResultadoArchivo<void> {
        if (!EsNombreDeEquipo(terminal)) {
            return FalloDeNumero(FalloArchivo::kNombreIncorrecto, terminal);
        }
        return CrearCarpeta(contexto.CarpetaLocal(terminal));
    }));
    if (!con_carpeta) return sin_comunicacion();
    bool existe = false;
    QUIMO_TRY(const bool mirado, fallas.Ejecutar(terminal, [&]() -> ResultadoArchivo<void> {
        QUIMO_TRY(existe, contexto.share.Existe(contexto.Remoto(terminal)));
        return {};
    }));
    if (!mirado) return sin_comunicacion();
    if (!existe) return Traida{Apartada::SinArchivo, {}, {}};
    QString sha256;
    QString copia;
    QUIMO_TRY(const bool traido, fallas.Ejecutar(terminal, [&]() -> ResultadoArchivo<void> {
        QUIMO_TRY(
            const Archivado archivado,
            contexto.archivo.Recibir(contexto.share, contexto.Remoto(terminal), fecha, terminal));
        sha256 = archivado.sha256;
        QUIMO_TRY(const Copiado copiado,
                  CopiarEntero(archivado.ruta, contexto.CopiaLocal(terminal)));
        copia = copiado.sha256;
        return {};
    }));
    if (fallas.Omitida()) return Traida{Apartada::SinComunicacion, sha256, {}};
    if (!traido && !QFile::exists(contexto.CopiaLocal(terminal))) {
        return Traida{fallas.Abierta() ? Apartada::Abierta : Apartada::SinComunicacion, {}, {}};
    }
    return Traida{Apartada::No, sha256, copia};
}

}  // namespace quimo::dayclose
