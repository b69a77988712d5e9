#include "tds_codigo.h"

#include <algorithm>
#include <limits>

#include <QDateTime>
#include <QUuid>

namespace quimo::data::odbc {

namespace {

// LCID 0x0C0A, without case, with accents: Modern_Spanish_CI_AS.
const QByteArray& Intercalacion() {
    static const QByteArray kBytes("\x0a\x0c\xd0\x00\x00", 5);
    return kBytes;
}

constexpr int kCaracteresMax = 4000;

/// Code page 1252, which that collation keeps VARCHAR in; what it lacks is stored as '?'.
QByteArray En1252(const QString& texto) {
    static const QString kDesde80 = QString::fromUtf16(
        u"\u20ac\ufffd\u201a\u0192\u201e\u2026\u2020\u2021\u02c6\u2030\u0160\u2039\u0152\ufffd"
        u"\u017d"
        u"\ufffd\ufffd\u2018\u2019\u201c\u201d\u2022\u2013\u2014\u02dc\u2122\u0161\u203a\u0153"
        u"\ufffd"
        u"\u017e\u0178");
    QByteArray bytes;
    for (const QChar c : texto) {
        const qsizetype lugar = kDesde80.indexOf(c);
        const bool sola = c.unicode() < 0x80 || (c.unicode() >= 0xA0 && c.unicode() <= 0xFF);
        bytes.append(sola         ? static_cast<char>(c.unicode())
                     : lugar >= 0 ? static_cast<char>(0x80 + lugar)
                                  : '?');
    }
    return bytes;
}

/// Builds a message, little-endian.
class Escritor {
public:
    Escritor& Entero(quint64 valor, int largo) {
        for (int i = 0; i < largo; ++i)
            bytes_.append(static_cast<char>(valor >> (8 * i)));
        return *this;
    }
    Escritor& Bytes(const QByteArray& bytes) {
        bytes_ += bytes;
        return *this;
    }
    Escritor& Utf16(const QString& texto) {
        return Bytes({reinterpret_cast<const char*>(texto.utf16()), texto.size() * 2});
    }
    Escritor& BVarchar(const QString& texto) {
        return Entero(static_cast<quint64>(texto.size()), 1).Utf16(texto);
    }
    /// A part that says its length in two bytes before it.
    Escritor& Medido(quint8 token, const QByteArray& cuerpo) {
        return Entero(token, 1).Entero(static_cast<quint64>(cuerpo.size()), 2).Bytes(cuerpo);
    }
    const QByteArray& Todo() const { return bytes_; }

private:
    QByteArray bytes_;
};

int BytesDeNumeric(int precision) {
    return precision <= 9 ? 5 : precision <= 19 ? 9 : precision <= 28 ? 13 : 17;
}

/// What a column is called in the protocol: 'u' UTF-16, 'c' one byte a character, 'b' bytes.
char FormaDeTexto(TipoSql tipo) {
    if (tipo >= TipoSql::Binary) return 'b';
    return tipo >= TipoSql::NChar ? 'u' : 'c';
}

void DescribirTexto(Escritor& a, const Columna& columna) {
    const char forma = FormaDeTexto(columna.tipo);
    const bool ancho = forma == 'u';
    if (columna.tipo == TipoSql::Text || columna.tipo == TipoSql::NText ||
        columna.tipo == TipoSql::Image) {
        a.Entero(ancho ? 0x63 : forma == 'c' ? 0x23 : 0x22, 1).Entero(0x7fffffff, 4);
        if (forma != 'b') a.Bytes(Intercalacion());
        a.Entero(1, 1).Entero(1, 2).Utf16(QStringLiteral("T"));
        return;
    }
    const bool fijo = columna.tipo == TipoSql::Char || columna.tipo == TipoSql::NChar ||
                      columna.tipo == TipoSql::Binary;
    const int unidades = columna.longitud * (ancho ? 2 : 1);
    const bool sin_limite = columna.longitud <= 0 || unidades > 2 * kCaracteresMax;
    const int token = ancho          ? (fijo ? 0xEF : 0xE7)
                      : forma == 'c' ? (fijo ? 0xAF : 0xA7)
                                     : (fijo ? 0xAD : 0xA5);
    a.Entero(static_cast<quint64>(token), 1)
        .Entero(sin_limite ? 0xFFFF : static_cast<quint64>(unidades), 2);
    if (forma != 'b') a.Bytes(Intercalacion());
}

void DescribirTipo(Escritor& a, const Columna& columna) {
    switch (columna.tipo) {
        case TipoSql::Bit:
            a.Entero(0x68, 1).Entero(1, 1);
            return;
        case TipoSql::TinyInt:
            a.Entero(0x26, 1).Entero(1, 1);
            return;
        case TipoSql::SmallInt:
            a.Entero(0x26, 1).Entero(2, 1);
            return;
        case TipoSql::Int:
            a.Entero(0x26, 1).Entero(4, 1);
            return;
        case TipoSql::BigInt:
            a.Entero(0x26, 1).Entero(8, 1);
            return;
        case TipoSql::Money:
        case TipoSql::SmallMoney:
            a.Entero(0x6E, 1).Entero(columna.tipo == TipoSql::Money ? 8 : 4, 1);
            return;
        case TipoSql::Numeric:
            a.Entero(0x6C, 1)
                .Entero(static_cast<quint64>(BytesDeNumeric(columna.precision)), 1)
                .Entero(static_cast<quint64>(columna.precision), 1)
                .Entero(static_cast<quint64>(columna.escala), 1);
            return;
        case TipoSql::Float:
        case TipoSql::Real:
            a.Entero(0x6D, 1).Entero(8, 1);
            return;
        case TipoSql::DateTime:
        case TipoSql::SmallDateTime:
            a.Entero(0x6F, 1).Entero(columna.tipo == TipoSql::DateTime ? 8 : 4, 1);
            return;
        case TipoSql::UniqueIdentifier:
            a.Entero(0x24, 1).Entero(16, 1);
            return;
        case TipoSql::Char:
        case TipoSql::VarChar:
        case TipoSql::Text:
        case TipoSql::NChar:
        case TipoSql::NVarChar:
        case TipoSql::NText:
        case TipoSql::Binary:
        case TipoSql::VarBinary:
        case TipoSql::Image:
            DescribirTexto(a, columna);
    }
}

QByteArray BytesDeTexto(const QVariant& valor, char forma) {
    if (forma == 'b') return valor.toByteArray();
    const QString texto = valor.toString();
    if (forma == 'c') return En1252(texto);
    return {reinterpret_cast<const char*>(texto.utf16()), texto.size() * 2};
}

void EscribirTexto(Escritor& a, const QVariant& valor, const Columna& columna) {
    const char forma = FormaDeTexto(columna.tipo);
    const bool objeto = columna.tipo == TipoSql::Text || columna.tipo == TipoSql::NText ||
                        columna.tipo == TipoSql::Image;
    const int unidades = columna.longitud * (forma == 'u' ? 2 : 1);
    const bool sin_limite = columna.longitud <= 0 || unidades > 2 * kCaracteresMax;
    const QByteArray bytes = BytesDeTexto(valor, forma);
    const auto largo = static_cast<quint64>(bytes.size());
    if (objeto) {
        if (!valor.isValid()) {
            a.Entero(0, 1);
            return;
        }
        a.Entero(16, 1).Bytes(QByteArray(16, 'p')).Bytes(QByteArray(8, 't'));
        a.Entero(largo, 4).Bytes(bytes);
    } else if (sin_limite) {
        if (!valor.isValid()) {
            a.Entero(std::numeric_limits<quint64>::max(), 8);
            return;
        }
        // In pieces of an odd size, so that none ends where a character does by chance.
        constexpr int kParte = 1501;
        a.Entero(largo, 8);
        for (qsizetype i = 0; i < bytes.size(); i += kParte) {
            const QByteArray parte = bytes.mid(i, kParte);
            a.Entero(static_cast<quint64>(parte.size()), 4).Bytes(parte);
        }
        a.Entero(0, 4);
    } else if (!valor.isValid()) {
        a.Entero(0xFFFF, 2);
    } else {
        a.Entero(largo, 2).Bytes(bytes);
    }
}

void EscribirNumeric(Escritor& a, const base::Decimal& decimal, const Columna& columna) {
    const auto ajustado = decimal.ConEscala(columna.escala).value_or(decimal);
    const bool negativo = ajustado.digitos < 0;
    auto magnitud = static_cast<base::UInt128>(negativo ? -ajustado.digitos : ajustado.digitos);
    const int largo = BytesDeNumeric(columna.precision);
    a.Entero(static_cast<quint64>(largo), 1).Entero(negativo ? 0 : 1, 1);
    for (int i = 1; i < largo; ++i, magnitud >>= 8)
        a.Entero(static_cast<quint64>(magnitud & 0xFF), 1);
}

void EscribirFecha(Escritor& a, const QDateTime& fecha, bool entera) {
    const QDate origen(1900, 1, 1);
    const auto dias = static_cast<quint64>(origen.daysTo(fecha.date()));
    const int milesimas = fecha.time().msecsSinceStartOfDay();
    if (entera) {
        a.Entero(8, 1).Entero(dias, 4).Entero(
            static_cast<quint64>((static_cast<qint64>(milesimas) * 300 + 500) / 1000), 4);
    } else {
        a.Entero(4, 1).Entero(dias, 2).Entero(static_cast<quint64>(milesimas / 60000), 2);
    }
}

void EscribirValor(Escritor& a, const QVariant& valor, const Columna& columna) {
    if (columna.tipo >= TipoSql::Char && columna.tipo != TipoSql::UniqueIdentifier) {
        EscribirTexto(a, valor, columna);
        return;
    }
    if (!valor.isValid()) {
        a.Entero(0, 1);
        return;
    }
    if (columna.tipo == TipoSql::Money || columna.tipo == TipoSql::SmallMoney) {
        const auto digitos = static_cast<quint64>(valor.value<base::Dinero>().Diezmilesimas());
        if (columna.tipo == TipoSql::SmallMoney) {
            a.Entero(4, 1).Entero(digitos, 4);
        } else {
            a.Entero(8, 1).Entero(digitos >> 32, 4).Entero(digitos, 4);
        }
    } else if (columna.tipo == TipoSql::Numeric) {
        EscribirNumeric(a, valor.value<base::Decimal>(), columna);
    } else if (columna.tipo == TipoSql::Float || columna.tipo == TipoSql::Real) {
        const double real = valor.toDouble();
        a.Entero(8, 1).Bytes({reinterpret_cast<const char*>(&real), sizeof real});
    } else if (columna.tipo == TipoSql::DateTime || columna.tipo == TipoSql::SmallDateTime) {
        EscribirFecha(a, valor.toDateTime(), columna.tipo == TipoSql::DateTime);
    } else if (columna.tipo == TipoSql::UniqueIdentifier) {
        const QUuid id = valor.toUuid();
        a.Entero(16, 1)
            .Entero(id.data1, 4)
            .Entero(id.data2, 2)
            .Entero(id.data3, 2)
            .Bytes({reinterpret_cast<const char*>(id.data4), 8});
    } else {
        const int largo = columna.tipo == TipoSql::BigInt     ? 8
                          : columna.tipo == TipoSql::Int      ? 4
                          : columna.tipo == TipoSql::SmallInt ? 2
                                                              : 1;
        a.Entero(static_cast<quint64>(largo), 1)
            .Entero(static_cast<quint64>(valor.toLongLong()), largo);
    }
}

void EscribirConjunto(Escritor& a, const Conjunto& conjunto) {
    a.Entero(0x81, 1).Entero(static_cast<quint64>(conjunto.columnas.size()), 2);
    for (const Columna& columna : conjunto.columnas) {
        a.Entero(0, 4).Entero(0x0009, 2);  // may be NULL
        DescribirTipo(a, columna);
        a.BVarchar(columna.nombre);
    }
    for (const Fila& fila : conjunto.filas) {
        a.Entero(0xD1, 1);
        for (qsizetype i = 0; i < fila.size(); ++i)
            EscribirValor(a, fila[i], conjunto.columnas[i]);
    }
}

void EscribirAviso(Escritor& a, const ErrorProveedor& error, bool es_error) {
    // The embedded engine's descriptions come with the driver's prefix already.
    const QString prefijo = QStringLiteral("[Microsoft][ODBC SQL Server Driver][SQL Server]");
    QString texto = error.descripcion;
    if (texto.startsWith(prefijo)) texto.remove(0, prefijo.size());
    Escritor cuerpo;
    cuerpo.Entero(static_cast<quint64>(error.nativo), 4)
        .Entero(1, 1)
        .Entero(es_error ? 16 : 0, 1)
        .Entero(static_cast<quint64>(texto.size()), 2)
        .Utf16(texto)
        .BVarchar(QStringLiteral("PRUEBA"))
        .BVarchar({})
        .Entero(1, 4);
    a.Medido(es_error ? 0xAA : 0xAB, cuerpo.Todo());
}

void EscribirHecho(Escritor& a, int estado, qint64 filas) {
    a.Entero(0xFD, 1)
        .Entero(static_cast<quint64>(estado), 2)
        .Entero(0xC1, 2)
        .Entero(static_cast<quint64>(filas), 8);
}

QVariant LeerNumeric(LectorTds& lector, int escala) {
    const auto largo = static_cast<int>(lector.Entero(1));
    if (largo == 0) return {};
    const bool negativo = lector.Entero(1) == 0;
    base::UInt128 magnitud = 0;
    for (int i = 0; i < largo - 1; ++i)
        magnitud |= static_cast<base::UInt128>(lector.Entero(1)) << (8 * i);
    const auto digitos = static_cast<base::Int128>(magnitud);
    return QVariant::fromValue(base::Decimal{negativo ? -digitos : digitos, escala});
}

/// DATETIME2: hundreds of nanoseconds in as many bytes as the scale needs, then the day.
QVariant LeerFecha2(LectorTds& lector, int escala) {
    const auto largo = static_cast<int>(lector.Entero(1));
    if (largo == 0) return {};
    quint64 hora = lector.Entero(largo - 3);
    for (int i = escala; i > 3; --i)
        hora /= 10;
    for (int i = escala; i < 3; ++i)
        hora *= 10;
    const auto dias = static_cast<qint64>(lector.Entero(3));
    return QDateTime(QDate(1, 1, 1).addDays(dias),
                     QTime::fromMSecsSinceStartOfDay(static_cast<int>(hora)), Qt::UTC);
}

QVariant LeerFecha(LectorTds& lector) {
    if (lector.Entero(1) != 8) return {};
    const auto dias = static_cast<qint32>(lector.Entero(4));
    const auto tercios = static_cast<qint64>(lector.Entero(4));
    return QDateTime(QDate(1900, 1, 1).addDays(dias),
                     QTime::fromMSecsSinceStartOfDay(static_cast<int>((tercios * 10 + 1) / 3)),
                     Qt::UTC);
}

QVariant LeerTextoLargo(LectorTds& lector, int maximo, char forma) {
    QByteArray bytes;
    if (maximo == 0xFFFF) {
        if (lector.Entero(8) == std::numeric_limits<quint64>::max()) return {};
        while (const quint64 parte = lector.Entero(4))
            bytes += lector.Bytes(static_cast<qint64>(parte));
    } else {
        const quint64 largo = lector.Entero(2);
        if (largo == 0xFFFF) return {};
        bytes = lector.Bytes(static_cast<qint64>(largo));
    }
    if (forma == 'b') return bytes;
    if (forma == 'c') return QString::fromLatin1(bytes);
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()),
                              bytes.size() / 2);
}

}  // namespace

