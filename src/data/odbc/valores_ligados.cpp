#include "data/odbc/valores_ligados.h"

#include <algorithm>
#include <cstring>

#include <QDateTime>
#include <QRegularExpression>
#include <QUuid>

#include "data/odbc/diagnostico.h"
#include "data/odbc/fallos_odbc.h"
#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::data::odbc {

namespace {

constexpr int kCaracteresMax = 4000;
constexpr int kBytesMax = 8000;
constexpr SQLSMALLINT kDecimalesDeDinero = 4;
constexpr SQLULEN kDigitosDeDinero = 19;

/// How one value is handed to the driver.
struct Forma {
    SQLSMALLINT tipo_c = SQL_C_CHAR;
    SQLSMALLINT tipo_sql = SQL_VARCHAR;
    SQLULEN medida = 0;
    SQLSMALLINT escala = 0;
    QByteArray bytes = {};
    bool nulo = false;
};

template <typename T>
Forma Fijo(SQLSMALLINT tipo_c, SQLSMALLINT tipo_sql, const T& valor) {
    Forma forma{tipo_c, tipo_sql};
    forma.bytes = QByteArray(reinterpret_cast<const char*>(&valor), sizeof valor);
    return forma;
}

/// The server takes a varchar NULL for a column of any type but the binary ones.
Forma Nulo() {
    Forma forma{SQL_C_CHAR, SQL_VARCHAR, 1};
    forma.nulo = true;
    return forma;
}

Forma DeTexto(const QString& texto) {
    const bool largo = texto.size() > kCaracteresMax;
    Forma forma{SQL_C_WCHAR, largo ? SQLSMALLINT{SQL_WLONGVARCHAR} : SQLSMALLINT{SQL_WVARCHAR},
                static_cast<SQLULEN>(std::max<qsizetype>(texto.size(), 1))};
    forma.bytes = QByteArray(reinterpret_cast<const char*>(texto.utf16()), texto.size() * 2);
    return forma;
}

Forma DeBytes(const QByteArray& bytes) {
    const bool largo = bytes.size() > kBytesMax;
    Forma forma{SQL_C_BINARY, largo ? SQLSMALLINT{SQL_LONGVARBINARY} : SQLSMALLINT{SQL_VARBINARY},
                static_cast<SQLULEN>(std::max<qsizetype>(bytes.size(), 1))};
    forma.bytes = bytes;
    return forma;
}

Forma DeDigitos(const std::string& digitos, SQLULEN precision, int escala) {
    Forma forma{SQL_C_CHAR, SQL_DECIMAL, precision, static_cast<SQLSMALLINT>(escala)};
    forma.bytes = QByteArray::fromStdString(digitos);
    return forma;
}

Forma DeDecimal(const base::Decimal& decimal) {
    const std::string digitos = decimal.ATexto();
    const auto cifras =
        std::count_if(digitos.begin(), digitos.end(), [](char c) { return c >= '0' && c <= '9'; });
    const auto precision =
        std::clamp<std::ptrdiff_t>(cifras, std::max(decimal.escala, 1), base::Decimal::kDigitosMax);
    return DeDigitos(digitos, static_cast<SQLULEN>(precision), decimal.escala);
}

Forma DeFecha(const QDateTime& fecha) {
    constexpr SQLUINTEGER kNanosPorMilesima = 1'000'000;
    const QDate dia = fecha.date();
    const QTime hora = fecha.time();
    SQL_TIMESTAMP_STRUCT valor = {};
    valor.year = static_cast<SQLSMALLINT>(dia.year());
    valor.month = static_cast<SQLUSMALLINT>(dia.month());
    valor.day = static_cast<SQLUSMALLINT>(dia.day());
    valor.hour = static_cast<SQLUSMALLINT>(hora.hour());
    valor.minute = static_cast<SQLUSMALLINT>(hora.minute());
    valor.second = static_cast<SQLUSMALLINT>(hora.second());
    valor.fraction = static_cast<SQLUINTEGER>(hora.msec()) * kNanosPorMilesima;
    Forma forma = Fijo(SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, valor);
    forma.medida = 23;  // yyyy-mm-dd hh:mm:ss.mmm
    forma.escala = 3;
    return forma;
}

std::optional<Forma> FormaDe(const QVariant& v) {
    const int tipo = v.typeId();
    if (!v.isValid() || v.isNull()) return Nulo();
    if (tipo == QMetaType::Bool) {
        return Fijo<SQLCHAR>(SQL_C_BIT, SQL_BIT, v.toBool() ? 1 : 0);
    }
    if (tipo == QMetaType::Int || tipo == QMetaType::Short || tipo == QMetaType::UChar) {
        return Fijo<SQLINTEGER>(SQL_C_SLONG, SQL_INTEGER, v.toInt());
    }
    if (tipo == QMetaType::LongLong || tipo == QMetaType::UInt || tipo == QMetaType::Long) {
        return Fijo<SQLBIGINT>(SQL_C_SBIGINT, SQL_BIGINT, v.toLongLong());
    }
    if (tipo == qMetaTypeId<base::Dinero>()) {
        return DeDigitos(v.value<base::Dinero>().ATexto(), kDigitosDeDinero, kDecimalesDeDinero);
    }
    if (tipo == qMetaTypeId<base::Decimal>()) return DeDecimal(v.value<base::Decimal>());
    if (tipo == QMetaType::Double || tipo == QMetaType::Float) {
        return Fijo<SQLDOUBLE>(SQL_C_DOUBLE, SQL_DOUBLE, v.toDouble());
    }
    if (tipo == QMetaType::QDateTime) return DeFecha(v.toDateTime());
    if (tipo == QMetaType::QDate) return DeFecha(QDateTime(v.toDate(), QTime(0, 0), Qt::UTC));
    if (tipo == QMetaType::QString || tipo == QMetaType::QChar) return DeTexto(v.toString());
    if (tipo == QMetaType::QByteArray) return DeBytes(v.toByteArray());
    if (tipo == QMetaType::QUuid) {
        return DeTexto(v.toUuid().toString(QUuid::WithoutBraces).toUpper());
    }
    return std::nullopt;
}

std::optional<QString> Literal(const QVariant& v) {
    const auto como = [](const QString& texto, const QString& tipo) {
        return u"CAST('"_s + texto + u"' AS "_s + tipo + u')';
    };
    const int tipo = v.typeId();
    if (!v.isValid() || v.isNull()) return u"NULL"_s;
    if (tipo == QMetaType::Bool) return como(v.toBool() ? u"1"_s : u"0"_s, u"BIT"_s);
    if (tipo == qMetaTypeId<base::Dinero>()) return como(TextoDeValor(v), u"MONEY"_s);
    if (tipo == qMetaTypeId<base::Decimal>()) {
        const auto decimal = v.value<base::Decimal>();
        return como(TextoDeValor(v), u"NUMERIC(38,%1)"_s.arg(decimal.escala));
    }
    if (tipo == QMetaType::Double || tipo == QMetaType::Float) {
        return como(QString::number(v.toDouble(), 'e', 17), u"FLOAT"_s);
    }
    if (tipo == QMetaType::QDateTime || tipo == QMetaType::QDate) {
        return como(v.toDateTime().toString(u"yyyyMMdd HH:mm:ss.zzz"_s), u"DATETIME"_s);
    }
    if (tipo == QMetaType::QUuid) return como(TextoDeValor(v), u"UNIQUEIDENTIFIER"_s);
    if (tipo == QMetaType::QByteArray) return TextoDeValor(v);
    if (tipo == QMetaType::QString || tipo == QMetaType::QChar) {
        return u"N'"_s + DuplicaApostrofes(v.toString()) + u'\'';
    }
    if (v.canConvert<qlonglong>()) return u'(' + QString::number(v.toLongLong()) + u')';
    return std::nullopt;
}

/// Where the quoted text, delimited name or comment that begins at `i` ends; `i` itself when
/// nothing begins there.
qsizetype FinDeLoQueNoSeLee(const QString& tsql, qsizetype i) {
    const QChar c = tsql[i];
    const auto tras = [&](const QString& fin) {
        const qsizetype hallado = tsql.indexOf(fin, i + 1);
        return hallado < 0 ? tsql.size() : hallado + fin.size();
    };
    if (c == u'\'' || c == u'"') return tras(c);
    if (c == u'[') return tras(u"]"_s);
    if (tsql.mid(i, 2) == u"--"_s) return tras(u"\n"_s);
    if (tsql.mid(i, 2) != u"/*"_s) return i;
    int nivel = 1;
    qsizetype j = i + 2;
    for (; j < tsql.size() && nivel > 0; ++j) {
        const QString dos = tsql.mid(j, 2);
        if (dos != u"/*"_s && dos != u"*/"_s) continue;
        nivel += dos == u"/*"_s ? 1 : -1;
        ++j;
    }
    return j;
}

}  // namespace

