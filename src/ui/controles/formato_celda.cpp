#include "ui/controles/formato_celda.h"

#include <cmath>
#include <optional>

#include "base/decimal.h"
#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

std::optional<base::Decimal> LeerDecimal(const QVariant& valor, int decimales) {
    if (!valor.isValid()) return base::Decimal{};
    if (valor.userType() == QMetaType::Double) {
        const double numero = valor.toDouble();
        if (!std::isfinite(numero)) return std::nullopt;
        return base::Decimal::DeTexto(QString::number(numero, 'f', decimales).toStdString());
    }
    return base::Decimal::DeTexto(data::TextoDeValor(valor).trimmed().toStdString());
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

bool EsNumerica(TipoCelda tipo) {
    return tipo == TipoCelda::Numero || tipo == TipoCelda::Moneda || tipo == TipoCelda::Porcentaje;
}

QString NumeroVisible(const QVariant& valor, TipoCelda tipo, int decimales) {
    const auto leido = LeerDecimal(valor, decimales);
    const auto decimal = leido ? leido->ConEscala(decimales) : std::nullopt;
    if (!decimal) return data::TextoDeValor(valor);
    QString numero = ConMillares(QString::fromStdString(decimal->ATexto()));
    if (tipo == TipoCelda::Moneda) numero.insert(numero.startsWith(u'-') ? 1 : 0, u'$');
    if (tipo == TipoCelda::Porcentaje) numero += u'%';
    return numero;
}

}  // namespace quimo::ui
