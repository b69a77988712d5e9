#include <QActionGroup>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QToolButton>

#include "foundation/permisos.h"
#include "ui/controles/aspecto.h"
#include "ui/controles/iconos.h"
#include "ui/principal/mdi_principal.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

constexpr int kLadoIcono = 24;

QString Texto(const char16_t* texto) { return QString::fromUtf16(texto); }

}  // namespace

void MDIPrincipal::CrearMenus() {
    menuBar()->setNativeMenuBar(false);
    Nombrar(menuBar(), u"BarraMenus"_s, u"Menú principal"_s);
    for (const EntradaMenu& menu : MenusPrincipales()) {
        QMenu* const nuevo = menuBar()->addMenu(Texto(menu.texto));
        nuevo->setObjectName(Texto(menu.nombre));
        nuevo->menuAction()->setObjectName(Texto(menu.nombre));
        Llenar(*nuevo, menu.entradas);
    }
    menu_spread_->setObjectName(Texto(MenuSpread().nombre));
    Llenar(*menu_spread_, MenuSpread().entradas);
}

void MDIPrincipal::Llenar(QMenu& menu, std::span<const EntradaMenu> entradas) {
    int indice = 0;
    for (const EntradaMenu& entrada : entradas) {
        if (entrada.nombre == nullptr) {
            menu.addSeparator();
        } else if (!entrada.entradas.empty()) {
            QMenu* const hijo = menu.addMenu(Texto(entrada.texto));
            hijo->setObjectName(Texto(entrada.nombre));
            hijo->menuAction()->setObjectName(Texto(entrada.nombre));
            Llenar(*hijo, entrada.entradas);
        } else {
            QAction* const orden = CrearOrden(entrada, &menu);
            orden->setProperty("Index", indice++);
            menu.addAction(orden);
        }
    }
}

QAction* MDIPrincipal::CrearOrden(const EntradaMenu& entrada, QObject* padre) {
    auto* const orden = new QAction(Texto(entrada.texto), padre);
    orden->setObjectName(Texto(entrada.nombre));
    if (entrada.orden) {
        const OrdenVentana pedida = *entrada.orden;
        de_orden_.insert(quint32(pedida), orden);
        connect(orden, &QAction::triggered, this, [this, pedida] { Dirigir(pedida); });
    } else {
        connect(orden, &QAction::triggered, this,
                [this, nombre = Texto(entrada.nombre)] { Elegida(nombre); });
    }
    return orden;
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
        connect(accion, &QAction::triggered, this, [this, orden = def.orden] { Dirigir(orden); });
        herramientas_->addAction(accion);
        Nombrar(herramientas_->widgetForAction(accion), Texto(def.clave), Texto(def.texto));
        de_orden_.insert(quint32(def.orden), accion);
        botones_.insert(quint32(def.orden), accion);
    }
    // One button for both: pressed it begins a new row, its arrow also offers to modify this one.
    auto* const boton = qobject_cast<QToolButton*>(
        herramientas_->widgetForAction(botones_.value(quint32(OrdenVentana::Nuevo))));
    auto* const menu = new QMenu(boton);
    for (const auto& [nombre, texto, orden] :
         {std::tuple{u"BotonNuevo"_s, u"&Nuevo (INS)"_s, OrdenVentana::Nuevo},
          std::tuple{u"BotonModificar"_s, u"&Modificar (F6)"_s, OrdenVentana::Modificar}}) {
        QAction* const accion =
            menu->addAction(texto, this, [this, pedida = orden] { Dirigir(pedida); });
        accion->setObjectName(nombre);
        de_orden_.insert(quint32(orden), accion);
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
    for (const foundation::OrdenHabilitada& orden :
         foundation::HabilitarOrdenes(contexto_.sesion.permisos)) {
        auto* const accion = findChild<QAction*>(orden.orden);
        QUIMO_CHECK(accion != nullptr);
        accion->setEnabled(orden.habilitada);
        if (auto* const menu = findChild<QMenu*>(orden.orden)) menu->setEnabled(orden.habilitada);
    }
}

void MDIPrincipal::RegistrarPropias() {
    // Present and inert on purpose.
    for (const QString& orden : {u"mnuParametros"_s, u"mnuEmpresas"_s})
        RegistrarAccion(orden, [] {});
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
