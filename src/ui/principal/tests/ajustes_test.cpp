#include "ui/controles/ajustes.h"

#include <gtest/gtest.h>

namespace quimo::ui {
namespace {

using namespace Qt::StringLiterals;

// What users have chosen stands under these keys on their machines.
TEST(AjustesTest, LasClavesSonLasDeSiempre) {
    const struct {
        Ajuste que;
        QString de;
        QString clave;
    } casos[] = {
        {Ajuste::Tapiz, {}, u"TAPIZ/TAPIZ"_s},
        {Ajuste::Ventana, u"MDIPrincipal"_s, u"VENTANA/MDIPrincipal"_s},
        {Ajuste::Dialogo, u"DlgBuscar"_s, u"Geometria/DlgBuscar"_s},
        {Ajuste::Rejilla, u"OpMenu.sprDatos"_s, u"REJILLA/OpMenu.sprDatos"_s},
    };
    for (const auto& caso : casos) {
        QSettings de_antes(u"QUIMO"_s, u"QUIMO"_s);
        de_antes.setValue(caso.clave, u"de antes"_s);
        Ajustes ajustes;
        EXPECT_EQ(ajustes.Leer(caso.que, caso.de), u"de antes"_s) << caso.clave.toStdString();
        ajustes.Guardar(caso.que, caso.de, u"de hoy"_s);
        EXPECT_TRUE(ajustes.Escribir());
        EXPECT_EQ(de_antes.value(caso.clave), u"de hoy"_s);
    }
}

}  // namespace
}  // namespace quimo::ui
