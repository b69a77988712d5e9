#include "ui/editores/dlg_consulta.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QFileDialog>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "support/central_prueba.h"
#include "ui/editores/dlg_buscar.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {
namespace {

constexpr catalog::ItemCodigo kEstados[] = {{u"Activo", u"A"}, {u"Bloqueado", u"B"}};
constexpr std::array<catalog::ColumnaFiltro, 5> kColumnas = {{
    {u"Id Producto", u"ID_Producto", u"ID_Producto"},
    {u"Nombre Completo", u"Nombre_Completo", u"Nombre_Completo"},
    {u"Existencia", u"Existencia", u"Existencia"},
    {u"Paquete", u"Paquete", u"Paquete"},
    {u"Estado", u"Estado", u"Estado", kEstados},
}};
constexpr catalog::FiltroDef kProducto = {u"Producto WHERE", kColumnas};
constexpr std::array<catalog::ColumnaFiltro, 2> kColumnasMalas = {{
    {u"Id Menu", u"ID_Menu", u"ID_Menu"},
    {u"Nombre", u"Nombre_Menu", u"Nombre_Menuu"},
}};
constexpr catalog::FiltroDef kMenu = {u"Menu WHERE", kColumnasMalas};

template <typename Control>
Control* De(const QWidget& ventana, const QString& nombre) {
    auto* const control = ventana.findChild<Control*>(nombre);
    if (control == nullptr) qFatal("no control %s", qPrintable(nombre));
    return control;
}

class DlgConsultaTest : public testing::Test {
protected:
    pruebas::CentralPrueba central_;
};

TEST_F(DlgConsultaTest, ConElTecladoSeEligeUnRenglon) {
    catalog::Consulta consulta(kProducto, central_.Ado());
    DlgConsulta dialogo(consulta, central_.Dialogos());
    QTimer::singleShot(0, &dialogo, [&dialogo] {
        ASSERT_EQ(dialogo.focusWidget(), De<QLineEdit>(dialogo, u"txtValor0"_s));
        auto* const nombre = De<QLineEdit>(dialogo, u"txtValor1"_s);
        QTest::keyClicks(nombre, u"pozole"_s);
        QTest::keyClick(nombre, Qt::Key_Return);
        auto* const tabla = De<QTableView>(dialogo, u"sprResultado"_s);
        ASSERT_EQ(dialogo.focusWidget(), tabla);
        ASSERT_EQ(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 2"_s);
        QTest::keyClick(tabla, Qt::Key_Down);
        QTest::keyClick(tabla, Qt::Key_Return);
    });
    ASSERT_EQ(dialogo.Elegir(), std::optional<QVariant>(204));
    QTimer::singleShot(0, &dialogo, [&dialogo] { QTest::keyClick(&dialogo, Qt::Key_Escape); });
    ASSERT_EQ(dialogo.Elegir(), std::nullopt);
}

TEST_F(DlgConsultaTest, OrdenaYCopiaYLlevaLaClaveDelRenglonMostrado) {
    catalog::Consulta consulta(kProducto, central_.Ado());
    DlgConsulta dialogo(consulta, central_.Dialogos());
    dialogo.show();
    De<QLineEdit>(dialogo, u"txtValor1"_s)->setText(u"Taco"_s);
    De<QPushButton>(dialogo, u"cmdConsultar"_s)->click();
    auto* const tabla = De<QTableView>(dialogo, u"sprResultado"_s);
    const auto columna = [tabla](int c) {
        QStringList textos;
        for (int f = 0; f < tabla->model()->rowCount(); ++f)
            textos << tabla->model()->index(f, c).data().toString();
        return textos;
    };
    const QStringList claves = columna(0);
    ASSERT_TRUE(claves.size() > 5);
    tabla->selectRow(1);
    const QString marcada = tabla->currentIndex().data().toString();
    tabla->sortByColumn(2, Qt::DescendingOrder);
    const QStringList existencias = columna(2);
    ASSERT_TRUE(std::is_sorted(
        existencias.begin(), existencias.end(),
        [](const QString& uno, const QString& otro) { return uno.toDouble() > otro.toDouble(); }));
    ASSERT_EQ(tabla->currentIndex().siblingAtColumn(0).data().toString(), marcada);
    QTest::keyClick(tabla, Qt::Key_C, Qt::ControlModifier);
    ASSERT_TRUE(QApplication::clipboard()->text().startsWith(marcada + u'\t'));
    ASSERT_EQ(QApplication::clipboard()->text().count(u'\n'), 0);
    tabla->selectAll();
    De<QPushButton>(dialogo, u"cmdCopiar"_s)->click();
    ASSERT_EQ(QApplication::clipboard()->text().count(u'\n'), claves.size() - 1);
    // The same order after another query.
    De<QPushButton>(dialogo, u"cmdConsultar"_s)->click();
    ASSERT_EQ(columna(2), existencias);
}

TEST_F(DlgConsultaTest, LoMalEscritoSeDiceYElFocoVaAEsaCondicion) {
    catalog::Consulta consulta(kProducto, central_.Ado());
    DlgConsulta dialogo(consulta, central_.Dialogos());
    dialogo.show();
    auto* const existencia = De<QLineEdit>(dialogo, u"txtValor2"_s);
    existencia->setText(u"1.2.3"_s);
    QTest::keyClick(existencia, Qt::Key_Return);
    ASSERT_EQ(central_.Dialogos().Mostrados(),
              QStringList{u"[!] |Existencia: «1.2.3» no es un número."_s});
    ASSERT_EQ(dialogo.focusWidget(), existencia);
    existencia->setText(u"21,50"_s);
    De<QComboBox>(dialogo, u"cmbValor4"_s)->setCurrentText(u"activo"_s);
    QTest::keyClick(existencia, Qt::Key_Return);
    ASSERT_TRUE(De<QTableView>(dialogo, u"sprResultado"_s)->model()->rowCount() > 0);
    De<QPushButton>(dialogo, u"cmdLimpiar"_s)->click();
    auto* const paquete = De<QComboBox>(dialogo, u"cmbValor3"_s);
    QTest::keyClick(paquete, Qt::Key_Return);
    ASSERT_EQ(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 103"_s);
    auto* const estado = De<QComboBox>(dialogo, u"cmbValor4"_s);
    QTest::keyClicks(estado, u"z"_s);
    QTest::keyClick(estado, Qt::Key_Return);
    ASSERT_EQ(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 0"_s);
    ASSERT_EQ(estado->currentText(), u"z"_s);
}

TEST_F(DlgConsultaTest, UnErrorDeLaBaseSeMuestraYSeSigue) {
    catalog::Consulta consulta(kMenu, central_.Ado());
    DlgConsulta dialogo(consulta, central_.Dialogos());
    dialogo.show();
    De<QPushButton>(dialogo, u"cmdConsultar"_s)->click();
    auto* const nombre = De<QLineEdit>(dialogo, u"txtValor1"_s);
    nombre->setText(u"Bar"_s);
    QTest::keyClick(nombre, Qt::Key_Return);
    ASSERT_EQ(central_.Dialogos().Mostrados().size(), 1);
    ASSERT_TRUE(central_.Dialogos().Mostrados()[0].contains(u"Nombre_Menuu"_s));
    ASSERT_EQ(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 0"_s);
    ASSERT_TRUE(!De<QPushButton>(dialogo, u"cmdExcel"_s)->isEnabled());
    nombre->clear();
    QTest::keyClick(nombre, Qt::Key_Return);
    ASSERT_EQ(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 3"_s);
}

TEST_F(DlgConsultaTest, EntrePideDosValoresYVacioNinguno) {
    catalog::Consulta consulta(kProducto, central_.Ado());
    DlgConsulta dialogo(consulta, central_.Dialogos());
    dialogo.show();
    auto* const operador = De<QComboBox>(dialogo, u"cmbOperador0"_s);
    auto* const hasta = De<QLineEdit>(dialogo, u"txtHasta0"_s);
    ASSERT_TRUE(!hasta->isVisible());
    operador->setCurrentText(u"entre"_s);
    ASSERT_TRUE(hasta->isVisible());
    De<QLineEdit>(dialogo, u"txtValor0"_s)->setText(u"301"_s);
    hasta->setText(u"305"_s);
    QTest::keyClick(hasta, Qt::Key_Return);
    ASSERT_EQ(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 5"_s);
    operador->setCurrentText(u"vacío"_s);
    ASSERT_TRUE(!hasta->isVisible());
    ASSERT_TRUE(!De<QLineEdit>(dialogo, u"txtValor0"_s)->isEnabled());
}

TEST_F(DlgConsultaTest, ExportaDondeSeLePide) {
    catalog::Consulta consulta(kProducto, central_.Ado());
    DlgConsulta dialogo(consulta, central_.Dialogos());
    dialogo.show();
    De<QPushButton>(dialogo, u"cmdConsultar"_s)->click();
    const QString archivo = central_.Archivo(u"salida.csv"_s);
    QTimer::singleShot(0, &dialogo, [&] {
        auto* const archivos = De<QFileDialog>(dialogo, u"dlgArchivo"_s);
        ASSERT_EQ(archivos->windowTitle(), u"Exportar a CSV"_s);
        archivos->selectFile(archivo);
        QMetaObject::invokeMethod(archivos, "accept");
    });
    De<QPushButton>(dialogo, u"cmdCsv"_s)->click();
    QFile leido(archivo);
    ASSERT_TRUE(leido.open(QIODevice::ReadOnly));
    ASSERT_EQ(leido.readAll().count("\r\n"), 104);
    ASSERT_TRUE(De<QLabel>(dialogo, u"lblAviso"_s)->text().contains(u"103 renglones"_s));
}

TEST_F(DlgConsultaTest, RecuerdaSuTamano) {
    catalog::Consulta consulta(kMenu, central_.Ado());
    DlgConsulta primero(consulta, central_.Dialogos());
    primero.show();
    const QSize tamano(primero.width(), primero.height() - 77);
    primero.resize(tamano);
    primero.reject();
    DlgConsulta segundo(consulta, central_.Dialogos());
    segundo.show();
    ASSERT_EQ(segundo.height(), tamano.height());
}

TEST_F(DlgConsultaTest, BuscarConElTeclado) {
    const auto filas = central_.Abrir(u"SELECT * FROM Producto"_s);
    catalog::Buscador buscador(
        filas, {{u"Clave"_s, u"ID_Producto"_s}, {u"Nombre"_s, u"Nombre_Completo"_s}});
    DlgBuscar dialogo(buscador);
    QSignalSpy hallados(&dialogo, &DlgBuscar::Hallado);
    dialogo.show();
    auto* const texto = De<QLineEdit>(dialogo, u"txtBuscar"_s);
    auto* const resultado = De<QLabel>(dialogo, u"lblResultado"_s);
    ASSERT_EQ(dialogo.focusWidget(), texto);
    const auto clave = [&filas] { return filas->Campo(0)->toInt(); };
    QTest::keyClicks(texto, u"POZOLE"_s);
    QTest::keyClick(texto, Qt::Key_Return);
    ASSERT_EQ(clave(), 203);
    QTest::keyClick(texto, Qt::Key_Return);
    ASSERT_EQ(clave(), 204);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialogo));
    QTest::keyClick(texto, Qt::Key_F3);
    ASSERT_EQ(clave(), 203);
    ASSERT_TRUE(resultado->text().startsWith(u"Se siguió desde el principio."_s));
    ASSERT_EQ(hallados.size(), 3);
    De<QComboBox>(dialogo, u"cmbCampo"_s)->setCurrentIndex(1);
    QTest::keyClick(texto, Qt::Key_Return);
    ASSERT_EQ(resultado->text(), u"No se encontró «POZOLE»."_s);
    ASSERT_EQ(clave(), 203);
    ASSERT_EQ(hallados.size(), 3);
    QTest::keyClick(texto, Qt::Key_Escape);
    ASSERT_TRUE(!dialogo.isVisible());
}

TEST_F(DlgConsultaTest, CadaControlTieneSusNombres) {
    catalog::Consulta consulta(kProducto, central_.Ado());
    DlgConsulta dialogo(consulta, central_.Dialogos());
    for (const QWidget* control : dialogo.findChildren<QWidget*>()) {
        const bool propio = qobject_cast<const QPushButton*>(control) != nullptr ||
                            qobject_cast<const QComboBox*>(control) != nullptr ||
                            qobject_cast<const QLabel*>(control) != nullptr ||
                            qobject_cast<const QTableView*>(control) != nullptr;
        if (!propio || control->objectName().startsWith(u"qt_"_s)) continue;
        if (qobject_cast<const QComboBox*>(control->parent()->parent()) != nullptr) continue;
        ASSERT_TRUE(!control->objectName().isEmpty() && !control->accessibleName().isEmpty());
    }
}

}  // namespace
}  // namespace quimo::ui
