#include "base/texto.h"

#include <string>

#include <gtest/gtest.h>

namespace quimo::base {
namespace {

struct CasoUtf8 {
    std::string_view texto;
    std::u32string_view caracteres;
};

TEST(Texto, LoMalFormadoSonBytesSueltos) {
    const CasoUtf8 casos[] = {
        {"a\xC3\xB1z", U"a\u00F1z"},
        {"\xE2\x82\xAC", U"\u20AC"},
        {"\xF0\x9F\x98\x80!", U"\U0001F600!"},
        {"\xC3", U"\u00C3"},                                // cut short
        {"\xE2\x82", U"\u00E2\u0082"},                      // cut in its middle
        {"\xC3(", U"\u00C3("},                              // the second byte is a letter
        {"\x80", U"\u0080"},                                // a byte of a middle alone
        {"\xC0\xAF", U"\u00C0\u00AF"},                      // longer than it has to be
        {"\xED\xA0\x80", U"\u00ED\u00A0\u0080"},            // half a pair
        {"\xF4\x90\x80\x80", U"\u00F4\u0090\u0080\u0080"},  // beyond the last character
        {"\xFF", U"\u00FF"},
    };
    for (const CasoUtf8& caso : casos) {
        std::u32string leidos;
        for (std::size_t i = 0; i < caso.texto.size();)
            leidos += SiguienteCaracter(caso.texto, i);
        EXPECT_EQ(leidos, caso.caracteres) << caso.texto;
    }
}

TEST(Texto, CadaCaracterVuelveAlMismoUtf8) {
    for (const char32_t c : {U'a', U'\u007F', U'\u0080', U'\u07FF', U'\u0800', U'\uFFFD',
                             U'\U00010000', U'\U0010FFFF'}) {
        std::string texto;
        AgregarCaracter(texto, c);
        EXPECT_FALSE(EsMalformado(texto, 0));
        std::size_t i = 0;
        EXPECT_EQ(SiguienteCaracter(texto, i), c);
        EXPECT_EQ(i, texto.size());
    }
}

TEST(Texto, LasLetrasConAcentoTienenSuParejaYLoQueNoEsLetraSeQueda) {
    EXPECT_EQ(AMayusculas("ni\u00F1o, caf\u00E9 \u0161\u017E\u00FF \u03B1\u044F"),
              "NI\u00D1O, CAF\u00C9 \u0160\u017D\u0178 \u0391\u042F");
    EXPECT_EQ(AMinusculas("\u00D1AND\u00DA \u0152UVRE"), "\u00F1and\u00FA \u0153uvre");
    EXPECT_EQ(AMinusculas("\u00D7 \u00F7 \u00DF @[`{"), "\u00D7 \u00F7 \u00DF @[`{");
    EXPECT_EQ(AMayusculas("\u00D7 \u00F7 \u00DF @[`{"), "\u00D7 \u00F7 \u00DF @[`{");
}

}  // namespace
}  // namespace quimo::base
