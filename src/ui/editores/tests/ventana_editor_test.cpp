#include "ventana_editor_test.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QHeaderView>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include "catalog/editores/editores.h"
#include "foundation/conector.h"
#include "support/central_prueba.h"
#include "ui/editores/dialogos_de_editor.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using catalog::CampoDef;
using catalog::EditorDef;
using catalog::TipoCampo;
using foundation::Respuesta;

void VentanaEditorTest::initTestCase() {
    QStandardPaths::setTestModeEnabled(true);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, ajustes_.path());
}

void VentanaEditorTest::init() {
    carpeta_ = std::make_unique<QTemporaryDir>();
    QString archivo = carpeta_->filePath(u"central.db"_s);
    QVERIFY(pruebas::CopiarRestaurante(archivo));
    guion_ = std::make_unique<pruebas::DialogosGuion>();
    bitacora_ = std::make_unique<foundation::ClsBitacora>(
        foundation::OpcionesBitacora{.PArchivoLog = carpeta_->filePath(u"log"_s), .PMsgBox = false},
        *guion_, reloj_);
    ado_ = std::make_unique<foundation::ClsAdo>(foundation::CrearConector(reloj_), *guion_,
                                                *bitacora_);
    QString servidor = u"embebido"_s;
    QString nadie;
    QVERIFY(ado_->Conectar(servidor, archivo, nadie, nadie));
    sesion_.id_empleado = 1;
    QVERIFY(pruebas::ConcederTodo(*ado_, 1));
    principal_ = std::make_unique<MDIPrincipal>(Contexto{*ado_, sesion_, reloj_, ventanas_});
    principal_->show();
    QVERIFY(QTest::qWaitForWindowActive(principal_.get()));
}

void VentanaEditorTest::cleanup() {
    principal_.reset();
    ado_.reset();
    bitacora_.reset();
    guion_.reset();
    QVERIFY2(!testing::Test::HasFailure(), "the scripted user was asked something else");
}

VentanaEditor* VentanaEditorTest::Abrir(const EditorDef& def) {
    const QString orden = def.orden.toString();
    principal_->RegistrarVentana(orden, [this, &def] {
        return VentanaEditor::Abrir(def, *ado_, DialogosDeBusqueda(*ado_));
    });
    principal_->findChild<QAction*>(orden)->trigger();
    return qobject_cast<VentanaEditor*>(principal_->Activa());
}

