#pragma once

#include <cstdint>
#include <span>

#include <QString>
#include <QStringView>
#include <QVariant>

#include "catalog/declaracion/declaracion_mala.h"
#include "catalog/declaracion/filtro_def.h"
#include "grid/celda.h"

namespace quimo::catalog {

class DetalleSesion;

enum class TipoCampo : std::uint8_t {
    Clave,    ///< the record's key; never typed into
    Texto,    ///< a text box; its column's length is the limit
    Numero,   ///< a text box whose column holds a number
    Casilla,  ///< a check box: 1 or 0
    Codigo,   ///< a combo box of fixed texts, each with a letter, mirrored by a hidden box
    Lista,    ///< a combo box filled by a query, mirrored by a hidden box with the chosen key
};

/// How a list's entry for NULL is told apart when an existing row is written.
enum class NuloPor : std::uint8_t { Texto, Dato };

/// A combo box filled by a query: its first column is the text, the second the key.
struct ListaDef {
    QStringView consulta;
    QStringView ninguno = {};  ///< the entry that stands for NULL; none when empty
    int dato_ninguno = 0;      ///< the key behind that entry
    NuloPor nulo_por = NuloPor::Dato;
};

/// A box that shows more than what is stored: signs, thousands apart.
struct MascaraDef {
    QString (*mostrar)(const QVariant& guardado);
    QString (*reducir)(const QString& escrito);  ///< what is written of it
    /// What to tell when the box is left with this (reduced); then it is emptied and keeps the
    /// focus. Empty when all is well.
    QString (*objecion)(const QString& reducido);
};

/// A column shown in two boxes: this field's and that of the next field, which has no column.
struct PartesDef {
    void (*partir)(const QString& guardado, QString& primera, QString& segunda);
    QString (*unir)(const QString& primera, const QString& segunda);
};

/// One field of a catalogue. Made by the functions below; mandatory fields are tested in the order
/// in which they are declared.
struct CampoDef {
    QStringView control = {};  ///< the box, check box or combo box that the user sees
    QStringView columna = {};  ///< empty for the second part of a divided column
    QStringView etiqueta = {};
    TipoCampo tipo = TipoCampo::Texto;
    QStringView oculto = {};   ///< the hidden box of a combo box
    QStringView tag = {};      ///< words of the field input rules
    QStringView falta = {};    ///< "Falta el campo " and this, tested by what the control shows
    QStringView inicial = {};  ///< of a new row; the letter or the text
    std::span<const ItemCodigo> codigos = {};
    const ListaDef* lista = nullptr;
    const MascaraDef* mascara = nullptr;
    const PartesDef* partes = nullptr;

