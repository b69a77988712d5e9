#include <algorithm>
#include <array>

#include "tsql/lectura/parser_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

Resultado<ConsultaPtr> Combinar(Combinacion como, ConsultaPtr a, ConsultaPtr b) {
    Consulta consulta;
    consulta.combinacion = como;
    consulta.altura = std::max(a->altura, b->altura) + 1;
    if (consulta.altura > Cursor::kNivelesMaximos) return DemasiadoAnidado();
    consulta.izquierda = std::move(a);
    consulta.derecha = std::move(b);
    return ConsultaPtr(std::make_shared<const Consulta>(std::move(consulta)));
}

}  // namespace

Resultado<ConsultaPtr> ParserConsultas::LeerConsulta() {
    const Cursor::Nivel nivel(cursor_);
    QUIMO_TRY_VOID(cursor_.Profundo());
    QUIMO_TRY(const ConsultaPtr cuerpo, Union());
    if (!cursor_.EsPalabra("ORDER")) return cuerpo;
    Consulta consulta = *cuerpo;
    QUIMO_TRY(consulta.orden, expresiones_.Orden());
    return ConsultaPtr(std::make_shared<const Consulta>(std::move(consulta)));
}

Resultado<ConsultaPtr> ParserConsultas::Union() {
    QUIMO_TRY(ConsultaPtr izquierda, Interseccion());
    while (cursor_.EsPalabra("UNION") || cursor_.EsPalabra("EXCEPT")) {
        Combinacion como = cursor_.EsPalabra("UNION") ? Combinacion::Union : Combinacion::Excepto;
        cursor_.Avanzar();
        if (como == Combinacion::Union && cursor_.Aceptar("ALL")) como = Combinacion::UnionTodo;
        QUIMO_TRY(ConsultaPtr derecha, Interseccion());
        QUIMO_TRY(izquierda, Combinar(como, std::move(izquierda), std::move(derecha)));
    }
    return izquierda;
}

Resultado<ConsultaPtr> ParserConsultas::Interseccion() {
    QUIMO_TRY(ConsultaPtr izquierda, TerminoConsulta());
    while (cursor_.Aceptar("INTERSECT")) {
        QUIMO_TRY(ConsultaPtr derecha, TerminoConsulta());
        QUIMO_TRY(izquierda,
                  Combinar(Combinacion::Interseccion, std::move(izquierda), std::move(derecha)));
    }
    return izquierda;
}

Resultado<ConsultaPtr> ParserConsultas::TerminoConsulta() {
    if (cursor_.Aceptar("(")) {
        QUIMO_TRY(ConsultaPtr dentro, LeerConsulta());
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
        return dentro;
    }
    Consulta consulta;
    QUIMO_TRY(consulta.simple, LeerSeleccion());
    return ConsultaPtr(std::make_shared<const Consulta>(std::move(consulta)));
}

Hecho ParserConsultas::Tope(ExprPtr& tope, bool* porciento) {
    if (!cursor_.Aceptar("TOP")) return {};
    if (cursor_.Aceptar("(")) {
        QUIMO_TRY(tope, expresiones_.Expresion());
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
    } else {
        if (!cursor_.EsClase(Token::Clase::Literal)) return cursor_.Sintaxis();
        QUIMO_TRY(tope, expresiones_.DeToken(ClaseExpr::Literal));
    }
    if (cursor_.Aceptar("PERCENT")) {
        if (porciento == nullptr) return cursor_.SintaxisEn(cursor_.Indice() - 1);
        *porciento = true;
    }
    return {};
}

Resultado<Seleccion> ParserConsultas::LeerSeleccion() {
    QUIMO_TRY_VOID(cursor_.Exigir("SELECT"));
    Seleccion seleccion;
    if (cursor_.Aceptar("DISTINCT")) {
        seleccion.distinto = true;
    } else {
        cursor_.Aceptar("ALL");
    }
    QUIMO_TRY_VOID(Tope(seleccion.tope, &seleccion.tope_porciento));
    do {
        QUIMO_TRY(ItemSeleccion item, Item());
        seleccion.items.push_back(std::move(item));
    } while (cursor_.Aceptar(","));
    if (cursor_.Aceptar("INTO")) {
        QUIMO_TRY(seleccion.en, cursor_.Objeto());
    }
    if (cursor_.Aceptar("FROM")) {
        QUIMO_TRY(seleccion.fuentes, Fuentes());
    }
    if (cursor_.Aceptar("WHERE")) {
        QUIMO_TRY(seleccion.donde, expresiones_.Condicion());
    }
    if (cursor_.Aceptar("GROUP")) {
        QUIMO_TRY_VOID(cursor_.Exigir("BY"));
        QUIMO_TRY(seleccion.grupos, expresiones_.ListaDeExpresiones());
    }
    if (cursor_.Aceptar("HAVING")) {
        QUIMO_TRY(seleccion.teniendo, expresiones_.Condicion());
    }
    return seleccion;
}

Resultado<ItemSeleccion> ParserConsultas::Item() {
    ItemSeleccion item;
    if (cursor_.EsSigno("*")) {
        QUIMO_TRY(item.expr, expresiones_.DeToken(ClaseExpr::Asterisco));
        return item;
    }
    if (cursor_.EsClase(Token::Clase::Variable) && cursor_.EsSigno("=", 1)) {
        item.variable = cursor_.Variable();
        cursor_.Avanzar();
        QUIMO_TRY(item.expr, expresiones_.Expresion());
        return item;
    }
    const bool texto = cursor_.EsClase(Token::Clase::Literal) && cursor_.EsSigno("=", 1);
    if ((cursor_.HayNombre() && cursor_.EsSigno("=", 1)) || texto) {
        QUIMO_TRY_VOID(Alias(item.alias));
        cursor_.Avanzar();
        QUIMO_TRY(item.expr, expresiones_.Expresion());
        return item;
    }
    QUIMO_TRY(item.expr, expresiones_.Expresion());
    if (item.expr->clase == ClaseExpr::Asterisco) return item;
    if (cursor_.Aceptar("AS") || cursor_.HayNombre() || cursor_.EsTextoConstante()) {
        QUIMO_TRY_VOID(Alias(item.alias));
    }
    return item;
}

