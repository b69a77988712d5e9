#include "ui/principal/mdi_principal.h"

#include <algorithm>

#include <gtest/gtest.h>

#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QSettings>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>

#include "data/esquema.h"
#include "foundation/conector.h"
#include "support/cajas_guion.h"
#include "support/dialogos_guion.h"
#include "ui/controles/rejilla.h"
#include "ui/principal/herramientas.h"

namespace quimo::ui {
namespace {

using namespace Qt::StringLiterals;
using Comando = ComandoVentana;

/// An editor that only writes down what it is asked.
class EditorDePrueba final : public VentanaHija {
public:
    EditorDePrueba() {
        auto* const columna = new QVBoxLayout(this);
        caja = new QLineEdit(this);
        columna->addWidget(caja);
    }
    EstadoVentana Estado() const override { return estado; }
    void Ejecutar(Comando comando) override {
        pedidas << comando;
        if (comando == Comando::Nuevo) Editar();
        if (comando == Comando::Cancelar) Consultar();
    }
    void Activada() override { ++activaciones; }
    void Consultar() {
        estado = {ComandosDeEditor(), ComandosDeEditor() & ~(Comando::Aceptar | Comando::Cancelar),
                  u"Registros: 3"_s, u"INS=Nuevo,F6=Modificar,DEL=Borrar"_s};
        emit EstadoCambiado();
    }
    void Editar() {
        estado.habilitados = Comando::Aceptar | Comando::Cancelar;
        estado.teclas = u"F5=Aceptar ESC=Cancelar"_s;
        emit EstadoCambiado();
    }
    QVector<Comando> Tomar() { return std::exchange(pedidas, {}); }

    QLineEdit* caja;
    EstadoVentana estado = {ComandosDeEditor(), {}, {}, {}};
    QVector<Comando> pedidas;
    int activaciones = 0;
};

class MDIPrincipalTest : public testing::Test {
protected:
    void SetUp() override {
        QString servidor = u"embebido"_s;
        QString archivo = carpeta_.filePath(u"central.db"_s);
        QString nadie;
        ASSERT_TRUE(ado_.Conectar(servidor, archivo, nadie, nadie));
        ASSERT_TRUE(data::CrearBase(
            ado_.Conexion(),
            u"INSERT INTO Parametros (ID_Parametro,Valor_Cad) VALUES ('FECHA_TRABAJO','01032007')"_s));
    }
    /// A new main window, as after a login.
    MDIPrincipal& Abrir() {
        principal_ = std::make_unique<MDIPrincipal>(Contexto{ado_, sesion_, reloj_, dialogos_});
        principal_->show();
        principal_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(principal_.get()));
        return *principal_;
    }
    EditorDePrueba* AbrirEditor() {
        auto* const editor = new EditorDePrueba;
        editor->Consultar();
        principal_->Abrir(editor);
        editor->caja->setFocus();
        return editor;
    }
    QString Panel(const QString& nombre) const {
        return principal_->findChild<QLabel*>(nombre)->text();
    }
    QAction* Accion(const QString& nombre) const { return principal_->findChild<QAction*>(nombre); }

