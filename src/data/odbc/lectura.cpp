#include "data/odbc/lectura.h"

#include <algorithm>
#include <array>
#include <optional>

#include <QDateTime>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace quimo::data::odbc {

namespace {

constexpr int kSinLimite = -1;
// Drivers tell a text without limit by 0 or by a size that no other has.
constexpr SQLULEN kLargoMaximo = 8000;

QString NombreDeTipo(SQLHSTMT sentencia, SQLUSMALLINT numero) {
    std::array<SQLWCHAR, 129> nombre = {};
    SQLSMALLINT bytes = 0;
    const SQLRETURN leido = SQLColAttributeW(
        sentencia, numero, SQL_DESC_TYPE_NAME, nombre.data(),
        static_cast<SQLSMALLINT>(sizeof(SQLWCHAR) * (nombre.size() - 1)), &bytes, nullptr);
    if (!SQL_SUCCEEDED(leido)) return {};
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(nombre.data())).toLower();
}

TipoSql TipoDe(SQLSMALLINT tipo, const QString& nombre) {
    switch (tipo) {
        case SQL_BIT:
            return TipoSql::Bit;
        case SQL_TINYINT:
            return TipoSql::TinyInt;
        case SQL_SMALLINT:
            return TipoSql::SmallInt;
        case SQL_INTEGER:
            return TipoSql::Int;
        case SQL_BIGINT:
            return TipoSql::BigInt;
        case SQL_DECIMAL:
        case SQL_NUMERIC:
            // Drivers tell amounts of money from other decimals by the name alone.
            if (nombre == u"money"_s) return TipoSql::Money;
            return nombre == u"smallmoney"_s ? TipoSql::SmallMoney : TipoSql::Numeric;
        case SQL_FLOAT:
        case SQL_DOUBLE:
            return TipoSql::Float;
        case SQL_REAL:
            return TipoSql::Real;
        case SQL_TYPE_TIMESTAMP:
        case SQL_TYPE_DATE:
            return nombre == u"smalldatetime"_s ? TipoSql::SmallDateTime : TipoSql::DateTime;
        case SQL_CHAR:
            return TipoSql::Char;
        case SQL_LONGVARCHAR:
            return TipoSql::Text;
        case SQL_WCHAR:
            return TipoSql::NChar;
        case SQL_WVARCHAR:
            return TipoSql::NVarChar;
        case SQL_WLONGVARCHAR:
            return TipoSql::NText;
        case SQL_GUID:
            return TipoSql::UniqueIdentifier;
        case SQL_BINARY:
            return TipoSql::Binary;
        case SQL_VARBINARY:
            return TipoSql::VarBinary;
        case SQL_LONGVARBINARY:
            return TipoSql::Image;
        default:
            return TipoSql::VarChar;  // of the server's own types too: they are read as text
    }
}

/// A value of fixed size; nothing for NULL.
template <typename T>
base::Result<std::optional<T>, LecturaRota> LeerFijo(SQLHSTMT sentencia, SQLUSMALLINT numero,
                                                     SQLSMALLINT tipo) {
    T valor = {};
    SQLLEN indicador = 0;
    if (!SQL_SUCCEEDED(SQLGetData(sentencia, numero, tipo, &valor, sizeof valor, &indicador))) {
        return LecturaRota{};
    }
    if (indicador == SQL_NULL_DATA) return std::optional<T>();
    return std::optional<T>(valor);
}

/// Texts (SQL_C_WCHAR), exact numbers as text (SQL_C_CHAR) and binaries (SQL_C_BINARY), whole
/// whatever their length. `T` is the unit, `kFin` how many end a piece without belonging to it.
template <typename T, typename Destino, int kFin>
base::Result<std::optional<Destino>, LecturaRota> LeerPorPartes(SQLHSTMT sentencia,
                                                                SQLUSMALLINT numero,
                                                                SQLSMALLINT tipo) {
    std::array<T, 4096> parte = {};
    constexpr SQLLEN kCabe = static_cast<SQLLEN>(parte.size()) - kFin;
    Destino todo;
    for (bool primera = true;; primera = false) {
        SQLLEN indicador = 0;
        const SQLRETURN leido =
            SQLGetData(sentencia, numero, tipo, parte.data(), sizeof parte, &indicador);
        if (leido == SQL_NO_DATA && !primera) return std::optional<Destino>(todo);
        if (!SQL_SUCCEEDED(leido)) return LecturaRota{};
        if (indicador == SQL_NULL_DATA) return std::optional<Destino>();
        const SQLLEN quedan =
            indicador == SQL_NO_TOTAL ? kCabe : indicador / static_cast<SQLLEN>(sizeof(T));
        todo.append(reinterpret_cast<typename Destino::const_pointer>(parte.data()),
                    static_cast<qsizetype>(std::clamp<SQLLEN>(quedan, 0, kCabe)));
        if (leido == SQL_SUCCESS && indicador != SQL_NO_TOTAL && quedan <= kCabe) {
            return std::optional<Destino>(todo);
        }
    }
}

base::Result<std::optional<QString>, LecturaRota> LeerTexto(SQLHSTMT sentencia,
                                                            SQLUSMALLINT numero) {
    return LeerPorPartes<SQLWCHAR, QString, 1>(sentencia, numero, SQL_C_WCHAR);
}

