#pragma once

#include <optional>
#include <vector>

#include "dayclose/terminales/base_terminal.h"
#include "foundation/cls_ado.h"

namespace quimo::dayclose {

/// Looks up which rows of a terminal's table the central database holds: those of a group in one
/// question, and in the words of the copy for a group of one.
class BusquedaCentral {
public:
    /// Rows that are looked up together.
    using Grupo = std::vector<const BaseTerminal::Renglon*>;
    /// DelDia: a table whose declaration says so is searched among the closing date's orders only.
    enum class Alcance { DelDia, Todas };

    BusquedaCentral(foundation::ClsAdo& ado, const DefCopia& copia, const QString& fecha);

    /// The key as one number (clave_entera.h); nothing for one that is not made of whole numbers,
    /// which only the server can compare.
    std::optional<quint64> Clave(const BaseTerminal::Renglon& renglon) const;
    /// Cuts rows, in their order, into groups that can be looked up at once: no key stands twice in
    /// one, and a key that is no number stands alone.
    std::vector<Grupo> EnGrupos(std::span<const BaseTerminal::Renglon> renglones) const;
    /// "ID_Comanda=7 AND Num_Cuenta=1"
    ResultadoCierre<QString> Condicion(const BaseTerminal::Renglon& renglon) const;

    /// For each row of the group whether it is there.
    ResultadoCierre<std::vector<bool>> Presentes(const Grupo& grupo, Alcance alcance);
    /// For each row of the group the central values of the columns of an insert, wherever it is;
    /// nothing when it is not there.
    ResultadoCierre<std::vector<std::optional<data::Fila>>> Filas(const Grupo& grupo);

private:
    ResultadoCierre<std::vector<bool>> DelAlcance(const Grupo& grupo, Alcance alcance);
    ResultadoCierre<QString> DeVarios(const Grupo& grupo) const;
    ResultadoCierre<QString> Donde(const Grupo& grupo, Alcance alcance) const;
    ResultadoCierre<quint64> ClaveCentral(const data::Fila& fila) const;

    foundation::ClsAdo& ado_;
    const DefCopia& copia_;
    QString tabla_;
    QString columnas_clave_;
    QString columnas_insertar_;
    QString fecha_;
};

}  // namespace quimo::dayclose
