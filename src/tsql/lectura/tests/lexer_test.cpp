// Texts cut into tokens, and the types that constants get.

#include "tsql/lectura/lexer.h"

#include <array>

#include <gtest/gtest.h>

#include "arbol_escrito.h"

namespace quimo::tsql {

namespace {

std::string Tokens(const std::string& texto) {
    constexpr const char* kClases[] = {"p", "d", "v", "g", "l", "s", "?"};
    const auto lexico = Analizar(texto);
    if (!lexico) return "error " + std::to_string(lexico.error().nativo);
    std::string salida;
    for (const Token& token : lexico->tokens) {
        if (token.clase == Token::Clase::Fin) break;
        salida += (salida.empty() ? "" : " ") +
                  std::string(kClases[static_cast<int>(token.clase)]) + ":" +
                  std::string(token.texto);
    }
    return salida;
}

struct Corte {
    const char* texto;
    const char* tokens;
};
class CorteTest : public testing::TestWithParam<Corte> {};

TEST_P(CorteTest, CortaDondeDebe) { EXPECT_EQ(Tokens(GetParam().texto), GetParam().tokens); }

INSTANTIATE_TEST_SUITE_P(Lexer, CorteTest,
                         testing::ValuesIn(std::to_array<Corte>({
                             {"SELECT a.b", "p:SELECT p:a s:. p:b"},
                             {"#t ##u _x ñandú x$1", "p:#t p:##u p:_x p:ñandú p:x$1"},
                             {"[a b] \"c\"\"d\" [e]]f]", "d:a b d:c\"\"d d:e]]f"},
                             {"@x @@ROWCOUNT ?", "v:@x g:@@ROWCOUNT ?:?"},
                             {"a<=b<>c!=d!<e+=1",
                              "p:a s:<= p:b s:<> p:c s:!= p:d s:!< p:e s:+= l:1"},
                             {"a -- b\n c /* d /* e */ f */ g", "p:a p:c p:g"},
                             {"1-1 1.5.x", "l:1 s:- l:1 l:1.5 s:. p:x"},
                             {"a;b,c", "p:a s:; p:b s:, p:c"},
                             {"/* a", "error 113"},
                             {"[a", "error 105"},
                             {"'a", "error 105"},
                             {"a { b", "error 102"},
                             {"", ""},
                             {"  -- a", ""},
                         })));

struct Constante {
    const char* texto;
    const char* tipo;
    const char* valor;
};
class ConstanteTest : public testing::TestWithParam<Constante> {};

TEST_P(ConstanteTest, TieneTipoYValor) {
    const auto lexico = Analizar(GetParam().texto);
    ASSERT_TRUE(lexico.has_value());
    ASSERT_EQ(lexico->literales.size(), 1U);
    Expr expr{ClaseExpr::Literal};
    expr.literal = lexico->literales[0];
    EXPECT_EQ(Escribir(lexico->literales[0].tipo), GetParam().tipo);
    EXPECT_EQ(Escribir(expr), GetParam().valor);
}

INSTANTIATE_TEST_SUITE_P(Lexer, ConstanteTest,
                         testing::ValuesIn(std::to_array<Constante>({
                             {"0", "int", "0"},
                             {"2147483647", "int", "2147483647"},
                             {"2147483648", "numeric(10,0)", "2147483648"},
                             {"1.50", "numeric(3,2)", "1.50"},
                             {".5", "numeric(1,1)", "0.5"},
                             {"5.", "numeric(1,0)", "5"},
                             {"1e3", "float", "1000.000000"},
                             {"1.5E-1", "float", "0.150000"},
                             {"$12.5", "money", "$12.5000"},
                             {"'it''s'", "varchar(4)", "'it's'"},
                             {"''", "varchar(1)", "''"},
                             {"N'ñé'", "nvarchar(2)", "N'ñé'"},
                             {"'ñé'", "varchar(2)", "'ñé'"},
                             {"0xAB12F", "varbinary(3)", "0x3"},
                             {"0x", "varbinary(1)", "0x0"},
                             {"99999999999999999999999999999999999999", "numeric(38,0)",
                              "99999999999999999999999999999999999999"},
                         })));

TEST(LexerTest, ElLugarCuentaLineasYColumnas) {
    EXPECT_EQ(Lugar("a\nbc", 3), " (line 2, column 2)");
    EXPECT_EQ(Lugar("abc", 0), " (line 1, column 1)");
}

TEST(LexerTest, LaFormaSinTokensEsLaMisma) {
    const std::string texto = "SELECT a, 'x', 1.5 /* n */ FROM t WHERE b = ? -- fin";
    const Lexico entero = Analizar(texto).value();
    Lexico solo_forma = Analizar("SELECT 'lo que había'").value();
    ASSERT_TRUE(AnalizarForma(texto, solo_forma).has_value());
    EXPECT_EQ(solo_forma.forma, entero.forma);
    EXPECT_EQ(solo_forma.parametros, 1);
    ASSERT_EQ(solo_forma.literales.size(), 2U);
    EXPECT_EQ(solo_forma.literales[1].tipo, entero.literales[1].tipo);
}

TEST(LexerTest, UnTextoDesmedidoSeRechaza) {
    EXPECT_EQ(Analizar(std::string(kTextoMaximo + 1, ' ')).error().nativo, 191);
}

TEST(LexerTest, LasReservadasNoDistinguenMayusculas) {
    EXPECT_TRUE(EsReservada("select"));
    EXPECT_TRUE(EsReservada("Where"));
    EXPECT_FALSE(EsReservada("selecto"));
    EXPECT_FALSE(EsReservada("fecha"));
}

}  // namespace

}  // namespace quimo::tsql
