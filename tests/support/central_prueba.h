#pragma once

#include <QTemporaryDir>

#include "foundation/cls_ado.h"
#include "support/dialogos_guion.h"

namespace quimo::pruebas {

/// The recorded restaurant's central database, made once and copied for each who asks.
bool CopiarRestaurante(const QString& destino);

/// Gives an employee's groups every right, also one that the recorded restaurant does not know yet.
bool ConcederTodo(foundation::ClsAdo& ado, int id_empleado);

/// A central database of the embedded engine in a folder of its own, with the schema and the
/// catalogues of the recorded day, and a data-access object over it.
class CentralPrueba {
public:
    CentralPrueba();

    foundation::ClsAdo& Ado() { return ado_; }
    DialogosGuion& Dialogos() { return dialogos_; }
    QString Archivo(const QString& nombre) const { return carpeta_.filePath(nombre); }
    /// Runs a statement that must succeed.
    void Ejecutar(const QString& tsql);
    /// The rows of a query that must succeed.
    data::RecordsetPtr Abrir(const QString& consulta);

private:
    QTemporaryDir carpeta_;
    RelojFijo reloj_;
    DialogosGuion dialogos_;
    foundation::ClsBitacora bitacora_;
    foundation::ClsAdo ado_;
};

}  // namespace quimo::pruebas