/// A name, or a text constant used as one.
Hecho ParserConsultas::Alias(std::string& alias) {
    QUIMO_TRY(alias,
              cursor_.EsClase(Token::Clase::Literal) ? cursor_.TextoFijo() : cursor_.Nombre());
    return {};
}

Resultado<std::vector<FuentePtr>> ParserConsultas::Fuentes() {
    std::vector<FuentePtr> fuentes;
    do {
        QUIMO_TRY(FuentePtr fuente, FuenteUnida());
        fuentes.push_back(std::move(fuente));
    } while (cursor_.Aceptar(","));
    return fuentes;
}

Resultado<FuentePtr> ParserConsultas::FuenteUnida() {
    const Cursor::Nivel nivel(cursor_);
    QUIMO_TRY_VOID(cursor_.Profundo());
    QUIMO_TRY(FuentePtr izquierda, FuenteSimple());
    for (int uniones = 0;; ++uniones) {
        if (uniones > Cursor::kNivelesMaximos) return DemasiadoAnidado();
        Fuente join;
        join.clase = Fuente::Clase::Join;
        if (cursor_.Aceptar("CROSS")) {
            join.join = TipoJoin::Cruzada;
        } else if (cursor_.Aceptar("LEFT")) {
            join.join = TipoJoin::Izquierda;
        } else if (cursor_.Aceptar("RIGHT")) {
            join.join = TipoJoin::Derecha;
        } else if (cursor_.Aceptar("FULL")) {
            join.join = TipoJoin::Completa;
        } else if (cursor_.Aceptar("INNER") || cursor_.EsPalabra("JOIN")) {
            join.join = TipoJoin::Interna;
        } else {
            return izquierda;
        }
        if (join.join != TipoJoin::Interna && join.join != TipoJoin::Cruzada)
            cursor_.Aceptar("OUTER");
        QUIMO_TRY_VOID(cursor_.Exigir("JOIN"));
        QUIMO_TRY(join.derecha, join.join == TipoJoin::Cruzada ? FuenteSimple() : FuenteUnida());
        if (join.join != TipoJoin::Cruzada) {
            QUIMO_TRY_VOID(cursor_.Exigir("ON"));
            QUIMO_TRY(join.condicion, expresiones_.Condicion());
        }
        join.izquierda = std::move(izquierda);
        izquierda = std::make_shared<const Fuente>(std::move(join));
    }
}

Resultado<FuentePtr> ParserConsultas::FuenteSimple() {
    if (cursor_.EsSigno("(")) {
        if (cursor_.EmpiezaConsulta(1)) return FuenteDerivada();
        cursor_.Avanzar();
        QUIMO_TRY(FuentePtr dentro, FuenteUnida());
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
        return dentro;
    }
    Fuente fuente;
    QUIMO_TRY(fuente.nombre, cursor_.ObjetoOVariable());
    QUIMO_TRY_VOID(Sugerencias());
    if (cursor_.Aceptar("AS") || cursor_.HayNombre()) {
        QUIMO_TRY(fuente.alias, cursor_.Nombre());
    }
    QUIMO_TRY_VOID(Sugerencias());
    return FuentePtr(std::make_shared<const Fuente>(std::move(fuente)));
}

/// (SELECT ...) AS name [(columns)]
Resultado<FuentePtr> ParserConsultas::FuenteDerivada() {
    Fuente fuente;
    fuente.clase = Fuente::Clase::Derivada;
    cursor_.Avanzar();
    QUIMO_TRY(fuente.consulta, LeerConsulta());
    QUIMO_TRY_VOID(cursor_.Exigir(")"));
    cursor_.Aceptar("AS");
    QUIMO_TRY(fuente.alias, cursor_.Nombre());
    if (cursor_.EsSigno("(")) {
        QUIMO_TRY(fuente.columnas, cursor_.ListaDeNombres());
    }
    return FuentePtr(std::make_shared<const Fuente>(std::move(fuente)));
}

/// Lock hints, which mean nothing to one file: read and left out.
Hecho ParserConsultas::Sugerencias() {
    constexpr auto kConocidas = std::to_array<std::string_view>(
        {"NOLOCK", "READUNCOMMITTED", "READCOMMITTED", "READPAST", "HOLDLOCK", "SERIALIZABLE",
         "REPEATABLEREAD", "UPDLOCK", "XLOCK", "ROWLOCK", "PAGLOCK", "TABLOCK", "TABLOCKX",
         "NOWAIT"});
    const auto conocida = [&](std::size_t adelante) {
        return std::any_of(kConocidas.begin(), kConocidas.end(), [&](std::string_view palabra) {
            return cursor_.EsPalabra(palabra, adelante);
        });
    };
    if (cursor_.EsPalabra("WITH") && cursor_.EsSigno("(", 1)) {
        cursor_.Avanzar();
    } else if (!cursor_.EsSigno("(") || !conocida(1)) {
        return {};
    }
    QUIMO_TRY_VOID(cursor_.Exigir("("));
    do {
        if (!conocida(0)) return cursor_.Sintaxis();
        cursor_.Avanzar();
    } while (cursor_.Aceptar(",") || conocida(0));
    return cursor_.Exigir(")");
}

}  // namespace quimo::tsql
