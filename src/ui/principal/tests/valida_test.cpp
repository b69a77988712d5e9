#include <array>

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>
#include <QVBoxLayout>

#include "support/cajas_guion.h"
#include "support/dialogos_guion.h"
#include "ui/controles/aspecto.h"
#include "ui/controles/clstxt_valida.h"

namespace quimo::ui {
namespace {

using namespace Qt::StringLiterals;

struct Caso {
    const char16_t* etiqueta = nullptr;
    const char16_t* queda = nullptr;  ///< of "aÑ 9.-é"
};

constexpr std::array<Caso, 7> kCasos = {{
    {u"NoVacioMayusculas", u"AÑ 9.-É"},
    {u"Numerico", u"9."},
    {u"NumericoNoVacio", u"9."},
    {u"NumericoNoSignosNoVacio", u"9"},
    {u"NoVacioNoSignos", u"a 9"},
    {u"NoVacio!", u"aÑ 9.-é"},
    {u"IP", u"9."},
}};

/// One box after the other with each tag, and one without, as an editor has them.
class ValidaTest : public testing::Test {
protected:
    void SetUp() override {
        auto* const columna = new QVBoxLayout(&ventana_);
        for (const Caso& caso : kCasos) {
            auto* const caja = new QLineEdit(&ventana_);
            caja->setProperty(kEtiqueta, QString::fromUtf16(caso.etiqueta));
            columna->addWidget(caja);
            cajas_ << caja;
        }
        libre_ = new QLineEdit(&ventana_);
        columna->addWidget(libre_);
        Clstxt_valida::AtarTodas(ventana_, dialogos_);
        ventana_.show();
        ventana_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&ventana_));
    }
    /// What is told when the box is left with this text by the Tab key; the focus goes to the next.
    QStringList Dejar(QLineEdit* caja, const QString& texto) {
        dialogos_.Olvidar();
        caja->setFocus();
        caja->setText(texto);
        QTest::keyClick(caja, Qt::Key_Tab);
        QApplication::processEvents();
        return dialogos_.Mostrados();
    }

    pruebas::DialogosGuion dialogos_;
    QWidget ventana_;
    QVector<QLineEdit*> cajas_;
    QLineEdit* libre_ = nullptr;
};

TEST_F(ValidaTest, LoEscritoYLoPegadoSeFiltranIgual) {
    const QString escrito = u"aÑ 9.-é"_s;
    for (qsizetype i = 0; i < cajas_.size(); ++i) {
        const QString queda = QString::fromUtf16(kCasos[static_cast<std::size_t>(i)].queda);
        const std::string etiqueta = cajas_[i]->property(kEtiqueta).toString().toStdString();
        QLineEdit* const caja = cajas_[i];
        pruebas::Teclear(*caja, escrito);
        EXPECT_EQ(caja->text(), queda) << "typed: " << etiqueta;
        caja->clear();
        QApplication::clipboard()->setText(escrito);
        QTest::keySequence(caja, QKeySequence::Paste);
        EXPECT_EQ(caja->text(), queda) << "pasted: " << etiqueta;
        caja->clear();
        caja->paste();  // what the context menu does
        EXPECT_EQ(caja->text(), queda) << "pasted from the menu: " << etiqueta;
        EXPECT_EQ(caja->cursorPosition(), queda.size()) << etiqueta;
        QTest::keyClick(caja, Qt::Key_Backspace);
        EXPECT_EQ(caja->text(), queda.chopped(1)) << etiqueta;
    }
}

TEST_F(ValidaTest, SoloSeTocaLoQueElUsuarioEscribe) {
    QLineEdit* const caja = cajas_[4];  // no signs
    caja->setText(u"Piña-1 ñ"_s);
    EXPECT_EQ(caja->text(), u"Piña-1 ñ"_s);
    caja->setCursorPosition(4);
    pruebas::Teclear(*caja, u"é2-"_s);
    EXPECT_EQ(caja->text(), u"Piña2-1 ñ"_s);
    EXPECT_EQ(caja->cursorPosition(), 5);
    caja->setText(u"Ñandú"_s);
    EXPECT_EQ(caja->text(), u"Ñandú"_s);
    caja->setSelection(0, 5);
    QApplication::clipboard()->setText(QString(10000, u'é') + u'b');
    caja->paste();
    EXPECT_EQ(caja->text(), u"b"_s);
}

TEST_F(ValidaTest, DejarUnaCajaAvisaYSoloUnaDireccionMalaRetieneElFoco) {
    const QStringList vacio{u"[!] |Este campo no puede estar vacío"_s};
    const QStringList mala{u"[!] |La direcciòn IP no es válida"_s};
    EXPECT_EQ(Dejar(cajas_[2], {}), vacio);
    EXPECT_TRUE(cajas_[3]->hasFocus());
    EXPECT_EQ(Dejar(cajas_[1], {}), QStringList());
    QLineEdit* const ip = cajas_[6];
    EXPECT_EQ(Dejar(ip, u"192.168.1.10"_s), QStringList());
    EXPECT_TRUE(libre_->hasFocus());
    EXPECT_EQ(Dejar(ip, u"192.168.1.256"_s), mala);
    EXPECT_TRUE(ip->hasFocus());
    // The box that only lent the focus for a moment has nothing to say about it.
    EXPECT_EQ(Dejar(ip, u"1.2.3"_s), mala);
    ip->setText(u"1..2.3"_s);
    EXPECT_EQ(Dejar(ip, u"1..2.3"_s), QStringList());
    cajas_[2]->setReadOnly(true);
    EXPECT_EQ(Dejar(cajas_[2], {}), QStringList()) << "locked: there is nobody to blame";
}

TEST(AspectoTest, LoQueDiceQtEstaEnEspanol) {
    QLineEdit caja;
    QMenu* const menu = caja.createStandardContextMenu();
    QStringList textos;
    for (const QAction* const accion : menu->actions())
        textos << accion->text().section(u'\t', 0, 0).remove(u'&');
    delete menu;
    EXPECT_TRUE(textos.contains(u"Copiar"_s) && textos.contains(u"Pegar"_s))
        << textos.join(u' ').toStdString();
    EXPECT_EQ(QCoreApplication::translate("QAbstractFileIconProvider", "Folder"), u"Carpeta"_s);
    EXPECT_EQ(QLocale().monthName(11), u"noviembre"_s);
}

}  // namespace
}  // namespace quimo::ui
