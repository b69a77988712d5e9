#include "dayclose/terminales/valor_terminal.h"

#include <limits>

#include <QDateTime>

#include "base/decimal.h"
#include "base/dinero.h"
#include "data/sql_connection.h"
#include "data/valores.h"

namespace quimo::dayclose {

namespace {

using Quiza = std::optional<jet::Valor>;

bool EsDe(const QVariant& valor, int tipo) { return valor.metaType().id() == tipo; }

/// The number as text with a point; nothing for what is no number.
std::optional<QString> TextoDeNumero(const QVariant& valor) {
    switch (valor.metaType().id()) {
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::Double:
            return data::TextoDeValor(valor);
        default:
            break;
    }
    if (EsDe(valor, qMetaTypeId<base::Dinero>()) || EsDe(valor, qMetaTypeId<base::Decimal>())) {
        return data::TextoDeValor(valor);
    }
    return std::nullopt;
}

Quiza AEntero(const QVariant& valor, qint64 minimo, qint64 maximo) {
    const auto texto = TextoDeNumero(valor);
    if (!texto) return std::nullopt;
    const auto exacto = base::Decimal::DeTexto(texto->toStdString());
    const auto entero = exacto ? exacto->ConEscala(0) : std::nullopt;
    // Only a whole number is kept as one: 1.5 in a counter would be another figure.
    if (!entero || !(*entero == *exacto)) return std::nullopt;
    if (entero->digitos < minimo || entero->digitos > maximo) return std::nullopt;
    return jet::Valor(static_cast<std::int32_t>(entero->digitos));
}

Quiza AMoneda(const QVariant& valor) {
    if (EsDe(valor, qMetaTypeId<base::Dinero>())) return jet::Valor(valor.value<base::Dinero>());
    const auto texto = TextoDeNumero(valor);
    if (!texto) return std::nullopt;
    const auto dinero = base::Dinero::DeTexto(texto->toStdString());
    if (!dinero) return std::nullopt;
    return jet::Valor(*dinero);
}

Quiza ADoble(const QVariant& valor) {
    const auto texto = TextoDeNumero(valor);
    if (!texto) return std::nullopt;
    return jet::Valor(EsDe(valor, QMetaType::Double) ? valor.toDouble() : texto->toDouble());
}

Quiza AFecha(const QVariant& valor) {
    if (!EsDe(valor, QMetaType::QDateTime)) return std::nullopt;
    const QDateTime momento = valor.toDateTime();
    const QDate dia = momento.date();
    const QTime hora = momento.time();
    const auto fecha = jet::Fecha::DeCivil({dia.year(), dia.month(), dia.day(), hora.hour(),
                                            hora.minute(), hora.second(), hora.msec()});
    if (!fecha) return std::nullopt;
    return jet::Valor(*fecha);
}

}  // namespace

std::optional<jet::Valor> AValorTerminal(const QVariant& valor, jet::TipoColumna tipo) {
    if (!valor.isValid()) return jet::Valor(std::monostate());
    using Tipo = jet::TipoColumna;
    switch (tipo) {
        case Tipo::Logico: {
            const auto texto = TextoDeNumero(valor);
            if (!texto) return std::nullopt;
            return jet::Valor(texto->toDouble() != 0);
        }
        case Tipo::Byte:
            return AEntero(valor, 0, 255);
        case Tipo::Entero:
            return AEntero(valor, std::numeric_limits<std::int16_t>::min(),
                           std::numeric_limits<std::int16_t>::max());
        case Tipo::Largo:
            return AEntero(valor, std::numeric_limits<std::int32_t>::min(),
                           std::numeric_limits<std::int32_t>::max());
        case Tipo::Moneda:
            return AMoneda(valor);
        case Tipo::Simple:
        case Tipo::Doble: {
            const auto doble = ADoble(valor);
            if (!doble || tipo == Tipo::Doble) return doble;
            return jet::Valor(static_cast<float>(std::get<double>(*doble)));
        }
        case Tipo::Fecha:
            return AFecha(valor);
        case Tipo::Texto:
        case Tipo::Memo:
            // One letter, one code point: an index of the file knows no other spelling of it.
            return jet::Valor(data::TextoDeValor(valor)
                                  .normalized(QString::NormalizationForm_C)
                                  .toStdU16String());
        case Tipo::Numerico: {
            const auto texto = TextoDeNumero(valor);
            const auto exacto = texto ? base::Decimal::DeTexto(texto->toStdString()) : std::nullopt;
            if (!exacto) return std::nullopt;
            return jet::Valor(*exacto);
        }
        case Tipo::Binario:
        case Tipo::Ole:
        case Tipo::Guid:
        case Tipo::Bloque:
            break;
    }
    return std::nullopt;
}

}  // namespace quimo::dayclose
