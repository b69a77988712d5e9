#pragma once

#include <QStringList>
#include <QVector>

#include "catalog/declaracion/editor_def.h"
#include "foundation/cls_ado.h"

namespace quimo::catalog {

/// What the last column of a detail grid says of its row.
enum class Marca : char16_t { Ninguna = u' ', Nueva = u'N', Modificada = u'M', Borrada = u'B' };

/// One row of a detail grid: its cells as texts, dates dd/mm/yyyy, check boxes 1 and 0.
struct Renglon {
    QStringList celdas = {};
    QStringList cargadas = {};  ///< as the database gave them; empty of a new row
    Marca marca = Marca::Ninguna;
};

/// The rows of one detail grid while its record is shown or edited. Rows marked as deleted keep
/// their place and are not to be shown. Faults are told through the data-access object's Dialogos.
class DetalleSesion {
public:
    DetalleSesion(const DetalleDef& def, foundation::ClsAdo& ado) : def_(&def), ado_(&ado) {}

    const DetalleDef& Def() const { return *def_; }
    const QVector<Renglon>& Renglones() const { return renglones_; }
    /// The entries of the combo cells.
    const QVector<foundation::EntradaCombo>& Entradas() const { return entradas_; }
    /// Something was typed, added or deleted since it was loaded.
    bool Cambiado() const { return cambiado_; }
    /// False while the rows of the record that is shown could not be read.
    bool Cargado() const { return cargado_; }

    /// Reads the entries of the combo cells. False after telling why not.
    bool CargarLista();
    /// Shows the rows of this record. False after telling why not.
    bool Cargar(const QString& clave);
    void Vaciar();

    bool PuedeAgregar(int fila_actual) const;
    /// Appends an empty row marked as new, if one may be added with the cursor on `fila_actual`
    /// (-1: on none). Its place, or -1.
    int Agregar(int fila_actual);
    /// A new row goes at once, any other when the record is saved.
    void Borrar(int fila);
    bool Editable(int fila, int columna) const;
    /// What the user wrote into a cell. A code that does not exist empties it, anything else that
    /// does not suit it leaves it as it was; either is told and gives false.
    bool Escribir(int fila, int columna, const QString& texto);
    /// Tab-separated text over the cells of these columns, from this row on; rows are added where
    /// they run out. What does not suit a cell is told once, for all of them together.
    void Pegar(int fila, const QVector<int>& columnas, const QString& texto);
    /// Sorts by what a column shows, numbers by value, now and whenever rows are loaded.
    void Ordenar(int columna, Qt::SortOrder orden);

    enum class Guardado {
        Hecho,         ///< what was refused has been told; the rest is written
        Interrumpido,  ///< told; what was written is no longer marked, the rest can be saved again
    };
    /// Writes the rows of the record with this key.
    Guardado Guardar(const QString& clave);
    /// Deletes all rows of the record. False after telling why not.
    bool BorrarTodos(const QString& clave);

private:
    const ColumnaDetalle& Columna(qsizetype columna) const {
        return def_->columnas[static_cast<std::size_t>(columna)];
    }
    struct Resultado {
        bool bien = true;
        QString objecion = {};
    };
    Resultado Aceptar(Renglon& renglon, int columna, const QString& escrito);
    Resultado AceptarCodigo(Renglon& renglon, int columna, const QString& texto);
    Resultado AceptarNumero(Renglon& renglon, int columna, const QString& texto);
    bool AceptarDeLista(Renglon& renglon, int columna, const QString& texto);
    int AgregarAlFinal();
    QString Literal(const Renglon& renglon, int celda, const QString& clave) const;
    QString Condicion(const Renglon& renglon, const QString& clave) const;
    bool Insertar(const Renglon& renglon, const QString& clave);
    bool Cambiar(const Renglon& renglon, const QString& clave);
    Guardado GuardarRenglon(qsizetype fila, const QString& clave);
    void Avisar(const QString& texto);

    const DetalleDef* def_;
    foundation::ClsAdo* ado_;
    QVector<data::Columna> columnas_;  // as the database has them
    QVector<foundation::EntradaCombo> entradas_;
    QVector<Renglon> renglones_;
    bool cambiado_ = false;
    bool cargado_ = true;
    int orden_ = -1;  // the column that rows are sorted by
    Qt::SortOrder sentido_ = Qt::AscendingOrder;
};

/// Tells the pending failure of the data-access object. True when it was that the connection is
/// lost or closed, so that there is no use in going on.
bool ContarFallo(foundation::ClsAdo& ado);

}  // namespace quimo::catalog
