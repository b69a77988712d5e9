#pragma once

#include <QTimer>
#include <QWidget>

namespace quimo::ui {

/// The splash window. It closes itself when its timer fires, on a click and on any key.
class frmInicio final : public QWidget {  // NOLINT(readability-identifier-naming): a fixed name
    Q_OBJECT
public:
    explicit frmInicio(QWidget* padre = nullptr);

signals:
    /// It has closed itself: the login's turn. Sent once.
    void Terminado();

protected:
    void showEvent(QShowEvent* evento) override;
    void mousePressEvent(QMouseEvent* evento) override;
    void keyPressEvent(QKeyEvent* evento) override;
    void paintEvent(QPaintEvent* evento) override;

private:
    void Terminar();

    QTimer* reloj_;
    bool terminado_ = false;
};

}  // namespace quimo::ui
