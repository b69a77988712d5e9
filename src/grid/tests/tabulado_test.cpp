#include "grid/tabulado.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quimo::grid {
namespace {

TEST(TabuladoTest, NingunaCeldaParteSuRenglon) {
    EXPECT_EQ(LineaTabulada({u"a\tb"_s, u""_s, u"c\r\nd"_s}), u"a b\t\tc  d"_s);
}

TEST(TabuladoTest, SeLeeLoQueCopianOtrosProgramas) {
    const struct {
        QString texto;
        QVector<QStringList> lineas;
    } casos[] = {
        {u""_s, {{u""_s}}},
        {u"a\tb\r\nc\r\n"_s, {{u"a"_s, u"b"_s}, {u"c"_s}}},
        {u"a\n\n\tb"_s, {{u"a"_s}, {u""_s}, {u""_s, u"b"_s}}},
    };
    for (const auto& caso : casos)
        EXPECT_EQ(LeerTabulado(caso.texto), caso.lineas) << caso.texto.toStdString();
    EXPECT_TRUE(LeerTabulado(QString(1024 * 1024, u'x')));
    EXPECT_FALSE(LeerTabulado(QString(1024 * 1024 + 1, u'x')));
}

}  // namespace
}  // namespace quimo::grid
