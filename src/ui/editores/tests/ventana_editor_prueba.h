#pragma once

#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include <QDialog>
#include <QTemporaryDir>

#include "foundation/cls_ado.h"
#include "support/dialogos_guion.h"
#include "ui/controles/dialogos_qt.h"
#include "ui/editores/ventana_editor.h"
#include "ui/principal/mdi_principal.h"

namespace quimo::ui {

/// The real windows inside the real main window, over the recorded restaurant, with a scripted
/// user.
class VentanaEditorTest : public testing::Test {
protected:
    void SetUp() override;
    VentanaEditor* Abrir(const catalog::EditorDef& def);
    /// Runs a command that opens a dialog, and does something with that dialog.
    void ConDialogo(VentanaEditor* ventana, ComandoVentana comando,
                    const std::function<void(QDialog*)>& que);
    void Tecla(Qt::Key tecla, Qt::KeyboardModifiers modos = Qt::NoModifier);
    void Teclear(const QString& texto);
    void LlenarConTeclado(VentanaEditor* ventana);
    void BuscarConsultarYCambiar(VentanaEditor* ventana, const QString& clave);
    template <typename Control>
    Control* Hijo(VentanaEditor* ventana, const char16_t* nombre) {
        auto* const hijo = ventana->findChild<Control*>(QString::fromUtf16(nombre));
        if (hijo == nullptr) qFatal("no such control");
        return hijo;
    }
    QString Mostrado() {
        const QString todo = guion_->Mostrados().join(u';');
        guion_->Olvidar();
        return todo;
    }
    QString Uno(const QString& consulta) {
        data::RecordsetPtr filas;
        if (!ado_->Consultar(filas, consulta) || filas->Vacio()) return QStringLiteral("?");
        return filas->Filas().front().value(0).toString();
    }

    std::unique_ptr<QTemporaryDir> carpeta_;
    pruebas::RelojFijo reloj_;
    DialogosQt ventanas_;
    std::unique_ptr<pruebas::DialogosGuion> guion_;
    std::unique_ptr<foundation::ClsBitacora> bitacora_;
    std::unique_ptr<foundation::ClsAdo> ado_;
    foundation::EstadoSesion sesion_;
    std::unique_ptr<MDIPrincipal> principal_;
};

}  // namespace quimo::ui
