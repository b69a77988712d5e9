#include "dayclose/terminales/archivo_ventas.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

constexpr int kVersionesMax = 100000;

QString Carpeta(const QString& raiz, const QString& fecha, const QString& terminal) {
    return raiz + u'/' + fecha + u'/' + terminal;
}

QString NombreDeVersion(int numero) {
    return u"Quimo_Terminal-"_s + QString::number(numero) + u".mdb"_s;
}

}  // namespace

ResultadoArchivo<QString> ArchivoVentas::Buscar(const QString& fecha, const QString& terminal,
                                                const QString& sha256) const {
    const QDir carpeta(Carpeta(raiz_, fecha, terminal));
    for (const QString& nombre : carpeta.entryList({u"Quimo_Terminal-*.mdb"_s}, QDir::Files)) {
        const QString ruta = carpeta.filePath(nombre);
        QFile resumen(ruta + u".sha256"_s);
        if (!resumen.open(QIODevice::ReadOnly)) continue;
        if (QString::fromLatin1(resumen.read(64)) != sha256) continue;
        // The digest beside it says what the file was; what counts is what it is now.
        QUIMO_TRY(const QString real, Sha256DeArchivo(ruta));
        if (real == sha256) return ruta;
    }
    return QString();
}

ResultadoArchivo<Archivado> ArchivoVentas::Recibir(TerminalShare& share, const QString& remoto,
                                                   const QString& fecha,
                                                   const QString& terminal) const {
    return Guardar(fecha, terminal,
                   [&](const QString& destino) { return share.Traer(remoto, destino); });
}

ResultadoArchivo<Archivado> ArchivoVentas::Agregar(const QString& local, const QString& fecha,
                                                   const QString& terminal) const {
    return Guardar(fecha, terminal,
                   [&](const QString& destino) { return CopiarEntero(local, destino); });
}

ResultadoArchivo<Archivado> ArchivoVentas::Guardar(const QString& fecha, const QString& terminal,
                                                   const Entrega& traer) const {
    const QString carpeta = Carpeta(raiz_, fecha, terminal);
    for (const QString& una : {raiz_, raiz_ + u'/' + fecha, carpeta}) {
        if (carpetas_.contains(una)) continue;
        QUIMO_TRY_VOID(CrearCarpeta(una));
        carpetas_.insert(una);
    }
    // What is not finished lies in one place, where the next run writes over it.
    const QString recibido = raiz_ + u"/recibido.tmp"_s;
    QUIMO_TRY(const Copiado copiado, traer(recibido));
    QUIMO_TRY(const QString conocido, Buscar(fecha, terminal, copiado.sha256));
    if (!conocido.isEmpty()) {
        QFile::remove(recibido);
        // Who put it there may have been ended before its name was durable.
        QUIMO_TRY_VOID(AsentarNombre(conocido));
        return Archivado{conocido, copiado.sha256, false};
    }
    for (int numero = 1; numero < kVersionesMax; ++numero) {
        const QString nombre = NombreDeVersion(numero);
        const QString ruta = carpeta + u'/' + nombre;
        if (QFile::exists(ruta)) continue;
        // The digest first: a data file without one would be a copy that nobody can check.
        const QString resumen = raiz_ + u"/resumen.tmp"_s;
        QUIMO_TRY_VOID(
            EscribirEntero(resumen, (copiado.sha256 + u"  "_s + nombre + u'\n').toLatin1()));
        QUIMO_TRY_VOID(Renombrar(resumen, ruta + u".sha256"_s));
        QUIMO_TRY_VOID(Renombrar(recibido, ruta));
        return Archivado{ruta, copiado.sha256, true};
    }
    return FalloDeNumero(FalloArchivo::kErrorDispositivo, carpeta);
}

}  // namespace quimo::dayclose
