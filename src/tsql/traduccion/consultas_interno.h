#pragma once

#include "tsql/traduccion/contexto_interno.h"
#include "tsql/traduccion/expresiones_interno.h"
#include "tsql/traduccion/fuentes_interno.h"

namespace quimo::tsql {

/// Writes queries. Owns the translators of what stands inside one.
class TraductorConsultas final : public Subconsultas {
public:
    explicit TraductorConsultas(Contexto& contexto)
        : contexto_(contexto),
          expresiones_(contexto, *this),
          fuentes_(contexto, expresiones_, *this) {}

    Resultado<ConsultaSql> ConsultaEn(const Consulta& consulta, Ambito* padre) override;

    TraductorExpresiones& Expresiones() { return expresiones_; }
    TraductorFuentes& Fuentes() { return fuentes_; }

private:
    Resultado<ConsultaSql> Combinada(const Consulta& consulta, Ambito* padre);
    Resultado<std::string> OrdenDeCombinada(const std::vector<OrdenItem>& orden,
                                            const ConsultaSql& combinada);
    Resultado<ConsultaSql> Simple(const Consulta& consulta, Ambito* padre);
    Resultado<ConsultaSql> SimpleDesde(const Consulta& consulta, const std::string& fuentes,
                                       Ambito& ambito);
    Resultado<std::vector<Termino>> Lista(const Seleccion& seleccion, Ambito& ambito,
                                          ConsultaSql& salida);
    Resultado<std::vector<Termino>> Agrupar(const Seleccion& seleccion, Ambito& ambito);
    Resultado<std::string> Ordenar(const std::vector<OrdenItem>& orden, bool distinto,
                                   const std::vector<Termino>& terminos, const ConsultaSql& salida,
                                   Ambito& ambito);
    Resultado<std::string> ItemDeOrden(const OrdenItem& item, bool distinto,
                                       const std::vector<Termino>& terminos,
                                       const ConsultaSql& salida, Ambito& ambito);
    Resultado<std::string> Limite(const Seleccion& seleccion, const std::string& sql);

    Contexto& contexto_;
    TraductorExpresiones expresiones_;
    TraductorFuentes fuentes_;
};

}  // namespace quimo::tsql