    QTemporaryDir carpeta_;
    pruebas::RelojFijo reloj_;
    DialogosQt dialogos_;
    pruebas::CajasGuion cajas_;
    foundation::ClsBitacora bitacora_{{.Parchivo = false, .PMsgBox = false}, dialogos_, reloj_};
    foundation::ClsAdo ado_{foundation::CrearConector(reloj_, foundation::SiFalta::Crear),
                            dialogos_, bitacora_};
    foundation::EstadoSesion sesion_;
    std::unique_ptr<MDIPrincipal> principal_;
};

TEST_F(MDIPrincipalTest, LaBarraMuestraLasDosFechasYDiceSiFaltaUna) {
    Abrir();
    EXPECT_EQ(Panel(u"PanelFechaTrabajo"_s), u"Fecha de trabajo: 01/03/2007"_s);
    EXPECT_EQ(Panel(u"PanelFechaSistema"_s), u"Fecha del sistema: 15/11/2026"_s);
    EXPECT_EQ(Panel(u"PanelReloj"_s), u"01:30:00"_s);
    EXPECT_TRUE(cajas_.Tomar().isEmpty());
    for (const QString& sentencia : {u"UPDATE Parametros SET Valor_Cad='hoy'"_s,
                                     u"DELETE FROM Parametros"_s, u"DROP TABLE Parametros"_s}) {
        ASSERT_FALSE(ado_.Conexion().Ejecutar(sentencia).fallo);
        principal_->RefrescarFechaTrabajo();
        const QStringList cajas = cajas_.Tomar();
        ASSERT_EQ(cajas.size(), 1) << sentencia.toStdString();
        EXPECT_TRUE(cajas[0].contains(u"FECHA_TRABAJO"_s));
        EXPECT_EQ(Panel(u"PanelFechaTrabajo"_s), u"Fecha de trabajo: "_s);
    }
}

TEST_F(MDIPrincipalTest, CadaComandoHaceAlgoODiceQueNoPuede) {
    Abrir();
    cajas_.ante_otra = [](QWidget& ventana) { ventana.close(); };
    const QStringList propias{u"mnuArCerrar"_s,     u"mnuArSalir"_s,    u"MnuVeArIconos"_s,
                              u"mnuVehorizontal"_s, u"mnuVeVertical"_s, u"mnuVeCascada"_s,
                              u"mnuVeTapiz"_s,      u"mnuLimTapiz"_s,   u"mnuAyAcerca"_s};
    int comandos = 0;
    for (QAction* const accion : principal_->findChildren<QAction*>()) {
        const QString nombre = accion->objectName();
        if (!nombre.startsWith(u"mnu"_s, Qt::CaseInsensitive) || accion->menu() != nullptr)
            continue;
        ++comandos;
        accion->setEnabled(true);
        if (nombre == u"mnuArSalir"_s) continue;
        accion->trigger();
        const QStringList cajas = cajas_.Tomar();
        if (nombre == u"mnuParametros"_s || nombre == u"mnuEmpresas"_s ||
            nombre.startsWith(u"mnuEdReg"_s) || nombre.startsWith(u"mnuSpr"_s) ||
            nombre == u"mnuArImprimir"_s || nombre == u"mnuArcPreview"_s) {
            EXPECT_TRUE(cajas.isEmpty()) << nombre.toStdString();
        } else if (!propias.contains(nombre)) {
            EXPECT_EQ(cajas, QStringList{u"[i] QUIMO|Comando no disponible"_s})
                << nombre.toStdString();
        }
    }
    EXPECT_EQ(comandos, 76);
}

TEST_F(MDIPrincipalTest, TeclasBotonesYMenuLleganALaHijaComoSuEstadoPermite) {
    Abrir();
    EditorDePrueba* const editor = AbrirEditor();
    EXPECT_EQ(Panel(u"PanelRegistros"_s), u"Registros: 3"_s);
    EXPECT_EQ(Panel(u"PanelTeclas"_s), u"INS=Nuevo,F6=Modificar,DEL=Borrar"_s);
    const struct {
        Qt::Key tecla;
        Comando comando;
        QString boton;
    } casos[] = {
        {Qt::Key_PageUp, Comando::Siguiente, u"BotonRegistroSiguiente"_s},
        {Qt::Key_Up, Comando::Siguiente, u"BotonRegistroSiguiente"_s},
        {Qt::Key_PageDown, Comando::Anterior, u"BotonRegistroAnterior"_s},
        {Qt::Key_Down, Comando::Anterior, u"BotonRegistroAnterior"_s},
        {Qt::Key_Home, Comando::Primero, u"BotonPrimerRegistro"_s},
        {Qt::Key_End, Comando::Ultimo, u"BotonUltimoRegistro"_s},
        {Qt::Key_Delete, Comando::Borrar, u"BotonBorrar"_s},
        {Qt::Key_F6, Comando::Modificar, u"BotonModificar"_s},
    };
    for (const auto& caso : casos) {
        QTest::keyClick(editor->caja, caso.tecla);
        EXPECT_EQ(editor->Tomar(), QVector<Comando>{caso.comando}) << caso.tecla;
        Accion(caso.boton)->trigger();
        EXPECT_EQ(editor->Tomar(), QVector<Comando>{caso.comando}) << caso.boton.toStdString();
    }
    QList<QAction*> menu = principal_->findChildren<QAction*>(u"mnuEdReg"_s);
    std::sort(menu.begin(), menu.end(), [](const QAction* a, const QAction* b) {
        return a->property("Index").toInt() < b->property("Index").toInt();
    });
    ASSERT_EQ(menu.size(), 11);
    for (QAction* const accion : menu) {
        if (accion->text() != u"&Nuevo"_s) accion->trigger();
    }
    EXPECT_EQ(
        editor->Tomar(),
        (QVector<Comando>{Comando::Primero, Comando::Anterior, Comando::Siguiente, Comando::Ultimo,
                          Comando::Buscar, Comando::Filtro, Comando::Modificar, Comando::Borrar}));
    QTest::keyClick(editor->caja, Qt::Key_F5);
    QTest::keyClick(editor->caja, Qt::Key_Escape);
    QTest::keyClick(editor->caja, Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_TRUE(editor->Tomar().isEmpty());
    QTest::keyClick(editor->caja, Qt::Key_Insert);
    EXPECT_EQ(editor->Tomar(), QVector<Comando>{Comando::Nuevo});
    EXPECT_EQ(Panel(u"PanelTeclas"_s), u"F5=Aceptar ESC=Cancelar"_s);
    // Editing: the keys belong to the text, and only two commands are left.
    editor->caja->setText(u"ab"_s);
    QTest::keyClick(editor->caja, Qt::Key_Home);
    QTest::keyClick(editor->caja, Qt::Key_Delete);
    EXPECT_EQ(editor->caja->text(), u"b"_s);
    QTest::keyClick(editor->caja, Qt::Key_F5);
    QTest::keyClick(editor->caja, Qt::Key_Escape);
    EXPECT_EQ(editor->Tomar(), (QVector<Comando>{Comando::Aceptar, Comando::Cancelar}));
}

TEST_F(MDIPrincipalTest, LasHerramientasSiguenALaVentanaActiva) {
    Abrir();
    const auto habilitados = [this] {
        QApplication::processEvents();
        QStringList nombres;
        for (const DefBoton& def : BotonesHerramientas()) {
            const QString nombre = QString::fromUtf16(def.clave);
            const auto* const boton = principal_->findChild<QWidget*>(nombre);
            EXPECT_FALSE(boton->accessibleName().isEmpty());
            if (boton->isVisible() && boton->isEnabled()) nombres << nombre;
        }
        return nombres;
    };
    EXPECT_TRUE(habilitados().isEmpty());
    EXPECT_FALSE(principal_->findChild<QWidget*>(u"BotonImprimir"_s)->isVisible());
    EditorDePrueba* const editor = AbrirEditor();
    EXPECT_EQ(habilitados().size(), 10);
    auto* const reporte = new EditorDePrueba;
    reporte->estado = {ComandosDeReporte(), ComandosDeReporte(), {}, {}};
    principal_->Abrir(reporte);
    EXPECT_EQ(habilitados(), (QStringList{u"BotonImprimir"_s, u"BotonPreview"_s}));
    Accion(u"mnuArImprimir"_s)->trigger();
    Accion(u"mnuArcPreview"_s)->trigger();
    EXPECT_EQ(reporte->Tomar(), (QVector<Comando>{Comando::Imprimir, Comando::Preview}));
    EXPECT_TRUE(editor->Tomar().isEmpty());
    const int activaciones = editor->activaciones;
    Accion(u"mnuArCerrar"_s)->trigger();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(principal_->Activa(), editor);
    EXPECT_GT(editor->activaciones, activaciones);
    editor->Editar();
    EXPECT_EQ(habilitados(), (QStringList{u"BotonAceptar"_s, u"BotonCancelar"_s}));
}

TEST_F(MDIPrincipalTest, UnaVentanaRegistradaSeAbreUnaVezYElMenuDeLaRejillaLlegaAElla) {
    Abrir();
    int abiertas = 0;
    EditorDePrueba* editor = nullptr;
    principal_->RegistrarVentana(u"mnuOpProductos"_s, [&]() -> VentanaHija* {
        ++abiertas;
        if (abiertas > 2) return nullptr;
        editor = new EditorDePrueba;
        editor->estado.habilitados = Comando::SpreadNuevo | Comando::SpreadModificar;
        return editor;
    });
    QAction* const productos = Accion(u"mnuOpProductos"_s);
    productos->setEnabled(true);
    productos->trigger();
    productos->trigger();
    EXPECT_EQ(abiertas, 1);
    EXPECT_TRUE(Accion(u"mnuSprNuevo"_s)->isEnabled());
    EXPECT_FALSE(Accion(u"mnuSprBorrar"_s)->isEnabled());
    Accion(u"mnuSprMod"_s)->trigger();
    EXPECT_EQ(editor->Tomar(), QVector<Comando>{Comando::SpreadModificar});
    for (int vez = 0; vez < 2; ++vez) {
        Accion(u"mnuArCerrar"_s)->trigger();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        productos->trigger();
    }
    EXPECT_EQ(abiertas, 3);
    EXPECT_EQ(principal_->Activa(), nullptr);
}

TEST_F(MDIPrincipalTest, LosComandosDeVentanaAcomodanALasHijas) {
    Abrir();
    const auto rectangulos = [this] {
        QVector<QRect> todos;
        for (const QMdiSubWindow* const ventana :
             principal_->findChild<AreaMdi*>()->subWindowList()) {
            todos << ventana->geometry();
        }
        return todos;
    };
    for (int i = 0; i < 3; ++i)
        AbrirEditor();
    const QRect area = principal_->findChild<AreaMdi*>()->viewport()->rect();
    for (const auto& [comando, horizontal] :
         {std::pair{u"mnuVehorizontal"_s, true}, {u"mnuVeVertical"_s, false}}) {
        Accion(comando)->trigger();
        const QVector<QRect> lugares = rectangulos();
        int suma = 0;
        for (const QRect& lugar : lugares) {
            EXPECT_EQ(horizontal ? lugar.width() : lugar.height(),
                      horizontal ? area.width() : area.height());
            suma += horizontal ? lugar.height() : lugar.width();
        }
        EXPECT_EQ(suma, horizontal ? area.height() : area.width());
        EXPECT_FALSE(lugares[0].intersects(lugares[1]) || lugares[1].intersects(lugares[2]));
    }
    Accion(u"mnuVeCascada"_s)->trigger();
    EXPECT_TRUE(rectangulos()[0].intersects(rectangulos()[1]));
    for (QMdiSubWindow* const ventana : principal_->findChild<AreaMdi*>()->subWindowList()) {
        ventana->showMinimized();
        ventana->move(50, 50);
    }
    Accion(u"MnuVeArIconos"_s)->trigger();
    const QVector<QRect> iconos = rectangulos();
    EXPECT_FALSE(iconos[0].intersects(iconos[1]) || iconos[1].intersects(iconos[2]));
    EXPECT_EQ(iconos[0].bottom(), area.bottom());
}

TEST_F(MDIPrincipalTest, ElTapizSeEligeSeRecuerdaYSeLimpia) {
    const QString imagen = carpeta_.filePath(u"tapiz.bmp"_s);
    const QString falsa = carpeta_.filePath(u"falsa.jpg"_s);
    QImage(8, 8, QImage::Format_RGB32).save(imagen);
    QFile(falsa).open(QIODevice::WriteOnly);
    const auto guardado = [] {
        return QSettings(u"QUIMO"_s, u"QUIMO"_s).value(u"TAPIZ/TAPIZ"_s).toString();
    };
    QString elegida = imagen;
    cajas_.ante_otra = [&elegida](QWidget& ventana) {
        auto* const dialogo = qobject_cast<QFileDialog*>(&ventana);
        ASSERT_NE(dialogo, nullptr);
        EXPECT_EQ(dialogo->windowTitle(), u"Cambiar tapiz"_s);
        dialogo->setNameFilter(u"*.* (*)"_s);
        dialogo->selectFile(elegida);
        static_cast<QDialog*>(dialogo)->done(QDialog::Accepted);
    };
    Abrir();
    const auto hay_tapiz = [this] { return principal_->findChild<AreaMdi*>()->HayTapiz(); };
    EXPECT_FALSE(hay_tapiz());
    Accion(u"mnuVeTapiz"_s)->trigger();
    EXPECT_EQ(guardado(), imagen);
    EXPECT_TRUE(hay_tapiz());
    elegida = falsa;
    Accion(u"mnuVeTapiz"_s)->trigger();
    EXPECT_TRUE(cajas_.Tomar().value(0).contains(u"falsa.jpg"_s));
    EXPECT_EQ(guardado(), imagen);
    Abrir();
    EXPECT_TRUE(hay_tapiz());
    QFile::remove(imagen);
    Abrir();
    EXPECT_FALSE(hay_tapiz());
    EXPECT_TRUE(principal_->statusBar()->currentMessage().contains(imagen));
    EXPECT_TRUE(cajas_.Tomar().isEmpty());
    Accion(u"mnuLimTapiz"_s)->trigger();
    EXPECT_EQ(guardado(), QString());
}

}  // namespace
}  // namespace quimo::ui
