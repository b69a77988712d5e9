#pragma once

#include <QHash>
#include <QString>

#include "base/result.h"

namespace quimo::dayclose {

/// How one computer of the network is reached. No password is ever shown or logged.
struct AccesoRed {
    QString usuario;    ///< empty: as guest
    QString clave;      ///< only with a user
    QString dominio;    ///< domain or workgroup; empty: the system's
    QString direccion;  ///< address or other name; empty: the computer's name
    quint16 puerto = 445;
    int plazo_s = 10;  ///< the longest wait for one answer of the computer
};

/// Who logs in to the terminals' shares, read from a text file:
///
///     usuario = quimo
///     clave = "with quotes where blanks at its ends count"
///     dominio = RESTAURANTE
///     plazo = 10
///     [CAJA1]
///     direccion = 192.168.1.11
///     puerto = 4455
///
/// What stands before the first section is for every computer; a section, for the one that it
/// names, without regard to case. A section with its own `usuario` does not take the general
/// `clave`. Lines that begin with '#' or ';' are comments.
class ConfiguracionRed {
public:
    /// Everybody is reached by name, as guest.
    ConfiguracionRed() = default;

    /// Reads a file, which must belong to the user who runs the program and be closed to all
    /// others. The error is the Spanish text for the user; it never repeats a value of the file.
    static base::Result<ConfiguracionRed> Leer(const QString& ruta);
    /// The file that QUIMO_RED_ARCHIVO names, else "red.conf" in the program's folder. Without that
    /// one everybody is reached as guest; a file that is named must be there.
    static base::Result<ConfiguracionRed> DelPrograma(const QString& carpeta);

    AccesoRed Para(const QString& equipo) const;

private:
    using Valores = QHash<QString, QString>;
    QHash<QString, Valores> secciones_;  ///< by name in lower case; "" is for everybody
};

}  // namespace quimo::dayclose
