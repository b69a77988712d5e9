#include "ui/controles/dialogos_qt.h"

#include <QApplication>
#include <QHash>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

#include "ui/controles/aspecto.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using foundation::Botones;
using foundation::Icono;
using foundation::Respuesta;

namespace {

constexpr qsizetype kTextoMax = 900;

QMessageBox::Icon IconoDeCaja(Icono icono) {
    switch (icono) {
        case Icono::Ninguno:
            return QMessageBox::NoIcon;
        case Icono::Informacion:
            return QMessageBox::Information;
        case Icono::Exclamacion:
            return QMessageBox::Warning;
        case Icono::Critico:
            return QMessageBox::Critical;
        case Icono::Pregunta:
            return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::ButtonRole PapelDe(Respuesta respuesta) {
    switch (respuesta) {
        case Respuesta::Si:
            return QMessageBox::YesRole;
        case Respuesta::No:
            return QMessageBox::NoRole;
        case Respuesta::Cancelar:
        case Respuesta::Abortar:
        case Respuesta::Terminar:
            return QMessageBox::RejectRole;
        case Respuesta::Aceptar:
        case Respuesta::Reintentar:
        case Respuesta::Ignorar:
        case Respuesta::Apartar:
            return QMessageBox::AcceptRole;
    }
    return QMessageBox::AcceptRole;
}

QString TituloDe(const QString& titulo) { return titulo.isEmpty() ? u"QUIMO"_s : titulo; }

Respuesta Mostrar(const QString& texto, Botones botones, Icono icono, const QString& titulo) {
    // A message is read with an ordinary pointer, also in the middle of long work.
    const QCursor* const ocupado = QApplication::overrideCursor();
    if (ocupado != nullptr) QApplication::setOverrideCursor(Qt::ArrowCursor);
    QMessageBox caja(QApplication::activeWindow());
    caja.setObjectName(u"CajaMensaje"_s);
    caja.setTextFormat(Qt::PlainText);
    caja.setWindowTitle(TituloDe(titulo));
    caja.setIcon(IconoDeCaja(icono));
    caja.setText(texto.size() > kTextoMax ? texto.left(kTextoMax) + u'…' : texto);
    if (texto.size() > kTextoMax)
        caja.setInformativeText(u"El texto completo está en los detalles."_s);
    if (texto.size() > kTextoMax) caja.setDetailedText(texto);
    const QVector<Respuesta> respuestas = foundation::RespuestasDe(botones);
    QHash<QAbstractButton*, Respuesta> de_boton;
    for (const Respuesta respuesta : respuestas) {
        const QString nombre = foundation::NombreDeRespuesta(respuesta);
        QPushButton* const boton = caja.addButton(u'&' + nombre, PapelDe(respuesta));
        Nombrar(boton, u"Boton"_s + nombre, nombre);
        de_boton.insert(boton, respuesta);
        if (respuesta == Respuesta::Cancelar || respuesta == Respuesta::Terminar ||
            respuestas.size() == 1)
            caja.setEscapeButton(boton);
    }
    caja.exec();
    if (ocupado != nullptr) QApplication::restoreOverrideCursor();
    return de_boton.value(caja.clickedButton(), respuestas.last());
}

}  // namespace

void DialogosQt::Avisar(const QString& texto, Icono icono, const QString& titulo) {
    Mostrar(texto, Botones::Aceptar, icono, titulo);
}

Respuesta DialogosQt::Preguntar(const QString& texto, Botones botones, Icono icono,
                                const QString& titulo) {
    return Mostrar(texto, botones, icono, titulo);
}

std::optional<QString> DialogosQt::PedirTexto(const QString& texto, const QString& titulo) {
    QInputDialog dialogo(QApplication::activeWindow());
    dialogo.setObjectName(u"CajaTexto"_s);
    dialogo.setWindowTitle(TituloDe(titulo));
    dialogo.setLabelText(texto);
    dialogo.setOkButtonText(u"&Aceptar"_s);
    dialogo.setCancelButtonText(u"&Cancelar"_s);
    if (dialogo.exec() != QDialog::Accepted) return std::nullopt;
    return dialogo.textValue();
}

void DialogosQt::Progreso(const QString& texto) {
    if (progreso_) progreso_(texto);
}

void DialogosQt::Ocupado(bool ocupado) {
    if (ocupado) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QApplication::restoreOverrideCursor();
    }
}

void DialogosQt::ProcesarEventos() {
    // Only what is drawn and told by the system: a second command must not start inside the first.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace quimo::ui
