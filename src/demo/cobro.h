#pragma once

#include <vector>

#include "demo/catalogo.h"
#include "demo/suerte.h"
#include "demo/ventas.h"

namespace quimo::demo {

/// What happens to items after they were ordered, by the rules of the terminal: some are voided,
/// some are given away. `apertura` is when the order was opened.
void AnularYObsequiar(CuentaVendida& cuenta, const QDateTime& apertura, const Catalogo& catalogo,
                      Suerte& suerte);

/// Settles a check at about `momento`: its payments add up to its total.
void Pagar(CuentaVendida& cuenta, const QDateTime& momento, const Catalogo& catalogo,
           Suerte& suerte);

}  // namespace quimo::demo
