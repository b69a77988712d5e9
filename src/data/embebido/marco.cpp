#include "data/embebido/marco.h"

namespace quimo::data::embebido {

Resultado<ValorConTipo*> Marco::Variable(const std::string& nombre) {
    const auto variable = variables.find(nombre);
    if (variable == variables.end()) return tsql::VariableSinDeclarar(nombre);
    return &variable->second;
}

void Marco::Terminar(Sesion& sesion, Salida& salida) {
    for (const std::string& nombre : temporales) {
        tsql::NombreObjeto objeto;
        objeto.objeto = nombre;
        const auto tabla = sesion.Catalogo().BuscarTabla(objeto);
        if (!tabla || !tabla->temporal) continue;
        const bool olvidada = sesion.Catalogo().Borrar(*tabla).has_value();
        QUIMO_CHECK(olvidada);
        const auto borrada = sesion.Base().Correr("DROP TABLE " + tabla->sql);
        if (!borrada) salida.Informar(borrada.error());
    }
    temporales.clear();
}

}  // namespace quimo::data::embebido
