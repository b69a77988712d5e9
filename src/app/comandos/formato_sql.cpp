#include "app/comandos/formato_sql.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/comandos/consola.h"
#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

using data::Columna;
using data::Conjunto;
using data::Fila;

namespace {

QString FechaIso(const QDateTime& momento) {
    const bool con_fraccion = momento.time().msec() != 0;
    return momento.toString(con_fraccion ? u"yyyy-MM-ddTHH:mm:ss.zzz"_s : u"yyyy-MM-ddTHH:mm:ss"_s);
}

QJsonValue JsonDeValor(const QVariant& valor) {
    if (!valor.isValid()) return QJsonValue::Null;
    switch (valor.metaType().id()) {
        case QMetaType::Bool:
            return valor.toBool() ? 1 : 0;
        case QMetaType::Int:
            return valor.toInt();
        case QMetaType::LongLong:
            return valor.toLongLong();
        case QMetaType::Double:
            return valor.toDouble();
        case QMetaType::QDateTime:
            return FechaIso(valor.toDateTime());
        default:
            return data::TextoDeValor(valor);
    }
}

QJsonObject JsonDeConjunto(const Conjunto& conjunto) {
    QJsonArray columnas;
    for (const Columna& columna : conjunto.columnas)
        columnas.append(columna.nombre);
    QJsonArray filas;
    for (const Fila& fila : conjunto.filas) {
        QJsonArray celdas;
        for (const QVariant& valor : fila)
            celdas.append(JsonDeValor(valor));
        filas.append(celdas);
    }
    return {{u"columns"_s, columnas}, {u"rows"_s, filas}};
}

QString EnUnaLinea(const QJsonObject& objeto) {
    return QString::fromUtf8(QJsonDocument(objeto).toJson(QJsonDocument::Compact));
}

QString CampoCsv(const QString& texto) {
    static const QString kEspeciales = u"\",\n\r"_s;
    const bool especial =
        std::any_of(texto.begin(), texto.end(), [](QChar c) { return kEspeciales.contains(c); });
    if (!especial) return texto;
    QString doblado = texto;
    return u'"' + doblado.replace(u'"', u"\"\""_s) + u'"';
}

QString Csv(const Conjunto& conjunto) {
    QStringList lineas;
    QStringList campos;
    for (const Columna& columna : conjunto.columnas)
        campos << CampoCsv(columna.nombre);
    lineas << campos.join(u',');
    for (const Fila& fila : conjunto.filas) {
        campos.clear();
        for (const QVariant& valor : fila)
            campos << CampoCsv(data::TextoDeValor(valor));
        lineas << campos.join(u',');
    }
    return lineas.join(u'\n');
}

bool EsNumerica(data::TipoSql tipo) {
    return tipo <= data::TipoSql::Real;  // the numeric types stand first
}

QString Tabla(const Conjunto& conjunto) {
    QStringList titulos;
    QVector<bool> a_la_derecha;
    for (const Columna& columna : conjunto.columnas) {
        titulos << columna.nombre;
        a_la_derecha << EsNumerica(columna.tipo);
    }
    QVector<QStringList> filas;
    for (const Fila& fila : conjunto.filas) {
        QStringList celdas;
        for (const QVariant& valor : fila) {
            QString texto = valor.isValid() ? data::TextoDeValor(valor) : u"NULL"_s;
            celdas << texto.replace(u'\n', u' ').replace(u'\r', u' ');
        }
        filas << celdas;
    }
    return TablaDeTexto(titulos, filas, a_la_derecha);
}

}  // namespace

std::optional<FormatoSql> FormatoDeTexto(const QString& texto) {
    if (texto == u"tabla"_s) return FormatoSql::Tabla;
    if (texto == u"csv"_s) return FormatoSql::Csv;
    if (texto == u"json"_s) return FormatoSql::Json;
    return std::nullopt;
}

QString Formatear(const Conjunto& conjunto, FormatoSql formato) {
    switch (formato) {
        case FormatoSql::Tabla:
            return Tabla(conjunto);
        case FormatoSql::Csv:
            return Csv(conjunto);
        case FormatoSql::Json:
            break;
    }
    return EnUnaLinea(JsonDeConjunto(conjunto));
}

QString JsonDeRespuesta(const data::RespuestaSql& respuesta) {
    if (respuesta.fallo) {
        const data::FalloSql& fallo = *respuesta.fallo;
        const QString estado = fallo.errores.isEmpty() ? QString() : fallo.errores.first().sqlstate;
        return EnUnaLinea({{u"error"_s, QJsonObject{{u"native"_s, fallo.Nativo()},
                                                    {u"sqlstate"_s, estado},
                                                    {u"message"_s, fallo.Descripcion()}}}});
    }
    qint64 afectadas = -1;
    for (const data::ResultadoSql& resultado : respuesta.resultados) {
        if (resultado.conjunto) return EnUnaLinea(JsonDeConjunto(*resultado.conjunto));
        if (resultado.afectadas >= 0) afectadas = resultado.afectadas;
    }
    return EnUnaLinea({{u"affected"_s, afectadas}});
}

}  // namespace quimo::app
