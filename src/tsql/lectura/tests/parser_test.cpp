// Texts that are cut, read and refused.

#include "tsql/lectura/parser.h"

#include <gtest/gtest.h>

#include "tsql/lectura/lotes.h"

namespace quimo::tsql {

namespace {

struct Rechazo {
    const char* texto;
    int nativo;
    const char* dice;
};
class RechazoTest : public testing::TestWithParam<Rechazo> {};

TEST_P(RechazoTest, NombraLaPalabraYSuLugar) {
    const auto lote = LeerLote(GetParam().texto, Constantes::PorPosicion);
    ASSERT_FALSE(lote.has_value());
    EXPECT_EQ(lote.error().nativo, GetParam().nativo) << lote.error().mensaje;
    EXPECT_NE(lote.error().mensaje.find(GetParam().dice), std::string::npos)
        << lote.error().mensaje;
}

INSTANTIATE_TEST_SUITE_P(
    Parser, RechazoTest,
    testing::Values(
        Rechazo{"SELECT 1 FROM", 156, "'FROM'. (line 1, column 10)"},
        Rechazo{"SELECT 1\nSELECT ,", 102, "','. (line 2, column 8)"},
        Rechazo{"UPDATE T SET a='x' WHERE", 156, "'WHERE'"},
        Rechazo{"INSERT INTO T VALUES (1", 102, "'1'"}, Rechazo{"SELECT 'a", 105, "a"},
        Rechazo{"SELECT [a", 105, "a"}, Rechazo{"SELECT /* a", 113, "*/"},
        Rechazo{"SELECT 1 + ", 102, "'+'"}, Rechazo{"SELECT a = b = c FROM t", 102, "'='"},
        Rechazo{"SELECT CASE 1 END", 156, "'END'"}, Rechazo{"BEGIN SELECT 1", 102, "'1'"},
        Rechazo{"BEGIN END", 156, "'END'"},
        Rechazo{"SELECT 1 CREATE VIEW v AS SELECT 1", 156, "'VIEW'"},
        Rechazo{"SELECT {fn now()}", 102, "'{'"}, Rechazo{"SELECT * FROM t WHERE a", 4145, "'a'"},
        Rechazo{"DECLARE @a NADA", 2715, "NADA"},
        Rechazo{"CREATE TABLE t (a NUMERIC(5,9))", 2751, "9"},
        Rechazo{"SELECT CONVERT('13/11/2026',103)", 102, "13/11/2026"},
        Rechazo{"GRANT SELECT ON t TO x", 156, "'GRANT'"},
        Rechazo{"SELECT 1 EXCEPT ALL SELECT 2", 156, "'ALL'"},
        Rechazo{"SELECT 1 OPTION (FAST 1)", 156, "'OPTION'"}, Rechazo{"SELECT 1e999", 168, "1e999"},
        Rechazo{"SELECT 1234567890123456789012345678901234567890", 1007, "38"}));

std::string Repetir(const std::string& que, int veces) {
    std::string texto;
    for (int i = 0; i < veces; ++i)
        texto += que;
    return texto;
}

// No text exhausts the stack: what is nested too deep is refused.
TEST(ParserTest, LoMuyAnidadoSeRechaza) {
    constexpr int kMuchas = 5'000;
    const std::string casos[] = {
        "SELECT " + Repetir("(", kMuchas) + "1" + Repetir(")", kMuchas),
        "SELECT " + Repetir("-", kMuchas) + "1",
        "SELECT 1" + Repetir("+1", kMuchas),
        "SELECT 1 WHERE " + Repetir("NOT ", kMuchas) + "1=1",
        "SELECT 1 WHERE 1=1" + Repetir(" AND 1=1", kMuchas),
        Repetir("BEGIN ", kMuchas) + "SELECT 1" + Repetir(" END", kMuchas),
        Repetir("IF 1=1 ", kMuchas) + "SELECT 1",
        "SELECT " + Repetir("(SELECT ", kMuchas) + "1" + Repetir(")", kMuchas),
        "SELECT " + Repetir("ABS(", kMuchas) + "1" + Repetir(")", kMuchas),
        "SELECT 1" + Repetir(" UNION SELECT 1", kMuchas),
        "SELECT * FROM " + Repetir("(", kMuchas) + "t",
        "SELECT " + Repetir("CASE WHEN 1=1 THEN ", kMuchas),
    };
    for (const std::string& texto : casos) {
        const auto lote = LeerLote(texto, Constantes::PorPosicion);
        EXPECT_FALSE(lote.has_value()) << texto.substr(0, 40);
    }
}

TEST(ParserTest, LosTextosIgualesSalvoConstantesTienenLaMismaForma) {
    const auto forma = [](const char* texto) { return Analizar(texto).value().forma; };
    EXPECT_EQ(forma("SELECT a FROM t WHERE b=1 AND c='x'"),
              forma("SELECT a FROM t WHERE b=9 AND c='y'"));
    EXPECT_EQ(forma("SELECT 'a',1.50"), forma("SELECT 'abc',123.40"));
    EXPECT_NE(forma("SELECT 1.5"), forma("SELECT 1.55"));
    EXPECT_NE(forma("SELECT 'a'"), forma("SELECT N'a'"));
    EXPECT_NE(forma("SELECT 1"), forma("SELECT 1.0"));
}

TEST(LotesTest, GoParteSoloDondeNadaEstaAbierto) {
    const auto lotes = PartirLotes(
        "SELECT 1\nGO\n\n go \r\nSELECT 'a\nGO\nb'\n/* x\nGO\n*/\n-- it's\nGO\nSELECT "
        "[a\nGO\n]\nGOTO\n");
    ASSERT_EQ(lotes.size(), 3U);
    EXPECT_EQ(lotes[0], "SELECT 1\n");
    EXPECT_EQ(lotes[1], "SELECT 'a\nGO\nb'\n/* x\nGO\n*/\n-- it's\n");
    EXPECT_EQ(lotes[2], "SELECT [a\nGO\n]\nGOTO\n");
}

}  // namespace

}  // namespace quimo::tsql
