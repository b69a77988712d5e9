#include "ui/principal/area_mdi.h"

#include <algorithm>

#include <QImageReader>
#include <QMdiSubWindow>
#include <QPainter>

#include "ui/controles/iconos.h"

namespace quimo::ui {

namespace {

constexpr int kEmblema = 160;
constexpr qreal kOpacidadEmblema = 0.18;

}  // namespace

QVector<QRect> RectangulosDeMosaico(const QRect& area, qsizetype ventanas, Mosaico como) {
    QVector<QRect> rectangulos;
    const auto cuantas = static_cast<int>(ventanas);
    for (int i = 0; i < cuantas; ++i) {
        if (como == Mosaico::Horizontal) {
            const int arriba = area.height() * i / cuantas;
            const int abajo = area.height() * (i + 1) / cuantas;
            rectangulos << QRect(area.left(), area.top() + arriba, area.width(), abajo - arriba);
        } else {
            const int izquierda = area.width() * i / cuantas;
            const int derecha = area.width() * (i + 1) / cuantas;
            rectangulos << QRect(area.left() + izquierda, area.top(), derecha - izquierda,
                                 area.height());
        }
    }
    return rectangulos;
}

AreaMdi::AreaMdi(QWidget* padre) : QMdiArea(padre) {
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    PonerFondo();
}

bool AreaMdi::PonerTapiz(const QString& archivo, QString& motivo) {
    QImage imagen;
    if (!archivo.isEmpty()) {
        QImageReader lector(archivo);
        lector.setAutoTransform(true);
        lector.setDecideFormatFromContent(true);
        imagen = lector.read();
        if (imagen.isNull()) {
            motivo = lector.errorString();
            return false;
        }
    }
    tapiz_ = imagen;
    a_medida_ = QPixmap();
    viewport()->update();
    return true;
}

void AreaMdi::PonerMosaico(Mosaico como) {
    QList<QMdiSubWindow*> abiertas = subWindowList(QMdiArea::StackingOrder);
    abiertas.erase(std::remove_if(abiertas.begin(), abiertas.end(),
                                  [](const QMdiSubWindow* ventana) {
                                      return !ventana->isVisible() || ventana->isMinimized();
                                  }),
                   abiertas.end());
    std::reverse(abiertas.begin(), abiertas.end());
    const QVector<QRect> lugares = RectangulosDeMosaico(viewport()->rect(), abiertas.size(), como);
    for (qsizetype i = 0; i < abiertas.size(); ++i) {
        if (abiertas[i]->isMaximized()) abiertas[i]->showNormal();
        abiertas[i]->setGeometry(lugares[i]);
    }
}

void AreaMdi::ArreglarIconos() {
    const QRect area = viewport()->rect();
    int izquierda = 0;
    int abajo = area.bottom() + 1;
    for (QMdiSubWindow* const ventana : subWindowList(QMdiArea::CreationOrder)) {
        if (!ventana->isMinimized()) continue;
        if (izquierda > 0 && izquierda + ventana->width() > area.width()) {
            izquierda = 0;
            abajo -= ventana->height();
        }
        ventana->move(izquierda, std::max(0, abajo - ventana->height()));
        izquierda += ventana->width();
    }
}

void AreaMdi::PonerFondo() {
    const QColor ventana = palette().color(QPalette::Window);
    setBackground(ventana.lightness() > 127 ? ventana.darker(108) : ventana.darker(125));
}

void AreaMdi::changeEvent(QEvent* evento) {
    QMdiArea::changeEvent(evento);
    if (evento->type() == QEvent::PaletteChange) PonerFondo();
}

void AreaMdi::paintEvent(QPaintEvent* evento) {
    QMdiArea::paintEvent(evento);
    QPainter pintor(viewport());
    const qreal densidad = viewport()->devicePixelRatioF();
    if (tapiz_.isNull()) {
        const QRect centro(viewport()->rect().center() - QPoint(kEmblema, kEmblema) / 2,
                           QSize(kEmblema, kEmblema));
        pintor.setOpacity(kOpacidadEmblema);
        pintor.drawPixmap(centro, Emblema(kEmblema, densidad));
        return;
    }
    const QSize medida = viewport()->size() * densidad;
    if (a_medida_.size() != medida) {
        const QImage llena =
            tapiz_.scaled(medida, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
        const QPoint sobra((llena.width() - medida.width()) / 2,
                           (llena.height() - medida.height()) / 2);
        a_medida_ = QPixmap::fromImage(llena.copy(QRect(sobra, medida)));
        a_medida_.setDevicePixelRatio(densidad);
    }
    pintor.drawPixmap(0, 0, a_medida_);
}

}  // namespace quimo::ui
