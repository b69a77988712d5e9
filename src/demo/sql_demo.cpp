#include "demo/sql_demo.h"

#include "data/consultar.h"

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Error;
using base::Result;
using data::Fila;
using data::SqlConnection;

Error ErrorDe(const data::FalloSql& fallo) {
    const bool restriccion = fallo.numero == data::FalloSql::kIntegridad;
    return {restriccion ? Error::Codigo::Restriccion : Error::Codigo::Archivo,
            fallo.Descripcion().toStdString(), "Error nativo " + std::to_string(fallo.Nativo())};
}

Error ErrorDe(const dayclose::FalloArchivo& fallo) {
    using Numero = dayclose::FalloArchivo;
    const Error::Codigo codigo = fallo.numero == Numero::kDiscoLleno ? Error::Codigo::DiscoLleno
                                 : fallo.numero == Numero::kPermisoDenegado
                                     ? Error::Codigo::Bloqueado
                                     : Error::Codigo::Archivo;
    return {codigo, fallo.descripcion.toStdString(), "Error " + std::to_string(fallo.numero)};
}

Error ErrorDe(const dayclose::Interrupcion& interrupcion) {
    return {Error::Codigo::Datos, interrupcion.descripcion.toStdString(),
            "Error " + std::to_string(interrupcion.numero)};
}

Result<void> Ejecutar(SqlConnection& conexion, const QString& tsql,
                      const QVector<QVariant>& parametros) {
    return Traducido(data::Correr(conexion, tsql, parametros));
}

Result<QVector<Fila>> Consultar(SqlConnection& conexion, const QString& tsql,
                                const QVector<QVariant>& parametros) {
    return Traducido(data::Consultar(conexion, tsql, parametros));
}

Result<void> Insertar(SqlConnection& conexion, const QString& tabla, const QString& columnas,
                      const QVector<Fila>& filas) {
    const QStringList marcas(columnas.count(u',') + 1, u"?"_s);
    const QString tsql =
        u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(tabla, columnas, marcas.join(u","_s));
    for (const Fila& fila : filas)
        QUIMO_TRY_VOID(Ejecutar(conexion, tsql, fila));
    return {};
}

Result<void> InsertarConClave(SqlConnection& conexion, const QString& tabla,
                              const QString& columnas, const QVector<Fila>& filas) {
    QUIMO_TRY_VOID(Ejecutar(conexion, u"SET IDENTITY_INSERT %1 ON"_s.arg(tabla)));
    QUIMO_TRY_VOID(Insertar(conexion, tabla, columnas, filas));
    return Ejecutar(conexion, u"SET IDENTITY_INSERT %1 OFF"_s.arg(tabla));
}

}  // namespace quimo::demo
