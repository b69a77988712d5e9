#include "base/decimal.h"

#include <gtest/gtest.h>

namespace quimo::base {
namespace {

TEST(Decimal, CambiaDeEscalaRedondeandoLasMitadesLejosDelCero) {
    struct Caso {
        const char* texto;
        int escala;
        const char* esperado;
    };
    const Caso casos[] = {
        {"12.345", 2, "12.35"},  {"-12.345", 2, "-12.35"}, {"12.344", 2, "12.34"},
        {"12.5", 0, "13"},       {"0.4", 0, "0"},          {"-0.05", 1, "-0.1"},
        {"7", 4, "7.0000"},      {"0.001", 4, "0.0010"},   {"0", 0, "0"},
        {"99.995", 2, "100.00"},
    };
    for (const Caso& caso : casos) {
        const auto numero = Decimal::DeTexto(caso.texto);
        ASSERT_TRUE(numero) << caso.texto;
        EXPECT_EQ(numero->ConEscala(caso.escala)->ATexto(), caso.esperado) << caso.texto;
    }
}

TEST(Decimal, RechazaLoQueNoEsNumeroYLoQueNoCabe) {
    for (const char* texto :
         {"", "-", ".", "1.2.3", "1e3", " 1", "1,5", "999999999999999999999999999999999999999"}) {
        EXPECT_FALSE(Decimal::DeTexto(texto)) << texto;
    }
    const auto maximo = Decimal::DeTexto("99999999999999999999999999999999999999");
    ASSERT_TRUE(maximo);
    EXPECT_FALSE(maximo->ConEscala(1));
}

TEST(Decimal, ComparaPorValor) {
    EXPECT_EQ(*Decimal::DeTexto("1.50"), *Decimal::DeTexto("1.5"));
    EXPECT_FALSE(*Decimal::DeTexto("1.50") == *Decimal::DeTexto("1.51"));
}

}  // namespace
}  // namespace quimo::base
