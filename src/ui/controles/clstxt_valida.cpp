#include "ui/controles/clstxt_valida.h"

#include <algorithm>

#include <QFocusEvent>

#include "data/valores_escritos.h"

namespace quimo::ui {

namespace {

bool SeVaPorSuPie(Qt::FocusReason razon) {
    return razon == Qt::MouseFocusReason || razon == Qt::TabFocusReason ||
           razon == Qt::BacktabFocusReason || razon == Qt::ShortcutFocusReason;
}

}  // namespace

Clstxt_valida::Clstxt_valida(QLineEdit& caja, foundation::Dialogos& dialogos)
    : QValidator(&caja),
      caja_(caja),
      dialogos_(dialogos),
      reglas_(caja.property(kEtiqueta).toString()),
      anterior_(caja.text()) {}

Clstxt_valida* Clstxt_valida::Atar(QLineEdit& caja, foundation::Dialogos& dialogos) {
    auto* const valida = new Clstxt_valida(caja, dialogos);
    caja.setValidator(valida);
    caja.installEventFilter(valida);
    connect(&caja, &QLineEdit::textChanged, valida,
            [valida](const QString& texto) { valida->anterior_ = texto; });
    return valida;
}

void Clstxt_valida::AtarTodas(QWidget& ventana, foundation::Dialogos& dialogos) {
    for (QLineEdit* const caja : ventana.findChildren<QLineEdit*>()) {
        if (!caja->property(kEtiqueta).toString().isEmpty()) Atar(*caja, dialogos);
    }
}

QValidator::State Clstxt_valida::validate(QString& texto, int& cursor) const {
    // setText() clears the modified flag before it asks: that is the program writing, not the user.
    if (!caja_.isModified()) return Acceptable;
    const qsizetype comun = std::min(anterior_.size(), texto.size());
    qsizetype inicio = 0;
    while (inicio < comun && anterior_[inicio] == texto[inicio])
        ++inicio;
    qsizetype cola = 0;
    while (cola < comun - inicio &&
           anterior_[anterior_.size() - 1 - cola] == texto[texto.size() - 1 - cola]) {
        ++cola;
    }
    const qsizetype largo = texto.size() - inicio - cola;
    // A pasted amount keeps its value: without its comma 12,50 would be 1250.
    const auto numero =
        largo > 1 && reglas_.Numerico() ? data::NumeroEscrito(texto) : std::optional<QString>();
    if (numero && reglas_.Filtrar(*numero) == *numero) {
        texto = *numero;
        cursor = static_cast<int>(texto.size());
        return Acceptable;
    }
    const QString filtrado = reglas_.Filtrar(texto.mid(inicio, largo));
    // The cursor stands behind what was written.
    cursor -= static_cast<int>(std::min<qsizetype>(cursor, largo - filtrado.size()));
    texto.replace(inicio, largo, filtrado);
    return Acceptable;
}

bool Clstxt_valida::eventFilter(QObject* objeto, QEvent* evento) {
    if (evento->type() == QEvent::FocusOut) {
        const auto razon = static_cast<QFocusEvent*>(evento)->reason();
        // After the focus has settled: a message in the middle of its way would lose it.
        if (SeVaPorSuPie(razon) && !caja_.isReadOnly()) {
            QMetaObject::invokeMethod(this, &Clstxt_valida::ComprobarSalida, Qt::QueuedConnection);
        }
    }
    return QValidator::eventFilter(objeto, evento);
}

void Clstxt_valida::ComprobarSalida() {
    if (!caja_.isVisible() || caja_.hasFocus()) return;
    const auto salida = reglas_.AlSalir(caja_.text());
    if (salida.mensaje.isEmpty()) return;
    dialogos_.Avisar(salida.mensaje, foundation::Icono::Exclamacion);
    if (salida.retener) caja_.setFocus(Qt::OtherFocusReason);
}

}  // namespace quimo::ui
