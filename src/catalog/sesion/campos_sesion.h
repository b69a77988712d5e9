#pragma once

#include <optional>

#include <QStringList>
#include <QVariant>
#include <QVector>

#include "catalog/declaracion/editor_def.h"
#include "data/recordset.h"
#include "foundation/cls_ado.h"

namespace quimo::catalog {

/// Why the fields cannot be saved as they are, and the control where it is to be mended.
struct ObjecionDeCampo {
    QString texto;
    QString control;
};

/// What the fields of an open editor hold: their texts, and the lists and chosen entries of the
/// combo boxes. It asks and tells nothing; fields are counted from 0, the key first. The
/// declaration must outlive it.
class CamposSesion {
public:
    explicit CamposSesion(const EditorDef& def);

    qsizetype Cantidad() const { return std::ssize(def_->campos); }
    const CampoDef& Def(qsizetype campo) const {
        return def_->campos[static_cast<std::size_t>(campo)];
    }
    /// The field of a control, shown or hidden; -1 when there is none.
    qsizetype IndiceDe(QStringView control) const;

    /// Reads the lists of the combo boxes. False after the failure was told.
    bool CargarListas(foundation::ClsAdo& ado);
    /// The entries of a combo box, and the one that is chosen (-1 without).
    QStringList Entradas(qsizetype campo) const;
    int Elegido(qsizetype campo) const { return elegidos_[campo]; }

    const QString& Valor(qsizetype campo) const { return valores_[campo]; }
    /// All texts, to tell later whether something was typed.
    const QStringList& Valores() const { return valores_; }
    /// What a field shows for a stored value: of a combo box the entry's text.
    QString Visible(qsizetype campo, const QVariant& guardado) const;
    /// Letters that the field takes in this table; 0 without a limit.
    int LargoMaximo(qsizetype campo, const data::RecordsetPtr& conjunto) const;

    /// The fields as a stored row has them; without one they are empty.
    void Mostrar(const data::RecordsetPtr& conjunto);
    /// The fields of a new row.
    void PonerIniciales();
    void Escribir(qsizetype campo, const QString& texto);
    void Elegir(qsizetype campo, int entrada);
    void PonerClave(const QString& clave) { valores_[0] = clave; }
    /// The box is left: a masked one shows its text whole again, or is emptied for what it objects
    /// to.
    std::optional<ObjecionDeCampo> Dejar(qsizetype campo);

    /// What is missing, or what its column does not take; the first in the order of declaration.
    std::optional<ObjecionDeCampo> Objecion(const data::Recordset& conjunto) const;
    /// "columna=valor,..." of all fields but the key, with literals as the columns want them.
    QString Asignaciones(const data::Recordset& conjunto) const;
    /// Sets the fields of the record set's current row. They must have passed Objecion.
    base::Result<void, data::FalloSql> Asignar(data::Recordset& conjunto) const;

private:
    void MostrarCampo(qsizetype campo, const QVariant& guardado);
    int EntradaDe(qsizetype campo, const QString& valor) const;
    void ElegirPorValor(qsizetype campo) { elegidos_[campo] = EntradaDe(campo, valores_[campo]); }
    bool EsNulo(qsizetype campo) const;
    QString TextoParaGuardar(qsizetype campo) const;
    QString Falta(qsizetype campo) const;

    const EditorDef* def_;
    QStringList valores_;
    QVector<int> elegidos_;
    QVector<QVector<foundation::EntradaCombo>> listas_;
};

}  // namespace quimo::catalog
