#include "foundation/valores.h"

#include <QByteArray>
#include <QUuid>

#include "base/decimal.h"
#include "base/dinero.h"
#include "foundation/sql_connection.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

QString TextoDeValor(const QVariant& valor) {
    if (!valor.isValid()) return {};
    const int tipo = valor.metaType().id();
    if (tipo == qMetaTypeId<base::Dinero>()) {
        return QString::fromStdString(valor.value<base::Dinero>().ATexto());
    }
    if (tipo == qMetaTypeId<base::Decimal>()) {
        return QString::fromStdString(valor.value<base::Decimal>().ATexto());
    }
    if (tipo == QMetaType::Bool) return valor.toBool() ? u"1"_s : u"0"_s;
    if (tipo == QMetaType::Double) return QString::number(valor.toDouble(), 'g', 15);
    if (tipo == QMetaType::QDateTime) {
        const QDateTime momento = valor.toDateTime();
        if (momento.time() == QTime(0, 0)) return momento.toString(u"dd/MM/yyyy"_s);
        return FechaHoraSql(momento);
    }
    if (tipo == QMetaType::QByteArray) {
        return u"0x"_s + QString::fromLatin1(valor.toByteArray().toHex().toUpper());
    }
    if (tipo == QMetaType::QUuid) {
        return valor.toUuid().toString(QUuid::WithoutBraces).toUpper();
    }
    return valor.toString();
}

namespace {

/// The whole part without the signs that set its thousands apart; nothing when they stand wrong.
std::optional<QString> SinMillares(const QString& entero, QChar signo) {
    const QStringList grupos = entero.split(signo);
    for (qsizetype i = 1; i < grupos.size(); ++i) {
        if (grupos[i].size() != 3) return std::nullopt;
    }
    return grupos.join(QString());
}

}  // namespace

std::optional<QString> NumeroEscrito(const QString& texto) {
    QString numero = texto;
    numero.remove(u'$').remove(u' ').remove(QChar::Nbsp);
    const qsizetype coma = numero.lastIndexOf(u',');
    const qsizetype punto = numero.lastIndexOf(u'.');
    QString fraccion;
    const auto partir = [&numero, &fraccion](qsizetype lugar) {
        fraccion = u'.' + numero.mid(lugar + 1);
        numero.truncate(lugar);
    };
    QChar millares = u',';
    if (coma > punto) {
        // Alone before three digits it can only be read as it is shown: 1,234.
        const bool decimal = punto >= 0 || (numero.count(u',') == 1 && numero.size() - coma != 4);
        if (decimal) partir(coma);
        if (punto >= 0) millares = u'.';
    } else if (punto >= 0) {
        partir(punto);
    }
    const auto entero = SinMillares(numero, millares);
    if (!entero) return std::nullopt;
    const auto leido = base::Decimal::DeTexto((*entero + fraccion).toStdString());
    if (!leido) return std::nullopt;
    return QString::fromStdString(leido->ATexto());
}

QString LiteralSql(const QVariant& valor) {
    if (!valor.isValid()) return u"NULL"_s;
    switch (valor.metaType().id()) {
        case QMetaType::QString:
        case QMetaType::QDateTime:
        case QMetaType::QUuid:
            return u'\'' + DuplicaApostrofes(TextoDeValor(valor)) + u'\'';
        default:
            return TextoDeValor(valor);
    }
}

QString DuplicaApostrofes(const QString& texto) {
    QString doblado = texto;
    return doblado.replace(u'\'', u"''"_s);
}

QString FechaHoraSql(const QDateTime& momento) {
    return momento.toString(u"dd/MM/yyyy HH:mm:ss"_s);
}

}  // namespace quimo::foundation
