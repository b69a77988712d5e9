#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>

#include <QString>
#include <QStringList>

#include "data/datos_conexion.h"
#include "data/recordset.h"
#include "data/sql_connection.h"
#include "foundation/cls_bitacora.h"
#include "foundation/dialogos.h"

namespace quimo::foundation {

/// One INSERT or UPDATE of a group.
struct Cambio {
    enum class Clase { Insertar, Modificar };
    Clase clase = Clase::Insertar;
    QString tabla;
    QString campos;   ///< the columns, or what is assigned
    QString valores;  ///< the values, or the condition
};

/// The one data-access object: T-SQL in, record sets out, whatever engine is behind. Owns the
/// connection; use it from the user-interface thread only. Every change it makes is written to the
/// operation log: at once outside a transaction; inside one when that is confirmed, so that the log
/// never tells what was undone. Failures are written at once in either case. Operations return
/// false on failure; what the user is told is said at each.
class ClsAdo {
public:
    /// Cursor type, lock type and option that nearly every query is opened with.
    static constexpr int kCursorEstatico = 3;
    static constexpr int kBloqueoOptimista = 3;
    static constexpr int kTextoComando = 1;
    /// Number of a failure of this class itself, whose text is shown as it stands.
    static constexpr qint64 kErrorPropio = 1;

    /// The ports and the log must outlive the object.
    ClsAdo(data::Conector conector, Dialogos& dialogos, ClsBitacora& bitacora)
        : CClsBitacora(bitacora), conector_(std::move(conector)), dialogos_(dialogos) {}
    ClsAdo(const ClsAdo&) = delete;
    ClsAdo& operator=(const ClsAdo&) = delete;

    // The product's fixed members, set by screens before an operation.
    // NOLINTBEGIN(readability-identifier-naming)
    ClsBitacora& CClsBitacora;      ///< receives every log entry written by this class
    QString CpsMen_LLave_Repetida;  ///< shown when an insert or update repeats a unique key
    QString CpsTitulo;              ///< title of the message boxes this class shows
    QString CsError;                ///< last error detail kept for the caller
    bool CbNoMensaje = false;       ///< some errors go to CsError instead of the screen

    /// Opens the connection. A general failure that names nothing else is retried with the
    /// program's own login, which is written back into PsUID and PsPasswd. Anything else is told by
    /// ManejaError and gives false.
    bool Conectar(QString& PsNom_servidor, QString& PsBase_de_datos, QString& PsUID,
                  QString& PsPasswd);
    /// Closes the connection; errors are ignored.
    void Desconectar();

    /// Opens a query into a new record set. False when the database refuses it; nothing is shown.
    bool Consultar(data::RecordsetPtr& PrdrVariable, const QString& PsConsulta,
                   int PvTipo = kCursorEstatico, int PsLock = kBloqueoOptimista,
                   int PvOpciones = kTextoComando);

    /// "INSERT INTO PsTabla (PsCampos) VALUES (PsValores)". Texts in PsValores must have passed
    /// DuplicaApostrofes. False when the database refuses it; nothing is shown.
    bool Insertar(const QString& PsTabla, const QString& PsCampos, const QString& PsValores);

    /// "UPDATE PsTabla SET PsActualizacion WHERE PsCondicion"; with PbReposicionar the record set
    /// is read again and returns to the row it was on. False when refused; nothing is shown.
    bool Modificar(const data::RecordsetPtr& PrdrConsulta, const QString& PsTabla,
                   const QString& PsActualizacion, const QString& PsCondicion,
                   bool PbReposicionar = false);

    /// Makes changes in their order, each as Insertar or Modificar would and with a log entry of
    /// its own, but many in one send where the engine can. Stops at the first that is refused,
    /// without a message. How many were made: when not all, the failure pending is that of the
    /// next.
    qsizetype CambiarVarios(const QVector<Cambio>& cambios);

