#include <QGridLayout>
#include <QHeaderView>
#include <QVBoxLayout>

#include "ui/controles/aspecto.h"
#include "ui/controles/clstxt_valida.h"
#include "ui/editores/ventana_editor.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using catalog::CampoDef;
using catalog::TipoCampo;

namespace {

constexpr int kFilasPorColumna = 6;
constexpr int kSegunda = 3;  // column of the second half: label and control, after a gap
constexpr int kLetrasAnchas = 34;
constexpr int kLetrasNumero = 14;
constexpr int kLetrasClave = 8;
constexpr int kRenglonesVisibles = 7;
constexpr int kMargenRejilla = 26;  // frame and scroll bar
constexpr int kAnchoRejillaMax = 720;

}  // namespace

void VentanaEditor::Construir() {
    const auto& campos = sesion_->Def().campos;
    for (qsizetype i = 0; i < std::ssize(campos); ++i)
        controles_ << CrearControl(i);
    auto* const todo = new QVBoxLayout(this);
    todo->addLayout(Colocar());
    CrearDetalles();
    if (pestanas_ != nullptr) {
        todo->addWidget(pestanas_, 1);
    } else {
        todo->addStretch(1);
    }
    OrdenarTabulador();
    Clstxt_valida::AtarTodas(*this, ado_.Dialogo());
}

QLineEdit* VentanaEditor::CrearCaja(const QString& nombre, const QString& accesible) {
    return Nombrar(new QLineEdit(this), nombre, accesible);
}

VentanaEditor::Control VentanaEditor::CrearControl(qsizetype campo) {
    const CampoDef& def = sesion_->Def().campos[static_cast<std::size_t>(campo)];
    const QString nombre = def.control.toString();
    const QString etiqueta = def.etiqueta.toString();
    Control control;
    switch (def.tipo) {
        case TipoCampo::Casilla:
            control.casilla = Nombrar(new QCheckBox(etiqueta, this), nombre, etiqueta);
            connect(control.casilla, &QCheckBox::clicked, this, [this, campo](bool marcada) {
                sesion_->Escribir(campo, marcada ? u"1"_s : u"0"_s);
            });
            return control;
        case TipoCampo::Codigo:
        case TipoCampo::Lista:
            control.combo = Nombrar(new QComboBox(this), nombre, etiqueta);
            control.combo->addItems(sesion_->Campos().Entradas(campo));
            control.combo->setMaxVisibleItems(20);
            control.oculto = CrearCaja(def.oculto.toString(), etiqueta);
            control.oculto->setProperty(kEtiqueta, def.tag.toString());
            control.oculto->hide();
            connect(control.combo, &QComboBox::activated, this, [this, campo](int entrada) {
                sesion_->Elegir(campo, entrada);
                RefrescarCampo(campo);
            });
            return control;
        case TipoCampo::Clave:
        case TipoCampo::Texto:
        case TipoCampo::Numero:
            break;
    }
    control.caja = CrearCaja(nombre, etiqueta);
    control.caja->setProperty(kEtiqueta, def.tag.toString());
    const int largo = sesion_->Campos().LargoMaximo(campo, sesion_->Conjunto());
    if (largo > 0) control.caja->setMaxLength(largo);
    if (def.tipo == TipoCampo::Clave) control.caja->setFocusPolicy(Qt::NoFocus);
    if (def.tipo == TipoCampo::Numero) control.caja->setAlignment(Qt::AlignRight);
    if (def.mascara != nullptr) control.caja->installEventFilter(this);
    connect(control.caja, &QLineEdit::textEdited, this,
            [this, campo](const QString& texto) { sesion_->Escribir(campo, texto); });
    return control;
}

QLayout* VentanaEditor::Colocar() {
    const auto& campos = sesion_->Def().campos;
    QVector<qsizetype> cajas;
    auto* const casillas = new QHBoxLayout;
    for (qsizetype i = 0; i < controles_.size(); ++i) {
        if (controles_[i].casilla == nullptr) {
            cajas << i;
        } else {
            casillas->addWidget(controles_[i].casilla);
        }
    }
    casillas->addStretch(1);
    auto* const rejilla = new QGridLayout;
    const bool dos = cajas.size() > kFilasPorColumna;
    const qsizetype filas = dos ? (cajas.size() + 1) / 2 : cajas.size();
    const int letra = fontMetrics().averageCharWidth();
    for (qsizetype n = 0; n < cajas.size(); ++n) {
        const CampoDef& def = campos[static_cast<std::size_t>(cajas[n])];
        QWidget* const control = controles_[cajas[n]].Principal();
        auto* const etiqueta = new QLabel(def.etiqueta.toString() + u':', this);
        etiqueta->setTextFormat(Qt::PlainText);
        etiqueta->setBuddy(control);
        const auto fila = static_cast<int>(n % filas);
        const int columna = n < filas ? 0 : kSegunda;
        rejilla->addWidget(etiqueta, fila, columna, Qt::AlignRight | Qt::AlignVCenter);
        Qt::Alignment como;
        if (def.tipo == TipoCampo::Clave || def.tipo == TipoCampo::Numero) {
            const int letras = def.tipo == TipoCampo::Clave ? kLetrasClave : kLetrasNumero;
            control->setFixedWidth(letra * letras);
            como = Qt::AlignLeft;
        } else {
            control->setMinimumWidth(letra * (dos ? kLetrasAnchas + 2 : kLetrasAnchas));
        }
        rejilla->addWidget(control, fila, columna + 1, como);
    }
    if (dos) rejilla->setColumnMinimumWidth(kSegunda - 1, letra * 2);
    rejilla->setColumnStretch(1, 1);
    if (dos) rejilla->setColumnStretch(kSegunda + 1, 1);
    rejilla->addLayout(casillas, static_cast<int>(filas), 1, 1, dos ? kSegunda + 1 : 1);
    return rejilla;
}

void VentanaEditor::CrearDetalles() {
    if (sesion_->Detalles().empty()) return;
    const QString nombre = sesion_->Def().pestanas.toString();
    pestanas_ = Nombrar(new QTabWidget(this), nombre, sesion_->Def().titulo.toString());
    for (std::size_t i = 0; i < sesion_->Detalles().size(); ++i) {
        auto* const panel = new PanelDetalle(*sesion_, i, pestanas_);
        connect(panel, &PanelDetalle::MenuPedido, this, &VentanaHija::MenuSpreadPedido);
        pestanas_->addTab(panel->Vista(), sesion_->Detalles()[i].Def().titulo.toString());
        Rejilla* const vista = panel->Vista();
        int ancho = kMargenRejilla;
        for (int c = 0; c < vista->model()->columnCount(); ++c) {
            if (!vista->isColumnHidden(c)) ancho += vista->columnWidth(c);
        }
        vista->setMinimumWidth(std::min(ancho, kAnchoRejillaMax));
        vista->setMinimumHeight(vista->verticalHeader()->defaultSectionSize() * kRenglonesVisibles);
        paneles_ << panel;
    }
}

void VentanaEditor::OrdenarTabulador() {
    QWidget* anterior = nullptr;
    const auto seguir = [&anterior](QWidget* control) {
        if (anterior != nullptr) QWidget::setTabOrder(anterior, control);
        anterior = control;
    };
    for (const Control& control : controles_)
        seguir(control.Principal());
    if (pestanas_ == nullptr) return;
    seguir(pestanas_);
    for (const PanelDetalle* const panel : std::as_const(paneles_))
        seguir(panel->Vista());
}

}  // namespace quimo::ui
