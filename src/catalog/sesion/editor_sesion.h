#pragma once

#include <optional>
#include <vector>

#include <QStringList>
#include <QVector>

#include "catalog/declaracion/editor_def.h"
#include "catalog/sesion/campos_sesion.h"
#include "catalog/sesion/detalle_sesion.h"
#include "foundation/cls_ado.h"

namespace quimo::catalog {

/// One open catalogue editor without its window: the twelve operations, the two states, the pending
/// new row and the detail grids. A window draws what is told here and forwards what the user does.
///
/// Fields are known by their place in the declaration. A field's value is the text of its box: of a
/// check box 1 or 0, of a combo box that of its hidden box. Everything that has to be said goes
/// through the data-access object's Dialogos.
class EditorSesion {
public:
    enum class Estado { Consulta, Alta, Modificacion };

    /// The declaration and the data-access object must outlive the session.
    EditorSesion(const EditorDef& def, foundation::ClsAdo& ado);

    /// Opens the table, fills the lists and shows the first row. False after telling why not.
    bool Abrir();

    // The operations, in their order. Those that return a flag tell what is wrong themselves.

    bool Guardar();                        ///< 1
    bool Borrar();                         ///< 2, asks first
    void Cancelar();                       ///< 3
    void Nuevo();                          ///< 5, new
    void Modificar();                      ///< 5, modify; nothing without a current row
    bool Mover(const QString& direccion);  ///< 6 to 9: "PRIMERO", "ANTERIOR", "SIGUIENTE", "ULTIMO"
    /// 10: with true the fields follow the current row, with false they keep what they have.
    void LigarCampos(bool ligar);

    // For search (4) and filter (12), which make another row the current one.

    const data::RecordsetPtr& Conjunto() const { return conjunto_; }
    /// Shows the row that is current in the record set.
    void MostrarActual();
    /// Makes the row with this key current; false when there is none.
    bool IrAClave(const QString& clave);

    // State.

    const EditorDef& Def() const { return *def_; }
    Estado EstadoActual() const { return estado_; }
    bool EnEdicion() const { return estado_ != Estado::Consulta; }
    /// The switch with which an editor lets nobody change rows. On by default.
    void PermitirCambios(bool permitir) { permite_cambios_ = permitir; }
    bool PermiteCambios() const { return permite_cambios_; }
    QString TextoRegistros() const {
        const qsizetype cuantos = conjunto_ == nullptr ? 0 : conjunto_->RecordCount();
        return QStringLiteral("Registros: ") + QString::number(cuantos);
    }
    /// The key hint of the state.
    QString TextoTeclas() const;
    /// Something was typed since the editing began.
    bool HayCambios() const;
    /// Whether the editor may be closed; asks about what is not saved.
    bool PuedeCerrar();
    /// The control that wants the focus, once.
    QString TomarFoco();

    // Fields.

    const CamposSesion& Campos() const { return campos_; }
    const QString& Clave() const { return campos_.Valor(0); }
    bool Bloqueado(qsizetype campo) const;
    /// What the user wrote into a box. Nothing happens while the field is locked.
    void Escribir(qsizetype campo, const QString& texto);
    /// The user chose an entry of a combo box. Nothing happens while the field is locked.
    void Elegir(qsizetype campo, int entrada);
    /// The user leaves a box. False when the focus is to stay in it, after telling why.
    bool Dejar(qsizetype campo);

    std::span<DetalleSesion> Detalles() { return detalles_; }
    std::span<const DetalleSesion> Detalles() const { return detalles_; }

private:
    void Servir();
    void Avisar(const QString& texto, foundation::Icono icono = foundation::Icono::Exclamacion);
    bool Objetar(const ObjecionDeCampo& objecion);
    void CargarDetalles();
    void Pasar(Estado estado);
    bool Releer();
    bool BuscarClave(const QString& clave);
    /// Reads the table again and finds the row; tells when it is not there any more.
    bool Reencontrar(const QString& clave);

    // editor_sesion_guardar.cpp
    bool GuardarAlta();
    bool SigueComoEstaba();

    const EditorDef* def_;
    foundation::ClsAdo& ado_;
    data::RecordsetPtr conjunto_;
    Estado estado_ = Estado::Consulta;
    bool ligados_ = false;
    bool permite_cambios_ = true;
    bool vieja_ = false;  // somebody else changed or deleted the row that is shown
    qint32 posicion_ = 0;
    CamposSesion campos_;
    QStringList al_empezar_;           // what the fields held when the editing began
    std::optional<data::Fila> vista_;  // the row as it was when its editing began
    std::vector<DetalleSesion> detalles_;
    QString foco_;
};

}  // namespace quimo::catalog
