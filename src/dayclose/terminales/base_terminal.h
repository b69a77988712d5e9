#pragma once

#include <functional>
#include <span>

#include <QString>

#include "dayclose/terminales/interrupcion.h"
#include "dayclose/terminales/tablas_ventas.h"
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

    /// One row of a sales table. Columns are asked for by their place in the declaration's lists. A
    /// value that no statement can carry (an impossible date, bytes) is refused with its place.
    class Renglon {
    public:
        const jet::Valor& Clave(std::size_t i) const;
        const jet::Valor& AlInsertar(std::size_t i) const;
        /// Type of the terminal's column behind AlInsertar(i).
        jet::TipoColumna TipoAlInsertar(std::size_t i) const;

        /// The values as they are written into a statement; NULL in any form is "NULL".
        ResultadoCierre<QString> LiteralDeClave(std::size_t i) const;
        ResultadoCierre<QString> LiteralAlModificar(std::size_t i) const;
        ResultadoCierre<QString> LiteralAlInsertar(std::size_t i) const;
        /// The same behind what `valores` holds, which is left unfinished by a failure.
        ResultadoCierre<void> AgregarAlInsertar(QString& valores, std::size_t i) const;
        /// The same for another form of the value than the declared one.
        ResultadoCierre<QString> LiteralAlInsertar(std::size_t i, Forma forma) const;

    private:
        friend class BaseTerminal;
        struct Lugares;
        const jet::Fila* fila_ = nullptr;
        const Lugares* lugares_ = nullptr;
    };
    using Visita = std::function<ResultadoCierre<void>(std::span<const Renglon>)>;

    /// Hands the rows of a declared table to `visitar`, in the order of the file and up to `tanda`
    /// at once, and stops at its first failure. They are valid until it returns. A table or column
    /// that the file lacks is refused by name.
    ResultadoCierre<void> Recorrer(const DefCopia& copia, std::size_t tanda,
                                   const Visita& visitar) const;

    const QString& Terminal() const { return terminal_; }

private:
    BaseTerminal(jet::BaseDatos base, QString terminal)
        : base_(std::move(base)), terminal_(std::move(terminal)) {}

    ResultadoCierre<jet::Tabla> Tabla(const char16_t* nombre) const;
    ResultadoCierre<std::size_t> Columna(const jet::Tabla& tabla, const char16_t* nombre) const;
    ResultadoCierre<Renglon::Lugares> LugaresDe(const DefCopia& copia,
                                                const jet::Tabla& tabla) const;
    QString Sobre() const;
    /// Amounts that money cannot hold together; the largest of them is told.
    Interrupcion SumaInservible(const DefCifra& cifra, base::Dinero mayor) const;

    jet::BaseDatos base_;
    QString terminal_;
};

/// A terminal's value as a literal of a statement.
ResultadoCierre<QString> LiteralDeTerminal(const jet::Valor& valor, Forma forma);

}  // namespace quimo::dayclose
