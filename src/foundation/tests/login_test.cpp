#include "foundation/login.h"

#include <array>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "data/esquema.h"
#include "data/valores.h"
#include "foundation/conector.h"
#include "support/dialogos_guion.h"

namespace quimo::foundation {
namespace {

using namespace Qt::StringLiterals;
using Foco = Login::Foco;

/// Passwords are stored backwards; "###" cannot be read.
class CifradoAlReves final : public CifradoContrasenas {
public:
    base::Result<void> Preparar() override {
        if (hay_clave) return {};
        return base::Error{base::Error::Codigo::NoEncontrado, "Falta la clave"};
    }
    base::Result<QString> Descifrar(const QString& guardada) const override {
        if (guardada == u"###"_s) return base::Error{base::Error::Codigo::Formato, "?"};
        QString clara;
        for (const QChar letra : guardada)
            clara.prepend(letra);
        return clara;
    }
    bool hay_clave = true;
};

class LoginTest : public testing::Test {
protected:
    void SetUp() override {
        QString servidor = u"embebido"_s;
        QString archivo = carpeta_.filePath(u"central.db"_s);
        QString nadie;
        ASSERT_TRUE(ado_.Conectar(servidor, archivo, nadie, nadie));
        const auto creada = data::CrearBase(ado_.Conexion(), QString::fromUtf8(kDatos));
        ASSERT_TRUE(creada) << creada.error().Descripcion().toStdString();
    }

    QString Valor(const QString& expresion, const QString& usuario) {
        return ValorCampo(ado_, u"Empleado"_s, expresion, u"Usuario='"_s + usuario + u'\'').value();
    }
    /// The outcome in letters: E entered, u c fields emptied, U C focus.
    QString Probar(const QString& usuario, const QString& contrasena) {
        dialogos_.Olvidar();
        const Login::Desenlace d = login_.Aceptar(usuario, contrasena);
        return QString(d.entro ? u"E"_s : QString()) + (d.vaciar_usuario ? u"u"_s : QString()) +
               (d.vaciar_contrasena ? u"c"_s : QString()) +
               (d.foco == Foco::Usuario ? u"U"_s : QString()) +
               (d.foco == Foco::Contrasena ? u"C"_s : QString());
    }

    static constexpr char kDatos[] =
        "INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado,Contraseña,Estado_Empleado,"
        "Intentos,Admin_Usuarios) VALUES (7,'ana','Ana','oterceS','A',2,1)\n"
        "INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado,Contraseña,Estado_Empleado) "
        "VALUES (8,'sus','Sus','oterceS','S')\n"
        "INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado,Contraseña,Estado_Empleado) "
        "VALUES (9,'fue','Fue','oterceS','N')\n"
        "INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado) VALUES (10,'nueva','Nueva')\n"
        "INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado,Contraseña) VALUES "
        "(11,'mala','Mala','###')\n"
        "INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado,Contraseña) VALUES "
        "(70000,'lejos','Lejos','oterceS')\n";

