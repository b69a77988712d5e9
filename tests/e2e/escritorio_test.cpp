// The desktop program from its command line to its main window, on real windows and a real
// database.
#include "app/escritorio/escritorio.h"

#include <array>
#include <memory>
#include <optional>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include "data/esquema.h"
#include "data/valores.h"
#include "demo/sql_demo.h"
#include "foundation/conector.h"
#include "foundation/permisos.h"
#include "support/cajas_guion.h"
#include "support/dialogos_guion.h"
#include "ui/principal/frm_inicio.h"

namespace quimo::app {
namespace {

using namespace Qt::StringLiterals;

const QString kSinSeguridad =
    u"[x] QUIMO|No es posible validar la seguridad, favor de contactar al administrador"_s;
const QString kInexistente = u"[x] Login|¡Usuario inexistente ó contraseña invalida!"_s;
const QString kIncorrecto = u"[i] QUIMO|El usuario es incorrecto, intente de nuevo"_s;
const QString kInvalida = u"[x] Login|¡Contraseña invalida!"_s;
const QString kSuspendido = u"Usuario suspendido, contacte al administrador"_s;

class EscritorioTest : public testing::Test {
protected:
    void SetUp() override {
        qputenv("QUIMO_CLAVE", "clave de prueba");
        qputenv("QUIMO_DIR", carpeta_.path().toUtf8());
        base_ = carpeta_.filePath(u"central.db"_s);
        ASSERT_TRUE(cifrado_.Preparar());
        Conectar(base_);
        ASSERT_TRUE(data::CrearBase(ado_->Conexion()));
        Ejecutar(
            u"INSERT INTO Parametros (ID_Parametro,Valor_Cad) VALUES "
            "('FECHA_TRABAJO','14112026')"_s);
        Empleado(1, u"ana"_s, u"A"_s);
        Empleado(2, u"sus"_s, u"S"_s);
        Empleado(3, u"fue"_s, u"N"_s);
        Ejecutar(u"UPDATE Empleado SET Contraseña='¡no es Base64!' WHERE Usuario='sus'"_s);
    }
    void TearDown() override {
        escritorio_.reset();
        for (const char* const nombre : {"QUIMO_CLAVE", "QUIMO_DIR"})
            qunsetenv(nombre);
    }
    void Conectar(const QString& archivo) {
        ado_ = std::make_unique<foundation::ClsAdo>(
            foundation::CrearConector(reloj_, foundation::SiFalta::Crear), dialogos_, bitacora_);
        QString servidor = u"embebido"_s;
        QString base = archivo;
        QString nadie;
        ASSERT_TRUE(ado_->Conectar(servidor, base, nadie, nadie));
    }
    void Ejecutar(const QString& tsql, const QVector<QVariant>& valores = {}) {
        const auto hecho = demo::Ejecutar(ado_->Conexion(), tsql, valores);
        ASSERT_TRUE(hecho) << hecho.error().mensaje << hecho.error().detalle;
    }
    void Empleado(int id, const QString& usuario, const QString& estado) {
        Ejecutar(
            u"INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado,Contraseña,"
            "Estado_Empleado) VALUES (?,?,?,?,?)"_s,
            {id, usuario, usuario, cifrado_.Cifrar(u"Secreto €"_s).value(), estado});
    }
    QString Valor(const QString& columna, const QString& usuario) {
        return foundation::ValorCampo(*ado_, u"Empleado"_s, columna,
                                      u"Usuario='"_s + usuario + u'\'')
            .value();
    }

