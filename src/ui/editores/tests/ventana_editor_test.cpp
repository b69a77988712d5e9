#include <QClipboard>
#include <QHeaderView>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "catalog/editores/editores.h"
#include "ventana_editor_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {
namespace {

using catalog::CampoDef;
using catalog::EditorDef;
using foundation::Respuesta;

TEST_F(VentanaEditorTest, BuscarMueveElRegistro) {
    VentanaEditor* const ventana = Abrir(*catalog::Editores()[0]);
    const QString ultima = [this, ventana] {
        const auto& filas = ventana->Sesion().Conjunto()->Filas();
        return filas.back().value(1).toString();
    }();
    ConDialogo(ventana, ComandoVentana::Buscar, [&](QDialog* dialogo) {
        dialogo->findChild<QLineEdit*>(u"txtBuscar"_s)->setText(ultima.toUpper());
        dialogo->findChild<QPushButton*>(u"cmdBuscar"_s)->click();
    });
    ASSERT_EQ(ventana->Sesion().Campos().Valor(1), ultima);
    ASSERT_EQ(Hijo<QLineEdit>(ventana, ventana->Sesion().Def().campos[1].control.utf16())->text(),
              ultima);
}

TEST_F(VentanaEditorTest, ConsultaLlevaAlRegistroElegido) {
    VentanaEditor* const ventana = Abrir(catalog::kOpProductos);
    const QString clave =
        Uno(u"SELECT MAX(ID_Producto) FROM Producto WHERE ID_Grupo_Impresoras IS "
            "NOT NULL AND ID_Grupo_Modificadores IS NOT NULL"_s);
    ConDialogo(ventana, ComandoVentana::Filtro, [&](QDialog* dialogo) {
        dialogo->findChild<QLineEdit*>(u"txtValor0"_s)->setText(clave);
        dialogo->findChild<QPushButton*>(u"cmdConsultar"_s)->click();
        auto* const tabla = dialogo->findChild<QTableView*>(u"sprResultado"_s);
        ASSERT_EQ(tabla->model()->rowCount(), 1);
        tabla->setCurrentIndex(tabla->model()->index(0, 1));
        QTest::keyClick(tabla, Qt::Key_Return);
    });
    ASSERT_EQ(Hijo<QLineEdit>(ventana, u"txtId")->text(), clave);
    ASSERT_EQ(Mostrado(), QString());
}

TEST_F(VentanaEditorTest, LaColumnaQueNoExisteSeAvisaYSePuedeSeguir) {
    VentanaEditor* const ventana = Abrir(catalog::kOpMenu);
    const QString clave = Hijo<QLineEdit>(ventana, u"txtId")->text();
    ConDialogo(ventana, ComandoVentana::Filtro, [&](QDialog* dialogo) {
        auto* const nombre = dialogo->findChild<QLineEdit*>(u"txtValor1"_s);
        nombre->setText(u"Bar"_s);
        dialogo->findChild<QPushButton*>(u"cmdConsultar"_s)->click();
        ASSERT_TRUE(Mostrado().contains(u"Invalid column name 'Nombre_Menuu'"_s));
        nombre->clear();
        dialogo->findChild<QPushButton*>(u"cmdConsultar"_s)->click();
        ASSERT_EQ(dialogo->findChild<QTableView*>(u"sprResultado"_s)->model()->rowCount(), 3);
    });
    ASSERT_EQ(Hijo<QLineEdit>(ventana, u"txtId")->text(), clave);
}

/// Every catalogue there is.
class CatalogoTest : public VentanaEditorTest,
                     public testing::WithParamInterface<const catalog::EditorRevisado*> {};

INSTANTIATE_TEST_SUITE_P(Editores, CatalogoTest, testing::ValuesIn(catalog::Editores()),
                         [](const testing::TestParamInfo<const catalog::EditorRevisado*>& caso) {
                             return caso.param->nombre.toString().toStdString();
                         });

TEST_P(CatalogoTest, SeManejaConElTeclado) {
    // Other tables need the first row of these.
    const QStringList en_uso = {u"OpCategoria"_s,     u"OpMenu"_s,
                                u"OpProductos"_s,     u"OpTipoModificador"_s,
                                u"OpTipoImpuestos"_s, u"OpGpoModificadores"_s};
    const EditorDef& def = *GetParam();
    VentanaEditor* const ventana = Abrir(def);
    ASSERT_TRUE(ventana != nullptr);
    for (const CampoDef& campo : def.campos) {
        auto* const control = ventana->findChild<QWidget*>(campo.control.toString());
        ASSERT_TRUE(control != nullptr) << campo.control.toString().toStdString();
        ASSERT_TRUE(!control->accessibleName().isEmpty());
    }
    auto* const panel = principal_->findChild<QLabel*>(u"PanelRegistros"_s);
    const qsizetype habia = ventana->Sesion().Conjunto()->RecordCount();
    ASSERT_EQ(panel->text(), u"Registros: %1"_s.arg(habia));

    auto* const nombre = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_TRUE(nombre != nullptr);
    ASSERT_EQ(nombre->objectName(), def.campos[1].control.toString());
    Teclear(u"nada"_s);  // locked
    ASSERT_TRUE(!nombre->text().contains(u"nada"_s));

    Tecla(Qt::Key_Insert);
    LlenarConTeclado(ventana);
    Tecla(Qt::Key_F5);
    ASSERT_EQ(Mostrado(), QString());
    ASSERT_TRUE(!ventana->Sesion().EnEdicion());
    ASSERT_EQ(panel->text(), u"Registros: %1"_s.arg(habia + 1));
    ASSERT_EQ(nombre->text(), u"Ñandú D'Or"_s);
    const QString clave = Hijo<QLineEdit>(ventana, u"txtId")->text();

    Tecla(Qt::Key_Insert);
    LlenarConTeclado(ventana);
    Tecla(Qt::Key_F5);
    ASSERT_TRUE(Mostrado().endsWith(def.repetido.toString()));
    ASSERT_TRUE(ventana->Sesion().EnEdicion());
    Tecla(Qt::Key_Escape);
    ASSERT_EQ(Hijo<QLineEdit>(ventana, u"txtId")->text(), clave);

    Tecla(Qt::Key_Home);
    const QString primera = Hijo<QLineEdit>(ventana, u"txtId")->text();
    ASSERT_TRUE(primera != clave);
    if (en_uso.contains(def.nombre.toString())) {
        guion_->Responder(u"¿Esta seguro de borrar el registro?"_s, Respuesta::Si);
        Tecla(Qt::Key_Delete);
        ASSERT_TRUE(Mostrado().contains(
            u"No se puede borrar este registro por estar en uso en la tabla "_s));
        ASSERT_EQ(Hijo<QLineEdit>(ventana, u"txtId")->text(), primera);
        ASSERT_EQ(panel->text(), u"Registros: %1"_s.arg(habia + 1));
    }
    BuscarConsultarYCambiar(ventana, clave);
    Tecla(Qt::Key_End);
    Tecla(Qt::Key_F6);
    Tecla(Qt::Key_End);
    Teclear(u"!"_s);
    Tecla(Qt::Key_Escape);
    ASSERT_TRUE(!nombre->text().endsWith(u'!'));
    ASSERT_TRUE(ventana->Sesion().IrAClave(clave));
    ventana->Refrescar();
    guion_->Responder(u"¿Esta seguro de borrar el registro?"_s, Respuesta::Si);
    Tecla(Qt::Key_Delete);
    ASSERT_EQ(Mostrado(), QString());
    ASSERT_EQ(panel->text(), u"Registros: %1"_s.arg(habia));
}

TEST_F(VentanaEditorTest, LosBotonesSiguenAlEstado) {
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
    ASSERT_EQ(estado(), u"1100111"_s);
    ASSERT_EQ(teclas->text(), u"INS=Nuevo,F6=Modificar,DEL=Borrar"_s);
    Tecla(Qt::Key_F6);
    ASSERT_EQ(estado(), u"0011000"_s);
    ASSERT_EQ(teclas->text(), u"F5=Aceptar ESC=Cancelar"_s);
    ASSERT_TRUE(Hijo<QLineEdit>(ventana, u"txtId")->isReadOnly());
    Tecla(Qt::Key_Escape);
    ventana->Sesion().PermitirCambios(false);
    ventana->Refrescar();
    ASSERT_EQ(estado(), u"0000111"_s);
    Tecla(Qt::Key_Delete);  // asks nothing
    Tecla(Qt::Key_Insert);
    ASSERT_TRUE(!ventana->Sesion().EnEdicion());
}

TEST_F(VentanaEditorTest, AvPagEsAnteriorYRePagSiguiente) {
    VentanaEditor* const ventana = Abrir(catalog::kOpCategoria);
    auto* const clave = Hijo<QLineEdit>(ventana, u"txtId");
    for (const auto& [tecla, queda] : {std::pair{Qt::Key_PageUp, u"2"},
                                       {Qt::Key_Up, u"3"},
                                       {Qt::Key_PageDown, u"2"},
                                       {Qt::Key_Down, u"1"},
                                       {Qt::Key_End, u"13"},
                                       {Qt::Key_Home, u"1"}}) {
        Tecla(tecla);
        ASSERT_EQ(clave->text(), QString::fromUtf16(queda));
    }
}

TEST_F(VentanaEditorTest, ElComboYSuCajaOcultaVanJuntos) {
    VentanaEditor* const ventana = Abrir(catalog::kOpTipoPago);
    auto* const combo = Hijo<QComboBox>(ventana, u"CmbClase");
    auto* const oculta = Hijo<QLineEdit>(ventana, u"TxtClase");
    ASSERT_TRUE(!oculta->isVisible());
    ASSERT_TRUE(!combo->isEnabled());
    ASSERT_EQ(combo->currentText() + oculta->text(), u"EfectivoE"_s);
    Tecla(Qt::Key_F6);
    combo->setFocus();
    Tecla(Qt::Key_End);
    ASSERT_EQ(combo->currentText() + oculta->text(), u"OtroO"_s);
    Tecla(Qt::Key_Escape);
    ASSERT_EQ(combo->currentText() + oculta->text(), u"EfectivoE"_s);
    Tecla(Qt::Key_PageUp);
    Tecla(Qt::Key_PageUp);
    Tecla(Qt::Key_PageUp);  // vouchers have a letter that is no class
    ASSERT_EQ(combo->currentText() + oculta->text(), u"V"_s);
}

TEST_F(VentanaEditorTest, TeclasDeLaRejilla) {
    VentanaEditor* const ventana = Abrir(catalog::kOpSubmenu);
    Hijo<QTabWidget>(ventana, u"TabDetalles")->setCurrentIndex(1);
    auto* const productos = Hijo<Rejilla>(ventana, u"sprProductos");
    const int habia = productos->Renglones();
    Tecla(Qt::Key_F6);
    productos->setFocus();
    Tecla(Qt::Key_Insert);
    ASSERT_EQ(productos->Renglones(), habia + 1);
    ASSERT_EQ(productos->FilaActual(), habia);
    ASSERT_EQ(productos->ColumnaActual(), 1);
    Teclear(u"901"_s);
    Tecla(Qt::Key_Return);
    ASSERT_TRUE(!productos->Texto(habia, 2).isEmpty());
    productos->PonerActual(habia, 1);
    Tecla(Qt::Key_Delete);  // the new row goes at once
    ASSERT_EQ(productos->Renglones(), habia);
    productos->PonerActual(0, 5);
    Tecla(Qt::Key_Delete);  // a stored one is only hidden
    ASSERT_EQ(productos->Renglones(), habia);
    ASSERT_TRUE(productos->isRowHidden(0));
    Tecla(Qt::Key_F5);
    ASSERT_EQ(Mostrado(), QString());
    ASSERT_EQ(productos->Renglones(), habia - 1);
    ASSERT_TRUE(!productos->isRowHidden(0));
    // Read only while nothing is edited.
    ASSERT_TRUE(!(productos->model()->flags(productos->model()->index(0, 5)) & Qt::ItemIsEditable));
}

TEST_F(VentanaEditorTest, LasColumnasSeOrdenanYGuardanSuAncho) {
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
    ASSERT_TRUE(orden(0) < orden(ultimo));
    pulsar(5);
    ASSERT_TRUE(orden(0) > orden(ultimo));
    Tecla(Qt::Key_PageUp);
    ASSERT_TRUE(orden(0) > orden(productos->Renglones() - 1));
    productos->setColumnWidth(2, 321);
    qobject_cast<QMdiSubWindow*>(ventana->parentWidget())->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(Hijo<Rejilla>(Abrir(catalog::kOpSubmenu), u"sprProductos")->columnWidth(2), 321);
}

TEST_F(VentanaEditorTest, PegarEnLaRejilla) {
    VentanaEditor* const ventana = Abrir(catalog::kOpGpoModificadores);
    auto* const miembros = Hijo<Rejilla>(ventana, u"sprModificadores");
    Tecla(Qt::Key_Insert);
    Teclear(u"Pegado"_s);
    miembros->setFocus();
    QApplication::clipboard()->setText(u"1\n2\n3\n"_s);
    Tecla(Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(miembros->Renglones(), 3);
    Tecla(Qt::Key_F5);
    ASSERT_EQ(Mostrado(), QString());
    ASSERT_EQ(Uno(u"SELECT COUNT(*) AS N FROM TiposXGrupo_Modificadores WHERE "
                  "ID_Grupo_Modificadores=4"_s),
              u"3"_s);
}

TEST_F(VentanaEditorTest, UnaCeldaMalEscritaDetieneGuardar) {
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
    ASSERT_TRUE(Mostrado().contains(u"La fecha 30/02/2026 no existe"_s));
    ASSERT_TRUE(ventana->Sesion().EnEdicion());
    ASSERT_EQ(tasas->Texto(0, 1), antes);
    tasas->PonerActual(0, 3);
    tasas->setFocus();
    Tecla(Qt::Key_F2);
    Tecla(Qt::Key_A, Qt::ControlModifier);
    Teclear(u"1.2.3"_s);
    Tecla(Qt::Key_Return);
    ASSERT_TRUE(Mostrado().contains(u"1.2.3 no es un número"_s));
    Tecla(Qt::Key_F5);
    ASSERT_TRUE(!ventana->Sesion().EnEdicion());
}

TEST_F(VentanaEditorTest, EscapeSaleDeLaCeldaYDespuesDelRegistro) {
    VentanaEditor* const ventana = Abrir(catalog::kOpTipoImpuestos);
    auto* const tasas = Hijo<Rejilla>(ventana, u"sprPorcentajes");
    Tecla(Qt::Key_F6);
    tasas->setFocus();
    tasas->PonerActual(0, 3);
    const QString antes = tasas->Texto(0, 3);
    Tecla(Qt::Key_F2);
    Teclear(u"9"_s);
    Tecla(Qt::Key_Escape);
    ASSERT_TRUE(ventana->Sesion().EnEdicion());
    ASSERT_EQ(tasas->Texto(0, 3), antes);
    Tecla(Qt::Key_Escape);
    ASSERT_TRUE(!ventana->Sesion().EnEdicion());
}

TEST_F(VentanaEditorTest, ElPrecioSeFiltraYSeRevisaAlSalir) {
    VentanaEditor* const ventana = Abrir(catalog::kOpTipoModificador);
    auto* const precio = Hijo<QLineEdit>(ventana, u"MskPrecio");
    ASSERT_EQ(precio->text(), u"$0.00"_s);
    Tecla(Qt::Key_F6);
    precio->setFocus();
    precio->selectAll();
    Teclear(u"a1b2-,.5x"_s);
    ASSERT_EQ(precio->text(), u"12.5"_s);
    Tecla(Qt::Key_Tab);
    ASSERT_EQ(precio->text(), u"$12.50"_s);
    precio->setFocus();
    precio->selectAll();
    QApplication::clipboard()->setText(u"$1.250,75"_s);
    Tecla(Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(precio->text(), u"1250.75"_s);
    precio->setFocus();
    precio->selectAll();
    Teclear(u"1234567890123456"_s);
    Tecla(Qt::Key_Tab);
    ASSERT_EQ(Mostrado(), u"[!] Modificadores|El precio es demasiado grande"_s);
    ASSERT_EQ(precio->text(), QString());
    ASSERT_TRUE(precio->hasFocus());
}

TEST_F(VentanaEditorTest, CerrarPreguntaYAbrirDosVecesTraeAlFrente) {
    const QString pregunta = u"Hay cambios sin guardar. ¿Desea guardarlos?"_s;
    VentanaEditor* const ventana = Abrir(catalog::kOpMenu);
    Abrir(catalog::kOpCategoria);
    principal_->findChild<QAction*>(u"mnuOpMenu"_s)->trigger();
    ASSERT_EQ(principal_->Activa(), ventana);
    ventana->parentWidget()->resize(611, 333);
    Tecla(Qt::Key_F6);
    Tecla(Qt::Key_End);
    Teclear(u"s"_s);
    guion_->Responder(pregunta, Respuesta::Cancelar);
    principal_->close();
    ASSERT_TRUE(principal_->isVisible());
    guion_->Responder(pregunta, Respuesta::Si);
    qobject_cast<QMdiSubWindow*>(ventana->parentWidget())->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(Uno(u"SELECT Nombre_Menu FROM Menu WHERE ID_Menu=1"_s), u"Restaurantes"_s);
    ASSERT_EQ(Abrir(catalog::kOpMenu)->parentWidget()->size(), QSize(611, 333));
}

}  // namespace
}  // namespace quimo::ui
