#include "data/embebido/valores_qt.h"

#include <array>

#include <QDateTime>
#include <QUuid>

#include "data/embebido/sesion.h"
#include "data/fallos.h"
#include "tsql/valores/conversion.h"
#include "tsql/valores/decimales.h"

namespace quimo::data::embebido {

namespace {

using tsql::Clase;
using tsql::Tipo;
using tsql::Valor;

constexpr auto kTipos = std::to_array<TipoSql>({
    TipoSql::Int,        TipoSql::Binary,        TipoSql::VarBinary, TipoSql::Char,
    TipoSql::VarChar,    TipoSql::NChar,         TipoSql::NVarChar,  TipoSql::UniqueIdentifier,
    TipoSql::Image,      TipoSql::Text,          TipoSql::NText,     TipoSql::Bit,
    TipoSql::TinyInt,    TipoSql::SmallInt,      TipoSql::Int,       TipoSql::BigInt,
    TipoSql::SmallMoney, TipoSql::Money,         TipoSql::Numeric,   TipoSql::Real,
    TipoSql::Float,      TipoSql::SmallDateTime, TipoSql::DateTime,
});

QString AQString(const std::string& texto) { return QString::fromStdString(texto); }

ValorConTipo DeDecimal(const base::Decimal& decimal) {
    const int cifras = std::max({tsql::ContarCifras(decimal.digitos), decimal.escala, 1});
    const int precision = std::max(cifras, tsql::kDigitosNativos);
    return {tsql::TipoNumerico(precision, decimal.escala), Valor::De(decimal.digitos)};
}

ValorConTipo DeTexto(const QString& texto) {
    const auto largo = static_cast<int>(texto.size());
    const int maximo = tsql::kLongitudMaxima / 2;
    return {tsql::TipoTexto(Clase::NVarChar, largo > maximo ? -1 : maximo),
            Valor::DeTexto(texto.toStdString())};
}

ValorConTipo DeFecha(const QDateTime& fecha) {
    return {tsql::TipoFecha(), Valor::De(tsql::RedondearFecha(AMilisegundos(fecha)))};
}

}  // namespace

TipoSql ATipoSql(Clase clase) { return kTipos[static_cast<std::size_t>(clase)]; }

Columna AColumna(const tsql::ColumnaSalida& columna) {
    return {AQString(columna.nombre), ATipoSql(columna.tipo.clase), columna.tipo.longitud,
            columna.tipo.precision, columna.tipo.escala};
}

tsql::Resultado<QVariant> AVariante(const Valor& crudo, const Tipo& tipo) {
    if (crudo.EsNulo()) return QVariant();
    QUIMO_TRY(const Valor valor, tsql::Normalizar(crudo, tipo));
    if (tipo.EsExacto()) {
        QUIMO_TRY(const Valor en_rango, tsql::Convertir(valor, tipo, tipo));
        const std::int64_t entero = en_rango.Entero();
        if (tipo.clase == Clase::Bit) return QVariant(entero != 0);
        if (tipo.clase == Clase::BigInt) return QVariant(static_cast<qlonglong>(entero));
        if (tipo.EsEntero()) return QVariant(static_cast<int>(entero));
        if (tipo.EsMoneda()) return QVariant::fromValue(base::Dinero::DeDiezmilesimas(entero));
        return QVariant::fromValue(base::Decimal{en_rango.exacto, tipo.escala});
    }
    if (tipo.EsReal()) return QVariant(valor.real);
    if (tipo.EsFecha()) return QVariant(AFecha(valor.Entero()));
    if (tipo.EsBinario()) return QVariant(QByteArray::fromStdString(valor.texto));
    if (tipo.clase == Clase::UniqueIdentifier) return QVariant(QUuid(AQString(valor.texto)));
    return QVariant(AQString(valor.texto));
}

std::optional<ValorConTipo> DeVariante(const QVariant& v) {
    const int tipo = v.typeId();
    if (!v.isValid() || v.isNull()) return ValorConTipo{};
    if (tipo == QMetaType::Bool) {
        return ValorConTipo{tsql::TipoEntero(Clase::Bit), Valor::De(v.toBool() ? 1 : 0)};
    }
    if (tipo == QMetaType::Int || tipo == QMetaType::Short || tipo == QMetaType::UChar) {
        return ValorConTipo{tsql::TipoEntero(Clase::Int), Valor::De(v.toInt())};
    }
    if (tipo == QMetaType::LongLong || tipo == QMetaType::UInt || tipo == QMetaType::Long) {
        return ValorConTipo{tsql::TipoEntero(Clase::BigInt), Valor::De(v.toLongLong())};
    }
    if (tipo == qMetaTypeId<base::Dinero>()) {
        return ValorConTipo{tsql::TipoMoneda(), Valor::De(v.value<base::Dinero>().Diezmilesimas())};
    }
    if (tipo == qMetaTypeId<base::Decimal>()) return DeDecimal(v.value<base::Decimal>());
    if (tipo == QMetaType::Double || tipo == QMetaType::Float) {
        return ValorConTipo{tsql::TipoReal(), Valor::DeReal(v.toDouble())};
    }
    if (tipo == QMetaType::QDateTime) return DeFecha(v.toDateTime());
    if (tipo == QMetaType::QDate) return DeFecha(QDateTime(v.toDate(), QTime(0, 0), Qt::UTC));
    if (tipo == QMetaType::QString || tipo == QMetaType::QChar) return DeTexto(v.toString());
    if (tipo == QMetaType::QByteArray) {
        return ValorConTipo{tsql::TipoTexto(Clase::VarBinary, -1),
                            Valor::DeBytes(v.toByteArray().toStdString())};
    }
    if (tipo == QMetaType::QUuid) {
        const QString texto = v.toUuid().toString(QUuid::WithoutBraces).toUpper();
        return ValorConTipo{{Clase::UniqueIdentifier}, Valor::DeTexto(texto.toStdString())};
    }
    return std::nullopt;
}

ErrorProveedor AProveedor(const tsql::ErrorSql& error) {
    return {AQString(error.sqlstate), error.nativo, kOrigen.toString(),
            kPrefijoDelServidor + AQString(error.mensaje)};
}

FalloSql AFallo(const tsql::ErrorSql& error) {
    ErrorProveedor primero = AProveedor(error);
    return {ClaseDeFallo(primero.sqlstate), {std::move(primero)}};
}

}  // namespace quimo::data::embebido