    /// Starts the program and passes the splash. It has ended, or waits at the login.
    void Iniciar(const QStringList& argumentos) {
        escritorio_.reset();
        estado_.reset();
        escritorio_ = std::make_unique<Escritorio>(reloj_);
        QObject::connect(escritorio_.get(), &Escritorio::Termino,
                         [this](int estado) { estado_ = estado; });
        escritorio_->Iniciar(argumentos);
        QTest::keyClick(Ventana(u"frmInicio"_s), Qt::Key_Space);
        ASSERT_TRUE(pruebas::Esperar(
            [this] { return estado_.has_value() || Ventana(u"frmLogin"_s) != nullptr; }));
        if (QWidget* const login = Ventana(u"frmLogin"_s)) {
            login->activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(login));
        }
    }
    static QWidget* Ventana(const QString& nombre) {
        for (QWidget* const ventana : QApplication::topLevelWidgets()) {
            if (ventana->objectName() == nombre && ventana->isVisible()) return ventana;
        }
        return nullptr;
    }
    template <typename Control>
    static Control* Hallar(const QString& ventana, const QString& nombre) {
        QWidget* const donde = Ventana(ventana);
        return donde == nullptr ? nullptr : donde->findChild<Control*>(nombre);
    }
    static QLineEdit* Usuario() { return Hallar<QLineEdit>(u"frmLogin"_s, u"txtUserName"_s); }
    static QLineEdit* Contrasena() { return Hallar<QLineEdit>(u"frmLogin"_s, u"txtPassword"_s); }
    /// What has the focus as soon as the window is the active one again.
    static QWidget* ConFoco() { return Ventana(u"frmLogin"_s)->focusWidget(); }
    /// One attempt; what was shown.
    QStringList Entrar(const QString& usuario, const QString& contrasena) {
        Usuario()->setText(usuario);
        Contrasena()->setText(contrasena);
        Hallar<QPushButton>(u"frmLogin"_s, u"cmdOK"_s)->click();
        return cajas_.Tomar();
    }
    /// Controls of a window that a screen reader could not tell apart.
    static QStringList SinNombre(const QWidget& ventana) {
        QStringList nombres;
        for (const QWidget* const control : ventana.findChildren<QWidget*>()) {
            const bool interno = control->objectName().startsWith(u"qt_"_s);
            if (interno || !control->isVisible() || control->focusPolicy() == Qt::NoFocus) continue;
            if (control->objectName().isEmpty() || control->accessibleName().isEmpty()) {
                nombres << QString::fromLatin1(control->metaObject()->className());
            }
        }
        return nombres;
    }
    QMainWindow* Principal() {
        EXPECT_TRUE(pruebas::Esperar([] { return Ventana(u"MDIPrincipal"_s) != nullptr; }));
        return qobject_cast<QMainWindow*>(Ventana(u"MDIPrincipal"_s));
    }

