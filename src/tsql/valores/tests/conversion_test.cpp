// Values of one type as values of another: rounding, range, length, and what is refused.

#include "tsql/valores/conversion.h"

#include <array>

#include <gtest/gtest.h>

#include "tsql/valores/decimales.h"
#include "tsql/valores/funciones.h"

namespace quimo::tsql {

namespace {

Tipo Texto(int longitud) { return TipoTexto(Clase::VarChar, longitud); }
Tipo Fijo(int longitud) { return TipoTexto(Clase::Char, longitud); }
Tipo Binario(Clase clase, int longitud) { return {clase, longitud, 0, 0}; }

const Tipo kInt = TipoEntero(Clase::Int);
const Tipo kSmall = TipoEntero(Clase::SmallInt);
const Tipo kTiny = TipoEntero(Clase::TinyInt);
const Tipo kBig = TipoEntero(Clase::BigInt);
const Tipo kBit = TipoEntero(Clase::Bit);
const Tipo kMoney = TipoMoneda();
const Tipo kSmallMoney{Clase::SmallMoney, 0, 10, 4};
const Tipo kReal{Clase::Real, 0, 0, 0};
const Tipo kCorta{Clase::SmallDateTime, 0, 0, 0};
const Tipo kUuid{Clase::UniqueIdentifier, 0, 0, 0};

std::string Escrito(const Resultado<Valor>& valor, const Tipo& tipo) {
    if (!valor) return "! " + std::to_string(valor.error().nativo);
    switch (valor->forma) {
        case Valor::Forma::Nulo:
            return "NULL";
        case Valor::Forma::Exacto:
            return tipo.EsFecha() ? *FormatearFecha(valor->Entero(), 121)
                                  : TextoDecimal(valor->exacto, tipo.escala);
        case Valor::Forma::Real:
            return RealATexto(valor->real, 2);
        case Valor::Forma::Texto:
        case Valor::Forma::Bytes:
            return "'" + valor->texto + "'";
    }
    return {};
}

struct Caso {
    Valor valor;
    Tipo de;
    Tipo a;
    const char* esperado;  ///< "! 245" is a failure
};
class ConversionTest : public testing::TestWithParam<Caso> {};

TEST_P(ConversionTest, ComoElServidor) {
    const Caso& caso = GetParam();
    const auto valor = Convertir(caso.valor, caso.de, caso.a);
    EXPECT_EQ(Escrito(valor, caso.a), caso.esperado)
        << NombreClase(caso.de.clase) << " " << Escrito(caso.valor, caso.de) << " -> "
        << NombreClase(caso.a.clase);
}

const auto T = [](const char* texto) { return Valor::DeTexto(texto); };
const auto E = [](Int128 entero) { return Valor::De(entero); };
const auto R = [](double real) { return Valor::DeReal(real); };

INSTANTIATE_TEST_SUITE_P(AEnteros, ConversionTest,
                         testing::ValuesIn(std::vector<Caso>{
                             {T(" 12 "), Texto(9), kInt, "12"},
                             {T("-7"), Texto(9), kInt, "-7"},
                             {T(""), Texto(9), kInt, "0"},
                             {T("12.5"), Texto(9), kInt, "! 245"},
                             {T("doce"), Texto(9), kInt, "! 245"},
                             {T("2147483648"), Texto(10), kInt, "! 248"},
                             {T("32768"), Texto(9), kSmall, "! 244"},
                             {T("256"), Texto(9), kTiny, "! 244"},
                             {T("9223372036854775808"), Texto(30), kBig, "! 8115"},
                             {T("true"), Texto(9), kBit, "1"},
                             {T("FALSE"), Texto(9), kBit, "0"},
                             {T("sí"), Texto(9), kBit, "! 245"},
                             {E(7), kInt, kBit, "1"},
                             {E(256), kInt, kTiny, "! 220"},
                             {E(40000), kInt, kSmall, "! 220"},
                             {E(3000000000), kBig, kInt, "! 8115"},
                             {E(125000), kMoney, kInt, "13"},
                             {E(-125000), kMoney, kInt, "-13"},
                             {E(199), TipoNumerico(5, 2), kInt, "1"},
                             {R(2.9), TipoReal(), kInt, "2"},
                             {R(-2.9), TipoReal(), kInt, "-2"},
                             {R(1e30), TipoReal(), kBig, "! 8115"},
                             {Valor(), Texto(9), kInt, "NULL"},
                         }));

INSTANTIATE_TEST_SUITE_P(AExactos, ConversionTest,
                         testing::ValuesIn(std::vector<Caso>{
                             {T("1.005"), Texto(9), TipoNumerico(5, 2), "1.01"},
                             {T("-1.005"), Texto(9), TipoNumerico(5, 2), "-1.01"},
                             {T("1000"), Texto(9), TipoNumerico(5, 2), "! 8115"},
                             {T("1,000"), Texto(9), TipoNumerico(9, 2), "! 8114"},
                             {T("$1,234.56"), Texto(12), kMoney, "1234.5600"},
                             {T("12x"), Texto(9), kMoney, "! 235"},
                             {E(5), kInt, kMoney, "5.0000"},
                             {E(12345), TipoNumerico(9, 4), TipoNumerico(9, 2), "1.23"},
                             {E(12350), TipoNumerico(9, 4), TipoNumerico(9, 2), "1.24"},
                             {E(300000), kInt, kSmallMoney, "! 8115"},
                             {R(0.1), TipoReal(), TipoNumerico(9, 3), "0.100"},
                             {R(1e20), TipoReal(), kMoney, "! 8115"},
                         }));

INSTANTIATE_TEST_SUITE_P(AReales, ConversionTest,
                         testing::ValuesIn(std::vector<Caso>{
                             {T("1.5e3"), Texto(9), TipoReal(), "1.500000000000000e+003"},
                             {T("nan"), Texto(9), TipoReal(), "! 8114"},
                             {T("1x"), Texto(9), TipoReal(), "! 8114"},
                             {E(25), TipoNumerico(5, 1), TipoReal(), "2.500000000000000e+000"},
                             {R(1e300), TipoReal(), kReal, "! 232"},
                         }));

INSTANTIATE_TEST_SUITE_P(ATextos, ConversionTest,
                         testing::ValuesIn(std::vector<Caso>{
                             {E(-12), kInt, Texto(9), "'-12'"},
                             {E(12345), kInt, Texto(3), "'*'"},
                             {E(12345), TipoNumerico(9, 2), Texto(3), "! 8115"},
                             {E(1234567), kMoney, Texto(9), "'123.46'"},
                             {E(1234567), kMoney, Texto(3), "! 234"},
                             {T("abcdef"), Texto(9), Texto(3), "'abc'"},
                             {T("ñandú"), Texto(9), Texto(2), "'ña'"},
                             {T("ab"), Texto(9), Fijo(4), "'ab  '"},
                             {R(0.5), TipoReal(), Texto(9), "'0.5'"},
                             {R(1e20), TipoReal(), Texto(9), "'1e+020'"},
                             {E(0), TipoFecha(), Texto(30), "'Jan  1 1900 12:00AM'"},
                         }));

INSTANTIATE_TEST_SUITE_P(AFechas, ConversionTest,
                         testing::ValuesIn(std::vector<Caso>{
                             {T("14/11/2026"), Texto(10), TipoFecha(), "2026-11-14 00:00:00.000"},
                             {T("11/14/2026"), Texto(10), TipoFecha(), "! 242"},
                             {T("hoy"), Texto(10), TipoFecha(), "! 241"},
                             {E(1), kInt, TipoFecha(), "1900-01-02 00:00:00.000"},
                             {R(0.5), TipoReal(), TipoFecha(), "1900-01-01 12:00:00.000"},
                             {E(9999999), kInt, TipoFecha(), "! 8115"},
                             {E(-86400000), TipoFecha(), kCorta, "! 242"},
                             {E(65536 * kMilisegundosDia), TipoFecha(), kCorta, "! 242"},
                             {E(89999), TipoFecha(), kCorta, "1900-01-01 00:01:00.000"},
                         }));

INSTANTIATE_TEST_SUITE_P(AOtros, ConversionTest,
                         testing::ValuesIn(std::vector<Caso>{
                             {T("0e984725-c51c-4bf4-9960-e1c80e27aba0"), Texto(36), kUuid,
                              "'0E984725-C51C-4BF4-9960-E1C80E27ABA0'"},
                             {T("0e984725"), Texto(36), kUuid, "! 8169"},
                             {Valor::DeBytes("abcd"), Binario(Clase::VarBinary, 9),
                              Binario(Clase::VarBinary, 2), "'ab'"},
                         }));

TEST(ConversionTest, UnaColumnaNoSeRecortaEnSilencio) {
    OpcionesConversion columna;
    columna.destino = Destino::Columna;
    EXPECT_EQ(Escrito(Convertir(T("abcd"), Texto(9), Texto(3), columna), Texto(3)), "! 8152");
    EXPECT_EQ(Escrito(Convertir(T("abc  "), Texto(9), Texto(3), columna), Texto(3)), "'abc'");
    const Tipo corto = Binario(Clase::VarBinary, 1);
    EXPECT_EQ(Escrito(Convertir(Valor::DeBytes("ab"), corto, corto, columna), corto), "! 8152");
}

TEST(ConversionTest, ElEstiloDecideElTexto) {
    const auto con = [](const Valor& valor, const Tipo& de, int estilo) {
        OpcionesConversion opciones;
        opciones.estilo = estilo;
        return Escrito(Convertir(valor, de, Texto(40), opciones), Texto(40));
    };
    EXPECT_EQ(con(E(12345678901), kMoney, 0), "'1234567.89'");
    EXPECT_EQ(con(E(12345678901), kMoney, 1), "'1,234,567.89'");
    EXPECT_EQ(con(E(12345678901), kMoney, 2), "'1234567.8901'");
    EXPECT_EQ(con(R(1.0 / 3), TipoReal(), 1), "'3.3333333e-001'");
    EXPECT_EQ(con(E(0), TipoFecha(), 103), "'01/01/1900'");
    EXPECT_EQ(con(E(0), TipoFecha(), 99), "! 281");
}

struct Implicita {
    Tipo de;
    Tipo a;
    int nativo;  ///< 0: allowed
};
class ImplicitaTest : public testing::TestWithParam<Implicita> {};

TEST_P(ImplicitaTest, SoloLasQueHaceElServidor) {
    const auto permite = PermiteImplicita(GetParam().de, GetParam().a);
    EXPECT_EQ(permite ? 0 : permite.error().nativo, GetParam().nativo);
}

INSTANTIATE_TEST_SUITE_P(Conversion, ImplicitaTest,
                         testing::ValuesIn(std::vector<Implicita>{
                             {Texto(5), kInt, 0},
                             {kInt, Texto(5), 0},
                             {kInt, TipoFecha(), 0},
                             {TipoFecha(), kInt, 257},
                             {TipoFecha(), Binario(Clase::VarBinary, 5), 257},
                             {Texto(5), Binario(Clase::VarBinary, 5), 257},
                             {kInt, kUuid, 206},
                             {kUuid, kMoney, 206},
                             {kUuid, Texto(36), 0},
                             {Texto(36), kUuid, 0},
                             {Tipo{}, kUuid, 0},
                         }));

}  // namespace

}  // namespace quimo::tsql
