#include "ui/editores/panel_detalle.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>

#include "ui/controles/ajustes.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using catalog::ColumnaDetalle;
using catalog::DetalleDef;
using catalog::Marca;
using catalog::Renglon;
using catalog::TipoCeldaDetalle;

PanelDetalle::PanelDetalle(catalog::EditorSesion& sesion, std::size_t cual, QWidget* padre)
    : QObject(padre), sesion_(sesion), cual_(cual) {
    const DetalleDef& def = Detalle().Def();
    vista_ = new Rejilla(def.control.toString(), def.titulo.toString(), padre);
    vista_->setContextMenuPolicy(Qt::CustomContextMenu);
    vista_->setSelectionMode(QAbstractItemView::ContiguousSelection);
    vista_->installEventFilter(this);
    PonerColumnas();
    connect(vista_, &QWidget::customContextMenuRequested, this,
            [this](QPoint donde) { emit MenuPedido(vista_->viewport()->mapToGlobal(donde)); });
    connect(vista_, &Rejilla::CeldaCambiada, this, [this](int fila, int columna) {
        const bool lista = Detalle().Def().columnas[static_cast<std::size_t>(columna)].tipo ==
                           TipoCeldaDetalle::Lista;
        Anotar(fila, columna,
               lista ? vista_->Texto(fila, columna) : vista_->Valor(fila, columna).toString());
    });
    connect(vista_, &Rejilla::CeldaRechazada, this, &PanelDetalle::Anotar);
    QHeaderView* const titulos = vista_->horizontalHeader();
    titulos->setSectionsClickable(true);
    connect(titulos, &QHeaderView::sectionClicked, this, [this, titulos](int columna) {
        // The view turns its arrow first when the arrow is shown already.
        CerrarCelda(true);
        Aplicar();
        titulos->setSortIndicatorShown(true);
        Detalle().Ordenar(columna, titulos->sortIndicatorOrder());
        Refrescar();
    });
}

void PanelDetalle::PonerColumnas() {
    QVector<ColumnaRejilla> columnas;
    for (const ColumnaDetalle& def : Detalle().Def().columnas) {
        ColumnaRejilla columna;
        columna.titulo = def.titulo.toString();
        columna.tipo = catalog::CeldaDe(def.tipo);
        columna.ancho_mm = def.ancho_mm;
        columna.decimales = def.decimales;
        columna.editable = def.cambiable != catalog::Cambiable::No;
        columna.oculta =
            def.tipo == TipoCeldaDetalle::Oculta || def.tipo == TipoCeldaDetalle::Marca;
        if (def.tipo == TipoCeldaDetalle::Lista) columna.lista = Detalle().Entradas();
        columnas << columna;
    }
    vista_->PonerColumnas(columnas);
    const QVariantList anchos = Ajustes().Leer(Ajuste::Rejilla, NombreEntero()).toList();
    for (int c = 0; anchos.size() == columnas.size() && c < anchos.size(); ++c) {
        if (!columnas[c].oculta && anchos[c].toInt() > 0) {
            vista_->setColumnWidth(c, anchos[c].toInt());
        }
    }
}

QString PanelDetalle::NombreEntero() const {
    return sesion_.Def().nombre.toString() + u'.' + Detalle().Def().control.toString();
}

void PanelDetalle::RecordarAnchos() const {
    QVariantList anchos;
    for (int c = 0; c < std::ssize(Detalle().Def().columnas); ++c)
        anchos << vista_->columnWidth(c);
    Ajustes().Guardar(Ajuste::Rejilla, NombreEntero(), anchos);
}

QVariant PanelDetalle::ValorVisible(const Renglon& renglon, int columna) const {
    const DetalleDef& def = Detalle().Def();
    const TipoCeldaDetalle tipo = def.columnas[static_cast<std::size_t>(columna)].tipo;
    const bool lista = tipo == TipoCeldaDetalle::Lista;
    const QString& texto = renglon.celdas[lista ? def.celda_clave : columna];
    if (texto.isEmpty()) return {};
    if (lista) return texto.toInt();
    return texto;
}

void PanelDetalle::RefrescarRenglon(int fila) {
    const Renglon& renglon = Detalle().Renglones()[fila];
    for (int c = 0; c < renglon.celdas.size(); ++c) {
        const QVariant valor = ValorVisible(renglon, c);
        if (vista_->Valor(fila, c) != valor) vista_->Poner(fila, c, valor);
        vista_->Bloquear(fila, c, !Detalle().Editable(fila, c));
    }
    const bool borrada = renglon.marca == Marca::Borrada;
    if (vista_->isRowHidden(fila) != borrada) vista_->setRowHidden(fila, borrada);
}

