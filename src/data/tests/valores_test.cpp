#include "data/valores.h"

#include <gtest/gtest.h>

#include "data/valores_escritos.h"

using namespace Qt::StringLiterals;

namespace quimo::data {
namespace {

struct Numero {
    const char16_t* escrito = nullptr;
    const char* leido = nullptr;  // "" is refused
};
class LeerNumeroTest : public testing::TestWithParam<Numero> {};
TEST_P(LeerNumeroTest, EntiendeComaYPunto) {
    const auto numero = LeerNumero(QString::fromUtf16(GetParam().escrito));
    EXPECT_EQ(numero ? numero->ATexto() : "", GetParam().leido);
    const auto escrito = NumeroEscrito(QString::fromUtf16(GetParam().escrito));
    EXPECT_EQ(escrito.value_or(QString()).toStdString(), GetParam().leido);
}
INSTANTIATE_TEST_SUITE_P(
    Numeros, LeerNumeroTest,
    testing::Values(Numero{u"1234.5", "1234.5"}, Numero{u"1234,5", "1234.5"},
                    Numero{u"$1,234.50", "1234.50"}, Numero{u"1.234,50", "1234.50"},
                    Numero{u"1,234", "1234"}, Numero{u"0,125", "0.125"}, Numero{u"1.234", "1.234"},
                    Numero{u"12,5", "12.5"}, Numero{u"1,234,567", "1234567"},
                    Numero{u" - 5 ", "-5"}, Numero{u"+7", "7"}, Numero{u".5", "0.5"},
                    Numero{u"5.", "5"}, Numero{u"1.2.3", ""}, Numero{u"1,2,3", ""},
                    Numero{u"12,34.5", ""}, Numero{u"1,234.5,6", ""}, Numero{u"--1", ""},
                    Numero{u"", ""}, Numero{u".", ""}, Numero{u"12a", ""}, Numero{u"12x", ""},
                    Numero{u"😀", ""}, Numero{u"1e5", ""},
                    Numero{u"99999999999999999999999999999999999999999", ""}));

TEST(LeerFechaTest, SoloLasQueExisten) {
    EXPECT_EQ(LeerFecha(u" 1/2/2026 "_s), QDate(2026, 2, 1));
    EXPECT_EQ(LeerFecha(u"29-02-2024"_s), QDate(2024, 2, 29));
    for (const QString& mala :
         {u"29/02/2026"_s, u"31/04/2026"_s, u"1/13/2026"_s, u"01/01/26"_s, u"2026/01/01"_s,
          u"01/01-2026"_s, u"01/01/1752"_s, u"01/01/0000"_s, u"hoy"_s, QString()}) {
        EXPECT_FALSE(LeerFecha(mala)) << mala.toStdString();
    }
}

TEST(PlegarTest, LosAcentosCaenYLaEneQueda) {
    EXPECT_EQ(Plegar(u"CAFÉ Ü"_s), u"cafe u"_s);
    EXPECT_EQ(Plegar(u"NIÑO"_s), u"niño"_s);
    EXPECT_EQ(Plegar(u"nin\u0303o"_s), u"niño"_s);
    EXPECT_NE(Plegar(u"piña"_s), Plegar(u"pina"_s));
}

TEST(FechaDeTextoTest, VuelveLoQueSeEscribioConOSinHora) {
    const QDateTime momento({2026, 2, 1}, {13, 5, 9}, Qt::UTC);
    EXPECT_EQ(FechaDeTexto(TextoDeValor(momento)), momento.date());
    EXPECT_EQ(FechaDeTexto(TextoDeFecha({104, 12, 31})), QDate(104, 12, 31));
    for (const QString& mala : {u""_s, u"31/02/2026"_s, u"1/2/2026"_s, u"2026-02-01"_s}) {
        EXPECT_EQ(FechaDeTexto(mala), std::nullopt) << mala.toStdString();
    }
}

TEST(ValoresTest, CadaValorSeEscribeParaSentenciasPersonasYProgramas) {
    const struct {
        QVariant valor;
        QString sentencia;
        QString visible;
        QString plano;
    } casos[] = {
        {{}, u"NULL"_s, u""_s, u""_s},
        {true, u"1"_s, u"Sí"_s, u"Sí"_s},
        {-7, u"-7"_s, u"-7"_s, u"-7"_s},
        {12.5, u"12.5"_s, u"12.5"_s, u"12.5"_s},
        {u"D'oro"_s, u"'D''oro'"_s, u"D'oro"_s, u"D'oro"_s},
        {QVariant::fromValue(base::Dinero::DeDiezmilesimas(12345000)), u"1234.5000"_s,
         u"$1,234.50"_s, u"1234.50"_s},
        {QVariant::fromValue(base::Dinero::DeDiezmilesimas(123456)), u"12.3456"_s, u"$12.35"_s,
         u"12.3456"_s},
        {QVariant::fromValue(base::Decimal{4250, 2}), u"42.50"_s, u"42.50"_s, u"42.50"_s},
        {QDateTime({2026, 2, 1}, {0, 0}, Qt::UTC), u"'01/02/2026'"_s, u"01/02/2026"_s,
         u"01/02/2026"_s},
        {QDateTime({2026, 2, 1}, {13, 5, 9}, Qt::UTC), u"'01/02/2026 13:05:09'"_s,
         u"01/02/2026 13:05:09"_s, u"01/02/2026 13:05:09"_s},
    };
    for (const auto& caso : casos) {
        EXPECT_EQ(LiteralSql(caso.valor), caso.sentencia);
        EXPECT_EQ(TextoVisible(caso.valor), caso.visible);
        EXPECT_EQ(TextoPlano(caso.valor), caso.plano);
    }
}

}  // namespace
}  // namespace quimo::data