base::Result<QVariant, LecturaRota> Exacto(SQLHSTMT sentencia, SQLUSMALLINT numero,
                                           const Columna& columna) {
    QUIMO_TRY(const auto leido, LeerPorPartes<char, QByteArray, 1>(sentencia, numero, SQL_C_CHAR));
    if (!leido) return QVariant();
    std::string texto = leido->trimmed().toStdString();
    // Some drivers leave the zero before the point out.
    const std::size_t signo = texto.starts_with('-') ? 1 : 0;
    if (texto.substr(signo).starts_with('.')) texto.insert(signo, "0");
    if (columna.tipo == TipoSql::Money || columna.tipo == TipoSql::SmallMoney) {
        const auto dinero = base::Dinero::DeTexto(texto);
        if (dinero) return QVariant::fromValue(*dinero);
    } else if (const auto decimal = base::Decimal::DeTexto(texto)) {
        const auto ajustado =
            decimal->escala < columna.escala ? decimal->ConEscala(columna.escala) : decimal;
        return QVariant::fromValue(ajustado.value_or(*decimal));
    }
    return LecturaRota{u"La columna %1 trae un número que no se puede leer: %2."_s.arg(
        columna.nombre, QString::fromStdString(texto))};
}

base::Result<QVariant, LecturaRota> Fecha(SQLHSTMT sentencia, SQLUSMALLINT numero) {
    constexpr SQLUINTEGER kNanosPorMilesima = 1'000'000;
    QUIMO_TRY(const auto leida,
              LeerFijo<SQL_TIMESTAMP_STRUCT>(sentencia, numero, SQL_C_TYPE_TIMESTAMP));
    if (!leida) return QVariant();
    const QDateTime segundo(QDate(leida->year, leida->month, leida->day),
                            QTime(leida->hour, leida->minute, leida->second), Qt::UTC);
    if (!segundo.isValid()) return LecturaRota{u"El servidor devolvió una fecha imposible."_s};
    return QVariant(
        segundo.addMSecs((leida->fraction + kNanosPorMilesima / 2) / kNanosPorMilesima));
}

}  // namespace

base::Result<QVector<Columna>, LecturaRota> LeerColumnas(SQLHSTMT sentencia) {
    SQLSMALLINT cuantas = 0;
    if (!SQL_SUCCEEDED(SQLNumResultCols(sentencia, &cuantas))) return LecturaRota{};
    QVector<Columna> columnas;
    for (SQLUSMALLINT numero = 1; numero <= cuantas; ++numero) {
        std::array<SQLWCHAR, 257> nombre = {};
        SQLSMALLINT tipo = 0;
        SQLSMALLINT largo = 0;
        SQLSMALLINT escala = 0;
        SQLSMALLINT admite_nulos = 0;
        SQLULEN medida = 0;
        if (!SQL_SUCCEEDED(SQLDescribeColW(sentencia, numero, nombre.data(),
                                           static_cast<SQLSMALLINT>(nombre.size()), &largo, &tipo,
                                           &medida, &escala, &admite_nulos))) {
            return LecturaRota{};
        }
        Columna columna;
        columna.nombre = QString::fromUtf16(reinterpret_cast<const char16_t*>(nombre.data()));
        columna.tipo = TipoDe(tipo, NombreDeTipo(sentencia, numero));
        if (columna.tipo >= TipoSql::Char) {
            const bool con_limite = medida > 0 && medida <= kLargoMaximo;
            columna.longitud = con_limite ? static_cast<int>(medida) : kSinLimite;
        } else if (columna.tipo <= TipoSql::Numeric) {
            columna.precision = static_cast<int>(medida);
            columna.escala = escala;
        }
        columnas.append(columna);
    }
    return columnas;
}

base::Result<QVariant, LecturaRota> LeerValor(SQLHSTMT sentencia, SQLUSMALLINT numero,
                                              const Columna& columna) {
    const auto suelto = [](const auto& valor) {
        return valor ? QVariant::fromValue(*valor) : QVariant();
    };
    switch (columna.tipo) {
        case TipoSql::Bit: {
            QUIMO_TRY(const auto bit, LeerFijo<SQLCHAR>(sentencia, numero, SQL_C_BIT));
            return bit ? QVariant(*bit != 0) : QVariant();
        }
        case TipoSql::TinyInt:
        case TipoSql::SmallInt:
        case TipoSql::Int: {
            QUIMO_TRY(const auto entero, LeerFijo<SQLINTEGER>(sentencia, numero, SQL_C_SLONG));
            return suelto(entero);
        }
        case TipoSql::BigInt: {
            QUIMO_TRY(const auto largo, LeerFijo<SQLBIGINT>(sentencia, numero, SQL_C_SBIGINT));
            return largo ? QVariant(static_cast<qlonglong>(*largo)) : QVariant();
        }
        case TipoSql::Money:
        case TipoSql::SmallMoney:
        case TipoSql::Numeric:
            return Exacto(sentencia, numero, columna);
        case TipoSql::Float:
        case TipoSql::Real: {
            QUIMO_TRY(const auto real, LeerFijo<SQLDOUBLE>(sentencia, numero, SQL_C_DOUBLE));
            return suelto(real);
        }
        case TipoSql::DateTime:
        case TipoSql::SmallDateTime:
            return Fecha(sentencia, numero);
        case TipoSql::UniqueIdentifier: {
            QUIMO_TRY(const auto texto, LeerTexto(sentencia, numero));
            return texto ? QVariant(QUuid(*texto)) : QVariant();
        }
        case TipoSql::Binary:
        case TipoSql::VarBinary:
        case TipoSql::Image: {
            const auto leer = LeerPorPartes<char, QByteArray, 0>;
            QUIMO_TRY(const auto bytes, leer(sentencia, numero, SQL_C_BINARY));
            return suelto(bytes);
        }
        case TipoSql::Char:
        case TipoSql::VarChar:
        case TipoSql::Text:
        case TipoSql::NChar:
        case TipoSql::NVarChar:
        case TipoSql::NText:
            break;
    }
    QUIMO_TRY(const auto texto, LeerTexto(sentencia, numero));
    return suelto(texto);
}

}  // namespace quimo::data::odbc
