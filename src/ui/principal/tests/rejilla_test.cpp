#include "ui/controles/rejilla.h"

#include <array>

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

#include "base/decimal.h"
#include "base/dinero.h"

namespace quimo::ui {
namespace {

using namespace Qt::StringLiterals;
using grid::TipoCelda;

constexpr int kNombre = 0;
constexpr int kPrecio = 1;
constexpr int kClave = 2;
constexpr int kActivo = 3;
constexpr int kTipo = 4;
constexpr int kMarca = 5;

QVector<ColumnaRejilla> Columnas() {
    return {
        {.titulo = u"Nombre"_s, .largo_max = 8, .editable = true},
        {.titulo = u"Precio"_s, .tipo = TipoCelda::Moneda, .editable = true},
        {.titulo = u"Clave"_s, .tipo = TipoCelda::Numero, .decimales = 0, .oculta = true},
        {.titulo = u"Activo"_s, .tipo = TipoCelda::Casilla, .editable = true},
        {.titulo = u"Tipo"_s,
         .tipo = TipoCelda::Lista,
         .editable = true,
         .lista = {{u"Bebida"_s, 7}, {u"Comida"_s, 9}}},
        {.titulo = u"Marca"_s, .oculta = true},
    };
}

class RejillaTest : public testing::Test {
protected:
    void SetUp() override {
        rejilla_.PonerColumnas(Columnas());
        rejilla_.PonerColumnaMarca(kMarca);
        rejilla_.PonerRenglones(2);
        for (int fila = 0; fila < 2; ++fila) {
            rejilla_.Poner(fila, kNombre, fila == 0 ? u"Agua"_s : u"Sopa\tdel día"_s);
            rejilla_.Poner(fila, kPrecio,
                           QVariant::fromValue(base::Dinero::DeDiezmilesimas(12345650)));
            rejilla_.Poner(fila, kClave, 1000 + fila);
            rejilla_.Poner(fila, kActivo, fila);
            rejilla_.Poner(fila, kTipo, fila == 0 ? 7 : 9);
            rejilla_.Poner(fila, kMarca, u" "_s);
        }
        rejilla_.resize(600, 300);
        rejilla_.show();
    }
    /// What the cell says after the user typed this into it.
    QString Teclear(int fila, int columna, const QString& texto) {
        rejilla_.PonerActual(fila, columna);
        rejilla_.edit(rejilla_.currentIndex());
        auto* const editor = rejilla_.findChild<QLineEdit*>(u"editorCelda"_s);
        if (editor == nullptr) return u"sin editor"_s;
        editor->selectAll();
        QTest::keyClicks(editor, texto);
        QTest::keyClick(editor, Qt::Key_Return);
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return rejilla_.Texto(fila, columna);
    }
    QString Marcas() const {
        QString marcas;
        for (int fila = 0; fila < rejilla_.Renglones(); ++fila)
            marcas += rejilla_.Valor(fila, kMarca).toString();
        return marcas;
    }

