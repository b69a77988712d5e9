#include <algorithm>
#include <array>

#include "tsql/parser_interno.h"
#include "tsql/texto.h"

namespace quimo::tsql {

bool Parser::EmpiezaConsulta(std::size_t adelante) const {
    const std::size_t limite = adelante + kNivelesMaximos;
    while (adelante < limite && EsSigno("(", adelante))
        ++adelante;
    return EsPalabra("SELECT", adelante);
}

Resultado<ConsultaPtr> Parser::LeerConsulta() {
    const Nivel nivel(niveles_);
    QUIMO_TRY_VOID(Profundo());
    QUIMO_TRY(const ConsultaPtr cuerpo, Union());
    if (!EsPalabra("ORDER")) return cuerpo;
    Consulta consulta = *cuerpo;
    QUIMO_TRY(consulta.orden, Orden());
    return ConsultaPtr(std::make_shared<const Consulta>(std::move(consulta)));
}

Resultado<ConsultaPtr> Parser::Combinar(Combinacion como, ConsultaPtr a, ConsultaPtr b) const {
    Consulta consulta;
    consulta.combinacion = como;
    consulta.altura = std::max(a->altura, b->altura) + 1;
    if (consulta.altura > kNivelesMaximos) return DemasiadoAnidado();
    consulta.izquierda = std::move(a);
    consulta.derecha = std::move(b);
    return ConsultaPtr(std::make_shared<const Consulta>(std::move(consulta)));
}

Resultado<ConsultaPtr> Parser::Union() {
    QUIMO_TRY(ConsultaPtr izquierda, Interseccion());
    while (EsPalabra("UNION") || EsPalabra("EXCEPT")) {
        Combinacion como = EsPalabra("UNION") ? Combinacion::Union : Combinacion::Excepto;
        ++i_;
        if (como == Combinacion::Union && Aceptar("ALL")) como = Combinacion::UnionTodo;
        QUIMO_TRY(ConsultaPtr derecha, Interseccion());
        QUIMO_TRY(izquierda, Combinar(como, std::move(izquierda), std::move(derecha)));
    }
    return izquierda;
}

Resultado<ConsultaPtr> Parser::Interseccion() {
    QUIMO_TRY(ConsultaPtr izquierda, TerminoConsulta());
    while (Aceptar("INTERSECT")) {
        QUIMO_TRY(ConsultaPtr derecha, TerminoConsulta());
        QUIMO_TRY(izquierda,
                  Combinar(Combinacion::Interseccion, std::move(izquierda), std::move(derecha)));
    }
    return izquierda;
}

Resultado<ConsultaPtr> Parser::TerminoConsulta() {
    if (Aceptar("(")) {
        QUIMO_TRY(ConsultaPtr dentro, LeerConsulta());
        QUIMO_TRY_VOID(Exigir(")"));
        return dentro;
    }
    Consulta consulta;
    QUIMO_TRY(consulta.simple, LeerSeleccion());
    return ConsultaPtr(std::make_shared<const Consulta>(std::move(consulta)));
}

Hecho Parser::Tope(ExprPtr& tope, bool* porciento) {
    if (!Aceptar("TOP")) return {};
    if (Aceptar("(")) {
        QUIMO_TRY(tope, Expresion());
        QUIMO_TRY_VOID(Exigir(")"));
    } else {
        if (Actual().clase != Token::Clase::Literal) return Sintaxis();
        QUIMO_TRY(tope, DeToken(ClaseExpr::Literal));
    }
    if (Aceptar("PERCENT")) {
        if (porciento == nullptr) return SintaxisEn(i_ - 1);
        *porciento = true;
    }
    return {};
}

Resultado<Seleccion> Parser::LeerSeleccion() {
    QUIMO_TRY_VOID(Exigir("SELECT"));
    Seleccion seleccion;
    if (Aceptar("DISTINCT")) {
        seleccion.distinto = true;
    } else {
        Aceptar("ALL");
    }
    QUIMO_TRY_VOID(Tope(seleccion.tope, &seleccion.tope_porciento));
    do {
        QUIMO_TRY(ItemSeleccion item, Item());
        seleccion.items.push_back(std::move(item));
    } while (Aceptar(","));
    if (Aceptar("INTO")) {
        QUIMO_TRY(seleccion.en, Objeto());
    }
    if (Aceptar("FROM")) {
        QUIMO_TRY(seleccion.fuentes, Fuentes());
    }
    if (Aceptar("WHERE")) {
        QUIMO_TRY(seleccion.donde, Condicion());
    }
    if (Aceptar("GROUP")) {
        QUIMO_TRY_VOID(Exigir("BY"));
        QUIMO_TRY(seleccion.grupos, ListaDeExpresiones());
    }
    if (Aceptar("HAVING")) {
        QUIMO_TRY(seleccion.teniendo, Condicion());
    }
    return seleccion;
}

Resultado<ItemSeleccion> Parser::Item() {
    ItemSeleccion item;
    if (EsSigno("*")) {
        QUIMO_TRY(item.expr, DeToken(ClaseExpr::Asterisco));
        return item;
    }
    if (Actual().clase == Token::Clase::Variable && EsSigno("=", 1)) {
        item.variable = AMinusculas(Actual().texto);
        i_ += 2;
        QUIMO_TRY(item.expr, Expresion());
        return item;
    }
    const bool texto = Actual().clase == Token::Clase::Literal && EsSigno("=", 1);
    if ((HayNombre() && EsSigno("=", 1)) || texto) {
        QUIMO_TRY_VOID(Alias(item.alias));
        ++i_;
        QUIMO_TRY(item.expr, Expresion());
        return item;
    }
    QUIMO_TRY(item.expr, Expresion());
    if (item.expr->clase == ClaseExpr::Asterisco) return item;
    if (Aceptar("AS") || HayNombre() ||
        (Actual().clase == Token::Clase::Literal &&
         lote_.literales[static_cast<std::size_t>(Actual().literal)].tipo.EsTexto())) {
        QUIMO_TRY_VOID(Alias(item.alias));
    }
    return item;
}

/// A name, or a text constant used as one.
Hecho Parser::Alias(std::string& alias) {
    if (Actual().clase == Token::Clase::Literal) {
        const auto indice = static_cast<std::size_t>(Actual().literal);
        if (!lote_.literales[indice].tipo.EsTexto()) return Sintaxis();
        lote_.fijos[indice] = true;
        alias = lote_.literales[indice].valor.texto;
        ++i_;
        return {};
    }
    QUIMO_TRY(alias, Nombre());
    return {};
}

Resultado<std::vector<FuentePtr>> Parser::Fuentes() {
    std::vector<FuentePtr> fuentes;
    do {
        QUIMO_TRY(FuentePtr fuente, FuenteUnida());
        fuentes.push_back(std::move(fuente));
    } while (Aceptar(","));
    return fuentes;
}

Resultado<FuentePtr> Parser::FuenteUnida() {
    const Nivel nivel(niveles_);
    QUIMO_TRY_VOID(Profundo());
    QUIMO_TRY(FuentePtr izquierda, FuenteSimple());
    for (int uniones = 0;; ++uniones) {
        if (uniones > kNivelesMaximos) return DemasiadoAnidado();
        Fuente join;
        join.clase = Fuente::Clase::Join;
        if (Aceptar("CROSS")) {
            join.join = TipoJoin::Cruzada;
        } else if (Aceptar("LEFT")) {
            join.join = TipoJoin::Izquierda;
        } else if (Aceptar("RIGHT")) {
            join.join = TipoJoin::Derecha;
        } else if (Aceptar("FULL")) {
            join.join = TipoJoin::Completa;
        } else if (Aceptar("INNER") || EsPalabra("JOIN")) {
            join.join = TipoJoin::Interna;
        } else {
            return izquierda;
        }
        if (join.join != TipoJoin::Interna && join.join != TipoJoin::Cruzada) Aceptar("OUTER");
        QUIMO_TRY_VOID(Exigir("JOIN"));
        QUIMO_TRY(join.derecha, join.join == TipoJoin::Cruzada ? FuenteSimple() : FuenteUnida());
        if (join.join != TipoJoin::Cruzada) {
            QUIMO_TRY_VOID(Exigir("ON"));
            QUIMO_TRY(join.condicion, Condicion());
        }
        join.izquierda = std::move(izquierda);
        izquierda = std::make_shared<const Fuente>(std::move(join));
    }
}

Resultado<FuentePtr> Parser::FuenteSimple() {
    Fuente fuente;
    if (EsSigno("(")) {
        if (!EmpiezaConsulta(1)) {
            ++i_;
            QUIMO_TRY(FuentePtr dentro, FuenteUnida());
            QUIMO_TRY_VOID(Exigir(")"));
            return dentro;
        }
        ++i_;
        fuente.clase = Fuente::Clase::Derivada;
        QUIMO_TRY(fuente.consulta, LeerConsulta());
        QUIMO_TRY_VOID(Exigir(")"));
        Aceptar("AS");
        QUIMO_TRY(fuente.alias, Nombre());
        if (EsSigno("(")) {
            QUIMO_TRY(fuente.columnas, ListaDeNombres());
        }
        return FuentePtr(std::make_shared<const Fuente>(std::move(fuente)));
    }
    if (Actual().clase == Token::Clase::Variable) {
        fuente.nombre.objeto = AMinusculas(Actual().texto);
        fuente.nombre.posicion = Actual().desde;
        ++i_;
    } else {
        QUIMO_TRY(fuente.nombre, Objeto());
    }
    QUIMO_TRY_VOID(Sugerencias());
    if (Aceptar("AS") || HayNombre()) {
        QUIMO_TRY(fuente.alias, Nombre());
    }
    QUIMO_TRY_VOID(Sugerencias());
    return FuentePtr(std::make_shared<const Fuente>(std::move(fuente)));
}

/// Lock hints, which mean nothing to one file: read and left out.
Hecho Parser::Sugerencias() {
    constexpr auto kConocidas = std::to_array<std::string_view>(
        {"NOLOCK", "READUNCOMMITTED", "READCOMMITTED", "READPAST", "HOLDLOCK", "SERIALIZABLE",
         "REPEATABLEREAD", "UPDLOCK", "XLOCK", "ROWLOCK", "PAGLOCK", "TABLOCK", "TABLOCKX",
         "NOWAIT"});
    const auto conocida = [&](std::size_t adelante) {
        return std::any_of(kConocidas.begin(), kConocidas.end(),
                           [&](std::string_view palabra) { return EsPalabra(palabra, adelante); });
    };
    if (EsPalabra("WITH") && EsSigno("(", 1)) {
        ++i_;
    } else if (!EsSigno("(") || !conocida(1)) {
        return {};
    }
    QUIMO_TRY_VOID(Exigir("("));
    do {
        if (!conocida(0)) return Sintaxis();
        ++i_;
    } while (Aceptar(",") || conocida(0));
    return Exigir(")");
}

Resultado<std::vector<OrdenItem>> Parser::Orden() {
    QUIMO_TRY_VOID(Exigir("ORDER"));
    QUIMO_TRY_VOID(Exigir("BY"));
    std::vector<OrdenItem> orden;
    do {
        OrdenItem item;
        QUIMO_TRY(item.expr, Expresion());
        item.descendente = Aceptar("DESC");
        if (!item.descendente) Aceptar("ASC");
        orden.push_back(std::move(item));
    } while (Aceptar(","));
    return orden;
}

}  // namespace quimo::tsql
