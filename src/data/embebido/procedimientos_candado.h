#pragma once

#include <span>
#include <string_view>

#include "data/embebido/planes.h"

namespace quimo::data::embebido {

/// The system procedures sp_getapplock and sp_releaseapplock, for locks of the session that nobody
/// shares. A wait has a limit. -999, as after any call that cannot be served, where the file system
/// knows no locks.
class ProcedimientosDeCandado {
public:
    ProcedimientosDeCandado(Sesion& sesion, Planes& planes) : sesion_(sesion), planes_(planes) {}

    static bool EsUno(const tsql::NombreObjeto& nombre);
    Hecho Ejecutar(const tsql::Ejecutar& ejecutar, Marco& marco);

private:
    using Valores = std::map<std::string, ValorConTipo>;
    Resultado<Valores> Argumentos(const tsql::Ejecutar& ejecutar,
                                  std::span<const std::string_view> nombres, Marco& marco);
    Resultado<int> Tomar(const Valores& valores, const std::string& recurso);
    int Esperar(const std::string& recurso, std::int64_t plazo_ms);

    Sesion& sesion_;
    Planes& planes_;
};

}  // namespace quimo::data::embebido
