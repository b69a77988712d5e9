#include "tsql/traduccion/contexto_interno.h"

namespace quimo::tsql {

std::string Contexto::RanuraSql(Ranura ranura) {
    for (std::size_t i = 0; i < ranuras.size(); ++i) {
        const Ranura& otra = ranuras[i];
        if (otra.origen == ranura.origen && otra.indice == ranura.indice &&
            otra.nombre == ranura.nombre) {
            return "?" + std::to_string(i + 1);
        }
    }
    ranuras.push_back(std::move(ranura));
    return "?" + std::to_string(ranuras.size());
}

std::optional<Tipo> Contexto::TipoDeVariable(const std::string& nombre) const {
    return entorno.tipo_variable ? entorno.tipo_variable(nombre) : std::nullopt;
}

std::string NombreQ(std::size_t indice) { return "\"q" + std::to_string(indice + 1) + "\""; }

}  // namespace quimo::tsql