base::Result<void, FalloSql> ValoresLigados::Ligar(SQLHSTMT sentencia,
                                                   const QVector<QVariant>& valores,
                                                   const QString& origen) {
    SQLUSMALLINT numero = 0;
    for (const QVariant& valor : valores) {
        ++numero;
        auto forma = FormaDe(valor);
        if (!forma) return ParametroSinTipo(valor.typeName());
        Ligado& ligado = ligados_.emplace_back();
        ligado.bytes = std::move(forma->bytes);
        ligado.indicador =
            forma->nulo ? SQLLEN{SQL_NULL_DATA} : static_cast<SQLLEN>(ligado.bytes.size());
        const SQLRETURN hecho =
            SQLBindParameter(sentencia, numero, SQL_PARAM_INPUT, forma->tipo_c, forma->tipo_sql,
                             forma->medida, forma->escala, ligado.bytes.data(),
                             static_cast<SQLLEN>(ligado.bytes.size()), &ligado.indicador);
        if (!SQL_SUCCEEDED(hecho)) {
            return FalloDeSentencia(LeerDiagnosticos(SQL_HANDLE_STMT, sentencia, origen), false);
        }
    }
    return {};
}

std::optional<QString> ConLiterales(const QString& tsql, const QVector<QVariant>& valores) {
    QString texto;
    qsizetype usados = 0;
    for (qsizetype i = 0; i < tsql.size();) {
        const qsizetype fin = FinDeLoQueNoSeLee(tsql, i);
        if (fin > i) {
            texto += tsql.mid(i, fin - i);
            i = fin;
            continue;
        }
        if (tsql[i] != u'?') {
            texto += tsql[i++];
            continue;
        }
        if (usados == valores.size()) return std::nullopt;
        const auto literal = Literal(valores[usados++]);
        if (!literal) return std::nullopt;
        texto += *literal;
        ++i;
    }
    if (usados != valores.size()) return std::nullopt;
    return texto;
}

bool CreaTemporal(const QString& tsql) {
    static const QRegularExpression kCrea(u"\\b(?:CREATE\\s+TABLE|INTO)\\s+\\[?#"_s,
                                          QRegularExpression::CaseInsensitiveOption);
    return tsql.contains(kCrea);
}

}  // namespace quimo::data::odbc
