#include "ui/controles/entradas.h"

#include <QCalendarWidget>

using namespace Qt::StringLiterals;

namespace quimo::ui {

SelectorFecha::SelectorFecha(QWidget* padre) : QDateEdit(padre) {
    setLocale(QLocale());
    setDisplayFormat(u"dd/MM/yyyy"_s);
    setCalendarPopup(true);
    calendarWidget()->setFirstDayOfWeek(Qt::Monday);
    calendarWidget()->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
}

ListaClaves::ListaClaves(QWidget* padre) : QComboBox(padre) {
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
}

void ListaClaves::Llenar(const QVector<foundation::EntradaCombo>& entradas) {
    clear();
    for (const foundation::EntradaCombo& entrada : entradas)
        addItem(entrada.texto, entrada.dato);
    setCurrentIndex(-1);
}

std::optional<qint32> ListaClaves::Dato() const {
    if (currentIndex() < 0) return std::nullopt;
    return currentData().toInt();
}

void ListaClaves::Elegir(qint32 dato) { setCurrentIndex(findData(dato)); }

}  // namespace quimo::ui
