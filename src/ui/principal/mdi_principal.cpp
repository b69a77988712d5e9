#include "ui/principal/mdi_principal.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPointer>
#include <QSortFilterProxyModel>
#include <QStatusBar>
#include <QTimer>
#include <QTreeView>

#include "base/check.h"
#include "data/valores.h"
#include "ui/controles/ajustes.h"
#include "ui/controles/aspecto.h"
#include "ui/controles/iconos.h"
#include "ui/principal/teclado.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

constexpr int kSegundoMs = 1000;
constexpr QSize kTamanoInicial(1200, 680);
constexpr QSize kTamanoArchivos(780, 480);

/// The files of the dialog with their dates written as everywhere else: Qt writes them as the
/// machine's own language does.
class ArchivosFechados final : public QSortFilterProxyModel {
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;
    QVariant data(const QModelIndex& lugar, int papel) const override {
        constexpr int kColumnaFecha = 3;
        if (papel != Qt::DisplayRole || lugar.column() != kColumnaFecha) {
            return QSortFilterProxyModel::data(lugar, papel);
        }
        const auto* const archivos = qobject_cast<QFileSystemModel*>(sourceModel());
        if (archivos == nullptr) return {};
        return archivos->lastModified(mapToSource(lugar)).toString(u"dd/MM/yyyy HH:mm"_s);
    }
};

}  // namespace

MDIPrincipal::MDIPrincipal(const Contexto& contexto)
    : contexto_(contexto),
      area_(Nombrar(new AreaMdi(this), u"AreaMdi"_s, u"Ventanas abiertas"_s)),
      herramientas_(Nombrar(new QToolBar(this), u"TlbHerramientas"_s, u"Barra de herramientas"_s)),
      menu_spread_(new QMenu(this)) {
    Nombrar(this, u"MDIPrincipal"_s, u"Servidor Quimo"_s);
    setWindowTitle(u"Servidor Quimo"_s);
    setWindowIcon(IconoDelPrograma());
    setCentralWidget(area_);
    setContextMenuPolicy(Qt::NoContextMenu);
    CrearMenus();
    CrearHerramientas();
    CrearBarraDeStatus();
    RegistrarPropias();
    if (!restoreGeometry(Ajustes().Leer(Ajuste::Ventana, objectName()).toByteArray())) {
        resize(kTamanoInicial);
        setWindowState(Qt::WindowMaximized);
    }
    RecordarTapiz();
    RefrescarFechaTrabajo();
    foundation::CargarPermisosDe(contexto_.ado, contexto_.sesion);
    AplicarPermisos();
    connect(area_, &QMdiArea::subWindowActivated, this, [this] {
        if (VentanaHija* const activa = Activa()) activa->Activada();
        RefrescarEstado();
    });
    qApp->installEventFilter(this);
    contexto_.dialogos.MostrarProgresoEn(
        [this](const QString& texto) { panel_teclas_->setText(texto); });
    RefrescarEstado();
}

MDIPrincipal::~MDIPrincipal() {
    contexto_.dialogos.MostrarProgresoEn({});
    // Child windows go first: they must not call back into half of this one.
    disconnect(area_, nullptr, this, nullptr);
    delete area_;
}

void MDIPrincipal::CrearBarraDeStatus() {
    auto* const barra = statusBar();
    Nombrar(barra, u"StbBarradeStatus"_s, u"Barra de estado"_s);
    const auto panel = [barra](const QString& nombre, const QString& accesible) {
        auto* const etiqueta = Nombrar(new QLabel(barra), nombre, accesible);
        etiqueta->setTextFormat(Qt::PlainText);
        etiqueta->setContentsMargins(6, 0, 6, 0);
        return etiqueta;
    };
    panel_registros_ = panel(u"PanelRegistros"_s, u"Registros"_s);
    panel_teclas_ = panel(u"PanelTeclas"_s, u"Teclas"_s);
    barra->addWidget(panel_registros_);
    barra->addWidget(panel_teclas_, 1);
    auto* const usuario = panel(u"PanelUsuario"_s, u"Usuario"_s);
    usuario->setText(u"Usuario: "_s + contexto_.sesion.usuario);
    panel_fecha_trabajo_ = panel(u"PanelFechaTrabajo"_s, u"Fecha de trabajo"_s);
    panel_fecha_sistema_ = panel(u"PanelFechaSistema"_s, u"Fecha del sistema"_s);
    panel_reloj_ = panel(u"PanelReloj"_s, u"Hora"_s);
    for (QLabel* const etiqueta :
         {usuario, panel_fecha_trabajo_, panel_fecha_sistema_, panel_reloj_}) {
        barra->addPermanentWidget(etiqueta);
    }
    auto* const reloj = new QTimer(this);
    reloj->setObjectName(u"TmrReloj"_s);
    connect(reloj, &QTimer::timeout, this, &MDIPrincipal::Tictac);
    reloj->start(kSegundoMs);
    Tictac();
}

