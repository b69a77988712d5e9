#include "data/esquema.h"

#include <QFile>

#include "data/consultar.h"
#include "data/transaccion.h"
#include "tsql/lectura/lotes.h"

using namespace Qt::StringLiterals;

namespace quimo::data {

namespace {

FalloSql Fallo(const QString& descripcion) {
    return FalloSql::De(FalloSql::kSentencia, u"QUIMO"_s, descripcion);
}

base::Result<void, FalloSql> ExigirVacia(SqlConnection& conexion) {
    QUIMO_TRY(const Fila cuantas,
              ConsultarFila(conexion, u"SELECT COUNT(*) AS n FROM INFORMATION_SCHEMA.TABLES"_s));
    if (cuantas.value(0).toInt() == 0) return {};
    return Fallo(u"la base de datos ya contiene tablas."_s);
}

base::Result<void, FalloSql> EjecutarPorLineas(SqlConnection& conexion, const QString& texto) {
    int numero = 0;
    for (const QString& linea : texto.split(u'\n')) {
        ++numero;
        const QString limpia = linea.trimmed();
        if (limpia.isEmpty() || limpia.startsWith(u"--"_s)) continue;
        auto hecho = Correr(conexion, limpia);
        if (hecho) continue;
        FalloSql fallo = std::move(hecho).error();
        if (!fallo.errores.isEmpty()) {
            fallo.errores.first().descripcion +=
                u" (línea "_s + QString::number(numero) + u": "_s + limpia.left(120) + u")"_s;
        }
        return fallo;
    }
    return {};
}

}  // namespace

QStringList PartirLotes(const QString& texto) {
    QStringList lotes;
    for (const std::string& lote : tsql::PartirLotes(texto.toStdString())) {
        lotes << QString::fromStdString(lote);
    }
    return lotes;
}

base::Result<void, FalloSql> CrearBase(SqlConnection& conexion, const QString& datos) {
    QUIMO_TRY_VOID(ExigirVacia(conexion));
    QUIMO_TRY(Transaccion transaccion, Transaccion::Iniciar(conexion));
    for (const QString& ruta : {u":/db/schema.sql"_s, u":/db/procedures.sql"_s}) {
        QFile archivo(ruta);
        if (!archivo.open(QIODevice::ReadOnly)) {
            return Fallo(u"No se puede leer el texto "_s + ruta + u" del programa."_s);
        }
        for (const QString& lote : PartirLotes(QString::fromUtf8(archivo.readAll()))) {
            QUIMO_TRY_VOID(Correr(conexion, lote));
        }
    }
    QUIMO_TRY_VOID(EjecutarPorLineas(conexion, datos));
    return transaccion.Confirmar();
}

}  // namespace quimo::data