    /// "DELETE FROM PsTabla WHERE PsCondicion"; an empty condition empties the table. With
    /// PsMensaje it asks first. A refusal is shown by ManejaError.
    bool Borrar(const data::RecordsetPtr& PrdrConsulta, const QString& PsTabla,
                const std::optional<QString>& PsMensaje, const QString& PsCondicion,
                bool PbPosicionar = false);

    /// Moves a record set "PRIMERO", "ANTERIOR", "SIGUIENTE" or "ULTIMO" and keeps PlnPosicion.
    bool Desplazar(const data::RecordsetPtr& PrdrVariable, const QString& PsDireccion,
                   qint32& PlnPosicion);

    /// Places a record set after an edit. A pending new row is written first, and stays pending
    /// when it is refused; then the last row is current. With PbBorrar the current row is deleted
    /// and the one before it is current. A failure is told by ManejaError.
    bool Reposicionar(const data::RecordsetPtr& PAdo, bool PbNuevo, bool PbBorrar);

    /// Runs "EXEC ..." after letting pending events run. 1 when there was nothing to do or nothing
    /// is wanted back, -1 after a failure (which was shown), else the first column of the first
    /// row; with PbDevolver the rows are handed back in PAdoRecordset.
    QVariant dbExecStored(const QString& PwQuery, bool Par = false,
                          data::RecordsetPtr* PAdoRecordset = nullptr, bool PbDevolver = false);

    /// Transactions. Every error is ignored, a failed commit included.
    void Inicia_Transaccion();
    void Termina_Transaccion();
    void Cancela_Transaccion();

    /// Tells the pending failure of the last operation and writes it to the log. True only when
    /// the server or the data source was not found.
    bool ManejaError();
    /// Tells a failure that a screen met on a record set, as ManejaError does. Always false.
    bool Reportar(data::FalloSql fallo);
    // NOLINTEND(readability-identifier-naming)

    /// The failure of the last operation that failed, until ManejaError took it.
    const std::optional<data::FalloSql>& Pendiente() const { return pendiente_; }

    bool Conectado() const { return conexion_ != nullptr && conexion_->Abierta(); }
    /// The open connection, so that screens can run their own commands on it. Check Conectado().
    data::SqlConnection& Conexion() {
        QUIMO_CHECK(conexion_ != nullptr);
        return *conexion_;
    }
    Dialogos& Dialogo() { return dialogos_; }
    const data::DatosConexion& Datos() const { return datos_; }

private:
    bool Fallar(data::FalloSql fallo);
    bool EjecutarCambio(const QString& sentencia);
    bool Cambiar(const Cambio& cambio);
    void DespacharNativo(const data::FalloSql& fallo, bool& sin_servidor);
    /// Log lines that wait for the transaction that is open, or are written at once without one.
    void AlRegistro(const std::function<void(QByteArray& lineas)>& agregar);
    void Registrar(std::initializer_list<QStringView> partes);
    void RegistrarCambios(std::span<const Cambio> cambios);
    void RegistrarFallo(const QVector<QVariant>& partes) { CClsBitacora.Escribir(partes); }
    void ConflictoDeReferencia(const QString& descripcion);

    data::Conector conector_;
    Dialogos& dialogos_;
    std::unique_ptr<data::SqlConnection> conexion_;
    data::DatosConexion datos_;
    std::optional<data::FalloSql> pendiente_;
    QByteArray por_confirmar_;  // log lines of the transaction that is open
};

/// One value as text: "SELECT PsExpresion FROM PsTabla WHERE PsCondicion", both parts left out when
/// empty; NULL is "". An answer without rows is FalloSql::kSinRegistro.
base::Result<QString, data::FalloSql> ValorCampo(ClsAdo& ado, const QString& tabla,
                                                 const QString& expresion,
                                                 const QString& condicion);

/// An entry of a list: what is shown and the key behind it.
struct EntradaCombo {
    QString texto;
    qint32 dato = 0;
};

/// The rows of a query as list entries: column 0 the text, column 1 the key.
base::Result<QVector<EntradaCombo>, data::FalloSql> LlenaCombo(ClsAdo& ado,
                                                               const QString& consulta);

}  // namespace quimo::foundation
