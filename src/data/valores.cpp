#include "data/valores.h"

#include <QByteArray>
#include <QUuid>

#include "base/decimal.h"
#include "base/dinero.h"
#include "data/sql_connection.h"

using namespace Qt::StringLiterals;

namespace quimo::data {

namespace {

constexpr QStringView kFormaDeFecha = u"dd/MM/yyyy";

}  // namespace

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
        if (momento.time() == QTime(0, 0)) return TextoDeFecha(momento.date());
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

QString TextoDeFecha(const QDate& dia) { return dia.toString(kFormaDeFecha); }

std::optional<QDate> FechaDeTexto(const QString& texto) {
    const QDate dia = QDate::fromString(texto.left(kFormaDeFecha.size()), kFormaDeFecha);
    return dia.isValid() ? std::optional(dia) : std::nullopt;
}

QString FechaHoraSql(const QDateTime& momento) {
    return momento.toString(u"dd/MM/yyyy HH:mm:ss"_s);
}

}  // namespace quimo::data
