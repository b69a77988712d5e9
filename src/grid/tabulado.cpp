#include "grid/tabulado.h"

namespace quimo::grid {

namespace {

constexpr qsizetype kPegadoMax = qsizetype{1024} * 1024;

}  // namespace

QString LineaTabulada(QStringList celdas) {
    for (QString& celda : celdas)
        celda.replace(u'\t', u' ').replace(u'\n', u' ').replace(u'\r', u' ');
    return celdas.join(u'\t');
}

QString TextoTabulado(const Rejilla& rejilla, const QVector<qsizetype>& filas) {
    QStringList lineas;
    for (const qsizetype fila : filas) {
        QStringList celdas;
        for (qsizetype c = 0; c < rejilla.Columnas(); ++c)
            celdas << rejilla.En(fila, c).plano;
        lineas << LineaTabulada(celdas);
    }
    return lineas.join(u'\n');
}

std::optional<QVector<QStringList>> LeerTabulado(const QString& texto) {
    if (texto.size() > kPegadoMax) return std::nullopt;
    QString limpio = texto;
    limpio.remove(u'\r');
    if (limpio.endsWith(u'\n')) limpio.chop(1);
    QVector<QStringList> lineas;
    for (const QString& linea : limpio.split(u'\n'))
        lineas << linea.split(u'\t');
    return lineas;
}

}  // namespace quimo::grid
