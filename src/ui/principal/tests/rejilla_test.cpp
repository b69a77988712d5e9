#include "ui/controles/rejilla.h"

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

QVector<ColumnaRejilla> Columnas() {
    return {
        {.titulo = u"Nombre"_s, .editable = true},
        {.titulo = u"Precio"_s, .tipo = TipoCelda::Moneda, .editable = true},
        {.titulo = u"Clave"_s, .tipo = TipoCelda::Numero, .decimales = 0, .oculta = true},
        {.titulo = u"Activo"_s, .tipo = TipoCelda::Casilla, .editable = true},
        {.titulo = u"Tipo"_s,
         .tipo = TipoCelda::Lista,
         .editable = true,
         .lista = {{u"Bebida"_s, 7}, {u"Comida"_s, 9}}},
    };
}

class RejillaTest : public testing::Test {
protected:
    void SetUp() override {
        rejilla_.PonerColumnas(Columnas());
        rejilla_.PonerRenglones(2);
        for (int fila = 0; fila < 2; ++fila) {
            rejilla_.Poner(fila, kNombre, fila == 0 ? u"Agua"_s : u"Sopa\tdel día"_s);
            rejilla_.Poner(fila, kPrecio,
                           QVariant::fromValue(base::Dinero::DeDiezmilesimas(12345650)));
            rejilla_.Poner(fila, kClave, 1000 + fila);
            rejilla_.Poner(fila, kActivo, fila);
            rejilla_.Poner(fila, kTipo, fila == 0 ? 7 : 9);
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

    Rejilla rejilla_{u"sprDatos"_s, u"Datos"_s};
};

TEST_F(RejillaTest, CadaTipoSeMuestraYSeEscribeASuManera) {
    EXPECT_EQ(rejilla_.Texto(0, kPrecio), u"$1,234.57"_s);
    EXPECT_EQ(rejilla_.Texto(0, kClave), u"1,000"_s);
    EXPECT_EQ(rejilla_.Texto(1, kTipo), u"Comida"_s);
    EXPECT_TRUE(rejilla_.isColumnHidden(kClave));
    EXPECT_EQ(Teclear(0, kPrecio, u"$2,500.5"_s), u"$2,500.50"_s);
    EXPECT_EQ(rejilla_.Valor(0, kPrecio).toString(), u"2500.5"_s);
    EXPECT_EQ(Teclear(0, kPrecio, u"mucho"_s), u"$2,500.50"_s);
    EXPECT_EQ(Teclear(0, kNombre, u"Agua de jamaica"_s), u"Agua de jamaica"_s);
    EXPECT_EQ(Teclear(0, kClave, u"5"_s), u"sin editor"_s);
    rejilla_.Bloquear(1, kNombre);
    EXPECT_EQ(Teclear(1, kNombre, u"x"_s), u"sin editor"_s);
    rejilla_.PonerSoloLectura(true);
    EXPECT_EQ(Teclear(0, kNombre, u"x"_s), u"sin editor"_s);
}

TEST_F(RejillaTest, LasListasYLasCasillasGuardanSuValor) {
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
}

TEST_F(RejillaTest, SoloLoQueElUsuarioCambiaSeAnuncia) {
    const QSignalSpy cambios(&rejilla_, &Rejilla::CeldaCambiada);
    const QSignalSpy rechazos(&rejilla_, &Rejilla::CeldaRechazada);
    rejilla_.Poner(0, kNombre, u"Otra"_s);
    Teclear(0, kNombre, u"Otra"_s);
    EXPECT_EQ(cambios.size(), 0) << "the same text again is no change";
    Teclear(1, kNombre, u"Caldo"_s);
    EXPECT_EQ(cambios.size(), 1);
    Teclear(0, kPrecio, u"mucho"_s);
    EXPECT_EQ(cambios.size(), 1);
    ASSERT_EQ(rechazos.size(), 1);
    EXPECT_EQ(rechazos[0], (QVariantList{0, kPrecio, u"mucho"_s}));
}

TEST_F(RejillaTest, SeCopiaElTextoLlanoDeLoQueSeVe) {
    rejilla_.selectAll();
    QTest::keySequence(&rejilla_, QKeySequence::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(),
              u"Agua\t1234.57\t0\tBebida\nSopa del día\t1234.57\t1\tComida"_s);
    rejilla_.setRowHidden(1, true);
    rejilla_.selectAll();
    EXPECT_EQ(rejilla_.TextoSeleccionado(), u"Agua\t1234.57\t0\tBebida"_s);
}

}  // namespace
}  // namespace quimo::ui