    /// Tested by Save with the catalogue's own words.
    consteval CampoDef Obligatorio(QStringView de_que) const {
        if (de_que.isEmpty()) declaracion_mala::CampoObligatorioSinTexto();
        CampoDef otro = *this;
        otro.falta = de_que;
        return otro;
    }
    /// Rules of what may be written; "NoVacio" also makes it mandatory.
    constexpr CampoDef Tag(QStringView palabras) const {
        CampoDef otro = *this;
        otro.tag = palabras;
        return otro;
    }
    constexpr CampoDef Inicial(QStringView valor) const {
        CampoDef otro = *this;
        otro.inicial = valor;
        return otro;
    }
    constexpr CampoDef Mascara(const MascaraDef& mascara_def) const {
        CampoDef otro = *this;
        otro.mascara = &mascara_def;
        return otro;
    }
    constexpr CampoDef Partido(const PartesDef& partes_def) const {
        CampoDef otro = *this;
        otro.partes = &partes_def;
        return otro;
    }
};

constexpr CampoDef Clave(QStringView control, QStringView columna) {
    return {.control = control, .columna = columna, .etiqueta = u"Clave", .tipo = TipoCampo::Clave};
}
constexpr CampoDef Texto(QStringView control, QStringView columna, QStringView etiqueta) {
    return {.control = control, .columna = columna, .etiqueta = etiqueta};
}
/// The second box of a divided column.
constexpr CampoDef SegundaParte(QStringView control, QStringView etiqueta) {
    return {.control = control, .etiqueta = etiqueta};
}
constexpr CampoDef Numero(QStringView control, QStringView columna, QStringView etiqueta) {
    return {
        .control = control, .columna = columna, .etiqueta = etiqueta, .tipo = TipoCampo::Numero};
}
constexpr CampoDef Casilla(QStringView control, QStringView columna, QStringView etiqueta) {
    return {.control = control,
            .columna = columna,
            .etiqueta = etiqueta,
            .tipo = TipoCampo::Casilla,
            .inicial = u"0"};
}
constexpr CampoDef Codigo(QStringView control, QStringView oculto, QStringView columna,
                          QStringView etiqueta, std::span<const ItemCodigo> codigos) {
    return {.control = control,
            .columna = columna,
            .etiqueta = etiqueta,
            .tipo = TipoCampo::Codigo,
            .oculto = oculto,
            .codigos = codigos};
}
constexpr CampoDef Lista(QStringView control, QStringView oculto, QStringView columna,
                         QStringView etiqueta, const ListaDef& lista) {
    return {.control = control,
            .columna = columna,
            .etiqueta = etiqueta,
            .tipo = TipoCampo::Lista,
            .oculto = oculto,
            .lista = &lista};
}

/// What a cell of a detail grid is for; CeldaDe tells its kind.
enum class TipoCeldaDetalle : std::uint8_t {
    Oculta,   ///< not shown; keys and copies
    Nombre,   ///< filled by the program
    Codigo,   ///< a key that is typed and looked up when the cell is left
    Lista,    ///< a name chosen from the grid's list, whose key goes into the key cell
    Entero,   ///< a whole number; empty is 0
    Dinero,   ///< an amount
    Numero,   ///< a number with decimals
    Casilla,  ///< 1 or 0
    Fecha,    ///< dd/mm/yyyy
    Marca,    ///< the row's change mark
};

/// How such a cell is shown.
constexpr grid::TipoCelda CeldaDe(TipoCeldaDetalle tipo) {
    switch (tipo) {
        case TipoCeldaDetalle::Codigo:
            return grid::TipoCelda::Texto;
        case TipoCeldaDetalle::Lista:
            return grid::TipoCelda::Lista;
        case TipoCeldaDetalle::Entero:
            return grid::TipoCelda::Entero;
        case TipoCeldaDetalle::Dinero:
            return grid::TipoCelda::Moneda;
        case TipoCeldaDetalle::Numero:
            return grid::TipoCelda::Numero;
        case TipoCeldaDetalle::Casilla:
            return grid::TipoCelda::Casilla;
        case TipoCeldaDetalle::Fecha:
            return grid::TipoCelda::Fecha;
        case TipoCeldaDetalle::Oculta:
        case TipoCeldaDetalle::Nombre:
        case TipoCeldaDetalle::Marca:
            break;
    }
    return grid::TipoCelda::Estatico;
}

/// Which rows' cells can be changed. The key of a stored row is what finds it.
enum class Cambiable : std::uint8_t { No, SoloNuevas, Siempre };

/// One column of a detail grid, in the order of its query.
struct ColumnaDetalle {
    TipoCeldaDetalle tipo = TipoCeldaDetalle::Oculta;
    QStringView titulo = {};
    int ancho_mm = 25;
    Cambiable cambiable = Cambiable::No;
    QStringView inicial = {};  ///< of a new row, and of a number that is emptied
    int decimales = 2;
    bool exigida = false;  ///< the editor's `revisar` refuses a row in which it is empty
};

/// Takes the record's own key instead of a cell.
inline constexpr int kClaveDelRegistro = -1;

/// A column that is written, and the cell it comes from.
struct CampoDetalle {
    QStringView columna = {};
    int celda = kClaveDelRegistro;
};

/// How a typed code is looked up.
struct RevisionDef {
    QStringView tabla = {};
    QStringView columna_clave = {};
    QStringView columna_nombre = {};
    QStringView mensaje = {};  ///< of an unknown code
    int celda_nombre = 0;
};

enum class GuardarDetalle : std::uint8_t {
    Reemplazar,  ///< all rows of the record are deleted and the grid's inserted
    EnSitio,     ///< each row by its mark: N inserted, M changed, B deleted
};

/// A detail grid: the rows of another table that belong to the record.
struct DetalleDef {
    QStringView control = {};
    QStringView titulo = {};
    QStringView tabla = {};
    QStringView consulta = {};  ///< ends where the record's key follows
    std::span<const ColumnaDetalle> columnas = {};
    GuardarDetalle guardar = GuardarDetalle::EnSitio;
    int celda_clave = 0;                    ///< a row in which it is empty is not written
    QStringView lista = {};                 ///< query of the list: key, name
    const RevisionDef* revision = nullptr;  ///< of the cells of type Codigo
    std::span<const CampoDetalle> alta = {};
    std::span<const CampoDetalle> cambio = {};  ///< of a row marked M; without any it is ignored
    QStringView columna_registro = {};          ///< finds the record's rows
    CampoDetalle columna_renglon = {};  ///< with it finds one row; its cell as it was loaded
    QStringView repetido = {};  ///< told when a row repeats a key; empty: the catalogue's message
    bool alta_solo_al_final = false;  ///< a row is added only from the last one
};

/// A catalogue: everything that its editor is. Declared through Revisado() (revisado.h), which lets
/// no mistake compile. See docs/editores.md.
struct EditorDef {
    QStringView nombre = {};   ///< the window's name
    QStringView comando = {};  ///< the menu command that opens it
    QStringView titulo = {};
    QStringView tabla = {};
    /// Reads the next key into its first column; empty when the database numbers the rows.
    QStringView consulta_clave = {};
    QStringView clave_sin_fila = {};  ///< the key when that query gives no row; empty: none is set
    std::span<const CampoDef> campos = {};  ///< the key first
    QStringView repetido = {};              ///< told when the record repeats a unique value
    std::span<const DetalleDef> detalles = {};
    QStringView pestanas = u"TabDetalles";  ///< the control that holds the grids
    FiltroDef filtro = {};
    /// Checks the grids before anything is written; what it says is told and nothing is saved.
    QString (*revisar)(std::span<const DetalleSesion> detalles) = nullptr;

    constexpr QStringView ColumnaClave() const { return campos.front().columna; }
};

}  // namespace quimo::catalog
