#pragma once

#include "data/odbc/controlador.h"
#include "data/odbc/odbc_handle.h"
#include "data/sql_connection.h"

namespace quimo::data::odbc {

/// One open line to a server: runs texts and brings back all that they leave. Does not mend itself.
class Enlace {
public:
    /// Tries the drivers in their order; only one that is not installed lets the next one try.
    static base::Result<Enlace, FalloSql> Abrir(const DatosConexion& datos,
                                                const OpcionesOdbc& opciones);

    /// Runs a text. When the connection is lost on the way the failure has number 40023.
    RespuestaSql Correr(const QString& tsql, const QVector<QVariant>& parametros = {});

private:
    Enlace(EntornoOdbc entorno, EnlaceOdbc enlace, QString origen)
        : entorno_(std::move(entorno)), enlace_(std::move(enlace)), origen_(std::move(origen)) {}

    SQLRETURN Lanzar(SQLHSTMT sentencia, const QString& texto);
    void Recoger(SQLHSTMT sentencia, SQLRETURN estado, RespuestaSql& respuesta);
    void Anotar(SQLHSTMT sentencia, SQLRETURN estado, RespuestaSql& respuesta);
    void Fallar(QVector<ErrorProveedor> registros, RespuestaSql& respuesta);
    void LeerConjunto(SQLHSTMT sentencia, RespuestaSql& respuesta);
    bool EstaMuerto() const;

    EntornoOdbc entorno_;  // outlives the connection
    EnlaceOdbc enlace_;
    QString origen_;
};

}  // namespace quimo::data::odbc
