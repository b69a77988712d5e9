#pragma once

#include <memory>

#include "data/datos_conexion.h"
#include "data/odbc/controlador.h"

namespace quimo::data::odbc {

/// What is said to the server about the session itself.
struct FrasesDeSesion {
    /// After opening. The language decides how errors are worded, and sets the order of dates: so
    /// it comes first.
    QString al_abrir = QStringLiteral("SET LANGUAGE us_english SET DATEFORMAT dmy SET NOCOUNT OFF");
    /// Asks how many transactions are open; empty where only Iniciar and its like begin them.
    QString cuenta_transacciones = QStringLiteral("SELECT @@TRANCOUNT");
};

/// Opens a connection to SQL Server with the first of the known drivers that is installed. It
/// mends itself: after a loss (40023) the next text runs on a new connection, unless a transaction
/// was open - then everything fails until somebody ends it, so that no half of one is written.
base::Result<std::unique_ptr<SqlConnection>, FalloSql> AbrirOdbc(
    const DatosConexion& datos, const OpcionesOdbc& opciones = OpcionesOdbc::DelEntorno(),
    const FrasesDeSesion& frases = {});

}  // namespace quimo::data::odbc
