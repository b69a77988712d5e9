#include "ui/editores/dlg_consulta.h"

#include <algorithm>

#include <QApplication>
#include <QClipboard>
#include <QCompleter>
#include <QFileDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollArea>
#include <QSplitter>
#include <QStandardPaths>

#include "catalog/consulta/vista_consulta.h"
#include "grid/exportar.h"
#include "grid/tabulado.h"
#include "ui/controles/ajustes.h"
#include "ui/controles/aspecto.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

using catalog::Condicion;
using catalog::Operador;
using data::ClaseValor;
using foundation::Icono;

namespace {

constexpr int kLargoMax = 4000;
constexpr int kFilasMedidas = 200;  // by which the columns take their widths
constexpr int kAnchoMaxColumna = 360;
constexpr int kLetrasValor = 14;
constexpr QSize kTamano(1240, 640);
constexpr QSize kOrilla(60, 80);  // of the screen that stays free
const auto kNombre = u"DlgConsulta"_s;

QStringList Titulos(const catalog::Consulta& consulta) {
    QStringList titulos;
    for (const catalog::ColumnaFiltrable& columna : consulta.Columnas())
        titulos << columna.titulo;
    return titulos;
}

QLineEdit* CajaDeValor(const QString& nombre, const QString& accesible, ClaseValor clase) {
    auto* const caja = Nombrar(new QLineEdit, nombre, accesible);
    caja->setMaxLength(kLargoMax);
    caja->setMinimumWidth(caja->fontMetrics().averageCharWidth() * kLetrasValor);
    if (clase == ClaseValor::Fecha) caja->setPlaceholderText(u"dd/mm/aaaa"_s);
    return caja;
}

QComboBox* ListaDeValores(const catalog::ColumnaFiltrable& columna, const QString& nombre) {
    auto* const lista = Nombrar(new QComboBox, nombre, u"Valor de "_s + columna.titulo);
    lista->addItem(QString());
    if (columna.codigos.isEmpty()) lista->addItems({u"Sí"_s, u"No"_s});
    for (const catalog::CodigoMostrado& codigo : columna.codigos)
        lista->addItem(codigo.texto);
    if (columna.codigos.isEmpty()) return lista;
    // A code that has no text of its own can still be written: what is written stays as it is.
    lista->setEditable(true);
    lista->setInsertPolicy(QComboBox::NoInsert);
    lista->completer()->setCompletionMode(QCompleter::PopupCompletion);
    return lista;
}

}  // namespace

struct DlgConsulta::Formato {
    QString titulo;
    QString filtro;
    QString sufijo;
    base::Result<void> (*escribir)(const grid::Rejilla&, const QString&);
};

DlgConsulta::DlgConsulta(catalog::Consulta& consulta, foundation::Dialogos& dialogos,
                         QWidget* padre)
    : QDialog(padre),
      consulta_(consulta),
      dialogos_(dialogos),
      modelo_(consulta.Tabla(), Titulos(consulta)),
      tabla_(Nombrar(new QTableView, u"sprResultado"_s, u"Renglones que cumplen"_s)),
      registros_(Nombrar(new QLabel, u"lblRegistros"_s, u"Cuántos renglones hay"_s)),
      aviso_(Nombrar(new QLabel, u"lblAviso"_s, u"Aviso"_s)) {
    setObjectName(u"DlgConsulta"_s);
    setWindowTitle(u"Consulta"_s);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* const partes = Nombrar(new QSplitter, u"splPartes"_s, u"Condiciones y resultado"_s);
    partes->addWidget(Condiciones());
    partes->addWidget(Resultados());
    partes->setStretchFactor(1, 1);
    partes->setChildrenCollapsible(false);
    aviso_->setTextFormat(Qt::PlainText);
    aviso_->setWordWrap(true);
    aviso_->setText(u"Escriba sus condiciones y oprima Enter. Sin condiciones se listan todos."_s);
    auto* const pie = new QHBoxLayout;
    pie->addWidget(aviso_, 1);
    auto* const aceptar = Boton(u"cmdAceptar"_s, u"&Aceptar"_s, u"Elegir el renglón marcado"_s,
                                &DlgConsulta::Aceptar);
    con_filas_ << aceptar;
    pie->addWidget(aceptar);
    pie->addWidget(Boton(u"cmdCerrar"_s, u"Ce&rrar"_s, u"Cerrar"_s, &DlgConsulta::reject));
    auto* const todo = new QVBoxLayout(this);
    todo->addWidget(partes, 1);
    todo->addLayout(pie);
    const QSize pantalla = screen()->availableSize();
    resize(kTamano.boundedTo(pantalla - kOrilla));
    restoreGeometry(Ajustes().Leer(Ajuste::Dialogo, kNombre).toByteArray());
    if (!renglones_.isEmpty()) renglones_.first().Control()->setFocus();
    MostrarCuenta();
}