void VentanaEditorTest::Tecla(Qt::Key tecla, Qt::KeyboardModifiers modos) {
    QWidget* const foco = QApplication::focusWidget();
    QVERIFY(foco != nullptr);
    QTest::keyClick(foco, tecla, modos);
    // What a key leads to is handed on twice: from the cell's editor, and from the grid.
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

void VentanaEditorTest::Teclear(const QString& texto) {
    QWidget* const foco = QApplication::focusWidget();
    QVERIFY(foco != nullptr);
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

void VentanaEditorTest::ConDialogo(VentanaEditor* ventana, OrdenVentana orden,
                                   const std::function<void(QDialog*)>& que) {
    bool abierto = false;
    QTimer::singleShot(0, this, [&] {
        auto* const dialogo = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        abierto = dialogo != nullptr;
        if (!abierto) return;
        que(dialogo);
        if (dialogo->isVisible()) dialogo->reject();
    });
    ventana->Ejecutar(orden);
    QVERIFY(abierto);
    // There is no window manager to give the focus back.
    principal_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(principal_.get()));
}

void VentanaEditorTest::BuscarMueveElRegistro() {
    VentanaEditor* const ventana = Abrir(*catalog::Editores()[0]);
    const QString ultima = [this, ventana] {
        const auto& filas = ventana->Sesion().Conjunto()->Filas();
        return filas.back().value(1).toString();
    }();
    ConDialogo(ventana, OrdenVentana::Buscar, [&](QDialog* dialogo) {
        dialogo->findChild<QLineEdit*>(u"txtBuscar"_s)->setText(ultima.toUpper());
        dialogo->findChild<QPushButton*>(u"cmdBuscar"_s)->click();
    });
    QCOMPARE(ventana->Sesion().Valor(1), ultima);
    QCOMPARE(Hijo<QLineEdit>(ventana, ventana->Sesion().Def().campos[1].control.utf16())->text(),
             ultima);
}

void VentanaEditorTest::ConsultaLlevaAlRegistroElegido() {
    VentanaEditor* const ventana = Abrir(catalog::kOpProductos);
    const QString clave =
        Uno(u"SELECT MAX(ID_Producto) FROM Producto WHERE ID_Grupo_Impresoras IS "
            "NOT NULL AND ID_Grupo_Modificadores IS NOT NULL"_s);
    ConDialogo(ventana, OrdenVentana::Filtro, [&](QDialog* dialogo) {
        dialogo->findChild<QLineEdit*>(u"txtValor0"_s)->setText(clave);
        dialogo->findChild<QPushButton*>(u"cmdConsultar"_s)->click();
        auto* const tabla = dialogo->findChild<QTableView*>(u"sprResultado"_s);
        QCOMPARE(tabla->model()->rowCount(), 1);
        tabla->setCurrentIndex(tabla->model()->index(0, 1));
        QTest::keyClick(tabla, Qt::Key_Return);
    });
    QCOMPARE(Hijo<QLineEdit>(ventana, u"txtId")->text(), clave);
    QCOMPARE(Mostrado(), QString());
}

void VentanaEditorTest::LaColumnaQueNoExisteSeAvisaYSePuedeSeguir() {
    VentanaEditor* const ventana = Abrir(catalog::kOpMenu);
    const QString clave = Hijo<QLineEdit>(ventana, u"txtId")->text();
    ConDialogo(ventana, OrdenVentana::Filtro, [&](QDialog* dialogo) {
        auto* const nombre = dialogo->findChild<QLineEdit*>(u"txtValor1"_s);
        nombre->setText(u"Bar"_s);
        dialogo->findChild<QPushButton*>(u"cmdConsultar"_s)->click();
        QVERIFY(Mostrado().contains(u"Invalid column name 'Nombre_Menuu'"_s));
        nombre->clear();
        dialogo->findChild<QPushButton*>(u"cmdConsultar"_s)->click();
        QCOMPARE(dialogo->findChild<QTableView*>(u"sprResultado"_s)->model()->rowCount(), 3);
    });
    QCOMPARE(Hijo<QLineEdit>(ventana, u"txtId")->text(), clave);
}

void VentanaEditorTest::TodosSeManejanConElTeclado_data() {
    QTest::addColumn<int>("cual");
    QTest::addColumn<bool>("en_uso");  // other tables need the first row
    const QStringList en_uso = {u"OpCategoria"_s,     u"OpMenu"_s,
                                u"OpProductos"_s,     u"OpTipoModificador"_s,
                                u"OpTipoImpuestos"_s, u"OpGpoModificadores"_s};
    for (int i = 0; i < std::ssize(catalog::Editores()); ++i) {
        const QString nombre = catalog::Editores()[static_cast<std::size_t>(i)]->nombre.toString();
        QTest::addRow("%s", qPrintable(nombre)) << i << en_uso.contains(nombre);
    }
}

void VentanaEditorTest::TodosSeManejanConElTeclado() {
    QFETCH(int, cual);
    const EditorDef& def = *catalog::Editores()[static_cast<std::size_t>(cual)];
    VentanaEditor* const ventana = Abrir(def);
    QVERIFY(ventana != nullptr);
    for (const CampoDef& campo : def.campos) {
        auto* const control = ventana->findChild<QWidget*>(campo.control.toString());
        QVERIFY2(control != nullptr, qPrintable(campo.control.toString()));
        QVERIFY(!control->accessibleName().isEmpty());
    }
    auto* const panel = principal_->findChild<QLabel*>(u"PanelRegistros"_s);
    const qsizetype habia = ventana->Sesion().Registros();
    QCOMPARE(panel->text(), u"Registros: %1"_s.arg(habia));

    auto* const nombre = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    QVERIFY(nombre != nullptr);
    QCOMPARE(nombre->objectName(), def.campos[1].control.toString());
    Teclear(u"nada"_s);  // locked
    QVERIFY(!nombre->text().contains(u"nada"_s));

    Tecla(Qt::Key_Insert);
    LlenarConTeclado(ventana);
    Tecla(Qt::Key_F5);
    QCOMPARE(Mostrado(), QString());
    QVERIFY(!ventana->Sesion().EnEdicion());
    QCOMPARE(panel->text(), u"Registros: %1"_s.arg(habia + 1));
    QCOMPARE(nombre->text(), u"Ñandú D'Or"_s);
    const QString clave = Hijo<QLineEdit>(ventana, u"txtId")->text();

    Tecla(Qt::Key_Insert);
    LlenarConTeclado(ventana);
    Tecla(Qt::Key_F5);
    QVERIFY(Mostrado().endsWith(def.repetido.toString()));
    QVERIFY(ventana->Sesion().EnEdicion());
    Tecla(Qt::Key_Escape);
    QCOMPARE(Hijo<QLineEdit>(ventana, u"txtId")->text(), clave);

    Tecla(Qt::Key_Home);
    const QString primera = Hijo<QLineEdit>(ventana, u"txtId")->text();
    QVERIFY(primera != clave);
    QFETCH(bool, en_uso);
    if (en_uso) {
        guion_->Responder(u"¿Esta seguro de borrar el registro?"_s, Respuesta::Si);
        Tecla(Qt::Key_Delete);
        QVERIFY(Mostrado().contains(
            u"No se puede borrar este registro por estar en uso en la tabla "_s));
        QCOMPARE(Hijo<QLineEdit>(ventana, u"txtId")->text(), primera);
        QCOMPARE(panel->text(), u"Registros: %1"_s.arg(habia + 1));
    }
    BuscarConsultarYCambiar(ventana, clave);
    Tecla(Qt::Key_End);
    Tecla(Qt::Key_F6);
    Tecla(Qt::Key_End);
    Teclear(u"!"_s);
    Tecla(Qt::Key_Escape);
    QVERIFY(!nombre->text().endsWith(u'!'));
    QVERIFY(ventana->Sesion().IrAClave(clave));
    ventana->Refrescar();
    guion_->Responder(u"¿Esta seguro de borrar el registro?"_s, Respuesta::Si);
    Tecla(Qt::Key_Delete);
    QCOMPARE(Mostrado(), QString());
    QCOMPARE(panel->text(), u"Registros: %1"_s.arg(habia));
}

/// The filter leads to the first row that it lists, the search to the new one, which is changed.
void VentanaEditorTest::BuscarConsultarYCambiar(VentanaEditor* ventana, const QString& clave) {
    auto* const caja_clave = Hijo<QLineEdit>(ventana, u"txtId");
    QString elegida;
    ConDialogo(ventana, OrdenVentana::Filtro, [&](QDialog* dialogo) {
        dialogo->findChild<QPushButton*>(u"cmdConsultar"_s)->click();
        auto* const tabla = dialogo->findChild<QTableView*>(u"sprResultado"_s);
        QVERIFY(tabla->model()->rowCount() > 1);
        elegida = tabla->model()->index(1, 0).data().toString();
        tabla->setCurrentIndex(tabla->model()->index(1, 0));
        QTest::keyClick(tabla, Qt::Key_Return);
    });
    QCOMPARE(caja_clave->text(), elegida);
    ConDialogo(ventana, OrdenVentana::Buscar, [](QDialog* dialogo) {
        dialogo->findChild<QLineEdit*>(u"txtBuscar"_s)->setText(u"ÑANDU d'or"_s);
        dialogo->findChild<QPushButton*>(u"cmdBuscar"_s)->click();
    });
    QCOMPARE(caja_clave->text(), clave);
    Tecla(Qt::Key_F6);
    Tecla(Qt::Key_End);
    Teclear(u"2"_s);
    Tecla(Qt::Key_F5);
    QCOMPARE(Mostrado(), QString());
    QVERIFY(!ventana->Sesion().EnEdicion());
    QCOMPARE(ventana->Sesion().Valor(1), u"Ñandú D'Or2"_s);
}

void VentanaEditorTest::LosBotonesSiguenAlEstado() {
    VentanaEditor* const ventana = Abrir(catalog::kOpCategoria);
    const auto estado = [this] {
        QString letras;
        for (const char* const boton :
             {"BotonNuevoModificar", "BotonBorrar", "BotonAceptar", "BotonCancelar", "BotonBuscar",
              "BotonSiguiente", "BotonFiltro", "BotonImprimir"}) {
            auto* const accion = principal_->findChild<QAction*>(QString::fromLatin1(boton));
            if (accion != nullptr) letras += accion->isEnabled() ? u'1' : u'0';
        }
        return letras;
    };
    auto* const teclas = principal_->findChild<QLabel*>(u"PanelTeclas"_s);
    QCOMPARE(estado(), u"1100111"_s);
    QCOMPARE(teclas->text(), u"INS=Nuevo,F6=Modificar,DEL=Borrar"_s);
    Tecla(Qt::Key_F6);
    QCOMPARE(estado(), u"0011000"_s);
    QCOMPARE(teclas->text(), u"F5=Aceptar ESC=Cancelar"_s);
    QVERIFY(Hijo<QLineEdit>(ventana, u"txtId")->isReadOnly());
    Tecla(Qt::Key_Escape);
    ventana->Sesion().PermitirCambios(false);
    ventana->Refrescar();
    QCOMPARE(estado(), u"0000111"_s);
    Tecla(Qt::Key_Delete);  // asks nothing
    Tecla(Qt::Key_Insert);
    QVERIFY(!ventana->Sesion().EnEdicion());
}

void VentanaEditorTest::AvPagEsAnteriorYRePagSiguiente() {
    VentanaEditor* const ventana = Abrir(catalog::kOpCategoria);
    auto* const clave = Hijo<QLineEdit>(ventana, u"txtId");
    for (const auto& [tecla, queda] : {std::pair{Qt::Key_PageUp, u"2"},
                                       {Qt::Key_Up, u"3"},
                                       {Qt::Key_PageDown, u"2"},
                                       {Qt::Key_Down, u"1"},
                                       {Qt::Key_End, u"13"},
                                       {Qt::Key_Home, u"1"}}) {
        Tecla(tecla);
        QCOMPARE(clave->text(), QString::fromUtf16(queda));
    }
}

void VentanaEditorTest::ElComboYSuCajaOcultaVanJuntos() {
    VentanaEditor* const ventana = Abrir(catalog::kOpTipoPago);
    auto* const combo = Hijo<QComboBox>(ventana, u"CmbClase");
    auto* const oculta = Hijo<QLineEdit>(ventana, u"TxtClase");
    QVERIFY(!oculta->isVisible());
    QVERIFY(!combo->isEnabled());
    QCOMPARE(combo->currentText() + oculta->text(), u"EfectivoE"_s);
    Tecla(Qt::Key_F6);
    combo->setFocus();
    Tecla(Qt::Key_End);
    QCOMPARE(combo->currentText() + oculta->text(), u"OtroO"_s);
    Tecla(Qt::Key_Escape);
    QCOMPARE(combo->currentText() + oculta->text(), u"EfectivoE"_s);
    Tecla(Qt::Key_PageUp);
    Tecla(Qt::Key_PageUp);
    Tecla(Qt::Key_PageUp);  // vouchers have a letter that is no class
    QCOMPARE(combo->currentText() + oculta->text(), u"V"_s);
}

void VentanaEditorTest::TeclasDeLaRejilla() {
    VentanaEditor* const ventana = Abrir(catalog::kOpSubmenu);
    Hijo<QTabWidget>(ventana, u"TabDetalles")->setCurrentIndex(1);
    auto* const productos = Hijo<Rejilla>(ventana, u"sprProductos");
    const int habia = productos->Renglones();
    Tecla(Qt::Key_F6);
    productos->setFocus();
    Tecla(Qt::Key_Insert);
    QCOMPARE(productos->Renglones(), habia + 1);
    QCOMPARE(productos->FilaActual(), habia);
    QCOMPARE(productos->ColumnaActual(), 1);
    Teclear(u"901"_s);
    Tecla(Qt::Key_Return);
    QVERIFY(!productos->Texto(habia, 2).isEmpty());
    productos->PonerActual(habia, 1);
    Tecla(Qt::Key_Delete);  // the new row goes at once
    QCOMPARE(productos->Renglones(), habia);
    productos->PonerActual(0, 5);
    Tecla(Qt::Key_Delete);  // a stored one is only hidden
    QCOMPARE(productos->Renglones(), habia);
    QVERIFY(productos->isRowHidden(0));
    Tecla(Qt::Key_F5);
    QCOMPARE(Mostrado(), QString());
    QCOMPARE(productos->Renglones(), habia - 1);
    QVERIFY(!productos->isRowHidden(0));
    // Read only while nothing is edited.
    QVERIFY(!(productos->model()->flags(productos->model()->index(0, 5)) & Qt::ItemIsEditable));
}

void VentanaEditorTest::LasColumnasSeOrdenanYGuardanSuAncho() {
    VentanaEditor* const ventana = Abrir(catalog::kOpSubmenu);
    Hijo<QTabWidget>(ventana, u"TabDetalles")->setCurrentIndex(1);
    auto* const productos = Hijo<Rejilla>(ventana, u"sprProductos");
    QHeaderView* const titulos = productos->horizontalHeader();
    const auto pulsar = [titulos](int columna) {
        const QPoint donde(titulos->sectionViewportPosition(columna) + 20, titulos->height() / 2);
        QTest::mouseClick(titulos->viewport(), Qt::LeftButton, Qt::NoModifier, donde);
    };
    const auto orden = [productos](int fila) { return productos->Texto(fila, 5).toInt(); };
    const int ultimo = productos->Renglones() - 1;
    pulsar(5);
    QVERIFY(orden(0) < orden(ultimo));
    pulsar(5);
    QVERIFY(orden(0) > orden(ultimo));
    Tecla(Qt::Key_PageUp);
    QVERIFY(orden(0) > orden(productos->Renglones() - 1));
    productos->setColumnWidth(2, 321);
    qobject_cast<QMdiSubWindow*>(ventana->parentWidget())->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(Hijo<Rejilla>(Abrir(catalog::kOpSubmenu), u"sprProductos")->columnWidth(2), 321);
}

void VentanaEditorTest::PegarEnLaRejilla() {
    VentanaEditor* const ventana = Abrir(catalog::kOpGpoModificadores);
    auto* const miembros = Hijo<Rejilla>(ventana, u"sprModificadores");
    Tecla(Qt::Key_Insert);
    Teclear(u"Pegado"_s);
    miembros->setFocus();
    QApplication::clipboard()->setText(u"1\n2\n3\n"_s);
    Tecla(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(miembros->Renglones(), 3);
    Tecla(Qt::Key_F5);
    QCOMPARE(Mostrado(), QString());
    QCOMPARE(Uno(u"SELECT COUNT(*) AS N FROM TiposXGrupo_Modificadores WHERE "
                 "ID_Grupo_Modificadores=4"_s),
             u"3"_s);
}

void VentanaEditorTest::UnaCeldaMalEscritaDetieneGuardar() {
    VentanaEditor* const ventana = Abrir(catalog::kOpTipoImpuestos);
    auto* const tasas = Hijo<Rejilla>(ventana, u"sprPorcentajes");
    Tecla(Qt::Key_F6);
    tasas->setFocus();
    tasas->PonerActual(0, 1);
    const QString antes = tasas->Texto(0, 1);
    Tecla(Qt::Key_F2);
    Tecla(Qt::Key_A, Qt::ControlModifier);
    Teclear(u"30/02/2026"_s);
    Tecla(Qt::Key_F5);
    QVERIFY(Mostrado().contains(u"La fecha 30/02/2026 no existe"_s));
    QVERIFY(ventana->Sesion().EnEdicion());
    QCOMPARE(tasas->Texto(0, 1), antes);
    tasas->PonerActual(0, 3);
    tasas->setFocus();
    Tecla(Qt::Key_F2);
    Tecla(Qt::Key_A, Qt::ControlModifier);
    Teclear(u"1.2.3"_s);
    Tecla(Qt::Key_Return);
    QVERIFY(Mostrado().contains(u"1.2.3 no es un número"_s));
    Tecla(Qt::Key_F5);
    QVERIFY(!ventana->Sesion().EnEdicion());
}

void VentanaEditorTest::EscapeSaleDeLaCeldaYDespuesDelRegistro() {
    VentanaEditor* const ventana = Abrir(catalog::kOpTipoImpuestos);
    auto* const tasas = Hijo<Rejilla>(ventana, u"sprPorcentajes");
    Tecla(Qt::Key_F6);
    tasas->setFocus();
    tasas->PonerActual(0, 3);
    const QString antes = tasas->Texto(0, 3);
    Tecla(Qt::Key_F2);
    Teclear(u"9"_s);
    Tecla(Qt::Key_Escape);
    QVERIFY(ventana->Sesion().EnEdicion());
    QCOMPARE(tasas->Texto(0, 3), antes);
    Tecla(Qt::Key_Escape);
    QVERIFY(!ventana->Sesion().EnEdicion());
}

void VentanaEditorTest::ElPrecioSeFiltraYSeRevisaAlSalir() {
    VentanaEditor* const ventana = Abrir(catalog::kOpTipoModificador);
    auto* const precio = Hijo<QLineEdit>(ventana, u"MskPrecio");
    QCOMPARE(precio->text(), u"$0.00"_s);
    Tecla(Qt::Key_F6);
    precio->setFocus();
    precio->selectAll();
    Teclear(u"a1b2-,.5x"_s);
    QCOMPARE(precio->text(), u"12.5"_s);
    Tecla(Qt::Key_Tab);
    QCOMPARE(precio->text(), u"$12.50"_s);
    precio->setFocus();
    precio->selectAll();
    QApplication::clipboard()->setText(u"$1.250,75"_s);
    Tecla(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(precio->text(), u"1250.75"_s);
    precio->setFocus();
    precio->selectAll();
    Teclear(u"1234567890123456"_s);
    Tecla(Qt::Key_Tab);
    QCOMPARE(Mostrado(), u"[!] Modificadores|El precio es demasiado grande"_s);
    QCOMPARE(precio->text(), QString());
    QVERIFY(precio->hasFocus());
}

void VentanaEditorTest::CerrarPreguntaYAbrirDosVecesTraeAlFrente() {
    const QString pregunta = u"Hay cambios sin guardar. ¿Desea guardarlos?"_s;
    VentanaEditor* const ventana = Abrir(catalog::kOpMenu);
    Abrir(catalog::kOpCategoria);
    principal_->findChild<QAction*>(u"mnuOpMenu"_s)->trigger();
    QCOMPARE(principal_->Activa(), ventana);
    ventana->parentWidget()->resize(611, 333);
    Tecla(Qt::Key_F6);
    Tecla(Qt::Key_End);
    Teclear(u"s"_s);
    guion_->Responder(pregunta, Respuesta::Cancelar);
    principal_->close();
    QVERIFY(principal_->isVisible());
    guion_->Responder(pregunta, Respuesta::Si);
    qobject_cast<QMdiSubWindow*>(ventana->parentWidget())->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(Uno(u"SELECT Nombre_Menu FROM Menu WHERE ID_Menu=1"_s), u"Restaurantes"_s);
    QCOMPARE(Abrir(catalog::kOpMenu)->parentWidget()->size(), QSize(611, 333));
}

}  // namespace quimo::ui

QTEST_MAIN(quimo::ui::VentanaEditorTest)
