#include <QActionGroup>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QToolButton>

#include "foundation/permisos.h"
#include "ui/controles/aspecto.h"
#include "ui/controles/iconos.h"
#include "ui/principal/herramientas.h"
#include "ui/principal/mdi_principal.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using foundation::ComandoDef;

namespace {

constexpr int kLadoIcono = 24;

QString Texto(const char16_t* texto) { return QString::fromUtf16(texto); }

}  // namespace

void MDIPrincipal::CrearMenus() {
    menuBar()->setNativeMenuBar(false);
    Nombrar(menuBar(), u"BarraMenus"_s, u"Menú principal"_s);
    for (const ComandoDef& menu : foundation::MenusPrincipales())
        Llenar(*NombrarMenu(menuBar()->addMenu(menu.texto.toString()), menu), menu.comandos);
    const ComandoDef& spread = foundation::MenuSpread();
    menu_spread_->setObjectName(spread.nombre.toString());
    Llenar(*menu_spread_, spread.comandos);
}

QMenu* MDIPrincipal::NombrarMenu(QMenu* menu, const ComandoDef& def) {
    menu->setObjectName(def.nombre.toString());
    menu->menuAction()->setObjectName(def.nombre.toString());
    de_comando_.insert(&def, menu->menuAction());
    return menu;
}

void MDIPrincipal::Llenar(QMenu& menu, std::span<const ComandoDef> comandos) {
    int indice = 0;
    for (const ComandoDef& def : comandos) {
        if (def.nombre.isEmpty()) {
            menu.addSeparator();
        } else if (!def.comandos.empty()) {
            Llenar(*NombrarMenu(menu.addMenu(def.texto.toString()), def), def.comandos);
        } else {
            QAction* const accion = CrearAccion(def, &menu);
            accion->setProperty("Index", indice++);
            menu.addAction(accion);
        }
    }
}

QAction* MDIPrincipal::CrearAccion(const ComandoDef& def, QObject* padre) {
    auto* const accion = new QAction(def.texto.toString(), padre);
    accion->setObjectName(def.nombre.toString());
    de_comando_.insert(&def, accion);
    if (def.ventana) {
        const ComandoVentana pedido = *def.ventana;
        de_ventana_.insert(quint32(pedido), accion);
        connect(accion, &QAction::triggered, this, [this, pedido] { Dirigir(pedido); });
    } else {
        connect(accion, &QAction::triggered, this,
                [this, nombre = def.nombre.toString()] { Elegido(nombre); });
    }
    return accion;
}

void MDIPrincipal::CrearHerramientas() {
    herramientas_->setWindowTitle(u"Herramientas"_s);
    herramientas_->setMovable(false);
    herramientas_->setIconSize(QSize(kLadoIcono, kLadoIcono));
    addToolBar(herramientas_);
    for (const DefBoton& def : BotonesHerramientas()) {
        if (def.separador_antes) herramientas_->addSeparator();
        auto* const accion = new QAction(Texto(def.texto), this);
        accion->setObjectName(Texto(def.clave));
        connect(accion, &QAction::triggered, this,
                [this, comando = def.comando] { Dirigir(comando); });
        herramientas_->addAction(accion);
        Nombrar(herramientas_->widgetForAction(accion), Texto(def.clave), Texto(def.texto));
        de_ventana_.insert(quint32(def.comando), accion);
        botones_.insert(quint32(def.comando), accion);
    }
    // One button for both: pressed it begins a new row, its arrow also offers to modify this one.
    auto* const boton = qobject_cast<QToolButton*>(
        herramientas_->widgetForAction(botones_.value(quint32(ComandoVentana::Nuevo))));
    auto* const menu = new QMenu(boton);
    for (const auto& [nombre, texto, comando] :
         {std::tuple{u"BotonNuevo"_s, u"&Nuevo (INS)"_s, ComandoVentana::Nuevo},
          std::tuple{u"BotonModificar"_s, u"&Modificar (F6)"_s, ComandoVentana::Modificar}}) {
        QAction* const accion =
            menu->addAction(texto, this, [this, pedido = comando] { Dirigir(pedido); });
        accion->setObjectName(nombre);
        de_ventana_.insert(quint32(comando), accion);
    }
    boton->setMenu(menu);
    boton->setPopupMode(QToolButton::MenuButtonPopup);
    PonerIconos();
}

void MDIPrincipal::PonerIconos() {
    // Also called while the window is being made, before its buttons are there.
    for (QAction* const accion : std::as_const(botones_))
        accion->setIcon(Icono(accion->objectName(), palette()));
    if (auto* const modificar = findChild<QAction*>(u"BotonModificar"_s)) {
        modificar->setIcon(Icono(u"BotonModificar"_s, palette()));
    }
    if (auto* const nuevo = findChild<QAction*>(u"BotonNuevo"_s)) {
        nuevo->setIcon(Icono(u"BotonNuevoModificar"_s, palette()));
    }
}

void MDIPrincipal::AplicarPermisos() {
    for (const auto& [comando, habilitado] :
         foundation::HabilitarComandos(contexto_.sesion.permisos)) {
        QAction* const accion = de_comando_.value(comando);
        accion->setEnabled(habilitado);
        if (QMenu* const menu = accion->menu()) menu->setEnabled(habilitado);
    }
}

void MDIPrincipal::RegistrarPropias() {
    // Present and inert on purpose.
    for (const QString& comando : {u"mnuParametros"_s, u"mnuEmpresas"_s})
        RegistrarAccion(comando, [] {});
    RegistrarAccion(u"mnuArCerrar"_s, [this] { area_->closeActiveSubWindow(); });
    RegistrarAccion(u"mnuArSalir"_s, [this] { close(); });
    RegistrarAccion(u"MnuVeArIconos"_s, [this] { area_->ArreglarIconos(); });
    RegistrarAccion(u"mnuVehorizontal"_s, [this] { area_->PonerMosaico(Mosaico::Horizontal); });
    RegistrarAccion(u"mnuVeVertical"_s, [this] { area_->PonerMosaico(Mosaico::Vertical); });
    RegistrarAccion(u"mnuVeCascada"_s, [this] { area_->cascadeSubWindows(); });
    RegistrarAccion(u"mnuVeTapiz"_s, [this] { CambiarTapiz(); });
    RegistrarAccion(u"mnuLimTapiz"_s, [this] {
        QString motivo;
        area_->PonerTapiz(QString(), motivo);
        GuardarTapiz(QString());
    });
    RegistrarAccion(u"mnuAyAcerca"_s, [this] { AcercaDe(); });
}

}  // namespace quimo::ui
