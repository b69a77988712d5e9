#include "grid/formato.h"

#include <cmath>
#include <optional>

#include "base/decimal.h"
#include "base/dinero.h"

using namespace Qt::StringLiterals;

namespace quimo::grid {

namespace {

std::optional<base::Decimal> LeerDecimal(const QVariant& valor, int decimales) {
    if (!valor.isValid()) return base::Decimal{};
    if (valor.typeId() == QMetaType::Double) {
        const double numero = valor.toDouble();
        if (!std::isfinite(numero)) return std::nullopt;
        return base::Decimal::DeTexto(QString::number(numero, 'f', decimales).toStdString());
    }
    return base::Decimal::DeTexto(Cifras(valor).trimmed().toStdString());
}

/// With its decimals and nothing else; nothing for what is no number.
std::optional<QString> Redondeado(const QVariant& valor, TipoCelda tipo, int decimales) {
    const int lugares = tipo == TipoCelda::Entero ? 0 : decimales;
    const auto leido = LeerDecimal(valor, lugares);
    const auto decimal = leido ? leido->ConEscala(lugares) : std::nullopt;
    if (!decimal) return std::nullopt;
    return QString::fromStdString(decimal->ATexto());
}

// "-1234567.5" as "-1,234,567.5".
QString ConMillares(QString numero) {
    qsizetype lugar = numero.indexOf(u'.');
    if (lugar < 0) lugar = numero.size();
    const qsizetype primero = numero.startsWith(u'-') ? 1 : 0;
    for (lugar -= 3; lugar > primero; lugar -= 3)
        numero.insert(lugar, u',');
    return numero;
}

}  // namespace

QString NumeroVisible(const QVariant& valor, TipoCelda tipo, int decimales) {
    const auto redondeado = Redondeado(valor, tipo, decimales);
    if (!redondeado) return Cifras(valor);
    QString numero = ConMillares(*redondeado);
    if (tipo == TipoCelda::Moneda) numero.insert(numero.startsWith(u'-') ? 1 : 0, u'$');
    if (tipo == TipoCelda::Porcentaje) numero += u'%';
    return numero;
}

QString NumeroPlano(const QVariant& valor, TipoCelda tipo, int decimales) {
    return Redondeado(valor, tipo, decimales).value_or(Cifras(valor));
}

QString Cifras(const QVariant& valor) {
    const int tipo = valor.typeId();
    if (tipo == qMetaTypeId<base::Dinero>())
        return QString::fromStdString(valor.value<base::Dinero>().ATexto());
    if (tipo == qMetaTypeId<base::Decimal>())
        return QString::fromStdString(valor.value<base::Decimal>().ATexto());
    if (tipo == QMetaType::Bool) return valor.toBool() ? u"1"_s : u"0"_s;
    if (tipo == QMetaType::Double) return QString::number(valor.toDouble(), 'g', 15);
    return valor.toString();
}

}  // namespace quimo::grid
