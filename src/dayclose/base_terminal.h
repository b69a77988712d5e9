#pragma once

#include <functional>

#include <QString>

#include "dayclose/interrupcion.h"
#include "dayclose/tablas_ventas.h"
#include "jet/base_datos.h"

namespace quimo::dayclose {

/// The sales of one terminal, as its local copy holds them. Read only.
class BaseTerminal {
public:
    /// A file that is missing, cut short, damaged, enciphered or of another format is refused with
    /// the terminal's name and the reason.
    static ResultadoCierre<BaseTerminal> Abrir(const QString& archivo, const QString& terminal);

    /// Checks pages, rows and indexes against each other. Damage that a scan would not notice is
    /// refused here with what was found first.
    ResultadoCierre<void> Verificar() const;

    /// The eight figures over the whole file; NULL counts as 0 in sums. A sum that leaves the range
    /// of money is refused.
    ResultadoCierre<ValoresCifras> Contar() const;

    /// One row of a sales table, its values asked for by the column's name in the declaration.
    class Renglon {
    public:
        /// The value as it is written into a statement; NULL in any form is "NULL". A value that no
        /// statement can carry (an impossible date, bytes) is refused.
        ResultadoCierre<QString> Literal(const char16_t* columna, Forma forma) const;

    private:
        friend class BaseTerminal;
        const jet::Fila* fila_ = nullptr;
        const std::vector<std::pair<const char16_t*, std::size_t>>* lugares_ = nullptr;
    };
    using Visita = std::function<ResultadoCierre<void>(const Renglon&)>;

    /// Hands every row of a declared table to `visitar`, in the order of the file, and stops at its
    /// first failure. A table or column that the file lacks is refused by name.
    ResultadoCierre<void> Recorrer(const DefCopia& copia, const Visita& visitar) const;

private:
    BaseTerminal(jet::BaseDatos base, QString terminal)
        : base_(std::move(base)), terminal_(std::move(terminal)) {}

    ResultadoCierre<jet::Tabla> Tabla(const char16_t* nombre) const;
    ResultadoCierre<std::size_t> Columna(const jet::Tabla& tabla, const char16_t* nombre) const;
    QString Sobre() const;
    /// Amounts that money cannot hold together; the largest of them is told.
    Interrupcion SumaInservible(const DefCifra& cifra, base::Dinero mayor) const;

    jet::BaseDatos base_;
    QString terminal_;
};

/// A terminal's value as a literal of a statement.
ResultadoCierre<QString> LiteralDeTerminal(const jet::Valor& valor, Forma forma);

}  // namespace quimo::dayclose
