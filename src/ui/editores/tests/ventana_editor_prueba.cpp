#include "ventana_editor_prueba.h"

#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include "foundation/conector.h"
#include "support/central_prueba.h"
#include "ui/editores/dialogos_de_editor.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using catalog::EditorDef;
using catalog::TipoCampo;

void VentanaEditorTest::SetUp() {
    carpeta_ = std::make_unique<QTemporaryDir>();
    QString archivo = carpeta_->filePath(u"central.db"_s);
    ASSERT_TRUE(pruebas::CopiarRestaurante(archivo));
    guion_ = std::make_unique<pruebas::DialogosGuion>();
    bitacora_ = std::make_unique<foundation::ClsBitacora>(
        foundation::OpcionesBitacora{.PArchivoLog = carpeta_->filePath(u"log"_s), .PMsgBox = false},
        *guion_, reloj_);
    ado_ = std::make_unique<foundation::ClsAdo>(foundation::CrearConector(reloj_), *guion_,
                                                *bitacora_);
    QString servidor = u"embebido"_s;
    QString nadie;
    ASSERT_TRUE(ado_->Conectar(servidor, archivo, nadie, nadie));
    sesion_.id_empleado = 1;
    ASSERT_TRUE(pruebas::ConcederTodo(*ado_, 1));
    principal_ = std::make_unique<MDIPrincipal>(Contexto{*ado_, sesion_, reloj_, ventanas_});
    principal_->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(principal_.get()));
}

VentanaEditor* VentanaEditorTest::Abrir(const EditorDef& def) {
    const QString comando = def.comando.toString();
    principal_->RegistrarVentana(comando, [this, &def] {
        return VentanaEditor::Abrir(def, *ado_, DialogosDeBusqueda(*ado_));
    });
    principal_->findChild<QAction*>(comando)->trigger();
    return qobject_cast<VentanaEditor*>(principal_->Activa());
}

void VentanaEditorTest::Tecla(Qt::Key tecla, Qt::KeyboardModifiers modos) {
    QWidget* const foco = QApplication::focusWidget();
    ASSERT_TRUE(foco != nullptr);
    QTest::keyClick(foco, tecla, modos);
    // What a key leads to is handed on twice: from the cell's editor, and from the grid.
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

void VentanaEditorTest::Teclear(const QString& texto) {
    QWidget* const foco = QApplication::focusWidget();
    ASSERT_TRUE(foco != nullptr);
    for (const QChar letra : texto) {
        QKeyEvent baja(QEvent::KeyPress, 0, Qt::NoModifier, QString(letra));
        QCoreApplication::sendEvent(QApplication::focusWidget(), &baja);
    }
    QCoreApplication::processEvents();
}

/// A new row, its name typed into the box that has the focus.
void VentanaEditorTest::LlenarConTeclado(VentanaEditor* ventana) {
    const EditorDef& def = ventana->Sesion().Def();
    Teclear(u"Ñandú D'Or"_s);
    for (std::size_t i = 2; i < def.campos.size(); ++i) {
        const QString control = def.campos[i].control.toString();
        if (auto* const combo = ventana->findChild<QComboBox*>(control)) {
            combo->setFocus();
            Tecla(Qt::Key_End);
        } else if (auto* const caja = ventana->findChild<QLineEdit*>(control)) {
            caja->setFocus();
            Teclear(def.campos[i].tipo == TipoCampo::Numero ? u"12.5"_s : u"x"_s);
        }
    }
}

void VentanaEditorTest::ConDialogo(VentanaEditor* ventana, ComandoVentana comando,
                                   const std::function<void(QDialog*)>& que) {
    bool abierto = false;
    QTimer::singleShot(0, ventana, [&] {
        auto* const dialogo = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        abierto = dialogo != nullptr;
        if (!abierto) return;
        que(dialogo);
        if (dialogo->isVisible()) dialogo->reject();
    });
    ventana->Ejecutar(comando);
    ASSERT_TRUE(abierto);
    // There is no window manager to give the focus back.
    principal_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(principal_.get()));
}

/// The filter leads to the first row that it lists, the search to the new one, which is changed.
void VentanaEditorTest::BuscarConsultarYCambiar(VentanaEditor* ventana, const QString& clave) {
    auto* const caja_clave = Hijo<QLineEdit>(ventana, u"txtId");
    QString elegida;
    ConDialogo(ventana, ComandoVentana::Filtro, [&](QDialog* dialogo) {
        dialogo->findChild<QPushButton*>(u"cmdConsultar"_s)->click();
        auto* const tabla = dialogo->findChild<QTableView*>(u"sprResultado"_s);
        ASSERT_TRUE(tabla->model()->rowCount() > 1);
        elegida = tabla->model()->index(1, 0).data().toString();
        tabla->setCurrentIndex(tabla->model()->index(1, 0));
        QTest::keyClick(tabla, Qt::Key_Return);
    });
    ASSERT_EQ(caja_clave->text(), elegida);
    ConDialogo(ventana, ComandoVentana::Buscar, [](QDialog* dialogo) {
        dialogo->findChild<QLineEdit*>(u"txtBuscar"_s)->setText(u"ÑANDU d'or"_s);
        dialogo->findChild<QPushButton*>(u"cmdBuscar"_s)->click();
    });
    ASSERT_EQ(caja_clave->text(), clave);
    Tecla(Qt::Key_F6);
    Tecla(Qt::Key_End);
    Teclear(u"2"_s);
    Tecla(Qt::Key_F5);
    ASSERT_EQ(Mostrado(), QString());
    ASSERT_TRUE(!ventana->Sesion().EnEdicion());
    ASSERT_EQ(ventana->Sesion().Campos().Valor(1), u"Ñandú D'Or2"_s);
}

}  // namespace quimo::ui
