#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "app/comandos/comando.h"
#include "support/dialogos_guion.h"

using namespace Qt::StringLiterals;

namespace quimo::app {
namespace {

constexpr qint64 kPagina = 4096;

/// A terminal's file in a folder of its own, and mdb with words about it.
class OrdenMdbTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(
            QFile::copy(QStringLiteral(QUIMO_TEST_DATA "/terminals/BARRA/Quimo_Terminal.mdb"),
                        Ruta(u"t.mdb"_s)));
        QFile::setPermissions(Ruta(u"t.mdb"_s), QFile::ReadOwner | QFile::WriteOwner);
    }
    QString Ruta(const QString& nombre) const { return carpeta_.filePath(nombre); }
    Estado Mdb(const QStringList& palabras) const { return OrdenMdb({palabras, {}}, {reloj_}); }
    void Escribir(qint64 lugar, const QByteArray& bytes) {
        QFile archivo(Ruta(u"t.mdb"_s));
        ASSERT_TRUE(archivo.open(QIODevice::ReadWrite));
        ASSERT_TRUE(archivo.seek(lugar));
        ASSERT_EQ(archivo.write(bytes), bytes.size());
    }
    QTemporaryDir carpeta_;
    pruebas::RelojFijo reloj_;
};

TEST_F(OrdenMdbTest, RepararDiceConSuEstadoSiLaCopiaEstaCompleta) {
    const QStringList reparar = {u"reparar"_s, Ruta(u"t.mdb"_s), Ruta(u"sana.mdb"_s)};
    Escribir(kPagina, QByteArray(kPagina, '\0'));  // the map of free pages
    EXPECT_EQ(Mdb({u"verificar"_s, Ruta(u"t.mdb"_s)}), kFallo);
    EXPECT_EQ(Mdb(reparar), kHecho);
    EXPECT_EQ(Mdb({u"verificar"_s, Ruta(u"sana.mdb"_s)}), kHecho);
    Escribir(120 * kPagina, QByteArray(80 * kPagina, '\0'));
    EXPECT_EQ(Mdb(reparar), kIncompleto);
    EXPECT_EQ(Mdb({u"verificar"_s, Ruta(u"sana.mdb"_s)}), kHecho);
    Escribir(0, QByteArray(kPagina, '\0'));
    EXPECT_EQ(Mdb(reparar), kFallo);
    EXPECT_EQ(Mdb({u"reparar"_s, Ruta(u"t.mdb"_s)}), kMalUso);
}

}  // namespace
}  // namespace quimo::app
