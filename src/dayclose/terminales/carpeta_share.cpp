#include "dayclose/terminales/carpeta_share.h"

#include <QDir>
#include <QFileInfo>

#include "jet/base_datos.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

/// The entry of a folder that has this name, exactly or but for its case; an empty text if none.
QString Entrada(const QString& carpeta, const QString& nombre) {
    const QString exacta = carpeta + u'/' + nombre;
    if (QFileInfo::exists(exacta)) return exacta;
    const QStringList nombres =
        QDir(carpeta).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString& otro : nombres) {
        if (otro.compare(nombre, Qt::CaseInsensitive) == 0) return carpeta + u'/' + otro;
    }
    return {};
}

bool LdbEnUso(const QString& archivo) {
    return jet::MirarLdb(archivo.toStdString()) == jet::EstadoLdb::EnUso;
}

bool EnUso(const QString& archivo) { return EstaBloqueado(archivo) || LdbEnUso(archivo); }

}  // namespace

ResultadoArchivo<CarpetaShare::Lugar> CarpetaShare::Ubicar(const QString& remoto) const {
    QString resto = remoto;
    resto.replace(u'\\', u'/');
    const QStringList partes = resto.split(u'/', Qt::SkipEmptyParts);
    const bool sospechosa = partes.contains(u".."_s) || partes.contains(u"."_s);
    if (!resto.startsWith(u"//"_s) || partes.size() < 3 || sospechosa) {
        return FalloDeNumero(FalloArchivo::kNombreIncorrecto, remoto);
    }
    Lugar lugar{raiz_, {}, true};
    for (qsizetype i = 0; i + 1 < partes.size(); ++i) {
        const QString entrada =
            lugar.carpeta_existe ? Entrada(lugar.carpeta, partes[i]) : QString();
        if (!entrada.isEmpty() && QFileInfo(entrada).isDir()) {
            lugar.carpeta = entrada;
            continue;
        }
        if (i == 0) return FalloDeNumero(FalloArchivo::kNombreIncorrecto, remoto);
        if (i == 1) return FalloDeNumero(FalloArchivo::kRutaNoEncontrada, remoto);
        lugar.carpeta_existe = false;
    }
    const QString entrada =
        lugar.carpeta_existe ? Entrada(lugar.carpeta, partes.last()) : QString();
    lugar.archivo = entrada.isEmpty() ? lugar.carpeta + u'/' + partes.last() : entrada;
    return lugar;
}

ResultadoArchivo<bool> CarpetaShare::Existe(const QString& remoto) {
    QUIMO_TRY(const Lugar lugar, Ubicar(remoto));
    return lugar.carpeta_existe && QFileInfo(lugar.archivo).isFile();
}

ResultadoArchivo<Copiado> CarpetaShare::Traer(const QString& remoto, const QString& local) {
    QUIMO_TRY(const Lugar lugar, Ubicar(remoto));
    if (!lugar.carpeta_existe) return FalloDeNumero(FalloArchivo::kRutaNoEncontrada, remoto);
    if (EnUso(lugar.archivo)) return FalloDeNumero(FalloArchivo::kPermisoDenegado, remoto);
    return CopiarEntero(lugar.archivo, local, Candados::Respetar);
}

ResultadoArchivo<void> CarpetaShare::Llevar(const QString& local, const QString& remoto,
                                            const QString& esperado) {
    QUIMO_TRY(const Lugar lugar, Ubicar(remoto));
    if (!lugar.carpeta_existe) return FalloDeNumero(FalloArchivo::kRutaNoEncontrada, remoto);
    if (EnUso(lugar.archivo)) return FalloDeNumero(FalloArchivo::kPermisoDenegado, remoto);
    QUIMO_TRY(ArchivoNuevo nuevo, ArchivoNuevo::CopiaDe(local, lugar.archivo, Disco::Terminal));
    if (antes_de_reemplazar) antes_de_reemplazar();
    if (esperado.isEmpty()) return nuevo.ColocarSiFalta();
    return nuevo.ColocarSi(esperado, [&]() -> ResultadoArchivo<void> {
        if (!LdbEnUso(lugar.archivo)) return {};
        return FalloDeNumero(FalloArchivo::kPermisoDenegado, remoto);
    });
}

}  // namespace quimo::dayclose