void PanelDetalle::Refrescar() {
    const auto renglones = static_cast<int>(Detalle().Renglones().size());
    vista_->PonerSoloLectura(!sesion_.EnEdicion());
    vista_->PonerRenglones(renglones);
    for (int fila = 0; fila < renglones; ++fila)
        RefrescarRenglon(fila);
}

void PanelDetalle::Anotar(int fila, int columna, const QString& texto) {
    escritos_.append({fila, columna, texto});
    // A message in the middle of leaving a cell would take the focus from under it.
    QMetaObject::invokeMethod(this, &PanelDetalle::Aplicar, Qt::QueuedConnection);
}

bool PanelDetalle::Aplicar() {
    bool bien = true;
    const QVector<Escrito> escritos = std::exchange(escritos_, {});
    for (const Escrito& escrito : escritos) {
        if (escrito.fila >= Detalle().Renglones().size()) continue;
        const bool aceptado = Detalle().Escribir(escrito.fila, escrito.columna, escrito.texto);
        RefrescarRenglon(escrito.fila);
        if (!aceptado) vista_->PonerActual(escrito.fila, escrito.columna);
        bien = bien && aceptado;
    }
    return bien;
}

bool PanelDetalle::CerrarCelda(bool tomar_lo_escrito) {
    QWidget* const editor = vista_->indexWidget(vista_->currentIndex());
    if (editor == nullptr) return false;
    QAbstractItemDelegate* const delegado = vista_->itemDelegate();
    if (tomar_lo_escrito) emit delegado->commitData(editor);
    emit delegado->closeEditor(editor, QAbstractItemDelegate::NoHint);
    return true;
}

int PanelDetalle::PrimeraEditable(int fila) const {
    for (int c = 0; c < std::ssize(Detalle().Def().columnas); ++c) {
        if (!vista_->isColumnHidden(c) && Detalle().Editable(fila, c)) return c;
    }
    return 0;
}

void PanelDetalle::Nuevo() {
    if (!sesion_.EnEdicion()) return;
    CerrarCelda(true);
    if (!Aplicar()) return;
    const int fila = Detalle().Agregar(vista_->FilaActual());
    Refrescar();
    if (fila < 0) return;
    vista_->PonerActual(fila, PrimeraEditable(fila));
    vista_->setFocus();
}

void PanelDetalle::Modificar() {
    if (!sesion_.EnEdicion() || !vista_->currentIndex().isValid()) return;
    vista_->setFocus();
    vista_->edit(vista_->currentIndex());
}

void PanelDetalle::Borrar() {
    const int fila = vista_->FilaActual();
    if (!sesion_.EnEdicion() || fila < 0 || vista_->isRowHidden(fila)) return;
    CerrarCelda(false);
    Aplicar();
    Detalle().Borrar(fila);
    Refrescar();
    for (int otra = std::min(fila, vista_->Renglones() - 1); otra >= 0; --otra) {
        if (vista_->isRowHidden(otra)) continue;
        return vista_->PonerActual(otra, vista_->ColumnaActual() < 0 ? 0 : vista_->ColumnaActual());
    }
    vista_->setCurrentIndex({});
}

void PanelDetalle::Pegar() {
    Aplicar();
    QVector<int> columnas;
    const int desde = std::max(vista_->ColumnaActual(), 0);
    for (int c = desde; c < std::ssize(Detalle().Def().columnas); ++c) {
        if (!vista_->isColumnHidden(c)) columnas << c;
    }
    Detalle().Pegar(vista_->FilaActual(), columnas, QApplication::clipboard()->text());
    Refrescar();
}

bool PanelDetalle::eventFilter(QObject* objeto, QEvent* evento) {
    if (evento->type() != QEvent::KeyPress || !sesion_.EnEdicion()) {
        return QObject::eventFilter(objeto, evento);
    }
    auto* const tecla = static_cast<QKeyEvent*>(evento);
    if (tecla->matches(QKeySequence::Paste)) {
        Pegar();
        return true;
    }
    if ((tecla->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return false;
    if (tecla->key() == Qt::Key_Insert) {
        Nuevo();
        return true;
    }
    if (tecla->key() == Qt::Key_Delete) {
        Borrar();
        return true;
    }
    return QObject::eventFilter(objeto, evento);
}

}  // namespace quimo::ui
