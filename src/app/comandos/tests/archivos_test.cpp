#include <QDir>

#include "app/comandos/comando.h"
#include "programa_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::app {
namespace {

/// The commands that write a file or a folder, or read who is to enter.
class ComandoArchivosTest : public ProgramaTest {
protected:
    void SetUp() override { Escribir(u"ocupado"_s, "de otro"); }
    void TearDown() override { EXPECT_EQ(Leer(u"ocupado"_s), "de otro"); }
};

TEST_F(ComandoArchivosTest, NadaSeEscribeEncimaNiDondeNoSePuede) {
    const struct {
        QStringList argumentos;
        QString mensaje;
    } casos[] = {
        {{u"clave"_s, u"ocupado"_s}, u"No se puede usar el archivo de clave ocupado: ya existe."_s},
        {{u"clave"_s, u"ocupado/k"_s}, u"No se puede usar el archivo de clave ocupado/k: "_s},
        {{u"clave"_s, u"no/hay"_s}, u"No se puede usar el archivo de clave no/hay: "_s},
        {{u"plantilla"_s, u"ocupado"_s}, u"El archivo ocupado ya existe."_s},
        {{u"plantilla"_s, u"ocupado/p.mdb"_s}, u"No se puede guardar el archivo "_s},
        {{u"plantilla"_s, u"no/hay.mdb"_s}, u"No se puede guardar el archivo "_s},
        {{u"demo"_s, u"ocupado"_s}, u"ocupado ya existe y no es un restaurante de demostración."_s},
        {{u"demo"_s, u"."_s}, u"Elija una carpeta nueva o vacía."_s},
        {{u"demo"_s, u"ocupado/demo"_s}, u"No se puede escribir en la carpeta "_s},
        {{u"cerrar"_s, u"embebido"_s, u"c.db"_s, u"--dir=nada"_s},
         u"No existe la carpeta del programa "_s},
        {{u"revisar-base"_s, u"embebido"_s, u"nada.db"_s},
         u"No existe la base de datos nada.db."_s},
        {{u"revisar-base"_s, u"embebido"_s, u"ocupado"_s},
         u"Restaure el respaldo más reciente de la base"_s},
    };
    for (const auto& caso : casos)
        Falla(caso.argumentos, kFallo, caso.mensaje);
    EXPECT_EQ(QDir(carpeta_.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{u"ocupado"_s});
}

TEST_F(ComandoArchivosTest, LaClaveEsOtraCadaVezYSoloDeSuDueno) {
    for (const QString& nombre : {u"una"_s, u"otra"_s}) {
        EXPECT_TRUE(Hace({u"clave"_s, nombre}).contains(u"QUIMO_CLAVE_ARCHIVO="_s + nombre));
        EXPECT_EQ(QFile::permissions(Ruta(nombre)) &
                      (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther),
                  QFile::Permissions());
    }
    EXPECT_NE(Leer(u"una"_s), Leer(u"otra"_s));
    EXPECT_GT(Leer(u"una"_s).size(), 16);
}

TEST_F(ComandoArchivosTest, LaPlantillaEstaSanaYVacia) {
    EXPECT_EQ(Hace({u"plantilla"_s, u"p.mdb"_s}),
              u"Plantilla escrita: "_s + QDir(carpeta_.path()).canonicalPath() + u"/p.mdb\n"_s);
    EXPECT_EQ(Hace({u"mdb"_s, u"verificar"_s, u"p.mdb"_s}), u"El archivo está bien.\n"_s);
    const QStringList tablas = Hace({u"mdb"_s, u"tablas"_s, u"p.mdb"_s}).split(u'\n');
    EXPECT_TRUE(tablas.contains(u"Pago\t0"_s));
    for (const QString& tabla : tablas)
        EXPECT_TRUE(tabla.isEmpty() || tabla.endsWith(u"\t0"_s)) << tabla.toStdString();
}

TEST_F(ComandoArchivosTest, ElAdministradorSeDaDeAltaUnaVezConUnaContrasena) {
    Hace({u"crear"_s, u"embebido"_s, u"central.db"_s});
    const QStringList jefa{u"usuario"_s, u"embebido"_s, u"central.db"_s, u"jefa"_s};
    Falla(jefa, kFallo, u"Falta la clave del cifrado de contraseñas"_s, "Secreta 1\n");
    clave_ = u"clave de prueba"_s;
    Falla(jefa, kFallo, u"La contraseña no puede estar vacía."_s, "\n");
    Falla(jefa, kFallo, u"La contraseña no puede estar vacía."_s);
    Falla({u"usuario"_s, u"embebido"_s, u"nada.db"_s, u"jefa"_s}, kFallo,
          u"No existe la base de datos nada.db."_s, "Secreta 1\n");
    Falla({u"usuario"_s, u"embebido"_s, u"central.db"_s, u"o'neil"_s}, kFallo, u"El usuario"_s,
          "Secreta 1\n");
    const QStringList con_nombre = jefa + QStringList{u"--nombre=La Jefa"_s};
    EXPECT_EQ(Hace(con_nombre, "Secreta 1\r\n"), u"Administrador dado de alta: jefa\n"_s);
    Falla({u"usuario"_s, u"embebido"_s, u"central.db"_s, u"otra"_s}, kFallo,
          u"La base de datos ya tiene un administrador: jefa."_s, "Otra 2\n");
    EXPECT_EQ(Hace({u"sql"_s, u"embebido"_s, u"central.db"_s, u"--formato=csv"_s,
                    u"--consulta=SELECT Usuario,Nombre_Empleado,Admin_Usuarios FROM Empleado"_s}),
              u"Usuario,Nombre_Empleado,Admin_Usuarios\njefa,La Jefa,1\n"_s);
    const QString guardada = Hace({u"sql"_s, u"embebido"_s, u"central.db"_s,
                                   u"--consulta=SELECT Contraseña FROM Empleado"_s});
    EXPECT_FALSE(guardada.contains(u"Secreta"_s));
    EXPECT_TRUE(Hace({u"revisar-base"_s, u"embebido"_s, u"central.db"_s})
                    .startsWith(u"La base de datos está sana.\n"_s));
}

}  // namespace
}  // namespace quimo::app
