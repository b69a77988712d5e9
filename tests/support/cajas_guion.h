#pragma once

#include <functional>

#include <QObject>
#include <QStringList>
#include <QTimer>

namespace quimo::pruebas {

/// Someone in front of real message boxes: each one that opens is written down as "[icon]
/// title|text" and its first button is pressed.
class CajasGuion final : public QObject {
public:
    CajasGuion();
    /// Those that were shown since the last call.
    QStringList Tomar() { return std::exchange(mostradas_, {}); }
    /// The next box gets this button (by its accessible name) instead.
    void Responder(const QString& boton) { respuesta_ = boton; }
    /// Any other modal window is left to this.
    std::function<void(QWidget&)> ante_otra;

private:
    void Mirar();

    QTimer reloj_;
    QStringList mostradas_;
    QString respuesta_;
};

/// Types a text of any characters into a control.
void Teclear(QWidget& control, const QString& texto);

/// Lets events run until the condition holds; false when it does not within some seconds.
bool Esperar(const std::function<bool()>& condicion);

}  // namespace quimo::pruebas