QPushButton* DlgConsulta::Boton(const QString& nombre, const QString& texto,
                                const QString& accesible, void (DlgConsulta::*accion)()) {
    auto* const boton = Nombrar(new QPushButton(texto), nombre, accesible);
    boton->setAutoDefault(false);
    connect(boton, &QPushButton::clicked, this, accion);
    return boton;
}

QWidget* DlgConsulta::Valores(const catalog::ColumnaFiltrable& columna, const QString& numero,
                              Renglon& renglon) {
    const ClaseValor clase = data::ClaseDe(columna.tipo);
    auto* const valores = new QWidget;
    auto* const linea = new QHBoxLayout(valores);
    linea->setContentsMargins(0, 0, 0, 0);
    if (clase == ClaseValor::Logico || !columna.codigos.isEmpty()) {
        renglon.lista = ListaDeValores(columna, u"cmbValor"_s + numero);
        linea->addWidget(renglon.lista);
    } else {
        renglon.texto = CajaDeValor(u"txtValor"_s + numero, u"Valor de "_s + columna.titulo, clase);
        linea->addWidget(renglon.texto);
    }
    if (columna.Operadores().contains(Operador::Entre)) {
        renglon.hasta =
            CajaDeValor(u"txtHasta"_s + numero, u"Valor final de "_s + columna.titulo, clase);
        linea->addWidget(renglon.hasta);
        // Room for both, also while only one is seen.
        valores->setMinimumWidth(2 * renglon.hasta->minimumWidth() + linea->spacing());
    }
    return valores;
}

QWidget* DlgConsulta::Condiciones() {
    auto* const hoja = new QWidget;
    auto* const rejilla = new QGridLayout(hoja);
    rejilla->setColumnStretch(2, 1);
    for (qsizetype i = 0; i < consulta_.Columnas().size(); ++i) {
        const catalog::ColumnaFiltrable& columna = consulta_.Columnas()[i];
        const QString numero = QString::number(i);
        const auto fila = static_cast<int>(i);
        Renglon renglon;
        renglon.operador = Nombrar(new QComboBox, u"cmbOperador"_s + numero,
                                   u"Comparación de "_s + columna.titulo);
        for (const Operador operador : columna.Operadores())
            renglon.operador->addItem(catalog::NombreDe(operador), static_cast<int>(operador));
        auto* const titulo =
            Nombrar(new QLabel(columna.titulo), u"lblTitulo"_s + numero, columna.titulo);
        rejilla->addWidget(titulo, fila, 0);
        rejilla->addWidget(renglon.operador, fila, 1);
        rejilla->addWidget(Valores(columna, numero, renglon), fila, 2);
        connect(renglon.operador, &QComboBox::currentIndexChanged, this,
                [this, renglon] { AlCambiarOperador(renglon); });
        AlCambiarOperador(renglon);
        renglones_ << renglon;
    }
    auto* const botones = new QHBoxLayout;
    auto* const consultar =
        Boton(u"cmdConsultar"_s, u"&Consultar"_s, u"Consultar"_s, &DlgConsulta::Consultar);
    consultar->setDefault(true);
    botones->addWidget(consultar);
    botones->addWidget(Boton(u"cmdLimpiar"_s, u"&Limpiar"_s, u"Quitar todas las condiciones"_s,
                             &DlgConsulta::Limpiar));
    botones->addStretch();
    const auto filas = static_cast<int>(renglones_.size());
    rejilla->addLayout(botones, filas, 0, 1, 3);
    rejilla->setRowStretch(filas + 1, 1);
    auto* const marco =
        Nombrar(new QScrollArea, u"sclCondiciones"_s, u"Condiciones de la consulta"_s);
    marco->setWidget(hoja);
    marco->setWidgetResizable(true);
    marco->setFrameShape(QFrame::NoFrame);
    marco->setFocusPolicy(Qt::NoFocus);
    marco->setMinimumWidth(hoja->sizeHint().width() + 24);
    return marco;
}