    QTemporaryDir carpeta_;
    QString base_;
    pruebas::RelojFijo reloj_;
    pruebas::DialogosGuion dialogos_;
    pruebas::CajasGuion cajas_;
    foundation::ClsBitacora bitacora_{{.Parchivo = false, .PMsgBox = false}, dialogos_, reloj_};
    std::unique_ptr<foundation::ClsAdo> ado_;
    security::CifradoRc4 cifrado_;
    std::unique_ptr<Escritorio> escritorio_;
    std::optional<int> estado_;
};

TEST_F(EscritorioTest, SinBaseDeDatosLoDiceYTerminaConEstado1) {
    const QString nada = carpeta_.filePath(u"no/existe.db"_s);
    for (const QStringList& argumentos : {QStringList{},
                                          {u"embebido"_s},
                                          {u"127.0.0.1"_s, u"Restaurante"_s},
                                          {u"embebido"_s, nada},
                                          {u"embebido "_s + nada},
                                          {u"embebido"_s, carpeta_.path()}}) {
        Iniciar(argumentos);
        const QStringList cajas = cajas_.Tomar();
        ASSERT_FALSE(cajas.isEmpty());
        EXPECT_EQ(cajas.last(), kSinSeguridad);
        EXPECT_EQ(estado_, 1) << argumentos.join(u' ').toStdString();
        EXPECT_EQ(Ventana(u"frmLogin"_s), nullptr);
    }
    EXPECT_FALSE(QFile::exists(nada));
    Iniciar({u"embebido"_s});
    EXPECT_EQ(cajas_.Tomar(), QStringList{kSinSeguridad});
    Iniciar({u"embebido"_s, u"dos"_s, u"tres"_s});
    EXPECT_EQ(estado_, 1);
    EXPECT_TRUE(cajas_.Tomar().value(0).contains(u"dos palabras"_s));
}

TEST_F(EscritorioTest, LaLineaDeComandosSonDosPalabrasComoVengan) {
    for (const QStringList& argumentos :
         {QStringList{u"embebido"_s, base_}, {u"embebido "_s + base_}}) {
        Iniciar(argumentos);
        EXPECT_NE(Ventana(u"frmLogin"_s), nullptr);
        EXPECT_FALSE(estado_.has_value());
    }
    const auto con_blancos = LeerLineaDeComandos({u"embebido"_s, u"/mi carpeta/a.db"_s});
    ASSERT_TRUE(con_blancos);
    EXPECT_EQ(con_blancos->base_de_datos, u"/mi carpeta/a.db"_s);
    EXPECT_EQ(LeerLineaDeComandos({u"solo"_s})->base_de_datos, QString());
}

TEST_F(EscritorioTest, LaPantallaDeInicioTerminaSolaConUnClicYConUnaTecla) {
    for (int manera = 0; manera < 3; ++manera) {
        auto* const inicio = new ui::frmInicio;
        int veces = 0;
        QObject::connect(inicio, &ui::frmInicio::Terminado, [&veces] { ++veces; });
        inicio->show();
        if (manera == 1) QTest::mouseClick(inicio, Qt::LeftButton);
        if (manera == 2) QTest::keyClick(inicio, Qt::Key_A);
        EXPECT_EQ(veces, manera == 0 ? 0 : 1);
        EXPECT_TRUE(pruebas::Esperar([&veces] { return veces == 1; }));
        EXPECT_FALSE(inicio->isVisible());
        delete inicio;
    }
}

TEST_F(EscritorioTest, LaContrasenaBuenaAbreLaVentanaPrincipalYCerrarlaTermina) {
    Iniciar({u"embebido"_s, base_});
    EXPECT_TRUE(Usuario()->hasFocus());
    EXPECT_TRUE(Hallar<QLabel>(u"frmLogin"_s, u"PicRojo"_s)->isVisible());
    EXPECT_FALSE(Hallar<QLabel>(u"frmLogin"_s, u"PicAmarillo"_s)->isVisible());
    EXPECT_EQ(SinNombre(*Ventana(u"frmLogin"_s)), QStringList());
    pruebas::Teclear(*Usuario(), u"ana"_s);
    QTest::keyClick(Usuario(), Qt::Key_Tab);
    EXPECT_TRUE(Hallar<QLabel>(u"frmLogin"_s, u"PicAmarillo"_s)->isVisible());
    EXPECT_FALSE(Hallar<QLabel>(u"frmLogin"_s, u"PicRojo"_s)->isVisible());
    pruebas::Teclear(*Contrasena(), u"sECRETO €"_s);
    EXPECT_FALSE(Contrasena()->displayText().contains(u'E'));
    QTest::keyClick(Contrasena(), Qt::Key_Return);
    QMainWindow* const principal = Principal();
    ASSERT_NE(principal, nullptr);
    EXPECT_EQ(Ventana(u"frmLogin"_s), nullptr);
    EXPECT_EQ(SinNombre(*principal), QStringList());
    EXPECT_TRUE(cajas_.Tomar().isEmpty());
    EXPECT_EQ(principal->findChild<QLabel*>(u"PanelFechaTrabajo"_s)->text(),
              u"Fecha de trabajo: 14/11/2026"_s);
    QFile log(carpeta_.filePath(u"QUIMO.log"_s));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    const QByteArray escrito = log.readAll();
    EXPECT_TRUE(escrito.contains("\tDesconocido\tIniciando\t...Log Iniciado...\t"));
    EXPECT_FALSE(escrito.contains("ecreto"));
    EXPECT_FALSE(estado_.has_value());
    principal->findChild<QAction*>(u"mnuArSalir"_s)->trigger();
    EXPECT_EQ(estado_, 0);
}

TEST_F(EscritorioTest, CancelarLaEntradaTerminaSinFalla) {
    for (int manera = 0; manera < 3; ++manera) {
        Iniciar({u"embebido"_s, base_});
        if (manera == 0) Hallar<QPushButton>(u"frmLogin"_s, u"cmdCancel"_s)->click();
        if (manera == 1) QTest::keyClick(Usuario(), Qt::Key_Escape);
        if (manera == 2) Ventana(u"frmLogin"_s)->close();
        EXPECT_EQ(estado_, 0);
    }
}

TEST_F(EscritorioTest, LaQuintaContrasenaMalaSuspende) {
    Iniciar({u"embebido"_s, base_});
    for (int vez = 1; vez <= 5; ++vez) {
        QStringList esperadas{kInvalida};
        if (vez == 5) esperadas << u"[x] Login|"_s + kSuspendido;
        EXPECT_EQ(Entrar(u"ana"_s, u"otra"_s), esperadas);
        EXPECT_EQ(Usuario()->text(), u"ana"_s);
        EXPECT_EQ(Contrasena()->text(), QString());
        EXPECT_EQ(ConFoco(), Contrasena());
        EXPECT_EQ(Valor(u"Intentos"_s, u"ana"_s), QString::number(vez));
    }
    EXPECT_EQ(Entrar(u"ana"_s, u"Secreto €"_s), QStringList{u"[i] QUIMO|"_s + kSuspendido});
    EXPECT_EQ(ConFoco(), Usuario());
    EXPECT_EQ(Valor(u"Estado_Empleado"_s, u"ana"_s), u"S"_s);
    EXPECT_NE(Ventana(u"frmLogin"_s), nullptr);
}

TEST_F(EscritorioTest, QuienNoPuedeEntrarLeePorQue) {
    Ejecutar(
        u"INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado,Contraseña) VALUES "
        "(4,'mala','Mala','¡no es Base64!')"_s);
    Iniciar({u"embebido"_s, base_});
    const struct {
        QString usuario;
        QString contrasena;
        QString mensaje;
        QString queda;      ///< in the user box
        bool foco_usuario;  ///< else the password box keeps or gets it
    } casos[] = {
        {u"fue"_s,
         u"Secreto €"_s,
         u"[i] QUIMO|El usuario ya no labora en la empresa, contacte al administrador"_s,
         {},
         true},
        {u"sus"_s, u"Secreto €"_s, u"[i] QUIMO|"_s + kSuspendido, u"sus"_s, true},
        {u"D'Acosta"_s, u"x"_s, kInexistente, {}, true},
        {u"mala"_s, u""_s, kInvalida, u"mala"_s, false},
        {u"ana"_s, u"漢字"_s, kInvalida, u"ana"_s, false},
        {u"ana"_s, QString(10000, u'x'), kInvalida, u"ana"_s, false},
        {QString(10000, u'x'), u"x"_s, kIncorrecto, QString(10000, u'x'), false},
    };
    for (const auto& caso : casos) {
        Contrasena()->setFocus();
        EXPECT_EQ(Entrar(caso.usuario, caso.contrasena), QStringList{caso.mensaje});
        EXPECT_EQ(Usuario()->text(), caso.queda) << caso.usuario.left(20).toStdString();
        EXPECT_EQ(ConFoco() == Usuario(), caso.foco_usuario) << caso.usuario.left(20).toStdString();
    }
    qunsetenv("QUIMO_CLAVE");
    const QString sin_clave = Entrar(u"ana"_s, u"Secreto €"_s).value(0);
    EXPECT_TRUE(sin_clave.contains(u"QUIMO_CLAVE"_s)) << sin_clave.toStdString();
    qputenv("QUIMO_CLAVE", "otra clave");
    EXPECT_EQ(Entrar(u"ana"_s, u"Secreto €"_s), QStringList{kInvalida});
}

TEST_F(EscritorioTest, UnaBaseSinTablasOSinFechaDeTrabajoSeDice) {
    const QString vacia = carpeta_.filePath(u"vacia.db"_s);
    Conectar(vacia);
    Ejecutar(u"CREATE TABLE Otra (a INT)"_s);
    Iniciar({u"embebido"_s, vacia});
    EXPECT_EQ(Entrar(u"ana"_s, u"x"_s), QStringList{kInexistente});
    EXPECT_TRUE(Usuario()->text().isEmpty() && Contrasena()->text().isEmpty());

    Conectar(base_);
    Ejecutar(u"DELETE FROM Parametros"_s);
    Iniciar({u"embebido"_s, base_});
    const QStringList cajas = Entrar(u"ana"_s, u"Secreto €"_s);
    ASSERT_EQ(cajas.size(), 1);
    EXPECT_TRUE(cajas[0].contains(u"FECHA_TRABAJO"_s));
    EXPECT_NE(Principal(), nullptr);
}

TEST_F(EscritorioTest, CadaComandoSigueALosPermisosDelUsuario) {
    const QStringList todos = foundation::NombresDePermisos();
    Ejecutar(u"INSERT INTO Grupo_Trabajo VALUES (1,'Uno')"_s);
    Ejecutar(u"INSERT INTO EmpleadosXGrupo VALUES (1,1)"_s);
    for (int id = 0; id < todos.size(); ++id)
        Ejecutar(u"INSERT INTO Permisos VALUES (?,?,1)"_s, {id + 1, todos[id]});
    QVector<QStringList> casos{{}, todos};
    for (const QString& permiso : todos)
        casos << QStringList{permiso};
    for (const QStringList& permisos : std::as_const(casos)) {
        Ejecutar(u"DELETE FROM PermisosXGrupo_Trabajo"_s);
        for (const QString& permiso : permisos) {
            Ejecutar(u"INSERT INTO PermisosXGrupo_Trabajo VALUES (1,?)"_s,
                     {static_cast<int>(todos.indexOf(permiso)) + 1});
        }
        Iniciar({u"embebido"_s, base_});
        ASSERT_TRUE(Entrar(u"ana"_s, u"Secreto €"_s).isEmpty());
        QHash<QString, bool> esperados;
        for (const auto& [comando, habilitado] :
             foundation::HabilitarComandos(u'|' + permisos.join(u'|') + u'|')) {
            esperados.insert(comando->nombre.toString(), habilitado);
        }
        int comandos = 0;
        for (const QAction* const accion : Principal()->findChildren<QAction*>()) {
            const QString nombre = accion->objectName();
            if (!nombre.startsWith(u"mnu"_s, Qt::CaseInsensitive)) continue;
            ++comandos;
            // Those for a child window wait for one.
            const bool de_hija = nombre == u"mnuEdReg"_s || nombre.startsWith(u"mnuSpr"_s) ||
                                 nombre == u"mnuArImprimir"_s || nombre == u"mnuArcPreview"_s;
            EXPECT_EQ(accion->isEnabled(),
                      nombre == u"mnuSpread"_s || esperados.value(nombre, !de_hija))
                << nombre.toStdString() << " with " << permisos.join(u' ').toStdString();
        }
        EXPECT_GT(comandos, 80);
    }
}

}  // namespace
}  // namespace quimo::app
