#include "ui/controles/rejilla.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyledItemDelegate>

#include "grid/formato.h"
#include "grid/tabulado.h"
#include "ui/controles/aspecto.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using grid::TipoCelda;

namespace {

constexpr double kMmPorPulgada = 25.4;

/// The editors of the cells: a combo box for lists, a text box with the column's length otherwise.
class DelegadoRejilla final : public QStyledItemDelegate {
public:
    DelegadoRejilla(const ModeloRejilla& modelo, QObject* padre)
        : QStyledItemDelegate(padre), modelo_(modelo) {}

    // NOLINTBEGIN(readability-identifier-naming): named by Qt
    QWidget* createEditor(QWidget* padre, const QStyleOptionViewItem& opcion,
                          const QModelIndex& lugar) const override {
        const ColumnaRejilla& columna = modelo_.Columnas()[lugar.column()];
        if (modelo_.Tipo(lugar.column()) == TipoCelda::Lista) {
            auto* const lista = Nombrar(new QComboBox(padre), u"editorCelda"_s, columna.titulo);
            for (const foundation::EntradaCombo& entrada : columna.lista)
                lista->addItem(entrada.texto, entrada.dato);
            return lista;
        }
        QWidget* const editor = QStyledItemDelegate::createEditor(padre, opcion, lugar);
        if (auto* const caja = qobject_cast<QLineEdit*>(editor)) {
            if (EsNumerica(modelo_.Tipo(lugar.column()))) {
                caja->setAlignment(Qt::AlignRight);
            }
            Nombrar(caja, u"editorCelda"_s, columna.titulo);
        }
        return editor;
    }
    void setEditorData(QWidget* editor, const QModelIndex& lugar) const override {
        auto* const lista = qobject_cast<QComboBox*>(editor);
        if (lista == nullptr) return QStyledItemDelegate::setEditorData(editor, lugar);
        lista->setCurrentIndex(lista->findData(lugar.data(Qt::EditRole)));
    }
    void setModelData(QWidget* editor, QAbstractItemModel* modelo,
                      const QModelIndex& lugar) const override {
        auto* const lista = qobject_cast<QComboBox*>(editor);
        if (lista == nullptr) return QStyledItemDelegate::setModelData(editor, modelo, lugar);
        if (lista->currentIndex() >= 0) modelo->setData(lugar, lista->currentData(), Qt::EditRole);
    }
    // NOLINTEND(readability-identifier-naming)

private:
    const ModeloRejilla& modelo_;
};

}  // namespace

Rejilla::Rejilla(const QString& nombre, const QString& accesible, QWidget* padre)
    : QTableView(padre) {
    Nombrar(this, nombre, accesible);
    setModel(&modelo_);
    setItemDelegate(new DelegadoRejilla(modelo_, this));
    setAlternatingRowColors(true);
    setWordWrap(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTabKeyNavigation(false);
    verticalHeader()->setDefaultSectionSize(AltoDeRenglon(*this));
    verticalHeader()->hide();
    horizontalHeader()->setHighlightSections(false);
    connect(&modelo_, &ModeloRejilla::CeldaCambiada, this, &Rejilla::CeldaCambiada);
    connect(&modelo_, &ModeloRejilla::CeldaRechazada, this, &Rejilla::CeldaRechazada);
}

void Rejilla::PonerColumnas(const QVector<ColumnaRejilla>& columnas) {
    modelo_.PonerColumnas(columnas);
    for (int c = 0; c < columnas.size(); ++c) {
        setColumnHidden(c, columnas[c].oculta);
        setColumnWidth(c, qRound(columnas[c].ancho_mm * logicalDpiX() / kMmPorPulgada));
    }
}

void Rejilla::PonerRenglones(int renglones) { modelo_.PonerRenglones(renglones); }

QString Rejilla::Texto(int fila, int columna) const {
    return modelo_.data(modelo_.index(fila, columna), Qt::DisplayRole).toString();
}

void Rejilla::PonerSoloLectura(bool solo_lectura) { modelo_.PonerSoloLectura(solo_lectura); }

void Rejilla::PonerActual(int fila, int columna) { setCurrentIndex(modelo_.index(fila, columna)); }

QVector<int> Rejilla::ColumnasVisibles() const {
    QVector<int> columnas;
    for (int visual = 0; visual < modelo_.columnCount(); ++visual) {
        const int columna = horizontalHeader()->logicalIndex(visual);
        if (!isColumnHidden(columna)) columnas << columna;
    }
    return columnas;
}

QString Rejilla::TextoPlano(const QModelIndex& lugar) const {
    const TipoCelda tipo = modelo_.Tipo(lugar.column());
    const QVariant valor = modelo_.Valor(lugar.row(), lugar.column());
    if (tipo == TipoCelda::Casilla) return valor.toInt() != 0 ? u"1"_s : u"0"_s;
    if (!EsNumerica(tipo) || !valor.isValid()) return Texto(lugar.row(), lugar.column());
    return grid::NumeroPlano(valor, tipo, modelo_.Columnas()[lugar.column()].decimales);
}

QString Rejilla::TextoSeleccionado() const {
    QStringList lineas;
    const QVector<int> columnas = ColumnasVisibles();
    const QItemSelectionModel* const seleccion = selectionModel();
    for (int fila = 0; fila < Renglones(); ++fila) {
        if (isRowHidden(fila)) continue;
        if (!seleccion->rowIntersectsSelection(fila, {})) continue;
        QStringList celdas;
        for (const int columna : columnas) {
            const QModelIndex lugar = modelo_.index(fila, columna);
            if (seleccion->isSelected(lugar)) celdas << TextoPlano(lugar);
        }
        if (!celdas.isEmpty()) lineas << grid::LineaTabulada(celdas);
    }
    return lineas.join(u'\n');
}

void Rejilla::Copiar() const {
    const QString texto = TextoSeleccionado();
    if (!texto.isEmpty()) QApplication::clipboard()->setText(texto);
}

void Rejilla::keyPressEvent(QKeyEvent* evento) {
    if (evento->matches(QKeySequence::Copy)) return Copiar();
    QTableView::keyPressEvent(evento);
}

}  // namespace quimo::ui