QWidget* DlgConsulta::Resultados() {
    tabla_->setModel(&modelo_);
    tabla_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tabla_->setAlternatingRowColors(true);
    tabla_->setWordWrap(false);
    tabla_->setTabKeyNavigation(false);
    tabla_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    tabla_->verticalHeader()->setDefaultSectionSize(AltoDeRenglon(*this));
    tabla_->verticalHeader()->hide();
    tabla_->horizontalHeader()->setHighlightSections(false);
    tabla_->horizontalHeader()->setResizeContentsPrecision(kFilasMedidas);
    tabla_->horizontalHeader()->setSortIndicator(0, Qt::AscendingOrder);
    tabla_->setSortingEnabled(true);
    tabla_->resizeColumnsToContents();
    tabla_->installEventFilter(this);
    connect(tabla_, &QTableView::doubleClicked, this, &DlgConsulta::Aceptar);
    auto* const linea = new QHBoxLayout;
    linea->addWidget(registros_, 1);
    con_filas_ << Boton(u"cmdCopiar"_s, u"C&opiar"_s, u"Copiar los renglones marcados"_s,
                        &DlgConsulta::Copiar)
               << Boton(u"cmdExcel"_s, u"Exportar a &Excel…"_s, u"Exportar a Excel"_s,
                        &DlgConsulta::ExportarExcel)
               << Boton(u"cmdCsv"_s, u"Exportar a CS&V…"_s, u"Exportar a CSV"_s,
                        &DlgConsulta::ExportarCsv);
    for (QPushButton* const boton : con_filas_)
        linea->addWidget(boton);
    auto* const lado = new QWidget;
    auto* const todo = new QVBoxLayout(lado);
    todo->setContentsMargins(0, 0, 0, 0);
    todo->addWidget(tabla_, 1);
    todo->addLayout(linea);
    return lado;
}

std::optional<QVariant> DlgConsulta::Elegir() {
    if (exec() != QDialog::Accepted) return std::nullopt;
    return clave_;
}

void DlgConsulta::done(int resultado) {
    Ajustes().Guardar(Ajuste::Dialogo, kNombre, saveGeometry());
    QDialog::done(resultado);
}

bool DlgConsulta::eventFilter(QObject* objeto, QEvent* evento) {
    if (objeto == tabla_ && evento->type() == QEvent::KeyPress) {
        auto* const tecla = static_cast<QKeyEvent*>(evento);
        if (tecla->key() == Qt::Key_Return || tecla->key() == Qt::Key_Enter) {
            Aceptar();
            return true;
        }
        if (tecla->matches(QKeySequence::Copy)) {
            Copiar();
            return true;
        }
    }
    return QDialog::eventFilter(objeto, evento);
}

void DlgConsulta::AlCambiarOperador(const Renglon& renglon) {
    const auto operador = static_cast<Operador>(renglon.operador->currentData().toInt());
    renglon.Control()->setEnabled(operador != Operador::Vacio);
    if (renglon.hasta != nullptr) renglon.hasta->setVisible(operador == Operador::Entre);
}

void DlgConsulta::Consultar() {
    QVector<Condicion> condiciones;
    for (qsizetype i = 0; i < renglones_.size(); ++i) {
        const Renglon& renglon = renglones_[i];
        condiciones.append({i, static_cast<Operador>(renglon.operador->currentData().toInt()),
                            renglon.Valor(),
                            renglon.hasta != nullptr ? renglon.hasta->text() : QString()});
    }
    const auto sentencia = consulta_.Sentencia(condiciones);
    if (!sentencia) {
        dialogos_.Avisar(sentencia.error().mensaje, Icono::Exclamacion);
        const Renglon& malo = renglones_[sentencia.error().columna];
        malo.Control()->setFocus();
        if (malo.texto != nullptr) malo.texto->selectAll();
        return;
    }
    const bool hecho = modelo_.Releer([&] { return consulta_.Ejecutar(*sentencia); });
    const QHeaderView* const titulos = tabla_->horizontalHeader();
    modelo_.sort(titulos->sortIndicatorSection(), titulos->sortIndicatorOrder());
    MostrarCuenta();
    const bool hay = modelo_.rowCount() > 0;
    aviso_->setText(!hecho ? u"La consulta no se pudo hacer."_s
                    : hay  ? u"Enter o doble clic en un renglón lo lleva al catálogo."_s
                           : u"Ningún renglón cumple las condiciones."_s);
    if (!hay) return;
    if (!con_anchos_) {
        tabla_->resizeColumnsToContents();
        for (int c = 0; c < modelo_.columnCount(); ++c)
            tabla_->setColumnWidth(c, std::min(tabla_->columnWidth(c), kAnchoMaxColumna));
        con_anchos_ = true;
    }
    tabla_->setCurrentIndex(modelo_.index(0, 0));
    tabla_->setFocus();
}

