// The functions that translated statements call, as the engine calls them.

#include "tsql/valores/funciones.h"

#include <array>

#include <gtest/gtest.h>

#include "tsql/valores/conversion.h"
#include "tsql/valores/decimales.h"

namespace quimo::tsql {

namespace {

const FuncionEscalar* Buscar(std::string_view nombre, std::size_t argumentos) {
    for (const auto& funciones : {FuncionesDeTexto(), FuncionesDeNumero(), FuncionesDeFecha()}) {
        for (const FuncionEscalar& f : funciones) {
            const bool cabe = f.argumentos < 0 || f.argumentos == static_cast<int>(argumentos);
            if (f.nombre == nombre && cabe) return &f;
        }
    }
    return nullptr;
}

std::string Llamar(std::string_view nombre, const std::vector<Valor>& argumentos) {
    const FuncionEscalar* const funcion = Buscar(nombre, argumentos.size());
    if (funcion == nullptr) return "no hay";
    const auto valor = funcion->llamar(argumentos);
    if (!valor) return "! " + std::to_string(valor.error().nativo);
    if (valor->EsNulo()) return "NULL";
    if (valor->forma == Valor::Forma::Exacto) return TextoDecimal(valor->exacto, 0);
    if (valor->forma == Valor::Forma::Real) return RealATexto(valor->real, 0);
    if (valor->forma == Valor::Forma::Bytes) return TextoDecimal(BytesAAncho(valor->texto), 0);
    return "'" + valor->texto + "'";
}

Valor T(const char* texto) { return Valor::DeTexto(texto); }
Valor E(Int128 entero) { return Valor::De(entero); }
Valor R(double real) { return Valor::DeReal(real); }
Valor Codigo(const Tipo& tipo) { return Valor::De(Empaquetar(tipo)); }
const Valor kNulo;
const Tipo kN52 = TipoNumerico(5, 2);
const Tipo kAncho = TipoNumerico(38, 2);

struct Caso {
    const char* nombre;
    std::vector<Valor> argumentos;
    const char* esperado;
};
class FuncionesTest : public testing::TestWithParam<Caso> {};

TEST_P(FuncionesTest, DanLoQueElServidor) {
    EXPECT_EQ(Llamar(GetParam().nombre, GetParam().argumentos), GetParam().esperado)
        << GetParam().nombre;
}

INSTANTIATE_TEST_SUITE_P(DeTexto, FuncionesTest,
                         testing::ValuesIn(std::vector<Caso>{
                             {"q_trozo", {T("ñandú"), E(2), E(3)}, "'and'"},
                             {"q_trozo", {T("abc"), E(0), E(2)}, "'a'"},
                             {"q_trozo", {T("abc"), E(2), E(-1)}, "! 537"},
                             {"q_izquierda", {T("ñandú"), E(2)}, "'ña'"},
                             {"q_izquierda", {T("ab"), E(-1)}, "! 536"},
                             {"q_derecha", {T("ñandú"), E(2)}, "'dú'"},
                             {"q_derecha", {T("ab"), E(9)}, "'ab'"},
                             {"q_posicion", {T("D"), T("ñandú")}, "4"},
                             {"q_posicion", {T("n"), T("banana"), E(4)}, "5"},
                             {"q_posicion", {T("x"), T("banana")}, "0"},
                             {"q_patron", {T("%an%"), T("banana")}, "2"},
                             {"q_reemplazar", {T("Banana"), T("AN"), T("o")}, "'Booa'"},
                             {"q_repetir", {T("ab"), E(3)}, "'ababab'"},
                             {"q_repetir", {T("ab"), E(-1)}, "NULL"},
                             {"q_invertir", {T("ñu")}, "'uñ'"},
                             {"q_injertar", {T("abcdef"), E(2), E(3), T("X")}, "'aXef'"},
                             {"q_injertar", {T("abc"), E(9), E(1), T("X")}, "NULL"},
                             {"q_str", {R(12.345), E(8), E(2)}, "'   12.35'"},
                             {"q_str", {R(12345), E(3)}, "'***'"},
                             {"q_citar", {T("a]b")}, "'[a]]b]'"},
                             {"q_ascii", {T("A")}, "65"},
                             {"q_unicode", {T("ñ")}, "241"},
                             {"q_char", {E(241)}, "'ñ'"},
                             {"q_concatenar", {T("a"), kNulo, T("b")}, "'ab'"},
                             {"q_como", {T("Año"), T("a_O")}, "1"},
                             {"q_como", {T("50%"), T("50!%"), T("!")}, "1"},
                             {"q_como", {T("50%"), T("50!%"), T("!!")}, "! 506"},
                         }));

INSTANTIATE_TEST_SUITE_P(
    DeNumero, FuncionesTest,
    testing::ValuesIn(std::vector<Caso>{
        {"q_mas", {E(150), E(25), E(2), E(1), Codigo(kN52)}, "400"},
        {"q_menos", {E(0), E(150), E(0), E(2), Codigo(kN52)}, "-150"},
        {"q_mas", {E(99999), E(1), E(2), E(2), Codigo(kN52)}, "! 8115"},
        {"q_por", {E(150), E(250), E(2), E(2), Codigo(kN52)}, "375"},
        {"q_entre", {E(100), E(3), E(2), E(0), Codigo(TipoNumerico(9, 6))}, "333333"},
        {"q_entre", {E(1), E(0), E(0), E(0), Codigo(kN52)}, "! 8134"},
        {"q_cociente", {E(7), E(2)}, "3"},
        {"q_cociente", {E(-7), E(2)}, "-3"},
        {"q_cociente", {R(7), E(2)}, "3.5"},
        {"q_cociente", {E(7), E(0)}, "! 8134"},
        {"q_modulo", {E(-7), E(3)}, "-1"},
        {"q_modulo", {E(7), E(0)}, "! 8134"},
        {"q_redondear", {E(1255), E(1), E(0), Codigo(kN52)}, "1260"},
        {"q_redondear", {E(1255), E(1), E(1), Codigo(kN52)}, "1250"},
        {"q_techo", {E(-125), Codigo(kN52)}, "-1"},
        {"q_piso", {E(-125), Codigo(kN52)}, "-2"},
        {"q_signo", {E(-125), Codigo(kN52)}, "-100"},
        {"q_elevar", {E(3), R(4), Codigo(TipoEntero(Clase::Int))}, "81"},
        {"q_elevar", {E(10), R(20), Codigo(TipoEntero(Clase::Int))}, "! 8115"},
        {"q_raiz", {R(9)}, "3"},
        {"q_raiz", {R(-1)}, "! 3623"},
        {"q_exp", {R(1000)}, "! 8115"},
        {"q_no_nulo", {kNulo, T("a"), T("t"), T("INSERT")}, "! 515"},
        {"q_no_nulo", {E(5), T("a"), T("t"), T("INSERT")}, "5"},
        {"q_cv", {T("5"), Codigo(TipoTexto(Clase::VarChar, 1)), Codigo(kN52), E(0)}, "500"},
        {"q_cv",
         {T("abcd"), Codigo(TipoTexto(Clase::VarChar, 4)), Codigo(TipoTexto(Clase::VarChar, 2)),
          E(1 << 16)},
         "! 8152"},
        {"q_es_numero", {T("12.5"), Codigo(TipoTexto(Clase::VarChar, 4))}, "1"},
        {"q_es_numero", {T("doce"), Codigo(TipoTexto(Clase::VarChar, 4))}, "0"},
        {"q_es_numero", {kNulo, Codigo(TipoTexto(Clase::VarChar, 4))}, "0"},
        {"q_ancho", {T("-12345678901234567890")}, "-12345678901234567890"},
    }));

INSTANTIATE_TEST_SUITE_P(DeFecha, FuncionesTest,
                         testing::ValuesIn(std::vector<Caso>{
                             {"q_fecha8", {T("02011900")}, "86400000"},
                             {"q_fecha8", {T("31021900")}, "'!'"},
                             {"q_fecha8", {T("hoy")}, "'!'"},
                             {"q_fechas_validas", {kNulo}, "1"},
                             {"q_fechas_validas", {E(1)}, "! 242"},
                             {"q_es_fecha", {T("14/11/2026")}, "1"},
                             {"q_es_fecha", {T("")}, "0"},
                             {"q_es_fecha", {T("11/14/2026")}, "0"},
                             {"q_sumar_dias", {E(0), E(-1), E(86400000)}, "-86400000"},
                             {"q_sumar_dias", {E(kFechaMaxima), E(1), E(86400000)}, "! 517"},
                             {"q_sumar_fecha", {E(4), E(1), E(kFechaMaxima)}, "! 517"},
                             {"q_diferencia", {E(10), E(kFechaMinima), E(kFechaMaxima)}, "! 535"},
                             {"q_parte", {E(0), E(0)}, "1900"},
                             {"q_nombre_parte", {E(2), E(0)}, "'January'"},
                         }));

TEST(AnchosTest, LosBytesOrdenanComoLosNumeros) {
    const std::array<Int128, 5> kNumeros = {-BytesAAncho(AnchoABytes(*PotenciaDeDiez(30))), -1, 0,
                                            1, *PotenciaDeDiez(37)};
    for (std::size_t i = 0; i < kNumeros.size(); ++i) {
        EXPECT_EQ(BytesAAncho(AnchoABytes(kNumeros[i])), kNumeros[i]);
        if (i == 0) continue;
        EXPECT_LT(AnchoABytes(kNumeros[i - 1]), AnchoABytes(kNumeros[i]));
    }
}

TEST(AnchosTest, UnaSumaQueSeSalioDe64BitsFalla) {
    const auto leido = LeerExacto(Valor::DeReal(1e19), TipoEntero(Clase::Int));
    ASSERT_FALSE(leido.has_value());
    EXPECT_EQ(leido.error().nativo, 8115);
}

TEST(NulosTest, QuienLosVeLosAguanta) {
    EXPECT_EQ(Llamar("q_es_fecha", {kNulo}), "0");
    EXPECT_EQ(Llamar("q_posicion", {kNulo, T("a")}), "NULL");
    EXPECT_EQ(Llamar("q_injertar", {T("abc"), E(1), E(1), kNulo}), "'bc'");
    EXPECT_EQ(Llamar("q_str", {kNulo}), "NULL");
    EXPECT_EQ(Llamar("q_concatenar", {kNulo, kNulo}), "''");
}

}  // namespace

}  // namespace quimo::tsql
