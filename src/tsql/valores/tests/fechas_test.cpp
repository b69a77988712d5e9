// Dates: how texts are read, how CONVERT writes them, and the arithmetic of their parts.

#include "tsql/valores/fechas.h"

#include <array>

#include <gtest/gtest.h>

namespace quimo::tsql {

namespace {

std::string Iso(std::int64_t ms) { return *FormatearFecha(ms, 121); }

std::int64_t Fecha(const char* texto) {
    const LecturaFecha leida = LeerFecha(texto, OrdenFecha::Amd);
    EXPECT_FALSE(leida.fallo) << texto;
    return leida.milisegundos;
}

struct Lectura {
    const char* texto;
    OrdenFecha orden;
    const char* esperado;
};
class LecturaTest : public testing::TestWithParam<Lectura> {};

TEST_P(LecturaTest, SeLeeComoElServidor) {
    const LecturaFecha leida = LeerFecha(GetParam().texto, GetParam().orden);
    const std::string texto = !leida.fallo                       ? Iso(leida.milisegundos)
                              : leida.fallo == FalloFecha::Forma ? "forma"
                                                                 : "rango";
    EXPECT_EQ(texto, GetParam().esperado) << GetParam().texto;
}

INSTANTIATE_TEST_SUITE_P(Fechas, LecturaTest,
                         testing::ValuesIn(std::to_array<Lectura>({
                             {"01/02/2026", OrdenFecha::Dma, "2026-02-01 00:00:00.000"},
                             {"01/02/2026", OrdenFecha::Mda, "2026-01-02 00:00:00.000"},
                             {"2026/02/01", OrdenFecha::Amd, "2026-02-01 00:00:00.000"},
                             {"1-2-26", OrdenFecha::Dma, "2026-02-01 00:00:00.000"},
                             {"1.2.50", OrdenFecha::Dma, "1950-02-01 00:00:00.000"},
                             {"1.2.49", OrdenFecha::Dma, "2049-02-01 00:00:00.000"},
                             {"20261114", OrdenFecha::Dma, "2026-11-14 00:00:00.000"},
                             {"20261114 21:36", OrdenFecha::Dma, "2026-11-14 21:36:00.000"},
                             {"2026-11-14T21:36:05.123", OrdenFecha::Dma,
                              "2026-11-14 21:36:05.123"},
                             {"14/11/2026 9:36PM", OrdenFecha::Dma, "2026-11-14 21:36:00.000"},
                             {"14/11/2026 12:00AM", OrdenFecha::Dma, "2026-11-14 00:00:00.000"},
                             {"14 nov 2026", OrdenFecha::Dma, "2026-11-14 00:00:00.000"},
                             {"November 14, 2026", OrdenFecha::Dma, "2026-11-14 00:00:00.000"},
                             {"21:36", OrdenFecha::Dma, "1900-01-01 21:36:00.000"},
                             {"", OrdenFecha::Dma, "1900-01-01 00:00:00.000"},
                             {"29/02/2024", OrdenFecha::Dma, "2024-02-29 00:00:00.000"},
                             {"29/02/2026", OrdenFecha::Dma, "rango"},
                             {"31/04/2026", OrdenFecha::Dma, "rango"},
                             {"14/13/2026", OrdenFecha::Dma, "rango"},
                             {"01/01/1752", OrdenFecha::Dma, "rango"},
                             {"14/11/2026 24:00", OrdenFecha::Dma, "rango"},
                             {"14/11/2026 10:60", OrdenFecha::Dma, "rango"},
                             {"hoy", OrdenFecha::Dma, "forma"},
                             {"14/11", OrdenFecha::Dma, "forma"},
                             {"14/11/2026 x", OrdenFecha::Dma, "forma"},
                             {"14//2026", OrdenFecha::Dma, "forma"},
                         })));

struct Escritura {
    int estilo;
    const char* esperado;
};
class EscrituraTest : public testing::TestWithParam<Escritura> {};

TEST_P(EscrituraTest, SeEscribeComoElServidor) {
    const auto texto = FormatearFecha(Fecha("2026-11-04 09:05:07.013"), GetParam().estilo);
    EXPECT_EQ(texto.value_or("ninguno"), GetParam().esperado) << GetParam().estilo;
}

INSTANTIATE_TEST_SUITE_P(Fechas, EscrituraTest,
                         testing::ValuesIn(std::to_array<Escritura>({
                             {0, "Nov  4 2026  9:05AM"},
                             {100, "Nov  4 2026  9:05AM"},
                             {109, "Nov  4 2026  9:05:07:013AM"},
                             {3, "04/11/26"},
                             {103, "04/11/2026"},
                             {101, "11/04/2026"},
                             {104, "04.11.2026"},
                             {105, "04-11-2026"},
                             {106, "04 Nov 2026"},
                             {107, "Nov 04, 2026"},
                             {108, "09:05:07"},
                             {110, "11-04-2026"},
                             {111, "2026/11/04"},
                             {112, "20261104"},
                             {113, "04 Nov 2026 09:05:07:013"},
                             {114, "09:05:07:013"},
                             {120, "2026-11-04 09:05:07"},
                             {121, "2026-11-04 09:05:07.013"},
                             {126, "2026-11-04T09:05:07.013"},
                             {999, "ninguno"},
                         })));

TEST(FechasTest, TodosLosDiasVanYVuelven) {
    constexpr std::int64_t kPaso = 13 * kMilisegundosDia + 3'723'003;
    for (std::int64_t ms = kFechaMinima; ms <= kFechaMaxima; ms += kPaso) {
        const FechaHora fecha = AFechaHora(ms);
        ASSERT_TRUE(EsValida(fecha)) << ms;
        ASSERT_EQ(AMilisegundos(fecha), ms);
    }
    EXPECT_EQ(Iso(kFechaMinima), "1753-01-01 00:00:00.000");
    EXPECT_EQ(Iso(kFechaMaxima), "9999-12-31 23:59:59.997");
}

TEST(FechasTest, SeRedondeaATercios) {
    const std::array<int, 10> kFin = {0, 0, 3, 3, 3, 7, 7, 7, 7, 10};
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(RedondearFecha(i), kFin[static_cast<std::size_t>(i)]) << i;
    EXPECT_EQ(RedondearFecha(-1), 0);
}

struct Suma {
    ParteFecha parte;
    std::int64_t cantidad;
    const char* desde;
    const char* esperado;
};
class SumaTest : public testing::TestWithParam<Suma> {};

TEST_P(SumaTest, SumaPartes) {
    const auto suma = SumarFecha(GetParam().parte, GetParam().cantidad, Fecha(GetParam().desde));
    EXPECT_EQ(suma ? Iso(*suma) : "fuera", GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(Fechas, SumaTest,
                         testing::ValuesIn(std::to_array<Suma>({
                             {ParteFecha::Mes, 1, "2026-01-31", "2026-02-28 00:00:00.000"},
                             {ParteFecha::Mes, -1, "2024-03-31", "2024-02-29 00:00:00.000"},
                             {ParteFecha::Anio, 1, "2024-02-29", "2025-02-28 00:00:00.000"},
                             {ParteFecha::Trimestre, 2, "2026-11-30", "2027-05-30 00:00:00.000"},
                             {ParteFecha::Dia, -1, "2026-03-01", "2026-02-28 00:00:00.000"},
                             {ParteFecha::DiaDelAnio, 1, "2026-12-31", "2027-01-01 00:00:00.000"},
                             {ParteFecha::Semana, 1, "2026-11-14", "2026-11-21 00:00:00.000"},
                             {ParteFecha::Hora, 25, "2026-11-14", "2026-11-15 01:00:00.000"},
                             {ParteFecha::Milisegundo, 2, "2026-11-14", "2026-11-14 00:00:00.003"},
                             {ParteFecha::Anio, 8000, "2026-11-14", "fuera"},
                             {ParteFecha::Mes, -3287, "2026-11-14", "fuera"},
                             {ParteFecha::Dia, 10'000'000'001, "2026-11-14", "fuera"},
                         })));

struct Diferencia {
    ParteFecha parte;
    const char* desde;
    const char* hasta;
    std::int64_t esperado;
};
class DiferenciaTest : public testing::TestWithParam<Diferencia> {};

TEST_P(DiferenciaTest, CuentaFronterasCruzadas) {
    const Diferencia& d = GetParam();
    EXPECT_EQ(DiferenciaFechas(d.parte, Fecha(d.desde), Fecha(d.hasta)), d.esperado);
    EXPECT_EQ(DiferenciaFechas(d.parte, Fecha(d.hasta), Fecha(d.desde)), -d.esperado);
}

INSTANTIATE_TEST_SUITE_P(Fechas, DiferenciaTest,
                         testing::ValuesIn(std::to_array<Diferencia>({
                             {ParteFecha::Anio, "2025-12-31", "2026-01-01", 1},
                             {ParteFecha::Trimestre, "2026-03-31", "2026-04-01", 1},
                             {ParteFecha::Mes, "2026-01-31", "2026-03-01", 2},
                             {ParteFecha::Semana, "2026-11-14", "2026-11-15",
                              1},  // Saturday, Sunday
                             {ParteFecha::Semana, "2026-11-15", "2026-11-21", 0},
                             {ParteFecha::Dia, "2026-11-14 23:59", "2026-11-15 00:01", 1},
                             {ParteFecha::Hora, "2026-11-14 10:59", "2026-11-14 11:00", 1},
                             {ParteFecha::Minuto, "1899-12-31 23:59", "1900-01-01 00:01", 2},
                         })));

TEST(FechasTest, LeeLasPartes) {
    const std::int64_t fecha = Fecha("2026-11-14 21:36:05.123");
    const std::array<std::pair<const char*, int>, 12> kPartes = {{{"yy", 2026},
                                                                  {"q", 4},
                                                                  {"m", 11},
                                                                  {"dy", 318},
                                                                  {"DD", 14},
                                                                  {"wk", 46},
                                                                  {"dw", 7},
                                                                  {"hh", 21},
                                                                  {"n", 36},
                                                                  {"ss", 5},
                                                                  {"ms", 123},
                                                                  {"year", 2026}}};
    for (const auto& [nombre, valor] : kPartes)
        EXPECT_EQ(LeerParte(*ParteDeNombre(nombre), fecha), valor) << nombre;
    EXPECT_EQ(NombreParte(ParteFecha::Mes, fecha), "November");
    EXPECT_EQ(NombreParte(ParteFecha::DiaSemana, fecha), "Saturday");
    EXPECT_EQ(NombreParte(ParteFecha::Dia, fecha), "14");
    EXPECT_FALSE(ParteDeNombre("siglo"));
}

}  // namespace

}  // namespace quimo::tsql
