#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QWidget>

#include "foundation/login.h"

namespace quimo::ui {

/// The login window over foundation::Login, which decides everything.
class frmLogin final : public QWidget {  // NOLINT(readability-identifier-naming): a fixed name
    Q_OBJECT
public:
    /// The login must outlive the window.
    explicit frmLogin(foundation::Login& login, QWidget* padre = nullptr);
    ~frmLogin() override;

signals:
    /// Somebody entered: login.Sesion() tells who.
    void Entro();
    /// The program is to end.
    void Cancelado();

protected:
    void showEvent(QShowEvent* evento) override;
    void closeEvent(QCloseEvent* evento) override;
    void keyPressEvent(QKeyEvent* evento) override;

private:
    QWidget* Formulario();
    void Aceptar();
    void MarcarFoco();

    foundation::Login& login_;
    QLineEdit* usuario_;
    QLineEdit* contrasena_;
    QLabel* rojo_;
    QLabel* amarillo_;
    bool entro_ = false;
};

}  // namespace quimo::ui
