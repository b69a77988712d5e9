#include "grid/formato.h"

#include <gtest/gtest.h>

#include "base/decimal.h"
#include "base/dinero.h"

using namespace Qt::StringLiterals;

namespace quimo::grid {
namespace {

TEST(FormatoTest, LosNumerosSonExactosVenganComoVengan) {
    const struct {
        QVariant valor;
        TipoCelda tipo;
        int decimales;
        QString visible;
        QString plano;
    } casos[] = {
        {{}, TipoCelda::Moneda, 2, u"$0.00"_s, u"0.00"_s},
        {u"-1234567.895"_s, TipoCelda::Moneda, 2, u"-$1,234,567.90"_s, u"-1234567.90"_s},
        {u"999"_s, TipoCelda::Numero, 0, u"999"_s, u"999"_s},
        {u"-100"_s, TipoCelda::Numero, 0, u"-100"_s, u"-100"_s},
        {u"1000"_s, TipoCelda::Numero, 0, u"1,000"_s, u"1000"_s},
        {u"1000"_s, TipoCelda::Entero, 2, u"1,000"_s, u"1000"_s},
        {12.5, TipoCelda::Porcentaje, 2, u"12.50%"_s, u"12.50"_s},
        {true, TipoCelda::Numero, 0, u"1"_s, u"1"_s},
        {QVariant::fromValue(base::Dinero::DeDiezmilesimas(-70050)), TipoCelda::Moneda, 2,
         u"-$7.01"_s, u"-7.01"_s},
        {QVariant::fromValue(*base::Decimal::DeTexto("12345678901234567890.125")),
         TipoCelda::Numero, 2, u"12,345,678,901,234,567,890.13"_s, u"12345678901234567890.13"_s},
        {u"no es"_s, TipoCelda::Numero, 2, u"no es"_s, u"no es"_s},
    };
    for (const auto& caso : casos) {
        EXPECT_EQ(NumeroVisible(caso.valor, caso.tipo, caso.decimales), caso.visible);
        EXPECT_EQ(NumeroPlano(caso.valor, caso.tipo, caso.decimales), caso.plano);
    }
}

}  // namespace
}  // namespace quimo::grid
