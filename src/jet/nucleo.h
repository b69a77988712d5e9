#pragma once

#include <memory>
#include <utility>

#include "jet/almacen.h"
#include "jet/base_datos.h"

namespace quimo::jet {

/// What the objects of one open database share.
struct Nucleo {
    std::unique_ptr<Almacen> almacen;
    Modo modo = Modo::Lectura;

    Nucleo(std::unique_ptr<Almacen> a, Modo m) : almacen(std::move(a)), modo(m) {}
};

}  // namespace quimo::jet
