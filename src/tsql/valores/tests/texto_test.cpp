// The order of texts, LIKE and the letters that are more than a byte.

#include "tsql/valores/texto.h"

#include <gtest/gtest.h>

namespace quimo::tsql {

namespace {

struct Orden {
    const char* menor;
    const char* mayor;
};
class OrdenTest : public testing::TestWithParam<Orden> {};

TEST_P(OrdenTest, SinMayusculasConAcentos) {
    EXPECT_LT(Comparar(GetParam().menor, GetParam().mayor), 0);
    EXPECT_GT(Comparar(GetParam().mayor, GetParam().menor), 0);
}

INSTANTIATE_TEST_SUITE_P(Texto, OrdenTest,
                         testing::Values(Orden{"a", "B"}, Orden{"A", "á"}, Orden{"áa", "ab"},
                                         Orden{"n", "ñ"}, Orden{"piña", "pingo"}, Orden{"9", "a"},
                                         Orden{"", "a"}, Orden{"-", "0"},
                                         Orden{"acción", "acciona"}));

TEST(TextoTest, LosBlancosDelFinalNoCuentan) {
    EXPECT_EQ(Comparar("abc", "ABC   "), 0);
    EXPECT_EQ(Comparar("", "  "), 0);
    EXPECT_NE(Comparar("abc", " abc"), 0);
}

struct Patron {
    const char* texto;
    const char* patron;
    bool como;
};
class PatronTest : public testing::TestWithParam<Patron> {};

TEST_P(PatronTest, ComoElServidor) {
    EXPECT_EQ(Como(GetParam().texto, GetParam().patron, U'!'), GetParam().como);
}

INSTANTIATE_TEST_SUITE_P(Texto, PatronTest,
                         testing::Values(Patron{"abc", "a%", true}, Patron{"abc", "%C", true},
                                         Patron{"abc", "_b_", true}, Patron{"abc", "ab", false},
                                         Patron{"abc  ", "abc", true}, Patron{"abc", "abc ", false},
                                         Patron{"a%c", "a!%c", true}, Patron{"abc", "a!%c", false},
                                         Patron{"b", "[a-c]", true}, Patron{"d", "[^a-c]", true},
                                         Patron{"b", "[^a-c]", false}, Patron{"]", "[]]", true},
                                         Patron{"[", "[[]", true}, Patron{"a-b", "a[-]b", true},
                                         Patron{"", "%", true}, Patron{"aXbXc", "%X%X%", true},
                                         Patron{"é", "e", false}, Patron{"É", "é", true},
                                         Patron{"abcabd", "%ab[d]", true},
                                         Patron{"a[", "a[", true}));

TEST(TextoTest, CuentaLetrasYNoBytes) {
    EXPECT_EQ(ContarCaracteres("ñandú"), 5);
    EXPECT_EQ(BytesDe("ñandú", 2), 3U);
    EXPECT_EQ(BytesDe("ab", 5), 2U);
    EXPECT_EQ(ContarCaracteres("a\xFF"
                               "b"),
              3);  // a broken byte is a letter of its own
    EXPECT_EQ(AMayusculas("ñandú é"), "ÑANDÚ É");
    EXPECT_EQ(AMinusculas("ÑANDÚ"), "ñandú");
}

TEST(TextoTest, CitaSinDejarSalir) {
    EXPECT_EQ(EntreApostrofes("o'b"), "'o''b'");
    EXPECT_EQ(EntreComillas("a\"b"), "\"a\"\"b\"");
    EXPECT_EQ(Recortar("  a b  "), "a b");
    EXPECT_EQ(SinBlancosAlFinal(" a  "), " a");
}

}  // namespace

}  // namespace quimo::tsql
