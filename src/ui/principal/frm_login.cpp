#include "ui/principal/frm_login.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/controles/aspecto.h"
#include "ui/controles/iconos.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

constexpr int kEmblema = 56;
constexpr int kMarca = 12;
constexpr QRgb kRojo = 0xFFC0392B;
constexpr QRgb kAmarillo = 0xFFE2A616;

/// A small lamp; its place is kept while it is out.
QLabel* Marca(const QString& nombre, QRgb color, qreal densidad, QWidget* padre) {
    auto* const marca = Nombrar(new QLabel(padre), nombre, u"Campo activo"_s);
    QPixmap imagen(qRound(kMarca * densidad), qRound(kMarca * densidad));
    imagen.setDevicePixelRatio(densidad);
    imagen.fill(Qt::transparent);
    QPainter pintor(&imagen);
    pintor.setRenderHint(QPainter::Antialiasing);
    pintor.setPen(Qt::NoPen);
    pintor.setBrush(QColor::fromRgba(color));
    pintor.drawEllipse(QRectF(1, 1, kMarca - 2, kMarca - 2));
    pintor.end();
    marca->setPixmap(imagen);
    QSizePolicy politica = marca->sizePolicy();
    politica.setRetainSizeWhenHidden(true);
    marca->setSizePolicy(politica);
    return marca;
}

QWidget* Encabezado(qreal densidad, QWidget* padre) {
    auto* const franja = new QWidget(padre);
    auto* const fila = new QHBoxLayout(franja);
    fila->setContentsMargins(0, 0, 0, 8);
    fila->setSpacing(16);
    auto* const emblema = new QLabel(franja);
    emblema->setPixmap(Emblema(kEmblema, densidad));
    auto* const titulo = new QLabel(u"QUIMO"_s, franja);
    QFont letra = titulo->font();
    letra.setPointSizeF(letra.pointSizeF() * 1.9);
    letra.setBold(true);
    titulo->setFont(letra);
    auto* const bajo_titulo = new QLabel(u"Servidor del restaurante"_s, franja);
    auto* const textos = new QVBoxLayout;
    textos->setSpacing(0);
    textos->addWidget(titulo);
    textos->addWidget(bajo_titulo);
    fila->addWidget(emblema);
    fila->addLayout(textos);
    fila->addStretch();
    return franja;
}

}  // namespace

frmLogin::frmLogin(foundation::Login& login, QWidget* padre)
    : QWidget(padre, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      login_(login),
      usuario_(Nombrar(new QLineEdit(this), u"txtUserName"_s, u"Usuario"_s)),
      contrasena_(Nombrar(new QLineEdit(this), u"txtPassword"_s, u"Contraseña"_s)),
      rojo_(Marca(u"PicRojo"_s, kRojo, devicePixelRatioF(), this)),
      amarillo_(Marca(u"PicAmarillo"_s, kAmarillo, devicePixelRatioF(), this)) {
    Nombrar(this, u"frmLogin"_s, u"Entrada a QUIMO"_s);
    setWindowTitle(u"Entrada a QUIMO"_s);
    setWindowIcon(IconoDelPrograma());
    contrasena_->setEchoMode(QLineEdit::Password);
    auto* const columna = new QVBoxLayout(this);
    columna->setContentsMargins(28, 24, 28, 20);
    columna->setSpacing(14);
    columna->addWidget(Encabezado(devicePixelRatioF(), this));
    columna->addWidget(Formulario());
    auto* const aceptar = Nombrar(new QPushButton(u"&Aceptar"_s, this), u"cmdOK"_s, u"Aceptar"_s);
    auto* const cancelar =
        Nombrar(new QPushButton(u"&Cancelar"_s, this), u"cmdCancel"_s, u"Cancelar"_s);
    aceptar->setDefault(true);
    cancelar->setAutoDefault(true);  // the Enter key on it is its own
    auto* const botones = new QHBoxLayout;
    botones->addStretch();
    botones->addWidget(aceptar);
    botones->addWidget(cancelar);
    columna->addLayout(botones);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    connect(aceptar, &QPushButton::clicked, this, &frmLogin::Aceptar);
    connect(cancelar, &QPushButton::clicked, this, &QWidget::close);
    connect(qApp, &QApplication::focusChanged, this, &frmLogin::MarcarFoco);
    setTabOrder(usuario_, contrasena_);
    setTabOrder(contrasena_, aceptar);
    setTabOrder(aceptar, cancelar);
    MarcarFoco();
}

frmLogin::~frmLogin() {
    // The focus moves once more while the window goes.
    disconnect(qApp, nullptr, this, nullptr);
}

QWidget* frmLogin::Formulario() {
    auto* const formulario = new QWidget(this);
    auto* const rejilla = new QGridLayout(formulario);
    rejilla->setContentsMargins(0, 0, 0, 0);
    rejilla->setHorizontalSpacing(10);
    rejilla->setVerticalSpacing(10);
    auto* const etiqueta_usuario = new QLabel(u"&Usuario"_s, formulario);
    auto* const etiqueta_contrasena = new QLabel(u"C&ontraseña"_s, formulario);
    etiqueta_usuario->setBuddy(usuario_);
    etiqueta_contrasena->setBuddy(contrasena_);
    rejilla->addWidget(rojo_, 0, 0);
    rejilla->addWidget(etiqueta_usuario, 0, 1);
    rejilla->addWidget(usuario_, 0, 2);
    rejilla->addWidget(amarillo_, 1, 0);
    rejilla->addWidget(etiqueta_contrasena, 1, 1);
    rejilla->addWidget(contrasena_, 1, 2);
    usuario_->setMinimumWidth(usuario_->fontMetrics().averageCharWidth() * 30);
    return formulario;
}

void frmLogin::MarcarFoco() {
    rojo_->setVisible(usuario_->hasFocus());
    amarillo_->setVisible(contrasena_->hasFocus());
}

void frmLogin::Aceptar() {
    const foundation::Login::Desenlace desenlace =
        login_.Aceptar(usuario_->text(), contrasena_->text());
    if (desenlace.vaciar_usuario) usuario_->clear();
    if (desenlace.vaciar_contrasena) contrasena_->clear();
    if (desenlace.foco == foundation::Login::Foco::Usuario) usuario_->setFocus();
    if (desenlace.foco == foundation::Login::Foco::Contrasena) contrasena_->setFocus();
    if (!desenlace.entro) return;
    entro_ = true;
    contrasena_->clear();
    emit Entro();
}

void frmLogin::showEvent(QShowEvent* evento) {
    QWidget::showEvent(evento);
    usuario_->setFocus();
}

void frmLogin::closeEvent(QCloseEvent* evento) {
    evento->accept();
    if (!entro_) emit Cancelado();
}

void frmLogin::keyPressEvent(QKeyEvent* evento) {
    if (evento->key() == Qt::Key_Escape) {
        close();
    } else if (evento->key() == Qt::Key_Return || evento->key() == Qt::Key_Enter) {
        Aceptar();
    } else {
        QWidget::keyPressEvent(evento);
    }
}

}  // namespace quimo::ui
