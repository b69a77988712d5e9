#pragma once

#include <functional>

#include "foundation/dialogos.h"

namespace quimo::ui {

/// The user behind windows: modal message boxes, the busy pointer, the event loop. Texts are shown
/// as they are, never as markup; of a very long one the beginning, the whole under "details".
class DialogosQt final : public foundation::Dialogos {
public:
    using Dialogos::Avisar;
    using Dialogos::Preguntar;

    void Avisar(const QString& texto, foundation::Icono icono, const QString& titulo) override;
    foundation::Respuesta Preguntar(const QString& texto, foundation::Botones botones,
                                    foundation::Icono icono, const QString& titulo) override;
    std::optional<QString> PedirTexto(const QString& texto, const QString& titulo) override;
    void Progreso(const QString& texto) override;
    void Ocupado(bool ocupado) override;
    void ProcesarEventos() override;

    /// Where progress is shown; nowhere without one.
    void MostrarProgresoEn(std::function<void(const QString&)> donde) {
        progreso_ = std::move(donde);
    }

private:
    std::function<void(const QString&)> progreso_;
};

}  // namespace quimo::ui
