#include "ui/controles/iconos.h"

#include <array>

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include "base/check.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

constexpr int kLado = 24;
constexpr std::array<int, 4> kDensidades = {1, 2, 3, 4};
constexpr qreal kApagado = 0.35;

QByteArray Dibujo(const QString& nombre) {
    QFile archivo(u":/iconos/"_s + nombre + u".svg"_s);
    QUIMO_CHECK(archivo.open(QIODevice::ReadOnly));
    return archivo.readAll();
}

QPixmap Pintar(const QByteArray& dibujo, int pixeles, qreal opacidad) {
    QSvgRenderer svg(dibujo);
    QPixmap imagen(pixeles, pixeles);
    imagen.fill(Qt::transparent);
    QPainter pintor(&imagen);
    pintor.setOpacity(opacidad);
    svg.render(&pintor, QRectF(0, 0, pixeles, pixeles));
    return imagen;
}

}  // namespace

QIcon Icono(const QString& nombre, const QPalette& paleta) {
    QByteArray dibujo = Dibujo(nombre);
    dibujo.replace("#000000",
                   paleta.color(QPalette::Active, QPalette::ButtonText).name().toLatin1());
    QIcon icono;
    for (const int densidad : kDensidades) {
        icono.addPixmap(Pintar(dibujo, kLado * densidad, 1.0), QIcon::Normal);
        icono.addPixmap(Pintar(dibujo, kLado * densidad, kApagado), QIcon::Disabled);
    }
    return icono;
}

QPixmap Emblema(int lado, qreal densidad) {
    QPixmap imagen = Pintar(Dibujo(u"quimo"_s), qRound(lado * densidad), 1.0);
    imagen.setDevicePixelRatio(densidad);
    return imagen;
}

QIcon IconoDelPrograma() {
    QIcon icono;
    for (const int lado : {16, 32, 48, 64, 128})
        icono.addPixmap(Emblema(lado, 1.0));
    return icono;
}

}  // namespace quimo::ui
