// Exact numbers of up to 38 digits, and the types that arithmetic over them yields.

#include "tsql/valores/decimales.h"

#include <array>

#include <gtest/gtest.h>

#include "tsql/valores/texto.h"
#include "tsql/valores/tipos.h"

namespace quimo::tsql {

namespace {

Int128 N(const char* cifras) { return base::Decimal::DeTexto(cifras)->digitos; }
std::string Escrito(const std::optional<Int128>& valor) {
    return valor ? TextoDecimal(*valor, 0) : "no cabe";
}
constexpr const char* kTodoNueves = "99999999999999999999999999999999999999";

TEST(DecimalesTest, CambiarEscalaRedondeaMitadesHaciaFuera) {
    EXPECT_EQ(Escrito(CambiarEscala(125, 2, 1)), "13");
    EXPECT_EQ(Escrito(CambiarEscala(-125, 2, 1)), "-13");
    EXPECT_EQ(Escrito(CambiarEscala(124, 2, 1)), "12");
    EXPECT_EQ(Escrito(CambiarEscala(129, 2, 1, Redondeo::Truncar)), "12");
    EXPECT_EQ(Escrito(CambiarEscala(-129, 2, 1, Redondeo::Truncar)), "-12");
    EXPECT_EQ(Escrito(CambiarEscala(5, 0, 3)), "5000");
    EXPECT_EQ(Escrito(CambiarEscala(5, 0, 38)), "no cabe");
    EXPECT_EQ(Escrito(CambiarEscala(N(kTodoNueves), 0, 1)), "no cabe");
}

TEST(DecimalesTest, ElProductoCabeAunqueNoQuepaEntero) {
    EXPECT_EQ(Escrito(Multiplicar(15, 15, 2, 2)), "225");
    EXPECT_EQ(Escrito(Multiplicar(15, 15, 2, 1)), "23");
    EXPECT_EQ(Escrito(Multiplicar(N("10000000000000000000000000"), N("10000000000000000000000000"),
                                  40, 20)),
              "1000000000000000000000000000000");
    EXPECT_EQ(Escrito(Multiplicar(N(kTodoNueves), N(kTodoNueves), 0, 0)), "no cabe");
}

TEST(DecimalesTest, ElCocienteSeCorta) {
    EXPECT_EQ(Escrito(Dividir(1, 0, 3, 0, 6)), "333333");
    EXPECT_EQ(Escrito(Dividir(-2, 0, 3, 0, 6)), "-666666");
    EXPECT_EQ(Escrito(Dividir(100, 2, 4, 0, 1)), "2");
    EXPECT_EQ(Escrito(Dividir(N(kTodoNueves), 0, N(kTodoNueves), 0, 10)), "10000000000");
    EXPECT_EQ(Escrito(Dividir(N(kTodoNueves), 0, 1, 5, 0)), "no cabe");
}

TEST(DecimalesTest, CuentaCifras) {
    EXPECT_EQ(ContarCifras(0), 0);
    EXPECT_EQ(ContarCifras(-999), 3);
    EXPECT_EQ(ContarCifras(1000), 4);
    EXPECT_EQ(ContarCifras(N("9223372036854775807")), 19);
    EXPECT_EQ(ContarCifras(N("9223372036854775808")), 19);
    EXPECT_EQ(ContarCifras(N(kTodoNueves)), 38);
}

struct Lectura {
    const char* texto;
    bool moneda;
    const char* esperado;
};
class LecturaDecimalTest : public testing::TestWithParam<Lectura> {};

TEST_P(LecturaDecimalTest, SoloNumerosBienEscritos) {
    const auto numero = LeerDecimal(GetParam().texto, GetParam().moneda);
    EXPECT_EQ(numero ? TextoDecimal(numero->digitos, numero->escala) : "no", GetParam().esperado);
}

INSTANTIATE_TEST_SUITE_P(Decimales, LecturaDecimalTest,
                         testing::ValuesIn(std::to_array<Lectura>({
                             {"12.30", false, "12.30"},
                             {" -0.5 ", false, "-0.5"},
                             {"+7", false, "7"},
                             {".5", false, "0.5"},
                             {"$12", false, "no"},
                             {"$12", true, "12"},
                             {"-$1,234.5", true, "-1234.5"},
                             {"1,234", false, "no"},
                             {"1e3", false, "no"},
                             {"1.2.3", false, "no"},
                             {"--1", false, "no"},
                             {"doce", true, "no"},
                             {"999999999999999999999999999999999999999", false, "no"},
                         })));

struct Aritmetica {
    Tipo a;
    char operador;
    Tipo b;
    Tipo esperado;
};
class TipoAritmeticoTest : public testing::TestWithParam<Aritmetica> {};

TEST_P(TipoAritmeticoTest, ComoElServidor) {
    const Aritmetica& caso = GetParam();
    const Tipo tipo = TipoAritmetico(caso.operador, caso.a, caso.b);
    EXPECT_EQ(tipo, caso.esperado) << tipo.precision << "," << tipo.escala;
}

const Tipo kInt = TipoEntero(Clase::Int);
const Tipo kBig = TipoEntero(Clase::BigInt);
const Tipo kBit = TipoEntero(Clase::Bit);

INSTANTIATE_TEST_SUITE_P(Tipos, TipoAritmeticoTest,
                         testing::ValuesIn(std::vector<Aritmetica>{
                             {kInt, '+', kBig, kBig},
                             {kBit, '+', kBit, kInt},
                             {kInt, '/', TipoMoneda(), TipoMoneda()},
                             {TipoMoneda(), '*', TipoReal(), TipoReal()},
                             {TipoNumerico(5, 2), '+', TipoNumerico(7, 1), TipoNumerico(9, 2)},
                             {TipoNumerico(5, 2), '*', TipoNumerico(7, 1), TipoNumerico(13, 3)},
                             {TipoNumerico(5, 2), '/', TipoNumerico(7, 1), TipoNumerico(14, 10)},
                             {TipoNumerico(5, 2), '%', TipoNumerico(7, 1), TipoNumerico(5, 2)},
                             {TipoNumerico(5, 2), '+', kInt, TipoNumerico(13, 2)},
                             {TipoNumerico(38, 10), '*', TipoNumerico(38, 10), TipoNumerico(38, 6)},
                             {TipoNumerico(38, 0), '+', TipoNumerico(38, 0), TipoNumerico(38, 0)},
                         }));

TEST(TiposTest, ElTipoComunEsElMayor) {
    EXPECT_EQ(TipoComun(Tipo{}, kInt), kInt);
    EXPECT_EQ(TipoComun(kInt, TipoFecha()), TipoFecha());
    EXPECT_EQ(TipoComun(TipoTexto(Clase::VarChar, 5), TipoTexto(Clase::NVarChar, 3)),
              TipoTexto(Clase::NVarChar, 5));
    EXPECT_EQ(TipoComun(TipoTexto(Clase::VarChar, -1), TipoTexto(Clase::VarChar, 3)).longitud, -1);
    EXPECT_EQ(TipoComun(TipoNumerico(5, 2), TipoNumerico(7, 4)), TipoNumerico(7, 4));
    EXPECT_EQ(TipoComun(TipoNumerico(5, 2), kInt), TipoNumerico(12, 2));
}

TEST(TiposTest, EmpaquetarNoPierdeNada) {
    for (const Tipo& tipo : {kInt, TipoMoneda(), TipoNumerico(38, 20), TipoReal(), TipoFecha(),
                             TipoTexto(Clase::NVarChar, 4000), TipoTexto(Clase::VarChar, -1)}) {
        EXPECT_EQ(Desempaquetar(Empaquetar(tipo)), tipo) << NombreClase(tipo.clase);
    }
}

TEST(TiposTest, LosNombresTienenSinonimos) {
    EXPECT_EQ(ClasePorNombre("INTEGER"), Clase::Int);
    EXPECT_EQ(ClasePorNombre("dec"), Clase::Numeric);
    EXPECT_EQ(ClasePorNombre("VarChar"), Clase::VarChar);
    EXPECT_FALSE(ClasePorNombre("texto"));
}

}  // namespace

}  // namespace quimo::tsql
