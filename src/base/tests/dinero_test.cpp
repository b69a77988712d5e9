#include "base/dinero.h"

#include <limits>

#include <gtest/gtest.h>

namespace quimo::base {
namespace {

struct CasoTexto {
    const char* texto;
    const char* escrito;  // nullptr: refused
};

TEST(Dinero, LeeSoloNumerosQueCabenYRedondea) {
    const CasoTexto casos[] = {
        {"0", "0.0000"},
        {"12.5", "12.5000"},
        {"-0.0001", "-0.0001"},
        {".5", "0.5000"},
        {"1.23455", "1.2346"},
        {"-1.23455", "-1.2346"},
        {"1.23454999", "1.2345"},
        {"922337203685477.5807", "922337203685477.5807"},
        {"922337203685477.5808", nullptr},
        {"-922337203685477.5808", "-922337203685477.5808"},
        {"-922337203685477.58085", nullptr},
        {"-922337203685477.58084", "-922337203685477.5808"},
        {"9999999999999999999999", nullptr},
        {"1.2.3", nullptr},
        {"1,5", nullptr},
        {"", nullptr},
        {"-", nullptr},
        {".", nullptr},
        {" 1", nullptr},
    };
    for (const CasoTexto& caso : casos) {
        const auto leido = Dinero::DeTexto(caso.texto);
        ASSERT_EQ(leido.has_value(), caso.escrito != nullptr) << caso.texto;
        if (leido) {
            EXPECT_EQ(leido->ATexto(), caso.escrito) << caso.texto;
        }
    }
}

TEST(Dinero, SeMuestraConMilesYCentavosRedondeados) {
    EXPECT_EQ(Dinero::DeDiezmilesimas(12345678).AMoneda(), "$1,234.57");
    EXPECT_EQ(Dinero::DeDiezmilesimas(-12345678).AMoneda(), "-$1,234.57");
    EXPECT_EQ(Dinero::DeDiezmilesimas(-1).AMoneda(), "$0.00");
    EXPECT_EQ(Dinero::DeDiezmilesimas(9999999999).AMoneda(), "$1,000,000.00");
}

TEST(Dinero, LaFraccionRedondeaLasMitadesLejosDelCero) {
    EXPECT_EQ(Dinero::DeDiezmilesimas(1005).Fraccion(5000).Diezmilesimas(), 503);
    EXPECT_EQ(Dinero::DeDiezmilesimas(-1005).Fraccion(5000).Diezmilesimas(), -503);
}

TEST(Dinero, LoQueNoCabeSeDice) {
    constexpr auto kMaximo = std::numeric_limits<std::int64_t>::max();
    constexpr auto kMinimo = std::numeric_limits<std::int64_t>::min();
    const Dinero maximo = Dinero::DeDiezmilesimas(kMaximo);
    const Dinero minimo = Dinero::DeDiezmilesimas(kMinimo);
    const Dinero poco = Dinero::DeDiezmilesimas(1);
    EXPECT_FALSE(maximo.Mas(poco));
    EXPECT_FALSE(minimo.Mas(-poco));
    EXPECT_EQ(minimo.Mas(maximo), -poco);
    EXPECT_FALSE(minimo.Menos(poco));
    EXPECT_FALSE(Dinero().Menos(minimo));
    EXPECT_EQ(maximo.Menos(maximo), Dinero());
    EXPECT_FALSE(maximo.Por(2));
    EXPECT_FALSE(minimo.Por(-1));
    EXPECT_EQ(poco.Por(-3), Dinero::DeDiezmilesimas(-3));
    // The product of the two does not fit, the fraction does.
    EXPECT_EQ(maximo.Fraccion(5000), Dinero::DeDiezmilesimas(kMaximo / 2 + 1));
    EXPECT_EQ(minimo.Fraccion(10000), minimo);
    EXPECT_EQ(maximo.AMoneda(), "$922,337,203,685,477.58");
    EXPECT_EQ(minimo.AMoneda(), "-$922,337,203,685,477.58");
    EXPECT_EQ(minimo.ATexto(), "-922337203685477.5808");
}

TEST(DineroDeathTest, LoQueSaleDelRangoNoSigue) {
    const Dinero maximo = Dinero::DeDiezmilesimas(std::numeric_limits<std::int64_t>::max());
    EXPECT_DEATH(static_cast<void>(maximo + Dinero::DeDiezmilesimas(1)), "Error interno");
    EXPECT_DEATH(static_cast<void>(maximo.Fraccion(10001)), "Error interno");
}

}  // namespace
}  // namespace quimo::base