void MDIPrincipal::Tictac() {
    const QDateTime ahora = contexto_.reloj.Ahora();
    panel_fecha_sistema_->setText(u"Fecha del sistema: "_s + data::TextoDeFecha(ahora.date()));
    panel_reloj_->setText(ahora.toString(u"HH:mm:ss"_s));
}

void MDIPrincipal::RefrescarFechaTrabajo() {
    panel_fecha_trabajo_->setText(u"Fecha de trabajo: "_s +
                                  foundation::FechaTrabajoParaMostrar(contexto_.ado));
}

void MDIPrincipal::RegistrarVentana(const QString& comando, const Fabrica& fabrica) {
    RegistrarAccion(comando, [this, comando, fabrica] {
        if (QMdiSubWindow* const abierta = abiertas_.value(comando)) {
            if (abierta->isMinimized()) abierta->showNormal();
            area_->setActiveSubWindow(abierta);
            return;
        }
        VentanaHija* const ventana = fabrica();
        if (ventana == nullptr) return;
        Abrir(ventana);
        auto* const marco = qobject_cast<QMdiSubWindow*>(ventana->parentWidget());
        abiertas_.insert(comando, marco);
        connect(marco, &QObject::destroyed, this, [this, comando] { abiertas_.remove(comando); });
    });
}

void MDIPrincipal::RegistrarAccion(const QString& comando, const std::function<void()>& accion) {
    QUIMO_CHECK(foundation::EsComando(comando));
    acciones_.insert(comando, accion);
}

void MDIPrincipal::Abrir(VentanaHija* ventana) {
    connect(ventana, &VentanaHija::EstadoCambiado, this, &MDIPrincipal::RefrescarEstado);
    connect(ventana, &VentanaHija::MenuSpreadPedido, this,
            [this](QPoint donde) { menu_spread_->popup(donde); });
    QMdiSubWindow* const marco = area_->addSubWindow(ventana);
    marco->setWindowIcon(IconoDelPrograma());
    marco->show();
    area_->setActiveSubWindow(marco);
    RefrescarEstado();
}

VentanaHija* MDIPrincipal::Activa() const {
    // The area forgets its active window while another application's is in front.
    QMdiSubWindow* const marco = area_->currentSubWindow();
    return marco == nullptr ? nullptr : qobject_cast<VentanaHija*>(marco->widget());
}

void MDIPrincipal::Elegido(const QString& comando) {
    const auto accion = acciones_.value(comando);
    if (accion) {
        accion();
    } else {
        contexto_.dialogos.Avisar(u"Comando no disponible"_s, foundation::Icono::Informacion);
    }
}

void MDIPrincipal::Dirigir(ComandoVentana comando) {
    VentanaHija* const activa = Activa();
    if (activa == nullptr || !activa->Estado().habilitados.testFlag(comando)) return;
    const QPointer<VentanaHija> sigue = activa;
    activa->Ejecutar(comando);
    if (!sigue.isNull()) RefrescarEstado();
}

void MDIPrincipal::RefrescarEstado() {
    const VentanaHija* const activa = Activa();
    EstadoVentana estado;
    estado.visibles = ComandosDeEditor() & ~ComandosDeReporte();
    if (activa != nullptr) estado = activa->Estado();
    for (auto it = de_ventana_.cbegin(); it != de_ventana_.cend(); ++it)
        it.value()->setEnabled(estado.habilitados.testFlag(ComandoVentana(it.key())));
    for (auto it = botones_.cbegin(); it != botones_.cend(); ++it)
        it.value()->setVisible(estado.visibles.testFlag(ComandoVentana(it.key())));
    // The first button does both: it is there as long as either can be done.
    if (estado.habilitados.testFlag(ComandoVentana::Modificar)) {
        botones_.value(quint32(ComandoVentana::Nuevo))->setEnabled(true);
    }
    panel_registros_->setText(estado.registros);
    panel_teclas_->setText(estado.teclas);
}

