#include <algorithm>

#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/valores/conversion.h"

namespace quimo::tsql {

Hecho Igualar(Termino& a, Termino& b, OrdenFecha orden) {
    if (a.nulo || b.nulo || a.tipo == b.tipo) {
        if (a.tipo.EsAncho() && b.tipo.EsAncho()) {
            a.sql = "q_clave(" + a.sql + ",0)";
            b.sql = "q_clave(" + b.sql + ",0)";
            a.fuerza = b.fuerza = Fuerza::Atomo;
        }
        return {};
    }
    Termino& menor = a.tipo.clase < b.tipo.clase ? a : b;
    Termino& mayor = a.tipo.clase < b.tipo.clase ? b : a;
    if (!(mayor.tipo.EsFecha() && menor.tipo.EsNumero())) {
        QUIMO_TRY(const bool permitida, PermiteImplicita(menor.tipo, mayor.tipo));
        QUIMO_CHECK(permitida);
    }
    if (a.tipo.EsTexto() && b.tipo.EsTexto()) return {};
    if (!menor.tipo.EsExacto() || !mayor.tipo.EsExacto()) {
        Tipo comun = mayor.tipo;
        if (comun.EsReal()) comun = TipoReal();
        if (comun.clase == Clase::Numeric && menor.tipo.EsTexto())
            comun.precision = kDigitosMaximos;
        QUIMO_TRY(menor, Convertir(std::move(menor), comun, orden));
        if (!mayor.tipo.EsAncho() && !menor.tipo.EsAncho()) return {};
    }
    const int escala = std::max(a.tipo.escala, b.tipo.escala);
    const bool ancho = a.tipo.EsAncho() || b.tipo.EsAncho();
    for (Termino* t : {&a, &b}) {
        if (ancho) {
            t->sql = "q_clave(" + t->sql + "," + std::to_string(escala - t->tipo.escala) + ")";
            t->fuerza = Fuerza::Atomo;
        } else if (t->tipo.escala < escala) {
            t->sql = Escalar(*t, t->tipo.escala, escala);
            t->fuerza = Fuerza::Producto;
        }
    }
    return {};
}

std::string Cotejada(const Termino& termino) {
    if (!termino.tipo.EsTexto()) return termino.sql;
    return Par(termino, Fuerza::Cotejo) + " COLLATE QUIMO";
}

std::string LadoComparado(const Termino& termino) {
    return termino.tipo.EsTexto() ? Cotejada(termino) : Par(termino, Fuerza::Orden);
}

std::string ClaveDeOrden(const Termino& termino) {
    return termino.tipo.EsAncho() ? "q_clave(" + termino.sql + ",0)" : Cotejada(termino);
}

Resultado<Termino> CompararTerminos(std::string_view operador, Termino a, Termino b,
                                    OrdenFecha orden) {
    QUIMO_TRY_VOID(Igualar(a, b, orden));
    const bool texto = a.tipo.EsTexto() || b.tipo.EsTexto();
    const bool igual = operador == "=" || operador == "<>";
    const Fuerza fuerza = igual ? Fuerza::Igual : Fuerza::Orden;
    const Fuerza derecha = MasFuerte(fuerza);
    const std::string izquierda =
        texto && !a.nulo ? Par(a, Fuerza::Cotejo) + " COLLATE QUIMO" : Par(a, derecha);
    return Verdad(izquierda + std::string(operador) + Par(b, derecha), fuerza);
}

}  // namespace quimo::tsql
