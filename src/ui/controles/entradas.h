#pragma once

#include <optional>

#include <QComboBox>
#include <QDateEdit>
#include <QVector>

#include "foundation/cls_ado.h"

namespace quimo::ui {

/// A date picker: dd/mm/yyyy, with a calendar to choose from.
class SelectorFecha final : public QDateEdit {
public:
    explicit SelectorFecha(QWidget* padre = nullptr);
};

/// A list of texts with a key behind each.
class ListaClaves final : public QComboBox {
public:
    explicit ListaClaves(QWidget* padre = nullptr);

    /// Takes these entries instead of what it had; nothing is chosen.
    void Llenar(const QVector<foundation::EntradaCombo>& entradas);
    /// The chosen entry's key, or nothing.
    std::optional<qint32> Dato() const;
    /// Chooses by key; an unknown one leaves nothing chosen.
    void Elegir(qint32 dato);
};

}  // namespace quimo::ui
