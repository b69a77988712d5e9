#include "ui/editores/dlg_consulta.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QFileDialog>
#include <QHeaderView>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "support/central_prueba.h"
#include "ui/controles/aspecto.h"
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

}  // namespace

class DlgConsultaTest final : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, ajustes_.path());
        PonerIdioma(*qApp);
    }
    void init() {
        central_ = std::make_unique<pruebas::CentralPrueba>();
        QSettings(u"QUIMO"_s, u"QUIMO"_s).clear();
    }
    void cleanup() {
        central_.reset();
        QVERIFY(!testing::UnitTest::GetInstance()->Failed());
    }

    void ConElTecladoSeEligeUnRenglon() {
        catalog::Consulta consulta(kProducto, central_->Ado());
        DlgConsulta dialogo(consulta, central_->Dialogos());
        QTimer::singleShot(0, &dialogo, [&dialogo] {
            QCOMPARE(dialogo.focusWidget(), De<QLineEdit>(dialogo, u"txtValor0"_s));
            auto* const nombre = De<QLineEdit>(dialogo, u"txtValor1"_s);
            QTest::keyClicks(nombre, u"pozole"_s);
            QTest::keyClick(nombre, Qt::Key_Return);
            auto* const tabla = De<QTableView>(dialogo, u"sprResultado"_s);
            QCOMPARE(dialogo.focusWidget(), tabla);
            QCOMPARE(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 2"_s);
            QTest::keyClick(tabla, Qt::Key_Down);
            QTest::keyClick(tabla, Qt::Key_Return);
        });
        QCOMPARE(dialogo.Elegir(), std::optional<QVariant>(204));
        QTimer::singleShot(0, &dialogo, [&dialogo] { QTest::keyClick(&dialogo, Qt::Key_Escape); });
        QCOMPARE(dialogo.Elegir(), std::nullopt);
    }

    void OrdenaYCopiaYLlevaLaClaveDelRenglonMostrado() {
        catalog::Consulta consulta(kProducto, central_->Ado());
        DlgConsulta dialogo(consulta, central_->Dialogos());
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
        QVERIFY(claves.size() > 5);
        tabla->selectRow(1);
        const QString marcada = tabla->currentIndex().data().toString();
        tabla->sortByColumn(2, Qt::DescendingOrder);
        const QStringList existencias = columna(2);
        QVERIFY(std::is_sorted(existencias.begin(), existencias.end(),
                               [](const QString& uno, const QString& otro) {
                                   return uno.toDouble() > otro.toDouble();
                               }));
        QCOMPARE(tabla->currentIndex().siblingAtColumn(0).data().toString(), marcada);
        QTest::keyClick(tabla, Qt::Key_C, Qt::ControlModifier);
        QVERIFY(QApplication::clipboard()->text().startsWith(marcada + u'\t'));
        QCOMPARE(QApplication::clipboard()->text().count(u'\n'), 0);
        tabla->selectAll();
        De<QPushButton>(dialogo, u"cmdCopiar"_s)->click();
        QCOMPARE(QApplication::clipboard()->text().count(u'\n'), claves.size() - 1);
        // The same order after another query.
        De<QPushButton>(dialogo, u"cmdConsultar"_s)->click();
        QCOMPARE(columna(2), existencias);
    }

    void LoMalEscritoSeDiceYElFocoVaAEsaCondicion() {
        catalog::Consulta consulta(kProducto, central_->Ado());
        DlgConsulta dialogo(consulta, central_->Dialogos());
        dialogo.show();
        auto* const existencia = De<QLineEdit>(dialogo, u"txtValor2"_s);
        existencia->setText(u"1.2.3"_s);
        QTest::keyClick(existencia, Qt::Key_Return);
        QCOMPARE(central_->Dialogos().Mostrados(),
                 QStringList{u"[!] |Existencia: «1.2.3» no es un número."_s});
        QCOMPARE(dialogo.focusWidget(), existencia);
        existencia->setText(u"21,50"_s);
        De<QComboBox>(dialogo, u"cmbValor4"_s)->setCurrentText(u"activo"_s);
        QTest::keyClick(existencia, Qt::Key_Return);
        QVERIFY(De<QTableView>(dialogo, u"sprResultado"_s)->model()->rowCount() > 0);
        De<QPushButton>(dialogo, u"cmdLimpiar"_s)->click();
        auto* const paquete = De<QComboBox>(dialogo, u"cmbValor3"_s);
        QTest::keyClick(paquete, Qt::Key_Return);
        QCOMPARE(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 103"_s);
        auto* const estado = De<QComboBox>(dialogo, u"cmbValor4"_s);
        QTest::keyClicks(estado, u"z"_s);
        QTest::keyClick(estado, Qt::Key_Return);
        QCOMPARE(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 0"_s);
        QCOMPARE(estado->currentText(), u"z"_s);
    }

    void UnErrorDeLaBaseSeMuestraYSeSigue() {
        catalog::Consulta consulta(kMenu, central_->Ado());
        DlgConsulta dialogo(consulta, central_->Dialogos());
        dialogo.show();
        De<QPushButton>(dialogo, u"cmdConsultar"_s)->click();
        auto* const nombre = De<QLineEdit>(dialogo, u"txtValor1"_s);
        nombre->setText(u"Bar"_s);
        QTest::keyClick(nombre, Qt::Key_Return);
        QCOMPARE(central_->Dialogos().Mostrados().size(), 1);
        QVERIFY(central_->Dialogos().Mostrados()[0].contains(u"Nombre_Menuu"_s));
        QCOMPARE(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 0"_s);
        QVERIFY(!De<QPushButton>(dialogo, u"cmdExcel"_s)->isEnabled());
        nombre->clear();
        QTest::keyClick(nombre, Qt::Key_Return);
        QCOMPARE(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 3"_s);
    }

    void EntrePideDosValoresYVacioNinguno() {
        catalog::Consulta consulta(kProducto, central_->Ado());
        DlgConsulta dialogo(consulta, central_->Dialogos());
        dialogo.show();
        auto* const operador = De<QComboBox>(dialogo, u"cmbOperador0"_s);
        auto* const hasta = De<QLineEdit>(dialogo, u"txtHasta0"_s);
        QVERIFY(!hasta->isVisible());
        operador->setCurrentText(u"entre"_s);
        QVERIFY(hasta->isVisible());
        De<QLineEdit>(dialogo, u"txtValor0"_s)->setText(u"301"_s);
        hasta->setText(u"305"_s);
        QTest::keyClick(hasta, Qt::Key_Return);
        QCOMPARE(De<QLabel>(dialogo, u"lblRegistros"_s)->text(), u"Registros: 5"_s);
        operador->setCurrentText(u"vacío"_s);
        QVERIFY(!hasta->isVisible());
        QVERIFY(!De<QLineEdit>(dialogo, u"txtValor0"_s)->isEnabled());
    }

    void ExportaDondeSeLePide() {
        catalog::Consulta consulta(kProducto, central_->Ado());
        DlgConsulta dialogo(consulta, central_->Dialogos());
        dialogo.show();
        De<QPushButton>(dialogo, u"cmdConsultar"_s)->click();
        const QString archivo = central_->Archivo(u"salida.csv"_s);
        QTimer::singleShot(0, &dialogo, [&] {
            auto* const archivos = De<QFileDialog>(dialogo, u"dlgArchivo"_s);
            QCOMPARE(archivos->windowTitle(), u"Exportar a CSV"_s);
            archivos->selectFile(archivo);
            QMetaObject::invokeMethod(archivos, "accept");
        });
        De<QPushButton>(dialogo, u"cmdCsv"_s)->click();
        QFile leido(archivo);
        QVERIFY(leido.open(QIODevice::ReadOnly));
        QCOMPARE(leido.readAll().count("\r\n"), 104);
        QVERIFY(De<QLabel>(dialogo, u"lblAviso"_s)->text().contains(u"103 renglones"_s));
    }

    void RecuerdaSuTamano() {
        catalog::Consulta consulta(kMenu, central_->Ado());
        DlgConsulta primero(consulta, central_->Dialogos());
        primero.show();
        const QSize tamano(primero.width(), primero.height() - 77);
        primero.resize(tamano);
        primero.reject();
        DlgConsulta segundo(consulta, central_->Dialogos());
        segundo.show();
        QCOMPARE(segundo.height(), tamano.height());
    }

    void BuscarConElTeclado() {
        const auto filas = central_->Abrir(u"SELECT * FROM Producto"_s);
        catalog::Buscador buscador(
            filas, {{u"Clave"_s, u"ID_Producto"_s}, {u"Nombre"_s, u"Nombre_Completo"_s}});
        DlgBuscar dialogo(buscador);
        QSignalSpy hallados(&dialogo, &DlgBuscar::Hallado);
        dialogo.show();
        auto* const texto = De<QLineEdit>(dialogo, u"txtBuscar"_s);
        auto* const resultado = De<QLabel>(dialogo, u"lblResultado"_s);
        QCOMPARE(dialogo.focusWidget(), texto);
        const auto clave = [&filas] { return filas->Campo(0)->toInt(); };
        QTest::keyClicks(texto, u"POZOLE"_s);
        QTest::keyClick(texto, Qt::Key_Return);
        QCOMPARE(clave(), 203);
        QTest::keyClick(texto, Qt::Key_Return);
        QCOMPARE(clave(), 204);
        QVERIFY(QTest::qWaitForWindowActive(&dialogo));
        QTest::keyClick(texto, Qt::Key_F3);
        QCOMPARE(clave(), 203);
        QVERIFY(resultado->text().startsWith(u"Se siguió desde el principio."_s));
        QCOMPARE(hallados.size(), 3);
        De<QComboBox>(dialogo, u"cmbCampo"_s)->setCurrentIndex(1);
        QTest::keyClick(texto, Qt::Key_Return);
        QCOMPARE(resultado->text(), u"No se encontró «POZOLE»."_s);
        QCOMPARE(clave(), 203);
        QCOMPARE(hallados.size(), 3);
        QTest::keyClick(texto, Qt::Key_Escape);
        QVERIFY(!dialogo.isVisible());
    }

    void CadaControlTieneSusNombres() {
        catalog::Consulta consulta(kProducto, central_->Ado());
        DlgConsulta dialogo(consulta, central_->Dialogos());
        for (const QWidget* control : dialogo.findChildren<QWidget*>()) {
            const bool propio = qobject_cast<const QPushButton*>(control) != nullptr ||
                                qobject_cast<const QComboBox*>(control) != nullptr ||
                                qobject_cast<const QLabel*>(control) != nullptr ||
                                qobject_cast<const QTableView*>(control) != nullptr;
            if (!propio || control->objectName().startsWith(u"qt_"_s)) continue;
            if (qobject_cast<const QComboBox*>(control->parent()->parent()) != nullptr) continue;
            QVERIFY(!control->objectName().isEmpty() && !control->accessibleName().isEmpty());
        }
    }

private:
    QTemporaryDir ajustes_;
    std::unique_ptr<pruebas::CentralPrueba> central_;
};

}  // namespace quimo::ui

QTEST_MAIN(quimo::ui::DlgConsultaTest)
#include "dlg_consulta_test.moc"
