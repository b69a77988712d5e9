#include "ui/editores/dlg_buscar.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include "ui/controles/ajustes.h"
#include "ui/controles/aspecto.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using catalog::CriterioBusqueda;
using catalog::Hallazgo;
using catalog::ModoBusqueda;

namespace {

constexpr int kLargoMax = 255;
const auto kNombre = u"DlgBuscar"_s;

}  // namespace

DlgBuscar::DlgBuscar(catalog::Buscador& buscador, QWidget* padre)
    : QDialog(padre),
      buscador_(buscador),
      texto_(Nombrar(new QLineEdit, u"txtBuscar"_s, u"Texto que se busca"_s)),
      campo_(Nombrar(new QComboBox, u"cmbCampo"_s, u"Campo en que se busca"_s)),
      modo_(Nombrar(new QComboBox, u"cmbModo"_s, u"Manera de comparar"_s)),
      resultado_(Nombrar(new QLabel, u"lblResultado"_s, u"Resultado de la búsqueda"_s)) {
    setObjectName(u"DlgBuscar"_s);
    setWindowTitle(u"Buscar"_s);
    texto_->setMaxLength(kLargoMax);
    texto_->setClearButtonEnabled(true);
    campo_->addItem(u"Todos los campos"_s, static_cast<int>(CriterioBusqueda::kTodos));
    for (qsizetype i = 0; i < buscador_.Campos().size(); ++i)
        campo_->addItem(buscador_.Campos()[i].titulo, static_cast<int>(i));
    modo_->addItem(u"contiene"_s, static_cast<int>(ModoBusqueda::Contiene));
    modo_->addItem(u"empieza con"_s, static_cast<int>(ModoBusqueda::Empieza));
    modo_->addItem(u"es igual a"_s, static_cast<int>(ModoBusqueda::Igual));
    resultado_->setTextFormat(Qt::PlainText);
    resultado_->setWordWrap(true);
    resultado_->setMinimumHeight(2 * fontMetrics().lineSpacing());
    resultado_->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto* const campos = new QFormLayout;
    campos->addRow(u"&Texto:"_s, texto_);
    campos->addRow(u"&En:"_s, campo_);
    campos->addRow(u"Co&mo:"_s, modo_);
    auto* const botones = new QDialogButtonBox;
    auto* const buscar = botones->addButton(u"&Buscar"_s, QDialogButtonBox::ActionRole);
    auto* const siguiente = botones->addButton(u"&Siguiente (F3)"_s, QDialogButtonBox::ActionRole);
    auto* const cerrar = botones->addButton(u"&Cerrar"_s, QDialogButtonBox::RejectRole);
    Nombrar(buscar, u"cmdBuscar"_s, u"Buscar"_s)->setDefault(true);
    Nombrar(siguiente, u"cmdSiguiente"_s, u"Buscar el siguiente, F3"_s)->setAutoDefault(false);
    Nombrar(cerrar, u"cmdCerrar"_s, u"Cerrar"_s)->setAutoDefault(false);
    auto* const todo = new QVBoxLayout(this);
    todo->addLayout(campos);
    todo->addWidget(resultado_, 1);
    todo->addWidget(botones);
    setMinimumWidth(fontMetrics().averageCharWidth() * 70);

    connect(buscar, &QPushButton::clicked, this, &DlgBuscar::Buscar);
    connect(siguiente, &QPushButton::clicked, this, &DlgBuscar::Siguiente);
    connect(cerrar, &QPushButton::clicked, this, &DlgBuscar::reject);
    connect(new QShortcut(QKeySequence(Qt::Key_F3), this), &QShortcut::activated, this,
            &DlgBuscar::Siguiente);
    texto_->setFocus();
    restoreGeometry(Ajustes().Leer(Ajuste::Dialogo, kNombre).toByteArray());
}

void DlgBuscar::done(int resultado) {
    Ajustes().Guardar(Ajuste::Dialogo, kNombre, saveGeometry());
    QDialog::done(resultado);
}

CriterioBusqueda DlgBuscar::Criterio() const {
    return {texto_->text(), static_cast<ModoBusqueda>(modo_->currentData().toInt()),
            campo_->currentData().toInt()};
}

void DlgBuscar::Buscar() {
    const CriterioBusqueda criterio = Criterio();
    if (criterio == anterior_) return Siguiente();
    Contar(buscador_.Primero(criterio), criterio);
}

void DlgBuscar::Siguiente() {
    const CriterioBusqueda criterio = Criterio();
    Contar(buscador_.Siguiente(criterio), criterio);
}

void DlgBuscar::Contar(Hallazgo hallazgo, const CriterioBusqueda& criterio) {
    anterior_ = criterio;
    resultado_->setText(buscador_.Mensaje(hallazgo, criterio));
    if (hallazgo == Hallazgo::SinTexto) texto_->setFocus();
    if (hallazgo == Hallazgo::Nada) texto_->selectAll();
    if (hallazgo != Hallazgo::SinTexto && hallazgo != Hallazgo::Nada) emit Hallado();
}

}  // namespace quimo::ui
