#include <QDir>

#include "app/comandos/comando.h"
#include "programa_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::app {
namespace {

class ComandoCrearTest : public ProgramaTest {
protected:
    QStringList Archivos() const {
        return QDir(carpeta_.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
    static QStringList Crear(const QStringList& opciones = {}) {
        return QStringList{u"crear"_s, u"embebido"_s, u"central.db"_s} + opciones;
    }
};

TEST_F(ComandoCrearTest, UnaSentenciaMalaDiceSuLineaYNoDejaNada) {
    const struct {
        QByteArray texto;
        QString linea;
    } casos[] = {
        {"INSERT INTO NoHay VALUES (1)", u"(línea 1: INSERT INTO NoHay VALUES (1)) (208)"_s},
        {"\n\nINSERT INTO Menu (ID_Menu,Nombre_Menu) VALUES (1,'a')\n\nSELEC 1\n",
         u"(línea 5: SELEC 1)"_s},
        {"INSERT INTO Menu (ID_Menu,Nombre_Menu) VALUES (1,'a')\r\n"
         "INSERT INTO Menu (ID_Menu,Nombre_Menu) VALUES (1,'b')\r\n",
         u"(línea 2: INSERT INTO Menu (ID_Menu,Nombre_Menu) VALUES (1,'b'))"_s},
    };
    for (const auto& caso : casos) {
        Escribir(u"datos.sql"_s, caso.texto);
        Falla(Crear({u"--sql=datos.sql"_s}), kFallo, caso.linea);
        EXPECT_EQ(Archivos(), QStringList{u"datos.sql"_s});
    }
}

TEST_F(ComandoCrearTest, SoloUnaBaseVaciaSeLlena) {
    Escribir(u"datos.sql"_s, "INSERT INTO Menu (ID_Menu,Nombre_Menu) VALUES (1,'Comida')\n");
    EXPECT_EQ(Hace(Crear({u"--sql"_s, u"datos.sql"_s})), u"Base de datos creada: central.db\n"_s);
    const QByteArray antes = Leer(u"central.db"_s);
    Falla(Crear({u"--sql"_s, u"datos.sql"_s}), kFallo,
          u"No se creó la base de datos: la base de datos ya contiene tablas."_s);
    EXPECT_EQ(Leer(u"central.db"_s), antes) << "an older one is neither removed nor touched";
    Escribir(u"texto.db"_s, "de otro programa");
    Falla({u"crear"_s, u"embebido"_s, u"texto.db"_s}, kFallo, u"texto.db"_s);
    EXPECT_EQ(Leer(u"texto.db"_s), "de otro programa");
}

TEST_F(ComandoCrearTest, SinArchivoOSinCarpetaNoEmpieza) {
    Escribir(u"archivo"_s, "x");
    Falla(Crear({u"--sql=nada.sql"_s}), kFallo, u"No se puede leer el archivo nada.sql: "_s);
    Falla({u"crear"_s, u"embebido"_s, u"no/hay.db"_s}, kFallo,
          u"No existe la carpeta de la base de datos no/hay.db."_s);
    Falla({u"crear"_s, u"embebido"_s, u"archivo/central.db"_s}, kFallo,
          u"No existe la carpeta de la base de datos archivo/central.db."_s);
    EXPECT_EQ(Archivos(), QStringList{u"archivo"_s});
}

}  // namespace
}  // namespace quimo::app
