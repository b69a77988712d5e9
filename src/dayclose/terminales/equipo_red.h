#pragma once

#include "dayclose/terminales/fallo_archivo.h"
#include "dayclose/terminales/red_conf.h"

namespace quimo::dayclose {

/// Finds a computer and makes sure that it answers on its port: its numeric IPv4 address. The name
/// is looked up as the system is set up to (hosts file, DNS, and mDNS or NetBIOS where their
/// modules are installed). It waits at most `plazo_s` for the name and `plazo_s` for the computer.
/// 52 when there is none or it does not answer; `ruta` is what the failure speaks of.
ResultadoArchivo<QString> LocalizarEquipo(const QString& equipo, const AccesoRed& acceso,
                                          const QString& ruta);

}  // namespace quimo::dayclose