quint64 LectorTds::Entero(int largo) {
    quint64 valor = 0;
    for (int i = 0; i < largo && lugar_ < bytes_.size(); ++i, ++lugar_)
        valor |= static_cast<quint64>(static_cast<quint8>(bytes_[lugar_])) << (8 * i);
    return valor;
}

QByteArray LectorTds::Bytes(qint64 largo) {
    QByteArray leidos = bytes_.mid(lugar_, largo);
    lugar_ += largo;
    return leidos;
}

QString LectorTds::Utf16(qint64 caracteres) {
    const QByteArray bytes = Bytes(caracteres * 2);
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()),
                              bytes.size() / 2);
}

QVariant LeerParametro(LectorTds& lector) {
    lector.Utf16(static_cast<qint64>(lector.Entero(1)));  // its name
    lector.Entero(1);
    const auto tipo = static_cast<int>(lector.Entero(1));
    const auto con_numero = [&](auto leer) -> QVariant {
        lector.Entero(1);  // the largest size
        const auto largo = static_cast<int>(lector.Entero(1));
        if (largo == 0) return {};
        return leer(lector.Entero(largo), largo);
    };
    switch (tipo) {
        case 0x68:
            return con_numero([](quint64 v, int) { return QVariant(v != 0); });
        case 0x26:
            return con_numero([](quint64 v, int largo) {
                return largo == 8 ? QVariant(static_cast<qlonglong>(v))
                                  : QVariant(static_cast<qint32>(v));
            });
        case 0x6D:
            return con_numero([](quint64 v, int) {
                double real = 0;
                memcpy(&real, &v, sizeof real);
                return QVariant(real);
            });
        case 0x6A:
        case 0x6C: {
            lector.Entero(2);
            return LeerNumeric(lector, static_cast<int>(lector.Entero(1)));
        }
        case 0x6F:
            lector.Entero(1);
            return LeerFecha(lector);
        case 0x2A:
            return LeerFecha2(lector, static_cast<int>(lector.Entero(1)));
        case 0xE7:
        case 0xA7:
        case 0xA5: {
            const auto maximo = static_cast<int>(lector.Entero(2));
            if (tipo != 0xA5) lector.Saltar(5);
            return LeerTextoLargo(lector, maximo, tipo == 0xE7 ? 'u' : tipo == 0xA7 ? 'c' : 'b');
        }
        case 0x63:
        case 0x23:
        case 0x22: {
            lector.Entero(4);
            if (tipo != 0x22) lector.Saltar(5);
            const auto largo = static_cast<qint32>(lector.Entero(4));
            if (largo < 0) return {};
            if (tipo == 0x63) return lector.Utf16(largo / 2);
            const QByteArray bytes = lector.Bytes(largo);
            return tipo == 0x23 ? QVariant(QString::fromLatin1(bytes)) : QVariant(bytes);
        }
        default:
            return QStringLiteral("tipo desconocido %1").arg(tipo, 0, 16);
    }
}

