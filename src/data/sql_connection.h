#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include "base/decimal.h"
#include "base/dinero.h"
#include "base/result.h"

namespace quimo::data {

/// The T-SQL type of a result column or of a table's column.
enum class TipoSql {
    Bit,
    TinyInt,
    SmallInt,
    Int,
    BigInt,
    Money,
    SmallMoney,
    Numeric,
    Float,
    Real,
    DateTime,
    SmallDateTime,
    Char,
    VarChar,
    Text,
    NChar,
    NVarChar,
    NText,
    UniqueIdentifier,
    Binary,
    VarBinary,
    Image,
};

/// One column of a result set.
struct Columna {
    QString nombre;  ///< as the statement names it; empty for an unnamed expression
    TipoSql tipo = TipoSql::VarChar;
    int longitud = 0;   ///< characters or bytes of texts and binaries, -1 without limit
    int precision = 0;  ///< digits of NUMERIC
    int escala = 0;     ///< decimals of NUMERIC
};

/// A value is a QVariant: not valid for NULL, bool for BIT, int up to INT, qlonglong for BIGINT,
/// base::Dinero for MONEY, base::Decimal for NUMERIC, double for FLOAT and REAL, QDateTime (marked
/// UTC, to be read as a wall clock) for dates, QString for texts, QUuid, QByteArray.
using Fila = QVector<QVariant>;

/// A result set, whole and on the client's side.
struct Conjunto {
    QVector<Columna> columnas;
    QVector<Fila> filas;
};

/// One entry of the provider's error list, or a message (PRINT, a warning).
struct ErrorProveedor {
    QString sqlstate;
    int nativo = 0;
    QString origen;
    QString descripcion;
};

/// A failed operation: the number that the error mapping dispatches on and the provider's list.
struct FalloSql {
    /// Numbers that failures are told by.
    enum Numero : qint64 {
        kOtroAlAbrir = 0x80004005,
        kAccesoNegado = 0x80040E4D,
        kIntegridad = 0x80040E2F,
        kSentencia = 0x80040E14,
        kServidorAusente = 40002,
        kConexionPerdida = 40023,
        kConexionCerrada = 3709,
        kSinRegistro = 3021,
        kSinConjunto = 3704,     ///< the statement gives no result set
        kColumnaAusente = 3265,  ///< the record set has no such column
        kNoEscribible = 3251,    ///< the record set cannot be written or read again
        kFilaPerdida = 0x80040E38,
    };
    qint64 numero = kSentencia;
    QVector<ErrorProveedor> errores = {};

    /// A failure that no server gave, but the program itself.
    static FalloSql De(qint64 numero, const QString& origen, const QString& descripcion) {
        return {numero, {{QStringLiteral("HY000"), 0, origen, descripcion}}};
    }

    /// Native number of the first provider error, 0 without one.
    int Nativo() const { return errores.isEmpty() ? 0 : errores.first().nativo; }
    /// Description of the first provider error.
    QString Descripcion() const {
        return errores.isEmpty() ? QString() : errores.first().descripcion;
    }
};

/// What one statement of a text left: a result set, or the number of rows it wrote (-1: it writes
/// none).
struct ResultadoSql {
    std::optional<Conjunto> conjunto;
    qint64 afectadas = -1;
};

/// All that one text left, in order. When a statement fails, what stood before it was done and is
/// here, and `fallo` tells why the rest was not.
struct RespuestaSql {
    QVector<ResultadoSql> resultados;
    QVector<ErrorProveedor> mensajes;
    std::optional<FalloSql> fallo;
};

/// What a record set needs to write rows back to the table it reads.
struct DefinicionTabla {
    QString nombre;
    QVector<Columna> columnas;
    QStringList clave;  ///< columns of the primary key, in order; empty without one
    QString identidad;  ///< the column that the database numbers; empty without one
};

/// One connection to the central database, whatever engine is behind it. Statements are T-SQL.
/// Synchronous; used from one thread. Closed by its destructor, which rolls back what was begun.
class SqlConnection {
public:
    SqlConnection() = default;
    SqlConnection(const SqlConnection&) = delete;
    SqlConnection& operator=(const SqlConnection&) = delete;
    virtual ~SqlConnection() = default;

    /// Runs a text of one or more statements; each `?` takes the next of the parameters.
    virtual RespuestaSql Ejecutar(const QString& tsql,
                                  const QVector<QVariant>& parametros = {}) = 0;
    /// Runs statements in their order, each one a text of its own that changes rows, up to the
    /// first that fails. One result for each that was done: their number tells which one failed,
    /// and nothing behind it has happened. Inside a transaction an engine may send them together.
    virtual RespuestaSql EjecutarVarias(const QStringList& sentencias);

    virtual base::Result<void, FalloSql> Iniciar() = 0;
    /// Ends the transaction: from here on its changes survive a power cut.
    virtual base::Result<void, FalloSql> Confirmar() = 0;
    virtual base::Result<void, FalloSql> Revertir() = 0;
    virtual bool EnTransaccion() const = 0;
    /// Which transaction is open: a number that grows with each outermost BEGIN, 0 when none is.
    /// Whoever began one knows by it whether the open one is still that.
    virtual std::uint64_t TransaccionActual() const = 0;

    /// Definition of a table, a temporary one included. nativo::kSinTabla when there is none.
    virtual base::Result<DefinicionTabla, FalloSql> Describir(const QString& tabla) = 0;
    virtual bool Abierta() const = 0;
    virtual void Cerrar() = 0;
};

}  // namespace quimo::data