bool MDIPrincipal::eventFilter(QObject* objeto, QEvent* evento) {
    if (evento->type() != QEvent::KeyPress || QApplication::activeModalWidget() != nullptr ||
        QApplication::activePopupWidget() != nullptr) {
        return QMainWindow::eventFilter(objeto, evento);
    }
    const VentanaHija* const activa = Activa();
    const auto* const control = qobject_cast<QWidget*>(objeto);
    if (activa == nullptr || control == nullptr ||
        (control != activa && !activa->isAncestorOf(control))) {
        return QMainWindow::eventFilter(objeto, evento);
    }
    const auto comando = ComandoDeTecla(*static_cast<QKeyEvent*>(evento));
    const EstadoVentana estado = activa->Estado();
    if (!comando || !(estado.habilitados & estado.visibles).testFlag(*comando)) {
        return QMainWindow::eventFilter(objeto, evento);
    }
    Dirigir(*comando);
    return true;
}

void MDIPrincipal::CambiarTapiz() {
    QFileDialog dialogo(this, u"Cambiar tapiz"_s);
    dialogo.setObjectName(u"CajaTapiz"_s);
    // The desktop's own dialog would not speak Spanish everywhere.
    dialogo.setOption(QFileDialog::DontUseNativeDialog);
    dialogo.setProxyModel(new ArchivosFechados(&dialogo));
    dialogo.setFileMode(QFileDialog::ExistingFile);
    dialogo.resize(kTamanoArchivos);
    if (auto* const detalle = dialogo.findChild<QTreeView*>()) {
        detalle->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    }
    dialogo.setNameFilters(
        {u"*.jpg (*.jpg)"_s, u"*.gif (*.gif)"_s, u"*.bmp (*.bmp)"_s, u"*.* (*)"_s});
    if (dialogo.exec() != QDialog::Accepted) return;
    const QString archivo = dialogo.selectedFiles().value(0);
    QString motivo;
    if (!area_->PonerTapiz(archivo, motivo)) {
        contexto_.dialogos.Avisar(u"No se puede mostrar la imagen "_s + archivo + u": "_s + motivo,
                                  foundation::Icono::Exclamacion);
        return;
    }
    GuardarTapiz(archivo);
}

void MDIPrincipal::GuardarTapiz(const QString& archivo) {
    Ajustes ajustes;
    ajustes.Guardar(Ajuste::Tapiz, {}, archivo);
    if (ajustes.Escribir()) return;
    contexto_.dialogos.Avisar(u"No se pudo guardar el tapiz en "_s + ajustes.Archivo(),
                              foundation::Icono::Exclamacion);
}

void MDIPrincipal::RecordarTapiz() {
    const QString archivo = Ajustes().Leer(Ajuste::Tapiz).toString();
    QString motivo;
    // A picture that is gone is no reason to stop anybody at the door.
    if (!area_->PonerTapiz(archivo, motivo)) {
        statusBar()->showMessage(u"No se puede mostrar el tapiz "_s + archivo + u": "_s + motivo,
                                 10 * kSegundoMs);
    }
}

void MDIPrincipal::AcercaDe() {
    contexto_.dialogos.Avisar(
        u"QUIMO %1\nServidor del restaurante: catálogos, cierre del día y reportes."_s.arg(
            QCoreApplication::applicationVersion()),
        foundation::Icono::Informacion, u"Acerca de QUIMO"_s);
}

void MDIPrincipal::changeEvent(QEvent* evento) {
    QMainWindow::changeEvent(evento);
    if (evento->type() == QEvent::PaletteChange) PonerIconos();
}

void MDIPrincipal::closeEvent(QCloseEvent* evento) {
    area_->closeAllSubWindows();
    if (area_->currentSubWindow() != nullptr) {
        evento->ignore();
        return;
    }
    Ajustes().Guardar(Ajuste::Ventana, objectName(), saveGeometry());
    evento->accept();
    emit Cerrada();
}

}  // namespace quimo::ui
