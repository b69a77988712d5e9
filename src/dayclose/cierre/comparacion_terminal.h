#pragma once

#include <optional>
#include <vector>

#include <QStringList>
#include <QVector>

#include "dayclose/terminales/base_terminal.h"
#include "foundation/cls_ado.h"

namespace quimo::dayclose {

/// Whether a terminal's row and a central one say the same: every column that an insert writes is
/// equal, in the form of an insert or, where the two differ, in that of an update. A column that no
/// update writes and that is empty in the central row is not compared.
class ComparadorDeFilas {
public:
    explicit ComparadorDeFilas(const DefCopia& copia);

    /// The place of the first column of an insert that differs; nothing when none does. `central`
    /// holds those columns in their order.
    ResultadoCierre<std::optional<std::size_t>> PrimeraDistinta(
        const BaseTerminal::Renglon& renglon, const data::Fila& central) const;

private:
    ResultadoCierre<bool> Igual(const BaseTerminal::Renglon& renglon, std::size_t i,
                                const QVariant& central) const;

    std::vector<std::optional<Forma>> al_modificar_;  // by column of an insert
};

/// What a copy of one table would meet.
struct ComparacionTabla {
    QString tabla;
    qint64 nuevas = 0;
    qint64 iguales = 0;
    qint64 distintas = 0;
};

/// What a copy of a terminal's file would meet in the central database.
struct Comparacion {
    static constexpr qsizetype kEjemplosMax = 20;

    QVector<ComparacionTabla> tablas;
    /// The first rows that differ: table, key, column and both values.
    QStringList ejemplos;

    qint64 Nuevas() const { return Suma(&ComparacionTabla::nuevas); }
    qint64 Iguales() const { return Suma(&ComparacionTabla::iguales); }
    qint64 Distintas() const { return Suma(&ComparacionTabla::distintas); }

private:
    qint64 Suma(qint64 ComparacionTabla::*cual) const {
        qint64 suma = 0;
        for (const ComparacionTabla& tabla : tablas)
            suma += tabla.*cual;
        return suma;
    }
};

/// Compares every sales row of a terminal's file with the central database, whatever day it belongs
/// to. Writes nothing.
ResultadoCierre<Comparacion> CompararTerminal(foundation::ClsAdo& ado, const BaseTerminal& base);

}  // namespace quimo::dayclose
