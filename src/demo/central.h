#pragma once

#include <memory>

#include <QString>
#include <QVector>

#include "base/result.h"
#include "dayclose/cierre/contexto_cierre.h"
#include "demo/jornada.h"
#include "demo/ventas.h"
#include "foundation/cls_ado.h"
#include "foundation/conector.h"

namespace quimo::demo {

/// The demonstration's central database, open. The ports must outlive it.
class Central {
public:
    static base::Result<std::unique_ptr<Central>> Abrir(const QString& archivo,
                                                        foundation::SiFalta si_falta,
                                                        foundation::Dialogos& dialogos,
                                                        const data::Reloj& reloj);

    foundation::ClsAdo& Ado() { return ado_; }
    data::SqlConnection& Conexion() { return ado_.Conexion(); }

    /// The current working date. An error when the parameter has no usable value.
    base::Result<DiaDeTrabajo> FechaTrabajo();
    /// DIRTERMBD with slashes.
    base::Result<QString> DirectorioTerminal();
    /// Active terminals by number.
    base::Result<QVector<dayclose::Terminal>> Terminales();
    /// The next free numbers: the counters', or the first ones above all that is there.
    base::Result<Folios> LeerFolios();
    base::Result<void> GuardarFolios(const Folios& folios);
    /// Adds a day's sales to the history. The caller decides about the transaction.
    base::Result<void> Agregar(const VentasDia& ventas);

private:
    Central(foundation::SiFalta si_falta, foundation::Dialogos& dialogos, const data::Reloj& reloj);
    base::Result<QVariant> Parametro(const QString& columna, const QString& clave);

    foundation::ClsBitacora bitacora_;
    foundation::ClsAdo ado_;
};

/// When guests come to a terminal.
Ritmo RitmoDe(const dayclose::Terminal& terminal);

}  // namespace quimo::demo
