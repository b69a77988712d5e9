#include "ui/controles/ajustes.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

/// Never changed: users keep what they have chosen.
QString Clave(Ajuste que, const QString& de) {
    switch (que) {
        case Ajuste::Tapiz:
            return u"TAPIZ/TAPIZ"_s;
        case Ajuste::Ventana:
            return u"VENTANA/"_s + de;
        case Ajuste::Dialogo:
            return u"Geometria/"_s + de;
        case Ajuste::Rejilla:
            return u"REJILLA/"_s + de;
    }
    return de;
}

}  // namespace

QVariant Ajustes::Leer(Ajuste que, const QString& de) const {
    return ajustes_.value(Clave(que, de));
}

void Ajustes::Guardar(Ajuste que, const QString& de, const QVariant& valor) {
    ajustes_.setValue(Clave(que, de), valor);
}

bool Ajustes::Escribir() {
    ajustes_.sync();
    return ajustes_.status() == QSettings::NoError;
}

}  // namespace quimo::ui
