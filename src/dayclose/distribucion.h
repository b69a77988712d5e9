#pragma once

#include <span>

#include "dayclose/contexto_cierre.h"
#include "jet/base_datos.h"

namespace quimo::dayclose {

/// One catalogue that every terminal receives: the rows of "SELECT columnas FROM fuentes WHERE
/// condicion" go to the table `destino` of the terminal's database, into the columns that the
/// result's field names name.
struct DefCatalogo {
    const char16_t* destino;
    const char16_t* columnas;
    const char16_t* fuentes = nullptr;    ///< nullptr: the destination's own name
    const char16_t* condicion = nullptr;  ///< nullptr: every row
};

/// In the order in which they are copied.
std::span<const DefCatalogo> Catalogos();

/// A terminal's new database while it is being filled: a copy of the template in the program's
/// folder, with the current catalogues, adapted to one terminal after the other.
class BaseNueva {
public:
    /// Copies the template over the working file and fills in the catalogues.
    static ResultadoCierre<BaseNueva> Preparar(foundation::ClsAdo& ado, const QString& carpeta);

    /// Gives it a terminal's menu (when it is another than the one before), number and item
    /// counter, and writes the working file.
    ResultadoCierre<void> Adaptar(const Terminal& terminal);
    const QString& Archivo() const { return archivo_; }

private:
    BaseNueva(foundation::ClsAdo& ado, jet::BaseDatos base, QString archivo)
        : ado_(&ado), base_(std::move(base)), archivo_(std::move(archivo)) {}

    /// The table copy, used for every catalogue.
    ResultadoCierre<void> Copiar(const QString& destino, const QString& columnas,
                                 const QString& fuentes, const QString& condicion);
    ResultadoCierre<void> PonerMenu(int menu);
    ResultadoCierre<void> PonerPrecios(int menu);
    ResultadoCierre<void> PonerParametro(const char16_t* clave, qint64 valor);
    ResultadoCierre<jet::Tabla> Tabla(const QString& nombre) const;
    ResultadoCierre<std::size_t> Columna(const jet::Tabla& tabla, const QString& nombre) const;

    foundation::ClsAdo* ado_;
    jet::BaseDatos base_;
    QString archivo_;
    std::optional<int> menu_;
};

/// The next item counter of a terminal: one more than what follows the terminal's number in the
/// highest item identifier that begins with it, 1 without any.
ResultadoCierre<qint64> SiguienteFolioProductos(foundation::ClsAdo& ado, int terminal);

/// Builds the terminals' new databases, sends them and, last, sets the central counters and
/// forgets the pending close.
ResultadoCierre<void> DistribuirCatalogos(ContextoCierre& contexto, CierrePendiente& cierre);

}  // namespace quimo::dayclose
