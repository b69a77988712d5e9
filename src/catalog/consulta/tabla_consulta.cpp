#include "catalog/consulta/tabla_consulta.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include <QCollator>

#include "data/valores_escritos.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

namespace {

template <typename T>
int EnOrden(const T& uno, const T& otro) {
    return uno < otro ? -1 : (otro < uno ? 1 : 0);
}

/// Compares two values of one column that is not a text.
int CompararValores(const QVariant& uno, const QVariant& otro) {
    if (uno.typeId() == qMetaTypeId<base::Dinero>())
        return EnOrden(uno.value<base::Dinero>(), otro.value<base::Dinero>());
    if (uno.typeId() == qMetaTypeId<base::Decimal>())
        return data::Comparar(uno.value<base::Decimal>(), otro.value<base::Decimal>());
    if (uno.typeId() == QMetaType::Double) return EnOrden(uno.toDouble(), otro.toDouble());
    if (uno.typeId() == QMetaType::QDateTime) return EnOrden(uno.toDateTime(), otro.toDateTime());
    return EnOrden(uno.toLongLong(), otro.toLongLong());
}

}  // namespace

TablaConsulta::TablaConsulta(const QStringList& titulos, data::Conjunto conjunto)
    : titulos_(titulos), conjunto_(std::move(conjunto)), orden_(conjunto_.filas.size()) {
    QUIMO_CHECK(titulos_.size() == conjunto_.columnas.size());
    std::iota(orden_.begin(), orden_.end(), 0);
}

QString TablaConsulta::Texto(qsizetype fila, qsizetype columna) const {
    return data::TextoVisible(Valor(fila, columna));
}

void TablaConsulta::Ordenar(qsizetype columna, Sentido sentido) {
    const data::ClaseValor clase = data::ClaseDe(Tipo(columna));
    const bool texto = clase == data::ClaseValor::Texto || clase == data::ClaseValor::Otro;
    std::vector<QCollatorSortKey> claves;
    if (texto) {
        const QCollator cotejo(QLocale(QLocale::Spanish, QLocale::Mexico));
        claves.reserve(static_cast<size_t>(orden_.size()));
        for (const data::Fila& fila : conjunto_.filas)
            claves.push_back(cotejo.sortKey(data::TextoVisible(fila[columna])));
    }
    const auto comparar = [&](qsizetype a, qsizetype b) {
        const QVariant& uno = conjunto_.filas[a][columna];
        const QVariant& otro = conjunto_.filas[b][columna];
        if (!uno.isValid() || !otro.isValid()) return EnOrden(uno.isValid(), otro.isValid());
        if (!texto) return CompararValores(uno, otro);
        return claves[static_cast<size_t>(a)].compare(claves[static_cast<size_t>(b)]);
    };
    std::stable_sort(orden_.begin(), orden_.end(), [&](qsizetype a, qsizetype b) {
        return sentido == Sentido::Ascendente ? comparar(a, b) < 0 : comparar(a, b) > 0;
    });
}

}  // namespace quimo::catalog
