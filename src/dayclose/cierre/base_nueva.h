#pragma once

#include <optional>
#include <span>

#include "dayclose/cierre/contexto_cierre.h"
#include "dayclose/terminales/parametros_terminal.h"
#include "jet/base_datos.h"

namespace quimo::dayclose {

/// One catalogue that every terminal receives: the rows of "SELECT columnas FROM fuentes WHERE
/// condicion" go to the table `destino` of the terminal's database, into the columns that the
/// result's field names name.
struct DefCatalogo {
    const char16_t* destino = nullptr;
    const char16_t* columnas = nullptr;
    const char16_t* fuentes = nullptr;    ///< nullptr: the destination's own name
    const char16_t* condicion = nullptr;  ///< nullptr: every row
    /// Only rows that hold today by their columns Fecha_Inicio_X and Fecha_Fin_X; nullptr: any.
    const char16_t* vigencia = nullptr;
};

/// In the order in which they are copied.
std::span<const DefCatalogo> Catalogos();

/// Counters of Parametros that a terminal has gone beyond: it gets no lower ones.
struct ContadoresMinimos {
    qint64 comanda = 0;
    qint64 pago = 0;
};

/// A terminal's new database while it is being filled: a copy of the template in the program's
/// folder, with the current catalogues, adapted to one terminal after the other.
class BaseNueva {
public:
    /// Copies the template over the working file and fills in the catalogues.
    static ResultadoCierre<BaseNueva> Preparar(foundation::ClsAdo& ado, const QString& carpeta);
    /// Fills a template in memory with today's catalogues, for every active terminal's menu, and
    /// forgets it: what would stop the close at its last step is told before its first.
    static ResultadoCierre<void> Ensayar(foundation::ClsAdo& ado, const QString& carpeta);

    /// Gives it a terminal's menu (when it is another than the one before), number and item
    /// counter, and writes the working file.
    ResultadoCierre<void> Adaptar(const Terminal& terminal, const ContadoresMinimos& minimos = {});
    const QString& Archivo() const { return archivo_; }
    /// What could not be sent as it is, one line each.
    const QStringList& Avisos() const { return avisos_; }

private:
    BaseNueva(foundation::ClsAdo& ado, jet::BaseDatos base, QString archivo)
        : ado_(&ado), base_(std::move(base)), archivo_(std::move(archivo)) {}

    ResultadoCierre<void> Llenar();
    /// The table copy, used for every catalogue.
    ResultadoCierre<void> Copiar(const QString& destino, const QString& columnas,
                                 const QString& fuentes, const QString& condicion);
    ResultadoCierre<void> PonerMenu(int menu);
    ResultadoCierre<void> PonerPrecios(int menu);
    ResultadoCierre<void> PonerTerminal(const Terminal& terminal, const ContadoresMinimos& minimos);
    ResultadoCierre<void> PonerParametro(const char16_t* clave, qint64 valor);
    ResultadoCierre<jet::Tabla> Tabla(const QString& nombre) const;
    ResultadoCierre<std::size_t> Columna(const jet::Tabla& tabla, const QString& nombre) const;

    foundation::ClsAdo* ado_;
    jet::BaseDatos base_;
    QString archivo_;
    QStringList avisos_;
    ParametrosTerminal propios_;  ///< as the central database has them
    bool subidos_ = false;        ///< the working file's counters are one terminal's own
    std::optional<int> menu_;
};

/// The active terminals, by menu.
ResultadoCierre<QVector<Terminal>> TerminalesPorMenu(foundation::ClsAdo& ado);

}  // namespace quimo::dayclose