    Rejilla rejilla_{u"sprDatos"_s, u"Datos"_s};
};

TEST_F(RejillaTest, EachTypeIsShownAndTypedInItsOwnWay) {
    EXPECT_EQ(rejilla_.Texto(0, kPrecio), u"$1,234.57"_s);
    EXPECT_EQ(rejilla_.Texto(0, kClave), u"1,000"_s);
    EXPECT_EQ(rejilla_.Texto(1, kTipo), u"Comida"_s);
    EXPECT_TRUE(rejilla_.isColumnHidden(kClave) && rejilla_.isColumnHidden(kMarca));
    EXPECT_EQ(Teclear(0, kPrecio, u"$2,500.5"_s), u"$2,500.50"_s);
    EXPECT_EQ(rejilla_.Valor(0, kPrecio).toString(), u"2500.5"_s);
    EXPECT_EQ(Teclear(0, kPrecio, u"mucho"_s), u"$2,500.50"_s);
    EXPECT_EQ(Teclear(0, kNombre, u"Agua de jamaica"_s), u"Agua de "_s);
    EXPECT_EQ(Teclear(0, kClave, u"5"_s), u"sin editor"_s);
    rejilla_.Bloquear(1, kNombre);
    EXPECT_EQ(Teclear(1, kNombre, u"x"_s), u"sin editor"_s);
    rejilla_.PonerTipo(1, kPrecio, TipoCelda::Estatico);
    EXPECT_EQ(Teclear(1, kPrecio, u"x"_s), u"sin editor"_s);
    rejilla_.PonerSoloLectura(true);
    EXPECT_EQ(Teclear(0, kNombre, u"x"_s), u"sin editor"_s);
}

TEST_F(RejillaTest, ListsAndCheckBoxesKeepTheirValues) {
    rejilla_.PonerActual(0, kTipo);
    rejilla_.edit(rejilla_.currentIndex());
    auto* const lista = rejilla_.findChild<QComboBox*>(u"editorCelda"_s);
    ASSERT_NE(lista, nullptr);
    EXPECT_EQ(lista->currentText(), u"Bebida"_s);
    lista->setCurrentIndex(1);
    QTest::keyClick(lista, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(rejilla_.Valor(0, kTipo).toInt(), 9);
    const QSignalSpy cambios(&rejilla_, &Rejilla::CeldaCambiada);
    rejilla_.PonerActual(0, kActivo);
    QTest::keyClick(&rejilla_, Qt::Key_Space);
    EXPECT_EQ(rejilla_.Valor(0, kActivo).toInt(), 1);
    EXPECT_EQ(cambios.size(), 1);
    EXPECT_EQ(Marcas(), u"M "_s);
}

TEST_F(RejillaTest, ChangeMarksFollowTheUserOnly) {
    rejilla_.Poner(0, kNombre, u"Otra"_s);
    EXPECT_EQ(Marcas(), u"  "_s);
    Teclear(0, kNombre, u"Otra"_s);
    EXPECT_EQ(Marcas(), u"  "_s) << "the same text again is no change";
    Teclear(1, kNombre, u"Caldo"_s);
    const int nuevo = rejilla_.AgregarRenglon();
    Teclear(nuevo, kNombre, u"Nuevo"_s);
    EXPECT_EQ(Marcas(), u" MN"_s);
    rejilla_.BorrarRenglon(1);
    EXPECT_TRUE(rejilla_.isRowHidden(1));
    rejilla_.BorrarRenglon(nuevo);
    EXPECT_EQ(Marcas(), u" B"_s);
    rejilla_.PonerRenglones(0);
    rejilla_.PonerRenglones(2);
    EXPECT_FALSE(rejilla_.isRowHidden(1));
}

TEST_F(RejillaTest, CopiesPlainTextOfWhatIsSeenAndPastesWhatFits) {
    rejilla_.selectAll();
    QTest::keySequence(&rejilla_, QKeySequence::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(),
              u"Agua\t1234.57\t0\tBebida\nSopa del día\t1234.57\t1\tComida"_s);
    rejilla_.BorrarRenglon(1);
    rejilla_.selectAll();
    EXPECT_EQ(rejilla_.TextoSeleccionado(), u"Agua\t1234.57\t0\tBebida"_s);

    rejilla_.AgregarRenglon();
    rejilla_.PonerActual(0, kNombre);
    QApplication::clipboard()->setText(
        u"Té\tgratis\t1\tcomida\tsobra\r\nPan\t8.5\t0\tnada\r\nno cabe\r\n"_s);
    QTest::keySequence(&rejilla_, QKeySequence::Paste);
    rejilla_.selectAll();
    EXPECT_EQ(rejilla_.TextoSeleccionado(), u"Té\t1234.57\t1\tComida\nPan\t8.50\t0\t"_s);
    EXPECT_EQ(Marcas(), u"MBN"_s);
}

}  // namespace
}  // namespace quimo::ui
