#include "foundation/reglas_campo.h"

#include <array>

#include <gtest/gtest.h>

namespace quimo::foundation {
namespace {

using namespace Qt::StringLiterals;

struct Caso {
    const char16_t* etiqueta = nullptr;
    const char16_t* queda = nullptr;  ///< of kMezcla
};

constexpr char16_t kMezcla[] = u"aÑé Z9.-'ß☃\b";

constexpr std::array<Caso, 10> kFiltros = {{
    {u"", u"aÑé Z9.-'ß☃\b"},
    {u"NoVacio!", u"aÑé Z9.-'ß☃\b"},
    {u"NoVacioMayusculas", u"AÑÉ Z9.-'ß☃\b"},
    {u"Numerico", u"9.\b"},
    {u"numericoNOVACIO", u"9.\b"},
    {u"NumericoNoSignosNoVacio", u"9\b"},
    {u"NoVacioNoSignos", u"a Z9\b"},
    {u"MayusculasNoSignos", u"A Z9\b"},
    {u"IP", u"9.\b"},
    {u"IPMayusculasNoSignos", u"9.\b"},
}};

TEST(ReglasCampoTest, FiltranLetraPorLetra) {
    for (const Caso& caso : kFiltros) {
        const ReglasCampo reglas(QString::fromUtf16(caso.etiqueta));
        EXPECT_EQ(reglas.Filtrar(QString::fromUtf16(kMezcla)), QString::fromUtf16(caso.queda))
            << QString::fromUtf16(caso.etiqueta).toStdString();
    }
}

TEST(ReglasCampoTest, AlSalirSePideLoQueDiceLaEtiqueta) {
    const QString vacio = u"Este campo no puede estar vacío"_s;
    const QString mala = u"La direcciòn IP no es válida"_s;
    struct {
        const char16_t* etiqueta;
        QString texto;
        QString mensaje;
        bool retener;
    } const casos[] = {
        {u"Numerico", {}, {}, false},
        {u"NumericoNoVacio", {}, vacio, false},
        {u"NumericoNoVacio", u"1"_s, {}, false},
        {u"IPNoVacio", {}, vacio, false},
        {u"IP", {}, {}, false},
        {u"IP", u"192.168.1.10"_s, {}, false},
        {u"IP", u"0.0.0.255"_s, {}, false},
        {u"IP", u"1..2.3"_s, {}, false},
        {u"IP", u"...1"_s, {}, false},
        {u"IP", u"192.168.1.256"_s, mala, true},
        {u"IP", u"192.168.1"_s, mala, true},
        {u"IP", u"192.168.1."_s, mala, true},
        {u"IP", u"1.2.3.4.5"_s, mala, true},
        {u"IP", u"1.2.3."_s + QString(10000, u'9'), mala, true},
        {u"NoSignos", u"..."_s, {}, false},
    };
    for (const auto& caso : casos) {
        const auto salida = ReglasCampo(QString::fromUtf16(caso.etiqueta)).AlSalir(caso.texto);
        EXPECT_EQ(salida.mensaje, caso.mensaje) << caso.texto.left(20).toStdString();
        EXPECT_EQ(salida.retener, caso.retener) << caso.texto.left(20).toStdString();
    }
}

}  // namespace
}  // namespace quimo::foundation
