#pragma once

#include <QString>

#include "base/result.h"

namespace quimo::foundation {

/// How stored passwords are read, as a port: the ciphers stand above this folder.
class CifradoContrasenas {
public:
    CifradoContrasenas() = default;
    CifradoContrasenas(const CifradoContrasenas&) = delete;
    CifradoContrasenas& operator=(const CifradoContrasenas&) = delete;
    virtual ~CifradoContrasenas() = default;

    /// Gets the key. An error (to be shown as it is) when there is none.
    virtual base::Result<void> Preparar() = 0;
    /// A stored password in clear; an error when what is stored cannot be read.
    virtual base::Result<QString> Descifrar(const QString& guardada) const = 0;
};

}  // namespace quimo::foundation
