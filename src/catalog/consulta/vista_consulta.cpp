#include "catalog/consulta/vista_consulta.h"

#include "data/valores_escritos.h"

namespace quimo::catalog {

namespace {

using grid::TipoCelda;

TipoCelda TipoDe(const QVariant& valor) {
    const int tipo = valor.typeId();
    if (tipo == qMetaTypeId<base::Dinero>()) return TipoCelda::Moneda;
    if (tipo == qMetaTypeId<base::Decimal>() || tipo == QMetaType::Double) return TipoCelda::Numero;
    if (tipo == QMetaType::Int || tipo == QMetaType::LongLong) return TipoCelda::Entero;
    if (tipo == QMetaType::Bool) return TipoCelda::Casilla;
    if (tipo == QMetaType::QDateTime) return TipoCelda::Fecha;
    return TipoCelda::Texto;
}

}  // namespace

grid::Celda VistaConsulta::En(qsizetype fila, qsizetype columna) const {
    if (fila == 0) {
        const QString& titulo = tabla_.Titulo(columna);
        return {.texto = titulo,
                .plano = titulo,
                .valor = titulo,
                .tipo = TipoCelda::Estatico,
                .negrita = true};
    }
    const QVariant& valor = tabla_.Valor(fila - 1, columna);
    return {.texto = data::TextoVisible(valor),
            .plano = data::TextoPlano(valor),
            .valor = valor,
            .tipo = TipoDe(valor)};
}

}  // namespace quimo::catalog