void DlgConsulta::Limpiar() {
    for (const Renglon& renglon : renglones_) {
        renglon.operador->setCurrentIndex(0);
        if (renglon.lista != nullptr) renglon.lista->setCurrentIndex(0);
        if (renglon.texto != nullptr) renglon.texto->clear();
        if (renglon.hasta != nullptr) renglon.hasta->clear();
    }
    if (!renglones_.isEmpty()) renglones_.first().Control()->setFocus();
}

void DlgConsulta::Aceptar() {
    const QModelIndex actual = tabla_->currentIndex();
    if (!actual.isValid()) return;
    clave_ = consulta_.Clave(actual.row());
    accept();
}

void DlgConsulta::Copiar() {
    QVector<qsizetype> filas;
    const catalog::VistaConsulta vista(consulta_.Tabla());
    for (const QModelIndex& lugar : tabla_->selectionModel()->selectedRows())
        filas << vista.FilasDeTitulos() + lugar.row();
    std::sort(filas.begin(), filas.end());
    QApplication::clipboard()->setText(grid::TextoTabulado(vista, filas));
    aviso_->setText(u"Renglones copiados: %1"_s.arg(filas.size()));
}

void DlgConsulta::ExportarExcel() {
    Exportar({u"Exportar a Excel"_s, u"Libro de Excel (*.xlsx)"_s, u"xlsx"_s, &grid::ExportarXlsx});
}

void DlgConsulta::ExportarCsv() {
    Exportar(
        {u"Exportar a CSV"_s, u"Texto separado por comas (*.csv)"_s, u"csv"_s, &grid::ExportarCsv});
}

void DlgConsulta::Exportar(const Formato& formato) {
    QFileDialog dialogo(this, formato.titulo,
                        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                        formato.filtro);
    dialogo.setObjectName(u"dlgArchivo"_s);
    dialogo.setAcceptMode(QFileDialog::AcceptSave);
    dialogo.setDefaultSuffix(formato.sufijo);
    dialogo.setViewMode(QFileDialog::List);
    dialogo.setLabelText(QFileDialog::LookIn, u"Carpeta:"_s);
    dialogo.setLabelText(QFileDialog::FileName, u"&Nombre:"_s);
    dialogo.setLabelText(QFileDialog::FileType, u"Tipo:"_s);
    dialogo.setLabelText(QFileDialog::Accept, u"&Guardar"_s);
    dialogo.setLabelText(QFileDialog::Reject, u"&Cancelar"_s);
    dialogo.selectFile(u"Consulta."_s + formato.sufijo);
    if (dialogo.exec() != QDialog::Accepted) return;
    const QString archivo = dialogo.selectedFiles().value(0);
    const auto escrito = [&] {
        const foundation::PunteroOcupado ocupado(dialogos_);
        return formato.escribir(catalog::VistaConsulta(consulta_.Tabla()), archivo);
    }();
    if (!escrito)
        return dialogos_.Avisar(QString::fromStdString(escrito.error().mensaje), Icono::Critico);
    aviso_->setText(u"Se guardaron %1 renglones en %2"_s.arg(modelo_.rowCount()).arg(archivo));
}

void DlgConsulta::MostrarCuenta() {
    registros_->setText(u"Registros: %1"_s.arg(modelo_.rowCount()));
    for (QPushButton* const boton : con_filas_)
        boton->setEnabled(modelo_.rowCount() > 0);
}

}  // namespace quimo::ui
