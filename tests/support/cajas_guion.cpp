#include "support/cajas_guion.h"

#include <QApplication>
#include <QKeyEvent>
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
        // Ours have names; the one that shows the details is Qt's.
        const QString nombre = boton->accessibleName();
        if (!nombre.isEmpty() && (respuesta.isEmpty() || nombre == respuesta))
            return boton->click();
    }
}

void Teclear(QWidget& control, const QString& texto) {
    for (const QChar letra : texto) {
        QKeyEvent baja(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(letra));
        QKeyEvent sube(QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier, QString(letra));
        QCoreApplication::sendEvent(&control, &baja);
        QCoreApplication::sendEvent(&control, &sube);
    }
}

bool Esperar(const std::function<bool()>& condicion) {
    return QTest::qWaitFor(condicion, kPlazoMs);
}

}  // namespace quimo::pruebas
