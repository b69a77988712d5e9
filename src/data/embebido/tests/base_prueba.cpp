#include "base_prueba.h"

#include <QDateTime>
#include <QUuid>

namespace quimo::data {

QString ATexto(const QVariant& valor) {
    const int tipo = valor.typeId();
    if (!valor.isValid()) return QStringLiteral("NULL");
    if (tipo == QMetaType::Bool) return valor.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    if (tipo == qMetaTypeId<base::Dinero>()) {
        return QString::fromStdString(valor.value<base::Dinero>().ATexto());
    }
    if (tipo == qMetaTypeId<base::Decimal>()) {
        return QString::fromStdString(valor.value<base::Decimal>().ATexto());
    }
    if (tipo == QMetaType::Double) return QString::number(valor.toDouble(), 'g', 15);
    if (tipo == QMetaType::QDateTime) {
        return valor.toDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
    }
    if (tipo == QMetaType::QByteArray) {
        return QStringLiteral("0x") + QString::fromLatin1(valor.toByteArray().toHex().toUpper());
    }
    if (tipo == QMetaType::QUuid) return valor.toUuid().toString(QUuid::WithoutBraces).toUpper();
    return valor.toString();
}

}  // namespace quimo::data
