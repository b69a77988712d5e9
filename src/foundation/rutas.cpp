#include "foundation/rutas.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace quimo::foundation {

QString CarpetaInstalacion() {
    const QString fijada = qEnvironmentVariable("QUIMO_DIR");
    if (!fijada.isEmpty()) return fijada;
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/quimo"_s;
}

QString RutaFija(const QString& raiz, const QString& nombre_fijo) {
    QString nombre = nombre_fijo;
    if (nombre.size() >= 2 && nombre[1] == u':') nombre.remove(0, 2);
    nombre.replace(u'\\', u'/');
    return QDir::cleanPath(raiz + u'/' + nombre) + (nombre.endsWith(u'/') ? u"/"_s : QString());
}

}  // namespace quimo::foundation
