#include "app/comandos/consola.h"
#include "demo/demo.h"

namespace quimo::app {

Estado ComandoDemo(const Argumentos& argumentos, const Entorno& entorno) {
    DialogosConsola dialogos;
    const auto resumen = demo::PrepararDemo(argumentos.palabras[0], dialogos, entorno.reloj);
    if (!resumen) return Fallar(resumen.error());
    for (const QString& linea : demo::Lineas(*resumen))
        Escribir(linea);
    return kHecho;
}

}  // namespace quimo::app
