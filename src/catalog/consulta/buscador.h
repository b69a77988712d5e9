#pragma once

#include <functional>

#include <QVector>

#include "data/recordset.h"

namespace quimo::catalog {

/// A bound field in which rows can be looked for.
struct CampoBusqueda {
    QString titulo;   ///< its caption
    QString columna;  ///< its column in the record set; one that the set does not have is left out
    /// How the editor shows a value, where it shows something else than the value itself (the text
    /// that stands for a code).
    std::function<QString(const QVariant&)> visible = {};
};

enum class ModoBusqueda { Contiene, Empieza, Igual };

struct CriterioBusqueda {
    static constexpr qsizetype kTodos = -1;

    QString texto;
    ModoBusqueda modo = ModoBusqueda::Contiene;
    qsizetype campo = kTodos;  ///< place in the list of fields; flags only when chosen by name
    bool operator==(const CriterioBusqueda&) const = default;
};

enum class Hallazgo {
    SinTexto,        ///< nothing was asked for
    Nada,            ///< no row matches; the current row stays
    Hallado,         ///< the matching row is current
    DesdePrincipio,  ///< the same, after going past the last row
    Unico,           ///< the current row is the only one that matches
};

/// Finds a row of an editor's record set by what its fields show, without regard to case or
/// accents, and makes it the current one. Numbers are compared as they are shown, thousands and
/// signs left out, with a decimal point or comma; dates as dd/mm/yyyy.
class Buscador {
public:
    Buscador(data::RecordsetPtr filas, QVector<CampoBusqueda> campos);

    const QVector<CampoBusqueda>& Campos() const { return campos_; }
    /// Goes to the first row that matches.
    Hallazgo Primero(const CriterioBusqueda& criterio);
    /// Goes to the next one after the current row, once past the last row to the first.
    Hallazgo Siguiente(const CriterioBusqueda& criterio);

    /// What an outcome is told as; of a row that was found, its first two fields.
    QString Mensaje(Hallazgo hallazgo, const CriterioBusqueda& criterio) const;

private:
    struct Patron;
    struct Lugar {
        qsizetype campo;
        qsizetype columna;
    };
    Hallazgo Recorrer(const CriterioBusqueda& criterio, qsizetype desde);
    bool Coincide(const data::Fila& fila, const QVector<Lugar>& lugares,
                  const Patron& patron) const;
    bool Coincide(const QVariant& valor, const Lugar& lugar, const Patron& patron) const;
    QVector<Lugar> LugaresDe(qsizetype campo) const;
    QString Visible(const QVariant& valor, qsizetype campo) const;

    data::RecordsetPtr filas_;
    QVector<CampoBusqueda> campos_;
};

}  // namespace quimo::catalog
