#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include "data/datos_conexion.h"

namespace quimo::data::odbc {

/// A driver of odbcinst.ini. FreeTDS may stand there under any name and takes words of its own.
struct Controlador {
    QString nombre;
    bool es_freetds = false;
};

/// What an installation chooses about its connection; empty texts leave it to the driver.
struct OpcionesOdbc {
    QString controlador = {};  ///< tried before the known names
    QString cifrado = {};      ///< "si" or "no"
    bool confiar = false;      ///< takes the server's certificate without verifying it
    QString opciones = {};     ///< added to the connection text as it stands
    int plazo_s = 15;          ///< to reach the server and log in

    /// From QUIMO_ODBC_DRIVER, QUIMO_ODBC_CIFRADO, QUIMO_ODBC_CONFIAR, QUIMO_ODBC_OPCIONES and
    /// QUIMO_ODBC_PLAZO.
    static OpcionesOdbc DelEntorno();
};

/// The names of drivers in the order in which they are tried.
QStringList NombresDeControladores(const OpcionesOdbc& opciones);

/// Those of the names that are installed, in the order of the names.
QVector<Controlador> ElegirControladores(const QStringList& nombres,
                                         const QVector<Controlador>& instalados);

/// The text that opens a connection. A value with signs that mean something there stands in
/// braces, so that none can bring in words of its own. Fails with a Spanish text when the driver
/// has no way to write a value. Server words: `host`, `host\instance`, `host,port`.
base::Result<QString, FalloSql> TextoDeConexion(const Controlador& controlador,
                                                const DatosConexion& datos,
                                                const OpcionesOdbc& opciones);

}  // namespace quimo::data::odbc
