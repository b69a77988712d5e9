#pragma once

#include <initializer_list>
#include <string_view>
#include <vector>

#include <QString>

#include "base/result.h"
#include "demo/ventas.h"
#include "jet/base_datos.h"

namespace quimo::demo {

/// All rows of a table with the named columns, in that order.
base::Result<std::vector<jet::Fila>> LeerTabla(const jet::BaseDatos& base, std::string_view tabla,
                                               std::initializer_list<std::string_view> columnas);

/// The highest order and payment numbers of a terminal's file, 0 without sales.
struct NumerosUsados {
    int comanda = 0;
    int pago = 0;
};
base::Result<NumerosUsados> LeerNumerosUsados(const jet::BaseDatos& base);

/// Writes a day's sales into a terminal's file and moves its item counter on. The file is replaced
/// whole or stays as it was. Refuses a file that already has sales (Restriccion).
base::Result<void> VenderEnTerminal(jet::BaseDatos& base, const VentasDia& ventas);

}  // namespace quimo::demo
