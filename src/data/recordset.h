#pragma once

#include <memory>
#include <optional>

#include <QHash>
#include <QMap>
#include <QString>
#include <QVariant>

#include "data/sql_connection.h"

namespace quimo::data {

/// A static record set on the client's side: the rows of one query as they were when it was opened,
/// with a cursor. Rows of a query over one table with a primary key can be added, changed and
/// deleted; the change goes to the database at once and to this set, not to others.
/// The connection must outlive it. Failures come back as values and change nothing here.
class Recordset {
public:
    using Hecho = base::Result<void, FalloSql>;
    /// Identity of a row within this set, as long as it is not opened anew: its place, from 1.
    using Marcador = qsizetype;

    static base::Result<std::shared_ptr<Recordset>, FalloSql> Abrir(SqlConnection& conexion,
                                                                    const QString& consulta);
    /// A record set over rows that a procedure returned: it can be walked, not written.
    static std::shared_ptr<Recordset> DeConjunto(SqlConnection& conexion, Conjunto conjunto);

    const QString& Consulta() const { return consulta_; }
    const QVector<Columna>& Columnas() const { return conjunto_.columnas; }
    const QVector<Fila>& Filas() const { return conjunto_.filas; }
    qsizetype RecordCount() const { return conjunto_.filas.size(); }
    bool Vacio() const { return conjunto_.filas.isEmpty(); }
    bool Bof() const { return posicion_ < 0; }
    bool Eof() const { return posicion_ >= RecordCount(); }
    bool HayActual() const { return !Bof() && !Eof(); }

    /// Cursor moves. On an empty set, and past an end that was already passed:
    /// FalloSql::kSinRegistro.
    Hecho MoveFirst();
    Hecho MoveLast();
    Hecho MoveNext();
    Hecho MovePrevious();

    /// The current row's mark, kSinRegistro without one.
    base::Result<Marcador, FalloSql> Bookmark() const;
    /// Goes to a marked row; kSinRegistro when the set no longer reaches so far.
    Hecho IrA(Marcador marcador);
    /// Runs the query again and goes to its first row. A pending row is given up.
    Hecho Requery();

    /// A field of the current (or pending) row, NULL as an invalid value. A column that the set
    /// does not have: kColumnaAusente. No current row: kSinRegistro.
    base::Result<QVariant, FalloSql> Campo(const QString& nombre) const;
    base::Result<QVariant, FalloSql> Campo(qsizetype indice) const;
    /// Place of a column by name, without regard to case; -1 when there is none.
    qsizetype IndiceDe(const QString& nombre) const;

    /// Begins a new row, all NULL, which becomes the one that Campo and Asignar speak of. It
    /// reaches the database with Update.
    Hecho AddNew();
    bool EnAlta() const { return alta_.has_value(); }
    Hecho Asignar(const QString& nombre, const QVariant& valor);
    /// Writes the pending row or the assigned fields of the current one. After an added row the
    /// cursor stands on it, with the key that the database gave. A row that somebody else deleted:
    /// number 0x80040E38.
    Hecho Update();
    /// Forgets the pending row or the assigned fields; the row that was current before is again.
    void CancelUpdate();
    /// Deletes the current row; the cursor stays where it was, on no row.
    Hecho Delete();

private:
    explicit Recordset(SqlConnection& conexion) : conexion_(conexion) {}

    Hecho Cargar();
    base::Result<const DefinicionTabla*, FalloSql> TablaEscribible();
    base::Result<QString, FalloSql> CondicionDeClave(const Fila& fila, QVector<QVariant>& valores);
    Hecho InsertarAlta();
    Hecho Releer(const QString& condicion, const QVector<QVariant>& valores, qsizetype lugar);
    static FalloSql SinRegistro();

    SqlConnection& conexion_;
    QString consulta_;
    Conjunto conjunto_;
    QHash<QString, qsizetype> indices_;
    qsizetype posicion_ = -1;
    bool borrada_ = false;  // the row at posicion_ was deleted and is only waiting for a move
    std::optional<Fila> alta_;
    QMap<qsizetype, QVariant> cambios_;  // in the order of the columns
    std::optional<DefinicionTabla> tabla_;
};

using RecordsetPtr = std::shared_ptr<Recordset>;

/// The one table that a query reads, or an empty text when it reads several or none.
QString TablaDeConsulta(const QString& consulta);

}  // namespace quimo::data
