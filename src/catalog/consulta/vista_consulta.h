#pragma once

#include "catalog/consulta/tabla_consulta.h"
#include "grid/rejilla.h"

namespace quimo::catalog {

/// The rows of a search result as they are shown, below their captions, to be copied or exported.
/// The table must outlive the view.
class VistaConsulta final : public grid::Rejilla {
public:
    explicit VistaConsulta(const TablaConsulta& tabla) : tabla_(tabla) {}

    QString Nombre() const override { return QStringLiteral("Consulta"); }
    qsizetype Filas() const override { return tabla_.Filas() + 1; }
    qsizetype Columnas() const override { return tabla_.Columnas(); }
    qsizetype FilasDeTitulos() const override { return 1; }
    grid::Celda En(qsizetype fila, qsizetype columna) const override;

private:
    const TablaConsulta& tabla_;
};

}  // namespace quimo::catalog
