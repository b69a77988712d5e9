#pragma once

#include <QString>

#include "base/result.h"
#include "demo/central.h"

namespace quimo::demo {

/// What to log in with.
struct Acceso {
    QString usuario;
    QString contrasena;
};

/// The demonstration's first manager and their password, which is made, like the key file, when it
/// is not there yet.
base::Result<Acceso> PrepararAcceso(Central& central, const QString& archivo_clave);

}  // namespace quimo::demo
