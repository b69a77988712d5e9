#pragma once

#include <QString>

#include "base/result.h"

namespace quimo::security {

/// The key that passwords are encrypted with: the text of QUIMO_CLAVE, or the first line of the
/// file named by QUIMO_CLAVE_ARCHIVO. The file must belong to who runs the program and be readable
/// by nobody else. Without a usable key: an error to be shown as it is, never an empty key.
base::Result<QString> LeerClave();

/// The key in a file, under the same conditions.
base::Result<QString> LeerClaveDe(const QString& archivo);

/// Makes a file, readable by its owner alone, with a new random key. A file that exists is refused:
/// whoever loses the key can no longer read the stored passwords.
base::Result<void> CrearArchivoClave(const QString& archivo);

}  // namespace quimo::security
