#pragma once

#include <QString>
#include <QVector>

#include "jet/base_datos.h"

namespace quimo::dayclose::pruebas {

/// A sale that a terminal makes on: an order of one check with one item, paid.
struct Venta {
    int orden = 0;
    int articulo = 0;
    int pago = 0;
    QString fecha = QStringLiteral("14112026");
};

/// Sells, in the terminal's own file. It fails the test when it cannot.
void Vender(const QString& archivo, const Venta& venta);

/// Gives one column of a row another value; the row is the one whose `clave` has this number.
void CambiarDato(const QString& archivo, const QString& tabla, const QString& clave, int numero,
                 const QString& columna, const jet::Valor& valor);

/// Adds a row: columns not named are NULL, flags false.
void AgregarFila(const QString& archivo, const QString& tabla,
                 const QVector<QPair<QString, jet::Valor>>& valores);

}  // namespace quimo::dayclose::pruebas
