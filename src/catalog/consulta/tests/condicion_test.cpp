#include "catalog/consulta/condicion.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quimo::catalog {
namespace {

using data::TipoSql;
using enum Operador;

constexpr ItemCodigo kClases[] = {{u"Efectivo", u"E"}, {u"Débito", u"D"}, {u"D'otro", u"O"}};
constexpr ColumnaFiltro kClase = {u"Clase", u"Clase", u"c", kClases, OtroCodigo::ElUltimo};

struct Caso {
    TipoSql tipo;
    Operador operador;
    const char16_t* valor = nullptr;
    const char16_t* hasta = nullptr;
    const char16_t* tsql = nullptr;  // begins with "!": the message
};
class CondicionTest : public testing::TestWithParam<Caso> {};
TEST_P(CondicionTest, EsTsql) {
    const Caso& caso = GetParam();
    ColumnaFiltrable columna{u"Campo"_s, u"c"_s, caso.tipo};
    if (caso.tipo == TipoSql::Char) columna.codigos = CodigosDe(kClase);
    const auto texto = TextoDeCondicion(columna, {3, caso.operador, QString::fromUtf16(caso.valor),
                                                  QString::fromUtf16(caso.hasta)});
    EXPECT_EQ(texto ? *texto : u"!"_s + texto.error().mensaje, QString::fromUtf16(caso.tsql));
    EXPECT_EQ(texto ? 3 : texto.error().columna, 3);
}
INSTANTIATE_TEST_SUITE_P(
    Textos, CondicionTest,
    testing::Values(
        Caso{TipoSql::VarChar, Igual, u" Menú d'oro ", u"", u"c='Menú d''oro'"},
        Caso{TipoSql::VarChar, Distinto, u"x", u"", u"(c<>'x' OR c IS NULL)"},
        Caso{TipoSql::VarChar, Contiene, u"50%_[a]'", u"", u"c LIKE '%50[%][_][[]a]''%'"},
        Caso{TipoSql::VarChar, Empieza, u"A", u"", u"c LIKE 'A%'"},
        Caso{TipoSql::VarChar, Contiene, u"☕", u"", u"c LIKE N'%☕%'"},
        Caso{TipoSql::NVarChar, Igual, u"a", u"", u"c=N'a'"},
        Caso{TipoSql::VarChar, Entre, u"a", u"c", u"(c>='a' AND c<='c')"},
        Caso{TipoSql::VarChar, Entre, u"", u"c", u"c<='c'"},
        Caso{TipoSql::VarChar, Entre, u"", u"", u""},
        Caso{TipoSql::VarChar, Igual, u"  ", u"", u""},
        Caso{TipoSql::VarChar, Vacio, u"sobra", u"", u"(c IS NULL OR c='')"},
        Caso{TipoSql::Char, Igual, u"debito", u"", u"c='D'"},
        Caso{TipoSql::Char, Igual, u"D", u"", u"c='D'"},
        Caso{TipoSql::Char, Distinto, u"Efectivo", u"", u"(c<>'E' OR c IS NULL)"},
        Caso{TipoSql::Char, Igual, u"D'otro", u"", u"(c NOT IN ('E','D') OR c IS NULL)"},
        Caso{TipoSql::Char, Distinto, u"D'otro", u"", u"c IN ('E','D')"}));
INSTANTIATE_TEST_SUITE_P(
    OtrosTipos, CondicionTest,
    testing::Values(
        Caso{TipoSql::Money, Igual, u"1.234,50", u"", u"c=1234.50"},
        Caso{TipoSql::Int, MayorIgual, u"5", u"", u"c>=5"},
        Caso{TipoSql::Int, Entre, u"2", u"10", u"(c>=2 AND c<=10)"},
        Caso{TipoSql::Int, Entre, u"10", u"9,5",
             u"!Campo: El segundo valor de «entre» es menor que el primero."},
        Caso{TipoSql::Int, Entre, u"x", u"", u"!Campo: «x» no es un número."},
        Caso{TipoSql::Int, Vacio, u"", u"", u"c IS NULL"},
        Caso{TipoSql::Numeric, Igual, u"1.2.3", u"", u"!Campo: «1.2.3» no es un número."},
        Caso{TipoSql::Numeric, Igual, u"1 OR 1=1", u"", u"!Campo: «1 OR 1=1» no es un número."},
        Caso{TipoSql::Bit, Igual, u"sí", u"", u"c=1"},
        Caso{TipoSql::Bit, Distinto, u"No", u"", u"(c<>0 OR c IS NULL)"},
        Caso{TipoSql::Bit, Igual, u"quizá", u"", u"!Campo: Escriba Sí o No en vez de «quizá»."},
        Caso{TipoSql::DateTime, Igual, u"31/12/2026", u"", u"(c>='31/12/2026' AND c<'01/01/2027')"},
        Caso{TipoSql::DateTime, Distinto, u"1/1/2026", u"",
             u"(c<'01/01/2026' OR c>='02/01/2026' OR c IS NULL)"},
        Caso{TipoSql::DateTime, MenorIgual, u"1/1/2026", u"", u"c<'02/01/2026'"},
        Caso{TipoSql::DateTime, Igual, u"31/12/9999", u"", u"(c>='31/12/9999' AND c IS NOT NULL)"},
        Caso{TipoSql::DateTime, Entre, u"1/1/2026", u"2/1/2026",
             u"(c>='01/01/2026' AND c<'03/01/2026')"},
        Caso{TipoSql::SmallDateTime, Igual, u"07/06/2079", u"",
             u"!Campo: La fecha 07/06/2079 está fuera de lo que se puede guardar."},
        Caso{TipoSql::DateTime, Igual, u"30/02/2026", u"",
             u"!Campo: «30/02/2026» no es una fecha que exista. Escríbala como día/mes/año: "
             u"31/12/2026."}));

TEST(CodigosDeTest, LoMostradoSeHaceDeLaLista) {
    EXPECT_EQ(ExpresionDe(kClase),
              u"CASE c WHEN 'E' THEN 'Efectivo' WHEN 'D' THEN 'Débito' ELSE 'D''otro' END AS "
              u"Clase"_s);
    ColumnaFiltro sin_otro = kClase;
    sin_otro.otro = OtroCodigo::Nada;
    EXPECT_EQ(ExpresionDe(sin_otro),
              u"CASE c WHEN 'E' THEN 'Efectivo' WHEN 'D' THEN 'Débito' WHEN 'O' THEN 'D''otro' END "
              u"AS Clase"_s);
    const ColumnaFiltro nombre = {u"Nombre", u"Nombre_Menu", u"Nombre_Menu"};
    EXPECT_EQ(ExpresionDe(nombre), u"Nombre_Menu"_s);
    EXPECT_TRUE(CodigosDe(nombre).isEmpty());
}

}  // namespace
}  // namespace quimo::catalog
