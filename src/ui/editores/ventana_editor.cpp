#include "ui/editores/ventana_editor.h"

#include <QCloseEvent>
#include <QFocusEvent>

#include "ui/controles/ajustes.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using catalog::EditorSesion;
using Comando = ComandoVentana;

VentanaEditor* VentanaEditor::Abrir(const catalog::EditorDef& def, foundation::ClsAdo& ado,
                                    DialogosDeEditor dialogos) {
    auto sesion = std::make_unique<EditorSesion>(def, ado);
    const foundation::PunteroOcupado ocupado(ado.Dialogo());
    if (!sesion->Abrir()) return nullptr;
    return new VentanaEditor(std::move(sesion), ado, std::move(dialogos));
}

VentanaEditor::VentanaEditor(std::unique_ptr<EditorSesion> sesion, foundation::ClsAdo& ado,
                             DialogosDeEditor dialogos)
    : sesion_(std::move(sesion)), ado_(ado), dialogos_(std::move(dialogos)) {
    setObjectName(sesion_->Def().nombre.toString());
    setWindowTitle(sesion_->Def().titulo.toString());
    setAccessibleName(sesion_->Def().titulo.toString());
    Construir();
    Refrescar();
}

EstadoVentana VentanaEditor::Estado() const {
    EstadoVentana estado;
    estado.visibles = ComandosDeEditor();
    estado.registros = sesion_->TextoRegistros();
    estado.teclas = sesion_->TextoTeclas();
    if (sesion_->EnEdicion()) {
        estado.habilitados = Comando::Aceptar | Comando::Cancelar;
        if (!paneles_.isEmpty()) {
            estado.habilitados |=
                Comando::SpreadNuevo | Comando::SpreadModificar | Comando::SpreadBorrar;
        }
        return estado;
    }
    estado.habilitados = ComandosDeEditor();
    estado.habilitados &= ~ComandosVentana(Comando::Aceptar | Comando::Cancelar);
    if (!sesion_->PermiteCambios()) {
        estado.habilitados &=
            ~ComandosVentana(Comando::Nuevo | Comando::Modificar | Comando::Borrar);
    }
    return estado;
}

void VentanaEditor::Activada() {
    if (focusWidget() == nullptr || !isAncestorOf(focusWidget()))
        controles_[1].Principal()->setFocus();
}

QWidget* VentanaEditor::Control::Principal() const {
    if (combo != nullptr) return combo;
    if (casilla != nullptr) return casilla;
    return caja;
}

PanelDetalle* VentanaEditor::PanelActivo() const {
    return pestanas_ == nullptr ? nullptr : paneles_.value(pestanas_->currentIndex());
}

bool VentanaEditor::TomarCeldas() {
    bool bien = true;
    for (PanelDetalle* const panel : std::as_const(paneles_)) {
        panel->CerrarCelda(true);
        bien = panel->Aplicar() && bien;
    }
    return bien;
}

void VentanaEditor::Abierto(const std::function<void(VentanaEditor&)>& dialogo) {
    if (dialogo) return dialogo(*this);
    ado_.Dialogo().Avisar(u"Comando no disponible"_s, foundation::Icono::Informacion);
}

void VentanaEditor::Ejecutar(ComandoVentana comando) {
    PanelDetalle* const panel = PanelActivo();
    switch (comando) {
        case Comando::Aceptar:
            if (TomarCeldas()) sesion_->Guardar();
            break;
        case Comando::Cancelar:
            // The first time it only leaves the cell that is being written into.
            if (panel != nullptr && panel->CerrarCelda(false)) return;
            sesion_->Cancelar();
            break;
        case Comando::Borrar:
            sesion_->Borrar();
            break;
        case Comando::Nuevo:
            sesion_->Nuevo();
            break;
        case Comando::Modificar:
            sesion_->Modificar();
            break;
        case Comando::Primero:
            sesion_->Mover(u"PRIMERO"_s);
            break;
        case Comando::Anterior:
            sesion_->Mover(u"ANTERIOR"_s);
            break;
        case Comando::Siguiente:
            sesion_->Mover(u"SIGUIENTE"_s);
            break;
        case Comando::Ultimo:
            sesion_->Mover(u"ULTIMO"_s);
            break;
        case Comando::Buscar:
            Abierto(dialogos_.buscar);
            break;
        case Comando::Filtro:
            Abierto(dialogos_.consulta);
            break;
        case Comando::Imprimir:
        case Comando::Preview:
            Abierto({});
            break;
        case Comando::SpreadNuevo:
            if (panel != nullptr) panel->Nuevo();
            return;
        case Comando::SpreadModificar:
            if (panel != nullptr) panel->Modificar();
            return;
        case Comando::SpreadBorrar:
            if (panel != nullptr) panel->Borrar();
            return;
    }
    Refrescar();
    Enfocar();
}

