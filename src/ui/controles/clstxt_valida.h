#pragma once

#include <QLineEdit>
#include <QValidator>

#include "foundation/dialogos.h"
#include "foundation/reglas_campo.h"

namespace quimo::ui {

/// The property of a text box that holds the words of its rules.
inline constexpr char kEtiqueta[] = "Tag";

/// Watches one text box by the words of its tag: what is typed, pasted or dropped is filtered
/// character by character, and leaving the box is checked. What the program itself writes into the
/// box is not touched. A box that cannot be written into is left in peace.
// NOLINTNEXTLINE(readability-identifier-naming): a fixed name
class Clstxt_valida final : public QValidator {
    Q_OBJECT
public:
    /// Attaches itself to the box, which owns it from then on. The dialogs must outlive the box.
    static Clstxt_valida* Atar(QLineEdit& caja, foundation::Dialogos& dialogos);
    /// Attaches one to every text box inside that has a tag.
    static void AtarTodas(QWidget& ventana, foundation::Dialogos& dialogos);

    State validate(QString& texto, int& cursor) const override;

protected:
    bool eventFilter(QObject* objeto, QEvent* evento) override;

private:
    Clstxt_valida(QLineEdit& caja, foundation::Dialogos& dialogos);
    void ComprobarSalida();

    QLineEdit& caja_;
    foundation::Dialogos& dialogos_;
    foundation::ReglasCampo reglas_;
    QString anterior_;
};

}  // namespace quimo::ui
