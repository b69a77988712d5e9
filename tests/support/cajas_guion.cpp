#include "support/cajas_guion.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quimo::pruebas {

namespace {

constexpr int kPasoMs = 5;
constexpr int kPlazoMs = 5000;

QString LetraDe(QMessageBox::Icon icono) {
    switch (icono) {
        case QMessageBox::NoIcon:
            return u"-"_s;
        case QMessageBox::Information:
            return u"i"_s;
        case QMessageBox::Warning:
            return u"!"_s;
        case QMessageBox::Critical:
            return u"x"_s;
        case QMessageBox::Question:
            return u"?"_s;
    }
    return {};
}

}  // namespace

CajasGuion::CajasGuion() {
    connect(&reloj_, &QTimer::timeout, this, &CajasGuion::Mirar);
    reloj_.start(kPasoMs);
}

void CajasGuion::Mirar() {
    QWidget* const modal = QApplication::activeModalWidget();
    if (modal == nullptr) return;
    auto* const caja = qobject_cast<QMessageBox*>(modal);
    if (caja == nullptr) {
        if (ante_otra) ante_otra(*modal);
        return;
    }
    mostradas_ << u"["_s + LetraDe(caja->icon()) + u"] "_s + caja->windowTitle() + u'|' +
                      caja->text();
    const QString respuesta = std::exchange(respuesta_, {});
    for (QAbstractButton* const boton : caja->buttons()) {
        if (boton->accessibleName() == respuesta) return boton->click();
    }
    caja->buttons().first()->click();
}

bool Esperar(const std::function<bool()>& condicion) {
    return QTest::qWaitFor(condicion, kPlazoMs);
}

}  // namespace quimo::pruebas
