#pragma once

#include <QVariant>

#include "data/sql_connection.h"
#include "tsql/traduccion/traductor.h"
#include "tsql/valores/error_sql.h"
#include "tsql/valores/funciones.h"

namespace quimo::data::embebido {

/// A value with the T-SQL type that it is of.
struct ValorConTipo {
    tsql::Tipo tipo;
    tsql::Valor valor;
};

Columna AColumna(const tsql::ColumnaSalida& columna);
TipoSql ATipoSql(tsql::Clase clase);

/// What the engine handed over, as the interface tells values. Fails when a number has left the
/// range of its type.
tsql::Resultado<QVariant> AVariante(const tsql::Valor& valor, const tsql::Tipo& tipo);

/// A parameter of a call; nothing for a kind of value that the interface does not name.
std::optional<ValorConTipo> DeVariante(const QVariant& variante);

/// Who failures of the engine are told to come from.
constexpr QStringView kOrigen = u"QUIMO embebido";

ErrorProveedor AProveedor(const tsql::ErrorSql& error);
/// The failure of an operation, with its first error.
FalloSql AFallo(const tsql::ErrorSql& error);

}  // namespace quimo::data::embebido
