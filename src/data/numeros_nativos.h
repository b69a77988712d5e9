#pragma once

/// The numbers that the database server tells a failure by (FalloSql::Nativo), as far as the
/// program decides on them. Both engines give the same.
namespace quimo::data::nativo {

constexpr int kSinTabla = 208;           ///< the table or view is not there
constexpr int kYaExiste = 2714;          ///< an object of that name is there
constexpr int kSinTransaccion = 3902;    ///< there is no transaction to confirm
constexpr int kDeProcedimiento = 50000;  ///< a message that a procedure raised

constexpr int kNuloNoAdmitido = 515;
constexpr int kReferencia = 547;       ///< a reference or a check refuses the row
constexpr int kIndiceRepetido = 2601;  ///< a unique index has these values already
constexpr int kLlaveRepetida = 2627;   ///< a primary key or unique constraint has them

constexpr int kTextoCortado = 8152;
constexpr int kTextoCortadoConColumna = 2628;  ///< the same as later servers tell it

constexpr int kFechaIlegible = 241;
constexpr int kFechaFueraDeRango = 242;
constexpr int kFechaCortaIlegible = 295;  ///< of SMALLDATETIME
constexpr int kFechaCortaFueraDeRango = 296;

constexpr int kDesbordeDeEntero = 220;
constexpr int kDesbordeDeReal = 232;
constexpr int kDesbordeDeTextoCorto = 244;  ///< a text for a TINYINT or SMALLINT
constexpr int kDesbordeDeTexto = 248;       ///< a text for an INT
constexpr int kDesbordeAlConvertir = 8115;

}  // namespace quimo::data::nativo
