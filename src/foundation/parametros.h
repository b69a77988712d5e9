#pragma once

#include "foundation/cls_ado.h"

namespace quimo::foundation {

/// Keys of the parameter table.
namespace parametro {
inline constexpr char16_t kFechaTrabajo[] = u"FECHA_TRABAJO";
inline constexpr char16_t kDirectorioTerminal[] = u"DIRTERMBD";
inline constexpr char16_t kTerminal[] = u"TERMINAL";
inline constexpr char16_t kFolioProductos[] = u"FOLIOPRODUCTOSX";
inline constexpr char16_t kFolioPago[] = u"FOLIOPAGO";
inline constexpr char16_t kFolioComanda[] = u"FOLIOCOMANDA";
}  // namespace parametro

/// The settings that the server and the terminals share: rows of Parametros.
class Parametros {
public:
    /// The data-access object must outlive it.
    explicit Parametros(ClsAdo& ado) : ado_(ado) {}

    /// Valor_Cad of a key, NULL as an empty text. A missing key is FalloSql::kSinRegistro.
    base::Result<QString, data::FalloSql> Cadena(QStringView clave) const;
    /// Valor_Num of a key as text, NULL as an empty text. A missing key is FalloSql::kSinRegistro.
    base::Result<QString, data::FalloSql> Numero(QStringView clave) const;

private:
    base::Result<QString, data::FalloSql> Leer(const QString& columna, QStringView clave) const;

    ClsAdo& ado_;
};

/// True for the eight digits "ddmmyyyy" of a working date. The parts are not checked: the day close
/// may write a month 13.
bool EsFechaTrabajo(const QString& texto);

/// "14112026" as "14/11/2026".
QString FechaTrabajoVisible(const QString& fecha_trabajo);

}  // namespace quimo::foundation
