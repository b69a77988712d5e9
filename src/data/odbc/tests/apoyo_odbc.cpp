#include "apoyo_odbc.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimeZone>
#include <QUuid>

#include "data/embebido/conexion_embebida.h"

namespace quimo::data::odbc {

namespace {

class RelojDeSesion final : public Reloj {
public:
    QDateTime Ahora() const override { return {QDate(2026, 11, 14), QTime(21, 36, 8), Qt::UTC}; }
};

/// What the server's own catalogue would say of a table, out of the embedded engine's.
RespuestaSql Describir(SqlConnection& conexion, const QString& tabla) {
    static const QStringList kTipos = {QStringLiteral("bit"),
                                       QStringLiteral("tinyint"),
                                       QStringLiteral("smallint"),
                                       QStringLiteral("int"),
                                       QStringLiteral("bigint"),
                                       QStringLiteral("money"),
                                       QStringLiteral("smallmoney"),
                                       QStringLiteral("numeric"),
                                       QStringLiteral("float"),
                                       QStringLiteral("real"),
                                       QStringLiteral("datetime"),
                                       QStringLiteral("smalldatetime"),
                                       QStringLiteral("char"),
                                       QStringLiteral("varchar"),
                                       QStringLiteral("text"),
                                       QStringLiteral("nchar"),
                                       QStringLiteral("nvarchar"),
                                       QStringLiteral("ntext"),
                                       QStringLiteral("uniqueidentifier"),
                                       QStringLiteral("binary"),
                                       QStringLiteral("varbinary"),
                                       QStringLiteral("image")};
    Conjunto conjunto;
    for (const char* nombre : {"tabla", "columna", "tipo"}) {
        conjunto.columnas.append({QString::fromLatin1(nombre), TipoSql::NVarChar, 128});
    }
    for (const char* nombre : {"bytes", "digitos", "decimales", "identidad", "lugar"}) {
        conjunto.columnas.append({QString::fromLatin1(nombre), TipoSql::Int});
    }
    const auto definicion = conexion.Describir(tabla);
    if (definicion) {
        for (const Columna& columna : definicion->columnas) {
            const bool ancha = columna.tipo == TipoSql::NChar || columna.tipo == TipoSql::NVarChar;
            const int bytes = ancha ? columna.longitud * 2 : columna.longitud;
            conjunto.filas.append(
                {definicion->nombre, columna.nombre, kTipos[static_cast<int>(columna.tipo)],
                 columna.longitud < 0 ? -1 : bytes, columna.precision, columna.escala,
                 columna.nombre == definicion->identidad ? 1 : 0,
                 static_cast<int>(definicion->clave.indexOf(columna.nombre)) + 1});
        }
    }
    RespuestaSql respuesta;
    respuesta.resultados.append({conjunto, -1});
    return respuesta;
}

}  // namespace

void PrepararControladores() {
    static const QTemporaryDir kCarpeta;
    static const bool kHecho = [] {
        QFile archivo(kCarpeta.filePath(QStringLiteral("odbcinst.ini")));
        QUIMO_CHECK(archivo.open(QIODevice::WriteOnly));
        archivo.write("[FreeTDS]\nDriver=" QUIMO_CONTROLADORES
                      "/libtdsodbc.so\n[Con otro nombre]\nDriver=" QUIMO_CONTROLADORES
                      "/libtdsodbc.so\n[PostgreSQL]\nDriver=" QUIMO_CONTROLADORES
                      "/psqlodbcw.so\n[SQLite3]\nDriver=" QUIMO_CONTROLADORES
                      "/libsqlite3odbc.so\n[Sin biblioteca]\nDriver=" QUIMO_CONTROLADORES
                      "/no_existe.so\n");
        qputenv("ODBCSYSINI", kCarpeta.path().toUtf8());
        qputenv("ODBCINSTINI", "odbcinst.ini");
        qputenv("ODBCINI", "/dev/null");
        qputenv("FREETDSCONF", "/dev/null");
        qputenv("FREETDS", "/dev/null");
        for (const char* ajuste :
             {"QUIMO_ODBC_DRIVER", "QUIMO_ODBC_CIFRADO", "QUIMO_ODBC_OPCIONES"})
            qunsetenv(ajuste);
        return true;
    }();
    QUIMO_CHECK(kHecho);
}

OpcionesOdbc Con(const QString& controlador, const QString& opciones) {
    OpcionesOdbc con;
    con.controlador = controlador;
    con.opciones = opciones;
    con.plazo_s = 2;
    return con;
}

ServidorTds::NuevaSesion DeEmbebida(const QString& archivo) {
    return [archivo]() -> ServidorTds::Contestar {
        static const RelojDeSesion kReloj;
        auto abierta = AbrirEmbebida(archivo, kReloj, true);
        QUIMO_CHECK(abierta.has_value());
        const std::shared_ptr<SqlConnection> conexion = std::move(abierta).value();
        return [conexion](const QString& texto, const QVector<QVariant>& parametros) {
            static const QRegularExpression kObjeto(QStringLiteral(
                "sys\\.index_columns.*OBJECT_ID\\(N'(?:tempdb\\.\\.)?\\[?([^']*?)\\]?'\\)"));
            const auto descripcion = kObjeto.match(texto);
            if (descripcion.hasMatch()) return Describir(*conexion, descripcion.captured(1));
            if (texto == FrasesDeSesion().al_abrir) return RespuestaSql();
            return conexion->Ejecutar(texto, parametros);
        };
    };
}

ServidorTds::NuevaSesion Siempre(const RespuestaSql& respuesta) {
    return [respuesta]() -> ServidorTds::Contestar {
        return [respuesta](const QString& texto, const QVector<QVariant>&) {
            return texto == FrasesDeSesion().al_abrir ? RespuestaSql() : respuesta;
        };
    };
}

QString Escrito(const QVariant& valor) {
    const int tipo = valor.typeId();
    if (!valor.isValid()) return QStringLiteral("NULL");
    const QString clase = QString::fromLatin1(valor.typeName()) + u':';
    if (tipo == qMetaTypeId<base::Dinero>()) {
        return clase + QString::fromStdString(valor.value<base::Dinero>().ATexto());
    }
    if (tipo == qMetaTypeId<base::Decimal>()) {
        return clase + QString::fromStdString(valor.value<base::Decimal>().ATexto());
    }
    if (tipo == QMetaType::Double) return clase + QString::number(valor.toDouble(), 'g', 15);
    if (tipo == QMetaType::QDateTime) {
        return clase + valor.toDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
    }
    if (tipo == QMetaType::QByteArray) {
        return clase + QString::fromLatin1(valor.toByteArray().toHex());
    }
    if (tipo == QMetaType::QUuid) return clase + valor.toUuid().toString();
    return clase + valor.toString();
}

QString Escrito(const RespuestaSql& respuesta) {
    QStringList lineas;
    for (const ErrorProveedor& mensaje : respuesta.mensajes)
        lineas << QStringLiteral("mensaje ") + mensaje.descripcion;
    for (const ResultadoSql& resultado : respuesta.resultados) {
        if (!resultado.conjunto) {
            lineas << QStringLiteral("filas %1").arg(resultado.afectadas);
            continue;
        }
        QStringList nombres;
        for (const Columna& columna : resultado.conjunto->columnas)
            nombres << columna.nombre;
        lineas << nombres.join(u',');
        for (const Fila& fila : resultado.conjunto->filas) {
            QStringList celdas;
            for (const QVariant& valor : fila)
                celdas << Escrito(valor);
            lineas << celdas.join(u'|');
        }
    }
    if (respuesta.fallo) {
        lineas << QStringLiteral("fallo %1").arg(respuesta.fallo->numero);
        for (const ErrorProveedor& error : respuesta.fallo->errores)
            lineas << QStringLiteral("  %1 %2").arg(error.nativo).arg(error.descripcion);
    }
    return lineas.join(u'\n');
}

std::unique_ptr<SqlConnection> AbrirEn(const ServidorTds& servidor) {
    auto abierta = AbrirOdbc({servidor.Palabra(), QStringLiteral("central"),
                              QStringLiteral("quien"), QStringLiteral("clave")},
                             Con(QStringLiteral("FreeTDS")));
    if (abierta) return std::move(abierta).value();
    RespuestaSql respuesta;
    respuesta.fallo = abierta.error();
    ADD_FAILURE() << Escrito(respuesta).toStdString();
    return nullptr;
}

}  // namespace quimo::data::odbc
