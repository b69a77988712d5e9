#pragma once

#include <optional>

#include <QImage>
#include <QMdiArea>
#include <QPixmap>
#include <QVector>

namespace quimo::ui {

enum class Mosaico { Horizontal, Vertical };

/// The rectangles of so many windows that fill an area: one under the other or side by side.
QVector<QRect> RectangulosDeMosaico(const QRect& area, qsizetype ventanas, Mosaico como);

/// Where the child windows live, with a picture behind them.
class AreaMdi final : public QMdiArea {
public:
    explicit AreaMdi(QWidget* padre = nullptr);

    /// Shows the picture of a file, which fills the area; false (with `motivo`) when it cannot be
    /// read. An empty path takes the picture away.
    bool PonerTapiz(const QString& archivo, QString& motivo);
    bool HayTapiz() const { return !tapiz_.isNull(); }

    /// Fills the area with the open windows.
    void PonerMosaico(Mosaico como);
    /// Lines the minimised windows up along the lower edge.
    void ArreglarIconos();

protected:
    void paintEvent(QPaintEvent* evento) override;
    void changeEvent(QEvent* evento) override;

private:
    void PonerFondo();

    QImage tapiz_;
    QPixmap a_medida_;
};

}  // namespace quimo::ui
