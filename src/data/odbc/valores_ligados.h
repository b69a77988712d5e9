#pragma once

#include <list>
#include <optional>

#include <QVariant>
#include <QVector>

#include "data/odbc/odbc_handle.h"
#include "data/sql_connection.h"

namespace quimo::data::odbc {

/// The parameters of one statement, in the memory that the driver reads while it runs: keep it
/// until then. Amounts and decimals go as their digits, never through a floating number.
class ValoresLigados {
public:
    /// Binds each value to the `?` of its place. On failure the statement's diagnostics tell why,
    /// unless the value's kind is none that the database knows (257).
    base::Result<void, FalloSql> Ligar(SQLHSTMT sentencia, const QVector<QVariant>& valores,
                                       const QString& origen);

private:
    struct Ligado {
        QByteArray bytes;
        SQLLEN indicador = 0;
    };
    std::list<Ligado> ligados_;  // addresses stay
};

/// The text with its `?` replaced by literals. Only for texts that make a temporary table: under
/// parameters the server runs a text in a scope of its own, and the table would end with it.
/// Nothing when there are not as many marks as values, or a value has no literal.
std::optional<QString> ConLiterales(const QString& tsql, const QVector<QVariant>& valores);

/// Whether a text makes a temporary table.
bool CreaTemporal(const QString& tsql);

}  // namespace quimo::data::odbc