QByteArray TokensDeRespuesta(const RespuestaSql& respuesta) {
    constexpr int kSiguen = 0x01;
    constexpr int kError = 0x02;
    constexpr int kCuenta = 0x10;
    Escritor a;
    for (const ErrorProveedor& mensaje : respuesta.mensajes)
        EscribirAviso(a, mensaje, false);
    for (qsizetype i = 0; i < respuesta.resultados.size(); ++i) {
        const ResultadoSql& resultado = respuesta.resultados[i];
        const bool ultimo = i + 1 == respuesta.resultados.size() && !respuesta.fallo;
        if (resultado.conjunto) EscribirConjunto(a, *resultado.conjunto);
        const qint64 filas =
            resultado.conjunto ? resultado.conjunto->filas.size() : resultado.afectadas;
        EscribirHecho(a, kCuenta | (ultimo ? 0 : kSiguen), filas);
    }
    if (respuesta.fallo) {
        for (const ErrorProveedor& error : respuesta.fallo->errores)
            EscribirAviso(a, error, true);
        EscribirHecho(a, kError, 0);
    } else if (respuesta.resultados.isEmpty()) {
        EscribirHecho(a, 0, 0);
    }
    return a.Todo();
}

QByteArray TokensDeAcceso(const QString& base) {
    Escritor a;
    Escritor cambio;
    cambio.Entero(1, 1).BVarchar(base).BVarchar(QStringLiteral("master"));
    a.Medido(0xE3, cambio.Todo());
    Escritor orden;
    orden.Entero(7, 1).Entero(5, 1).Bytes(Intercalacion()).Entero(0, 1);
    a.Medido(0xE3, orden.Todo());
    Escritor acceso;
    acceso.Entero(1, 1).Bytes(QByteArray("\x74\x00\x00\x04", 4));
    acceso.BVarchar(QStringLiteral("Microsoft SQL Server"));
    acceso.Bytes(QByteArray("\x0f\x00\x07\xd0", 4));
    a.Medido(0xAD, acceso.Todo());
    EscribirHecho(a, 0, 0);
    return a.Todo();
}

}  // namespace quimo::data::odbc
