#include "data/odbc/catalogo_servidor.h"

#include <array>

#include "data/odbc/fallos_odbc.h"
#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::data::odbc {

namespace {

struct TipoDeServidor {
    QLatin1StringView nombre;
    TipoSql tipo;
};

constexpr std::array kTipos = std::to_array<TipoDeServidor>({
    {"bit"_L1, TipoSql::Bit},
    {"tinyint"_L1, TipoSql::TinyInt},
    {"smallint"_L1, TipoSql::SmallInt},
    {"int"_L1, TipoSql::Int},
    {"bigint"_L1, TipoSql::BigInt},
    {"money"_L1, TipoSql::Money},
    {"smallmoney"_L1, TipoSql::SmallMoney},
    {"numeric"_L1, TipoSql::Numeric},
    {"decimal"_L1, TipoSql::Numeric},
    {"float"_L1, TipoSql::Float},
    {"real"_L1, TipoSql::Real},
    {"datetime"_L1, TipoSql::DateTime},
    {"datetime2"_L1, TipoSql::DateTime},
    {"date"_L1, TipoSql::DateTime},
    {"smalldatetime"_L1, TipoSql::SmallDateTime},
    {"char"_L1, TipoSql::Char},
    {"varchar"_L1, TipoSql::VarChar},
    {"text"_L1, TipoSql::Text},
    {"nchar"_L1, TipoSql::NChar},
    {"nvarchar"_L1, TipoSql::NVarChar},
    {"ntext"_L1, TipoSql::NText},
    {"uniqueidentifier"_L1, TipoSql::UniqueIdentifier},
    {"binary"_L1, TipoSql::Binary},
    {"varbinary"_L1, TipoSql::VarBinary},
    {"image"_L1, TipoSql::Image},
});

TipoSql TipoPorNombre(const QString& nombre) {
    for (const TipoDeServidor& tipo : kTipos) {
        if (nombre == tipo.nombre) return tipo.tipo;
    }
    return TipoSql::VarChar;
}

/// Characters or bytes; the server counts bytes, and -1 for no limit.
int Longitud(TipoSql tipo, int bytes) {
    if (tipo < TipoSql::Char || tipo == TipoSql::UniqueIdentifier) return 0;
    if (bytes < 0 || tipo == TipoSql::Text || tipo == TipoSql::NText || tipo == TipoSql::Image) {
        return -1;
    }
    return tipo == TipoSql::NChar || tipo == TipoSql::NVarChar ? bytes / 2 : bytes;
}

}  // namespace

QString ConsultaDeTabla(const QString& tabla) {
    QString limpia = tabla;
    limpia.remove(u'[').remove(u']');
    const bool temporal = limpia.section(u'.', -1).startsWith(u'#');
    const QString base = temporal ? u"tempdb."_s : QString();
    const QString esquema = limpia.contains(u'.') ? limpia.section(u'.', -2, -2) : QString();
    const QString objeto = temporal ? u"tempdb..["_s + limpia.section(u'.', -1) + u']'
                           : esquema.isEmpty()
                               ? u'[' + limpia + u']'
                               : u'[' + esquema + u"].["_s + limpia.section(u'.', -1) + u']';
    // The name of a type is that of the server's own type, not of one derived from it.
    return u"SELECT o.name AS tabla,c.name AS columna,TYPE_NAME(c.system_type_id) AS tipo,"
           "CAST(c.max_length AS INT) AS bytes,CAST(c.precision AS INT) AS digitos,"
           "CAST(c.scale AS INT) AS decimales,CAST(c.is_identity AS INT) AS identidad,"
           "ISNULL((SELECT CAST(x.key_ordinal AS INT) FROM %1sys.index_columns x "
           "INNER JOIN %1sys.indexes i ON i.object_id=x.object_id AND i.index_id=x.index_id "
           "WHERE i.is_primary_key=1 AND x.object_id=c.object_id AND x.column_id=c.column_id),0) "
           "AS lugar FROM %1sys.columns c INNER JOIN %1sys.objects o ON o.object_id=c.object_id "
           "WHERE c.object_id=OBJECT_ID(N'%2') AND o.type='U' ORDER BY c.column_id"_s.arg(
               base, DuplicaApostrofes(objeto));
}

base::Result<DefinicionTabla, FalloSql> LeerDefinicion(const QString& tabla,
                                                       const RespuestaSql& respuesta) {
    enum Campo {
        kTabla,
        kColumna,
        kTipo,
        kBytes,
        kDigitos,
        kDecimales,
        kIdentidad,
        kLugar,
        kCampos
    };
    if (respuesta.fallo) return *respuesta.fallo;
    DefinicionTabla definicion;
    QMap<int, QString> clave;
    for (const ResultadoSql& resultado : respuesta.resultados) {
        if (!resultado.conjunto || resultado.conjunto->columnas.size() != kCampos) continue;
        for (const Fila& fila : resultado.conjunto->filas) {
            Columna columna;
            columna.nombre = fila[kColumna].toString();
            columna.tipo = TipoPorNombre(fila[kTipo].toString());
            columna.longitud = Longitud(columna.tipo, fila[kBytes].toInt());
            if (columna.tipo <= TipoSql::Numeric) {
                columna.precision = fila[kDigitos].toInt();
                columna.escala = fila[kDecimales].toInt();
            }
            if (fila[kIdentidad].toInt() != 0) definicion.identidad = columna.nombre;
            if (fila[kLugar].toInt() != 0) clave.insert(fila[kLugar].toInt(), columna.nombre);
            definicion.nombre = fila[kTabla].toString();
            definicion.columnas.append(columna);
        }
    }
    if (definicion.columnas.isEmpty()) return TablaDesconocida(tabla);
    // A temporary table's full name holds a number of its own: it is known by the short one.
    if (tabla.contains(u'#')) definicion.nombre = tabla.section(u'.', -1).remove(u'[').remove(u']');
    definicion.clave = clave.values();
    return definicion;
}

}  // namespace quimo::data::odbc
