#pragma once

#include <QString>

#include "app/demo/central.h"
#include "base/result.h"

namespace quimo::app::demo {

/// What to log in with.
struct Acceso {
    QString usuario;
    QString contrasena;
};

/// The demonstration's first manager and their password, which is made, like the key file, when it
/// is not there yet.
base::Result<Acceso> PrepararAcceso(Central& central, const QString& archivo_clave);

}  // namespace quimo::app::demo