namespace {

/// A locked control is to be read all the same: with the colour of texts, on the window's ground.
void PonerColores(QWidget* control, bool bloqueado, const QPalette& paleta) {
    QPalette propia = paleta;
    for (const QPalette::ColorRole papel :
         {QPalette::Text, QPalette::ButtonText, QPalette::WindowText}) {
        propia.setColor(QPalette::Disabled, papel, paleta.color(QPalette::Active, papel));
    }
    if (bloqueado) propia.setColor(QPalette::Base, paleta.color(QPalette::Window));
    if (control->palette() != propia) control->setPalette(propia);
}

}  // namespace

void VentanaEditor::RefrescarCampo(qsizetype campo) {
    const Control& control = controles_[campo];
    const bool bloqueado = sesion_->Bloqueado(campo);
    const QString& valor = sesion_->Campos().Valor(campo);
    PonerColores(control.Principal(), bloqueado, palette());
    if (control.combo != nullptr) {
        control.oculto->setText(valor);
        control.combo->setCurrentIndex(sesion_->Campos().Elegido(campo));
        control.combo->setEnabled(!bloqueado);
    } else if (control.casilla != nullptr) {
        control.casilla->setChecked(valor == u"1"_s);
        control.casilla->setEnabled(!bloqueado);
    } else {
        if (control.caja->text() != valor) {
            control.caja->setText(valor);
        }
        control.caja->setReadOnly(bloqueado);
        // A long text is read from its beginning.
        if (bloqueado) control.caja->setCursorPosition(0);
    }
}

void VentanaEditor::Refrescar() {
    for (qsizetype i = 0; i < controles_.size(); ++i)
        RefrescarCampo(i);
    for (PanelDetalle* const panel : std::as_const(paneles_))
        panel->Refrescar();
    emit EstadoCambiado();
}

void VentanaEditor::Enfocar() {
    const QString nombre = sesion_->TomarFoco();
    if (nombre.isEmpty()) return;
    const Control& control = controles_[sesion_->Campos().IndiceDe(nombre)];
    control.Principal()->setFocus();
    if (control.caja == nullptr || !sesion_->EnEdicion()) return;
    // All of it selected, and its beginning in sight.
    control.caja->end(false);
    control.caja->home(true);
}

void VentanaEditor::DejarCaja(qsizetype campo) {
    if (controles_[campo].caja->hasFocus() || !isVisible()) return;
    sesion_->Dejar(campo);
    RefrescarCampo(campo);
    Enfocar();
}

bool VentanaEditor::eventFilter(QObject* objeto, QEvent* evento) {
    if (evento->type() == QEvent::FocusOut) {
        const auto razon = static_cast<QFocusEvent*>(evento)->reason();
        if (razon != Qt::PopupFocusReason && razon != Qt::ActiveWindowFocusReason) {
            const qsizetype campo = sesion_->Campos().IndiceDe(objeto->objectName());
            // After the focus has settled: a message in the middle of its way would lose it.
            QMetaObject::invokeMethod(
                this, [this, campo] { DejarCaja(campo); }, Qt::QueuedConnection);
        }
    }
    return VentanaHija::eventFilter(objeto, evento);
}

void VentanaEditor::showEvent(QShowEvent* evento) {
    VentanaHija::showEvent(evento);
    if (std::exchange(mostrada_, true)) return;
    const QSize guardado = Ajustes().Leer(Ajuste::Ventana, objectName()).toSize();
    QWidget* const marco = parentWidget();
    if (marco == nullptr || marco->parentWidget() == nullptr || guardado.isEmpty()) return;
    marco->resize(guardado.boundedTo(marco->parentWidget()->size()));
}

void VentanaEditor::closeEvent(QCloseEvent* evento) {
    if (!TomarCeldas() || !sesion_->PuedeCerrar()) {
        Refrescar();
        Enfocar();
        evento->ignore();
        return;
    }
    const QWidget* const marco = parentWidget();
    if (marco != nullptr && !marco->isMinimized() && !marco->isMaximized()) {
        Ajustes().Guardar(Ajuste::Ventana, objectName(), marco->size());
    }
    for (const PanelDetalle* const panel : std::as_const(paneles_))
        panel->RecordarAnchos();
    evento->accept();
}

}  // namespace quimo::ui
