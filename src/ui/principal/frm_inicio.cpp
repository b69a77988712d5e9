#include "ui/principal/frm_inicio.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>

#include "ui/controles/aspecto.h"
#include "ui/controles/iconos.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

// Long enough to be read, short enough for the login to be there within a second.
constexpr int kPlazoMs = 450;
constexpr int kAncho = 460;
constexpr int kAlto = 240;
constexpr int kMargen = 36;
constexpr int kEmblema = 96;
constexpr QRgb kFondo = 0xFF2B2523;
constexpr QRgb kAcento = 0xFFB5482A;
constexpr QRgb kTenue = 0xFFCFC4BA;

}  // namespace

frmInicio::frmInicio(QWidget* padre)
    : QWidget(padre, Qt::SplashScreen | Qt::FramelessWindowHint), reloj_(new QTimer(this)) {
    Nombrar(this, u"frmInicio"_s, u"QUIMO, programa servidor"_s);
    setWindowTitle(u"QUIMO"_s);
    setWindowIcon(IconoDelPrograma());
    setFixedSize(kAncho, kAlto);
    setFocusPolicy(Qt::StrongFocus);
    reloj_->setObjectName(u"TmrInicio"_s);
    reloj_->setSingleShot(true);
    reloj_->setInterval(kPlazoMs);
    connect(reloj_, &QTimer::timeout, this, &frmInicio::Terminar);
}

void frmInicio::Terminar() {
    if (terminado_) return;
    terminado_ = true;
    reloj_->stop();
    close();
    emit Terminado();
}

void frmInicio::showEvent(QShowEvent* evento) {
    QWidget::showEvent(evento);
    reloj_->start();
}

void frmInicio::mousePressEvent(QMouseEvent* /*evento*/) { Terminar(); }
void frmInicio::keyPressEvent(QKeyEvent* /*evento*/) { Terminar(); }

void frmInicio::paintEvent(QPaintEvent* /*evento*/) {
    QPainter pintor(this);
    pintor.fillRect(rect(), QColor::fromRgba(kFondo));
    pintor.fillRect(QRect(0, height() - 6, width(), 6), QColor::fromRgba(kAcento));
    pintor.drawPixmap(kMargen, (height() - kEmblema) / 2, Emblema(kEmblema, devicePixelRatioF()));
    const int izquierda = kMargen + kEmblema + 28;
    QFont letra = font();
    letra.setPixelSize(46);
    letra.setBold(true);
    pintor.setFont(letra);
    pintor.setPen(Qt::white);
    const QRect titulo(izquierda, 72, width() - izquierda - 12, 56);
    pintor.drawText(titulo, Qt::AlignLeft | Qt::AlignVCenter, u"QUIMO"_s);
    letra.setPixelSize(16);
    letra.setBold(false);
    pintor.setFont(letra);
    pintor.setPen(QColor::fromRgba(kTenue));
    pintor.drawText(titulo.translated(2, 50).adjusted(0, 14, 0, -14),
                    Qt::AlignLeft | Qt::AlignVCenter, u"Servidor del restaurante"_s);
    letra.setPixelSize(12);
    pintor.setFont(letra);
    pintor.drawText(rect().adjusted(0, 0, -16, -16), Qt::AlignRight | Qt::AlignBottom,
                    u"Versión "_s + QCoreApplication::applicationVersion());
}

}  // namespace quimo::ui
