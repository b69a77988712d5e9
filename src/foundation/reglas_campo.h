#pragma once

#include <optional>

#include <QString>

namespace quimo::foundation {

/// What may be written into a text box, read once from the words in its tag: "Numerico",
/// "Mayusculas", "NoVacio", "NoSignos", "IP", anywhere and in any case, so that
/// "NumericoNoSignosNoVacio" says three things.
class ReglasCampo {
public:
    explicit ReglasCampo(const QString& etiqueta);

    /// The character that a written one becomes, or nothing when it is discarded.
    std::optional<QChar> Filtrar(QChar letra) const;
    /// All characters of a text filtered one by one, as when they are typed.
    QString Filtrar(const QString& texto) const;

    /// What leaving the box with this text calls for.
    struct Salida {
        QString mensaje;       ///< to be shown with the exclamation icon; empty when there is none
        bool retener = false;  ///< the focus stays in the box
    };
    Salida AlSalir(const QString& texto) const;

    bool Numerico() const { return numerico_; }
    bool NoVacio() const { return no_vacio_; }
    bool Ninguna() const { return !numerico_ && !mayusculas_ && !no_vacio_ && !no_signos_ && !ip_; }

private:
    bool numerico_;
    bool mayusculas_;
    bool no_vacio_;
    bool no_signos_;
    bool ip_;
};

/// Four groups up to 255 between points. An empty group counts as 0, but for the last.
bool EsDireccionIp(const QString& texto);

}  // namespace quimo::foundation
