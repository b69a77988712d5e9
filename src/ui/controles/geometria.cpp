#include "ui/controles/geometria.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

QSettings Ajustes() { return QSettings(u"QUIMO"_s, u"QUIMO"_s); }

QString Clave(const QString& nombre) { return u"Geometria/"_s + nombre; }

}  // namespace

void GuardarGeometria(const QWidget& ventana, const QString& nombre) {
    Ajustes().setValue(Clave(nombre), ventana.saveGeometry());
}

void RecuperarGeometria(QWidget& ventana, const QString& nombre) {
    ventana.restoreGeometry(Ajustes().value(Clave(nombre)).toByteArray());
}

}  // namespace quimo::ui
