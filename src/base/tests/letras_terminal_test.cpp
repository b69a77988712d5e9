#include "base/letras_terminal.h"

#include <gtest/gtest.h>

namespace quimo::base {
namespace {

struct CasoLetras {
    std::u16string_view texto;
    std::optional<std::size_t> ajena;  // where the first foreign letter begins
    char32_t letra = 0;
};

TEST(LetrasTerminal, LasAjenasSeHallanEnSuLugar) {
    const CasoLetras casos[] = {
        {u"", std::nullopt},
        {u"Peña O'Farrill 100% ¿Ü?", std::nullopt},
        {u"Café “Ñandú” — 5 € … Žižek™", std::nullopt},
        {u"Taco ★", 5, U'★'},
        {u"Łódź", 0, U'Ł'},
        {u"Cafe\u0301", 4, U'\u0301'},
        {u"Pizza 🍕 grande", 6, U'🍕'},
        {u"漢", 0, U'漢'},
        {u"\u0100", 0, U'\u0100'},
        {u"\uFFFF", 0, U'\uFFFF'},
    };
    for (const CasoLetras& caso : casos) {
        const auto ajena = PrimeraLetraAjena(caso.texto);
        ASSERT_EQ(ajena, caso.ajena);
        EXPECT_EQ(ajena ? LetraEn(caso.texto, *ajena) : U'\0', caso.letra);
    }
    const char16_t mitad[] = {u'a', 0xD83C};
    EXPECT_EQ(PrimeraLetraAjena({mitad, 2}), 1U);
    EXPECT_EQ(LetraEn({mitad, 2}, 1), 0xD83CU);
}

}  // namespace
}  // namespace quimo::base
