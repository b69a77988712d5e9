#pragma once

#include <cstdint>

#include <QSettings>
#include <QVariant>

namespace quimo::ui {

/// What is remembered for each user of the machine.
enum class Ajuste : std::uint8_t {
    Tapiz,    ///< the file of the wallpaper
    Ventana,  ///< of the main window its geometry, of a child the size of its frame
    Dialogo,  ///< the geometry of a dialog
    Rejilla,  ///< the column widths of an editor's grid
};

/// The program's settings. Only here is known where they are kept and how their keys are built.
class Ajustes {
public:
    /// `de` names the window, the dialog, or the grid after its editor; the wallpaper has no name.
    QVariant Leer(Ajuste que, const QString& de = {}) const;
    void Guardar(Ajuste que, const QString& de, const QVariant& valor);
    /// Writes out what was stored; false when that is not possible.
    bool Escribir();
    /// The file, for people.
    QString Archivo() const { return ajustes_.fileName(); }

private:
    QSettings ajustes_{QStringLiteral("QUIMO"), QStringLiteral("QUIMO")};
};

}  // namespace quimo::ui
