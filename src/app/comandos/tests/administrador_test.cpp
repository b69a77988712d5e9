#include "app/comandos/administrador.h"

#include <array>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "data/esquema.h"
#include "demo/sql_demo.h"
#include "foundation/conector.h"
#include "foundation/login.h"
#include "foundation/permisos.h"
#include "security/cifrado_rc4.h"
#include "support/dialogos_guion.h"

namespace quimo::app {
namespace {

using namespace Qt::StringLiterals;

class AdministradorTest : public testing::Test {
protected:
    void SetUp() override {
        qputenv("QUIMO_CLAVE", "clave de prueba");
        QString servidor = u"embebido"_s;
        QString archivo = carpeta_.filePath(u"central.db"_s);
        QString nadie;
        ASSERT_TRUE(ado_.Conectar(servidor, archivo, nadie, nadie));
        ASSERT_TRUE(data::CrearBase(ado_.Conexion()));
        ASSERT_TRUE(cifrado_.Preparar());
    }
    void TearDown() override { qunsetenv("QUIMO_CLAVE"); }
    base::Result<void> Crear(const QString& usuario, const QString& contrasena) {
        return CrearAdministrador(ado_.Conexion(),
                                  {usuario, u"Nombre"_s, cifrado_.Cifrar(contrasena).value()});
    }
    qsizetype Filas(const QString& tabla) {
        return demo::Consultar(ado_.Conexion(), u"SELECT * FROM "_s + tabla).value().size();
    }

    QTemporaryDir carpeta_;
    pruebas::RelojFijo reloj_;
    pruebas::DialogosGuion dialogos_;
    foundation::ClsBitacora bitacora_{{.Parchivo = false, .PMsgBox = false}, dialogos_, reloj_};
    foundation::ClsAdo ado_{foundation::CrearConector(reloj_, foundation::SiFalta::Crear),
                            dialogos_, bitacora_};
    security::CifradoRc4 cifrado_;
};

TEST_F(AdministradorTest, EntraConTodosLosPermisosYEsElUnico) {
    // A right that is there already keeps its key.
    ASSERT_TRUE(demo::Ejecutar(ado_.Conexion(), u"INSERT INTO Permisos VALUES (5,'ADMIN',1)"_s));
    ASSERT_TRUE(Crear(u"jefa"_s, u"Ñandú 1"_s));
    foundation::Login login(ado_, cifrado_);
    ASSERT_TRUE(login.Aceptar(u"jefa"_s, u"ñandú 1"_s).entro);
    EXPECT_TRUE(login.Sesion().admin_usuarios);
    const QString permisos = foundation::CargaPermisos(ado_, login.Sesion().id_empleado).value();
    for (const QString& nombre : foundation::NombresDePermisos())
        EXPECT_TRUE(foundation::TienePermiso(permisos, nombre)) << nombre.toStdString();
    const auto otra = Crear(u"otra"_s, u"x"_s);
    ASSERT_FALSE(otra);
    EXPECT_EQ(otra.error().codigo, base::Error::Codigo::Restriccion);
    EXPECT_EQ(Filas(u"Empleado"_s), 1);
}

TEST_F(AdministradorTest, LoQueSeNiegaNoDejaNada) {
    ASSERT_TRUE(demo::Ejecutar(ado_.Conexion(),
                               u"INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado,"
                               "Contraseña) VALUES (3,'ana','Ana',?)"_s,
                               {cifrado_.Cifrar(u"repetida"_s).value()}));
    struct Caso {
        QString usuario;
        QString contrasena;
    };
    for (const Caso& caso : {Caso{u"ANA"_s, u"otra"_s}, Caso{u"eva"_s, u"repetida"_s},
                             Caso{{}, u"x"_s}, Caso{u"o'neil"_s, u"x"_s}, Caso{u" eva"_s, u"x"_s},
                             Caso{QString(21, u'x'), u"x"_s}, Caso{u"漢"_s, u"x"_s}}) {
        EXPECT_FALSE(Crear(caso.usuario, caso.contrasena)) << caso.usuario.toStdString();
    }
    EXPECT_EQ(Filas(u"Empleado"_s), 1);
    EXPECT_EQ(Filas(u"Grupo_Trabajo"_s) + Filas(u"Permisos"_s), 0);
}

}  // namespace
}  // namespace quimo::app