    QTemporaryDir carpeta_;
    pruebas::RelojFijo reloj_;
    pruebas::DialogosGuion dialogos_;
    ClsBitacora bitacora_{
        {.PArchivoLog = carpeta_.filePath(u"log"_s), .PMsgBox = false}, dialogos_, reloj_};
    ClsAdo ado_{CrearConector(reloj_, SiFalta::Crear), dialogos_, bitacora_};
    CifradoAlReves cifrado_;
    Login login_{ado_, cifrado_};
};

const QString kSuspendido = u"Usuario suspendido, contacte al administrador"_s;
const QString kInvalida = u"[x] Login|¡Contraseña invalida!"_s;

TEST_F(LoginTest, CadaRechazoTieneSuMensajeYNoTocaElContador) {
    const QString inexistente = u"[x] Login|¡Usuario inexistente ó contraseña invalida!"_s;
    const QString incorrecto = u"[i] |El usuario es incorrecto, intente de nuevo"_s;
    struct Caso {
        QString usuario;
        QString contrasena;
        QString desenlace;
        QString mensaje;
    };
    const std::array<Caso, 8> casos = {{
        {u"nadie"_s, u"secreto"_s, {}, incorrecto},
        {{}, {}, {}, incorrecto},
        {QString(10000, u'x'), QString(10000, u'y'), {}, incorrecto},
        {u"sus"_s, u"secreto"_s, u"U"_s, u"[i] |"_s + kSuspendido},
        {u"fue"_s, u"secreto"_s, u"uU"_s,
         u"[i] |El usuario ya no labora en la empresa, contacte al administrador"_s},
        {u"O'Reilly"_s, u"x"_s, u"ucU"_s, inexistente},
        {u"' OR 1=1 --"_s, u"secreto"_s, u"ucU"_s, inexistente},
        {u"x';UPDATE Empleado SET Estado_Empleado='N';--"_s, u"secreto"_s, u"ucU"_s, inexistente},
    }};
    for (const Caso& caso : casos) {
        EXPECT_EQ(Probar(caso.usuario, caso.contrasena), caso.desenlace);
        EXPECT_EQ(dialogos_.Mostrados(), QStringList{caso.mensaje});
    }
    EXPECT_EQ(Valor(u"Intentos"_s, u"sus"_s), u"0"_s);
    EXPECT_EQ(Valor(u"Estado_Empleado"_s, u"ana"_s), u"A"_s);
}

TEST_F(LoginTest, LaContrasenaBuenaEntraSinMayusculasYBorraElContador) {
    EXPECT_EQ(Probar(u"ana"_s, u"sECRETO"_s), u"E"_s);
    EXPECT_TRUE(dialogos_.Mostrados().isEmpty());
    EXPECT_EQ(Valor(u"Intentos"_s, u"ana"_s), u"0"_s);
    EXPECT_EQ(login_.Sesion().usuario, u"ana"_s);
    EXPECT_EQ(login_.Sesion().id_empleado, 7);
    EXPECT_TRUE(login_.Sesion().admin_usuarios);
    EXPECT_EQ(Probar(u"lejos"_s, u"Secreto"_s), QString());
    EXPECT_TRUE(dialogos_.Mostrados().value(0).contains(u"70000"_s));
    EXPECT_EQ(login_.Sesion().id_empleado, 7);
}

TEST_F(LoginTest, LaQuintaContrasenaMalaSuspende) {
    ASSERT_EQ(Probar(u"ana"_s, u"Secreto"_s), u"E"_s);
    for (int vez = 1; vez <= 4; ++vez) {
        EXPECT_EQ(Probar(u"ana"_s, u"otra"_s), u"cC"_s);
        EXPECT_EQ(dialogos_.Mostrados(), QStringList{kInvalida});
        EXPECT_EQ(Valor(u"Intentos"_s, u"ana"_s), QString::number(vez));
        EXPECT_EQ(Valor(u"Estado_Empleado"_s, u"ana"_s), u"A"_s);
    }
    EXPECT_EQ(Probar(u"ana"_s, u"漢字"_s), u"cC"_s);
    EXPECT_EQ(dialogos_.Mostrados(), (QStringList{kInvalida, u"[x] Login|"_s + kSuspendido}));
    EXPECT_EQ(Valor(u"Intentos"_s, u"ana"_s), u"5"_s);
    EXPECT_EQ(Valor(u"Estado_Empleado"_s, u"ana"_s), u"S"_s);
    EXPECT_EQ(Probar(u"ana"_s, u"Secreto"_s), u"U"_s);
    EXPECT_EQ(Valor(u"Intentos"_s, u"ana"_s), u"5"_s);
}

TEST_F(LoginTest, LoQueNoEsContrasenaNuncaEsBuena) {
    for (const QString& usuario : {u"nueva"_s, u"mala"_s}) {
        for (const QString& contrasena : {QString(), u"###"_s})
            EXPECT_EQ(Probar(usuario, contrasena), u"cC"_s) << usuario.toStdString();
        EXPECT_EQ(Valor(u"Intentos"_s, usuario), u"2"_s);
    }
}

TEST_F(LoginTest, SinClaveNoSeIntentaNada) {
    cifrado_.hay_clave = false;
    EXPECT_EQ(Probar(u"ana"_s, u"otra"_s), QString());
    EXPECT_EQ(dialogos_.Mostrados(), QStringList{u"[x] Login|Falta la clave"_s});
    EXPECT_EQ(Valor(u"Intentos"_s, u"ana"_s), u"2"_s);
}

TEST_F(LoginTest, ElContadorQueNoSePuedeEscribirSeDice) {
    ASSERT_FALSE(
        ado_.Conexion()
            .Ejecutar(u"ALTER TABLE Empleado ADD CONSTRAINT CK_Prueba CHECK (Intentos<4)"_s)
            .fallo);
    for (int vez = 0; vez < 2; ++vez)
        Probar(u"ana"_s, u"otra"_s);
    EXPECT_EQ(dialogos_.Mostrados().size(), 2) << dialogos_.Mostrados().join(u'\n').toStdString();
    EXPECT_EQ(Valor(u"Intentos"_s, u"ana"_s), u"3"_s);
}

TEST_F(LoginTest, UnaBaseSinTablasNoDejaEntrarYLaBitacoraDicePorQue) {
    QString servidor = u"embebido"_s;
    QString archivo = carpeta_.filePath(u"vacia.db"_s);
    QString nadie;
    ASSERT_TRUE(ado_.Conectar(servidor, archivo, nadie, nadie));
    EXPECT_EQ(Probar(u"ana"_s, u"Secreto"_s), u"ucU"_s);
    QFile log(bitacora_.Archivo());
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_TRUE(log.readAll().contains("Empleado"));
}

TEST_F(LoginTest, LosPermisosVienenDeTodosLosGruposYSoloCuentanLosActivos) {
    for (const char16_t* sentencia : {u"INSERT INTO Grupo_Trabajo VALUES (1,'Uno')",
                                      u"INSERT INTO Grupo_Trabajo VALUES (2,'Dos')",
                                      u"INSERT INTO Permisos VALUES (1,'SUBMENU',1)",
                                      u"INSERT INTO Permisos VALUES (2,'ADMIN',1)",
                                      u"INSERT INTO Permisos VALUES (3,'REPORTES',0)",
                                      u"INSERT INTO PermisosXGrupo_Trabajo VALUES (1,1)",
                                      u"INSERT INTO PermisosXGrupo_Trabajo VALUES (2,2)",
                                      u"INSERT INTO PermisosXGrupo_Trabajo VALUES (2,3)",
                                      u"INSERT INTO EmpleadosXGrupo VALUES (7,1)",
                                      u"INSERT INTO EmpleadosXGrupo VALUES (7,2)"}) {
        const auto respuesta = ado_.Conexion().Ejecutar(QString::fromUtf16(sentencia));
        ASSERT_FALSE(respuesta.fallo) << respuesta.fallo->Descripcion().toStdString();
    }
    const QString permisos = CargaPermisos(ado_, 7).value();
    EXPECT_EQ(permisos.size(), QStringView(u"|SUBMENU|ADMIN|").size());
    EXPECT_TRUE(TienePermiso(permisos, u"SUBMENU"_s) && TienePermiso(permisos, u"ADMIN"_s));
    EXPECT_FALSE(TienePermiso(permisos, u"MENU"_s));
    EXPECT_FALSE(TienePermiso(permisos, u"REPORTES"_s));
    EXPECT_EQ(CargaPermisos(ado_, 8).value(), u"|"_s);
}

}  // namespace
}  // namespace quimo::foundation
