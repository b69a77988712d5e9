#include "data/valores.h"

#include <QByteArray>
#include <QRegularExpression>
#include <QUuid>

#include "base/decimal.h"
#include "base/dinero.h"
#include "data/sql_connection.h"

using namespace Qt::StringLiterals;

namespace quimo::data {

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

/// The text with its thousands' signs taken away and a point for the decimals. Nothing when the
/// thousands are not groups of three.
std::optional<QString> SinMillares(QString numero, QChar millares, QChar decimales) {
    const QString m = QRegularExpression::escape(millares);
    const QRegularExpression forma(u"^-?[0-9]{1,3}(%1[0-9]{3})*(%2[0-9]+)?$"_s.arg(
        m, QRegularExpression::escape(QString(decimales))));
    if (!forma.match(numero).hasMatch()) return std::nullopt;
    return numero.remove(millares).replace(decimales, u'.');
}

}  // namespace

std::optional<QString> NumeroEscrito(const QString& texto) {
    QString numero = texto.simplified().remove(u' ').remove(u'$');
    if (numero.startsWith(u'+')) numero.remove(0, 1);
    const qsizetype coma = numero.lastIndexOf(u',');
    const qsizetype punto = numero.lastIndexOf(u'.');
    if (coma >= 0) {
        const QChar decimal = coma > punto && punto >= 0 ? u',' : u'.';
        const auto limpio = SinMillares(numero, decimal == u',' ? u'.' : u',', decimal);
        // "0,125" is less than one: nobody writes thousands behind a zero.
        static const QRegularExpression kTrasCero(u"^-?0,"_s);
        if (limpio && !numero.contains(kTrasCero)) {
            numero = *limpio;
        } else if (punto < 0 && numero.count(u',') == 1) {
            numero.replace(u',', u'.');
        } else {
            return std::nullopt;
        }
    }
    static const QRegularExpression kNumero(u"^-?([0-9]+\\.?[0-9]*|\\.[0-9]+)$"_s);
    if (!kNumero.match(numero).hasMatch()) return std::nullopt;
    if (numero.endsWith(u'.')) numero.chop(1);
    numero.replace(QRegularExpression(u"^(-?)\\."_s), u"\\10."_s);
    const auto leido = base::Decimal::DeTexto(numero.toStdString());
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

}  // namespace quimo::data
