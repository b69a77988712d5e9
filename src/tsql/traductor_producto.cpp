// Two rewrites of a query whose whole answer is one row of aggregates: the product of sources that
// no condition joins, and the extremes of a number whose text begins with given digits. The rows
// that they speak of are never made.

#include <algorithm>
#include <limits>
#include <numeric>

#include "tsql/texto.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

ExprPtr Hoja(ClaseExpr clase, std::string texto = {}, std::vector<std::string> partes = {}) {
    Expr expr{clase};
    expr.texto = std::move(texto);
    expr.partes = std::move(partes);
    return std::make_shared<const Expr>(std::move(expr));
}

ExprPtr Nodo(ClaseExpr clase, std::string texto, std::vector<ExprPtr> hijos) {
    Expr expr{clase};
    expr.texto = std::move(texto);
    for (const ExprPtr& hijo : hijos)
        expr.altura = std::max(expr.altura, hijo->altura + 1);
    expr.hijos = std::move(hijos);
    return std::make_shared<const Expr>(std::move(expr));
}

ExprPtr Entero(std::int64_t numero) {
    Expr expr{ClaseExpr::Literal};
    expr.tipo = TipoEntero(Clase::BigInt);
    expr.literal = Literal{expr.tipo, quimo::tsql::Valor::De(numero)};
    return std::make_shared<const Expr>(std::move(expr));
}

ExprPtr Por(const ExprPtr& a, const ExprPtr& b) {
    return a ? Nodo(ClaseExpr::Binaria, "*", {a, b}) : b;
}

ExprPtr ComoTipo(const ExprPtr& expr, const Tipo& tipo) {
    Expr conversion = *Nodo(ClaseExpr::Conversion, "CAST", {expr});
    conversion.tipo = tipo;
    return std::make_shared<const Expr>(std::move(conversion));
}

ExprPtr Ademas(const ExprPtr& condicion, const ExprPtr& otra) {
    return condicion ? Nodo(ClaseExpr::Binaria, "AND", {condicion, otra}) : otra;
}

/// (SELECT TOP 1 1 AS uno FROM ... WHERE ...) AS alias: a row, or none.
FuentePtr AlgunaFila(const Seleccion& seleccion, std::string alias) {
    Consulta consulta;
    consulta.simple.emplace();
    consulta.simple->tope = Entero(1);
    consulta.simple->items.push_back({Entero(1), "uno", {}});
    consulta.simple->fuentes = seleccion.fuentes;
    consulta.simple->donde = seleccion.donde;
    Fuente fuente;
    fuente.clase = Fuente::Clase::Derivada;
    fuente.alias = std::move(alias);
    fuente.consulta = std::make_shared<const Consulta>(std::move(consulta));
    return std::make_shared<const Fuente>(std::move(fuente));
}

FuentePtr Delante(const FuentePtr& primera, const FuentePtr& segunda) {
    if (!primera) return segunda;
    Fuente join;
    join.clase = Fuente::Clase::Join;
    join.join = TipoJoin::Delante;
    join.izquierda = primera;
    join.derecha = segunda;
    return std::make_shared<const Fuente>(std::move(join));
}

void Partir(const ExprPtr& condicion, std::vector<ExprPtr>& partes) {
    if (!condicion) return;
    if (condicion->clase != ClaseExpr::Binaria || condicion->texto != "AND") {
        partes.push_back(condicion);
        return;
    }
    Partir(condicion->hijos[0], partes);
    Partir(condicion->hijos[1], partes);
}

/// The tables of FROM in their order, and the conditions of its joins. False when a join keeps
/// rows of one side, or something else than a table stands there.
bool Aplanar(const FuentePtr& fuente, std::vector<FuentePtr>& tablas,
             std::vector<ExprPtr>& condiciones) {
    if (fuente->clase == Fuente::Clase::Tabla) {
        tablas.push_back(fuente);
        return true;
    }
    if (fuente->clase != Fuente::Clase::Join) return false;
    if (fuente->join != TipoJoin::Interna && fuente->join != TipoJoin::Cruzada &&
        fuente->join != TipoJoin::Coma) {
        return false;
    }
    Partir(fuente->condicion, condiciones);
    return Aplanar(fuente->izquierda, tablas, condiciones) &&
           Aplanar(fuente->derecha, tablas, condiciones);
}

/// The sources of one part of the product, and what is asked of them.
struct Parte {
    Seleccion seleccion;
    std::vector<ExprPtr> condiciones;
    std::string nombre;

    ExprPtr Columna(const std::string& columna) const {
        return Hoja(ClaseExpr::Columna, {}, {nombre, columna});
    }
    ExprPtr Pedir(const ExprPtr& agregado) {
        const std::string columna = "a" + std::to_string(seleccion.items.size());
        seleccion.items.push_back({agregado, columna, {}});
        return Columna(columna);
    }
};

const std::string kFilas = "n";

std::int64_t Maximo(const Tipo& entero) {
    if (entero.clase == Clase::TinyInt) return std::numeric_limits<std::uint8_t>::max();
    if (entero.clase == Clase::SmallInt) return std::numeric_limits<std::int16_t>::max();
    if (entero.clase == Clase::Int) return std::numeric_limits<std::int32_t>::max();
    return std::numeric_limits<std::int64_t>::max();
}

/// All rows of several queries. In halves: the engine reads only so many levels of parentheses.
ConsultaPtr Unir(std::vector<ConsultaPtr> consultas) {
    while (consultas.size() > 1) {
        std::vector<ConsultaPtr> pares;
        for (std::size_t i = 0; i + 1 < consultas.size(); i += 2) {
            Consulta par;
            par.combinacion = Combinacion::UnionTodo;
            par.izquierda = consultas[i];
            par.derecha = consultas[i + 1];
            pares.push_back(std::make_shared<const Consulta>(std::move(par)));
        }
        if (consultas.size() % 2 == 1) pares.push_back(consultas.back());
        consultas = std::move(pares);
    }
    return consultas[0];
}

}  // namespace

/// Takes a query's sources apart into those that no condition joins.
class Traductor::Producto {
public:
    Producto(const Seleccion& seleccion, const Ambito& ambito, const Traductor& traductor)
        : seleccion_(seleccion), ambito_(ambito), traductor_(traductor) {}

    /// The same answer out of the parts; nothing when there is but one, or when an aggregate looks
    /// at several of them.
    std::optional<Consulta> Repartir() {
        if (!Separar()) return std::nullopt;
        Consulta nueva;
        nueva.simple.emplace();
        for (const ItemSeleccion& item : seleccion_.items) {
            const ExprPtr expr = Reescribir(item.expr);
            if (!expr) return std::nullopt;
            nueva.simple->items.push_back({expr, item.alias, item.variable});
        }
        Filtrar();
        for (Parte& parte : partes_) {
            Consulta dentro;
            dentro.simple = std::move(parte.seleccion);
            Fuente fuente;
            fuente.clase = Fuente::Clase::Derivada;
            fuente.alias = parte.nombre;
            fuente.consulta = std::make_shared<const Consulta>(std::move(dentro));
            nueva.simple->fuentes.push_back(std::make_shared<const Fuente>(std::move(fuente)));
        }
        return nueva;
    }

private:
    /// Gives each part its conditions, and asks first whether the others have a row at all: of an
    /// empty product no part needs to be gone through.
    void Filtrar() {
        std::vector<FuentePtr> hay;
        for (Parte& parte : partes_) {
            for (const ExprPtr& condicion : parte.condiciones)
                parte.seleccion.donde = Ademas(parte.seleccion.donde, condicion);
            hay.push_back(parte.condiciones.empty()
                              ? nullptr
                              : AlgunaFila(parte.seleccion, "hay " + parte.nombre));
        }
        for (std::size_t i = 0; i < partes_.size(); ++i) {
            FuentePtr antes;
            for (std::size_t otra = 0; otra < hay.size(); ++otra) {
                if (otra != i && hay[otra]) antes = Delante(antes, hay[otra]);
            }
            FuentePtr& primera = partes_[i].seleccion.fuentes[0];
            primera = Delante(antes, primera);
        }
    }

    /// The table that a column is of; -1 when it is of none of these.
    int TablaDe(const Expr& columna) const {
        const auto hallada = traductor_.BuscarColumna(columna, ambito_);
        if (!hallada || *hallada == nullptr) return -1;
        for (std::size_t i = 0; i < ambito_.tablas.size(); ++i) {
            const auto& columnas = ambito_.tablas[i].columnas;
            if (*hallada >= columnas.data() && *hallada < columnas.data() + columnas.size())
                return static_cast<int>(i);
        }
        return -1;
    }
    int Raiz(int tabla) const {
        while (grupo_[static_cast<std::size_t>(tabla)] != tabla)
            tabla = grupo_[static_cast<std::size_t>(tabla)];
        return tabla;
    }

    /// The tables that an expression names. False when it looks further than these.
    bool Usadas(const Expr& expr, std::vector<int>& usadas) const {
        if (expr.consulta || expr.ventana || expr.clase == ClaseExpr::Asterisco) return false;
        if (expr.clase == ClaseExpr::Columna) {
            usadas.push_back(TablaDe(expr));
            return usadas.back() >= 0;
        }
        return std::all_of(expr.hijos.begin(), expr.hijos.end(),
                           [&](const ExprPtr& hijo) { return !hijo || Usadas(*hijo, usadas); });
    }

    bool Separar() {
        std::vector<FuentePtr> tablas;
        std::vector<ExprPtr> condiciones;
        for (const FuentePtr& fuente : seleccion_.fuentes) {
            if (!Aplanar(fuente, tablas, condiciones)) return false;
        }
        Partir(seleccion_.donde, condiciones);
        const bool todas = tablas.size() == ambito_.tablas.size() &&
                           std::all_of(ambito_.tablas.begin(), ambito_.tablas.end(),
                                       [](const TablaAmbito& t) { return t.tabla != nullptr; });
        if (!todas || tablas.size() < 2) return false;
        grupo_.resize(tablas.size());
        std::iota(grupo_.begin(), grupo_.end(), 0);
        std::vector<std::vector<int>> usadas(condiciones.size());
        for (std::size_t i = 0; i < condiciones.size(); ++i) {
            if (!Usadas(*condiciones[i], usadas[i])) return false;
            for (const int tabla : usadas[i])
                grupo_[static_cast<std::size_t>(Raiz(tabla))] = Raiz(usadas[i][0]);
        }
        for (std::size_t i = 0; i < tablas.size(); ++i) {
            Parte& parte = ParteDe(static_cast<int>(i));
            parte.seleccion.fuentes.push_back(tablas[i]);
        }
        for (std::size_t i = 0; i < condiciones.size(); ++i) {
            ParteDe(usadas[i].empty() ? 0 : usadas[i][0]).condiciones.push_back(condiciones[i]);
        }
        return partes_.size() > 1;
    }

    Parte& ParteDe(int tabla) {
        const int raiz = Raiz(tabla);
        const auto hallada = std::find(raices_.begin(), raices_.end(), raiz);
        if (hallada != raices_.end()) {
            return partes_[static_cast<std::size_t>(hallada - raices_.begin())];
        }
        raices_.push_back(raiz);
        Parte parte;
        parte.nombre = "producto " + std::to_string(raices_.size());
        parte.seleccion.items.push_back(
            {Nodo(ClaseExpr::Funcion, "COUNT_BIG", {Hoja(ClaseExpr::Asterisco)}), kFilas, {}});
        partes_.push_back(std::move(parte));
        return partes_.back();
    }

    /// The rows of all other parts together: how often each row of this one stands in the product.
    ExprPtr Veces(const Parte& parte) const {
        ExprPtr veces;
        for (const Parte& otra : partes_) {
            if (&otra != &parte) veces = Por(veces, otra.Columna(kFilas));
        }
        return veces;
    }

    /// An expression over aggregates of the parts in place of those of the product.
    ExprPtr Reescribir(const ExprPtr& expr) {
        if (expr->consulta || expr->ventana) return nullptr;
        if (EsAgregado(*expr)) return Agregado(expr);
        if (expr->clase == ClaseExpr::Columna || expr->clase == ClaseExpr::Asterisco)
            return nullptr;
        Expr copia = *expr;
        for (ExprPtr& hijo : copia.hijos) {
            if (hijo && !(hijo = Reescribir(hijo))) return nullptr;
        }
        return std::make_shared<const Expr>(std::move(copia));
    }

    ExprPtr Agregado(const ExprPtr& expr) {
        const std::string& nombre = expr->texto;
        if (expr->distinto || expr->hijos.size() != 1) return nullptr;
        const bool cuenta = nombre == "COUNT" || nombre == "COUNT_BIG";
        const Tipo entero = TipoEntero(nombre == "COUNT_BIG" ? Clase::BigInt : Clase::Int);
        if (cuenta && expr->hijos[0]->clase == ClaseExpr::Asterisco) {
            return ComoTipo(Por(partes_[0].Columna(kFilas), Veces(partes_[0])), entero);
        }
        std::vector<int> usadas;
        if (!Usadas(*expr->hijos[0], usadas)) return nullptr;
        const int raiz = usadas.empty() ? 0 : Raiz(usadas[0]);
        for (const int tabla : usadas) {
            if (Raiz(tabla) != raiz) return nullptr;
        }
        Parte& parte = ParteDe(raiz);
        const ExprPtr veces = Veces(parte);
        if (cuenta) return ComoTipo(Por(parte.Pedir(expr), veces), entero);
        if (nombre == "SUM") return Suma(expr, parte, veces);
        if (nombre != "MIN" && nombre != "MAX" && nombre != "AVG") return nullptr;
        // The same row over and over changes neither; without a row there is nothing.
        const ExprPtr hay = Nodo(ClaseExpr::Binaria, ">", {veces, Entero(0)});
        return Nodo(ClaseExpr::Caso, {}, {hay, parte.Pedir(expr)});
    }

    /// Only of whole numbers and money, whose products are exact.
    ExprPtr Suma(const ExprPtr& expr, Parte& parte, const ExprPtr& veces) const {
        const Expr& columna = *expr->hijos[0];
        if (columna.clase != ClaseExpr::Columna) return nullptr;
        const auto hallada = traductor_.BuscarColumna(columna, ambito_);
        if (!hallada || *hallada == nullptr) return nullptr;
        Tipo tipo = (*hallada)->tipo;
        if (!(tipo.EsEntero() || tipo.EsMoneda()) || tipo.clase == Clase::Bit) return nullptr;
        if (tipo.EsEntero() && tipo.clase != Clase::BigInt) tipo = TipoEntero(Clase::Int);
        if (tipo.clase == Clase::SmallMoney) tipo = TipoMoneda();
        const ExprPtr alguna = Nodo(ClaseExpr::Funcion, "NULLIF", {veces, Entero(0)});
        return ComoTipo(Por(parte.Pedir(expr), alguna), tipo);
    }

    const Seleccion& seleccion_;
    const Ambito& ambito_;
    const Traductor& traductor_;
    std::vector<int> grupo_;  ///< of each table, one that it is joined with; itself at the root
    std::vector<int> raices_;
    std::vector<Parte> partes_;
};

std::optional<Consulta> Traductor::SinProducto(const Consulta& consulta,
                                               const Ambito& ambito) const {
    const Seleccion& seleccion = *consulta.simple;
    if (!seleccion.grupos.empty() || seleccion.teniendo || seleccion.distinto || seleccion.tope ||
        !consulta.orden.empty()) {
        return std::nullopt;
    }
    const bool agrega =
        std::any_of(seleccion.items.begin(), seleccion.items.end(),
                    [](const ItemSeleccion& item) { return TieneAgregado(*item.expr); });
    if (!agrega) return std::nullopt;
    return Producto(seleccion, ambito, *this).Repartir();
}

std::optional<Traductor::Rangos> Traductor::RangosDePrefijo(const Expr& como,
                                                            const Tipo& tipo) const {
    if (!tipo.EsEntero() || tipo.clase == Clase::Bit || como.hijos.size() != 2) return std::nullopt;
    const auto patron = Fijar(*como.hijos[1]);
    if (!patron || !patron->tipo.EsTexto()) return std::nullopt;
    const std::string& texto = patron->valor.texto;
    constexpr std::size_t kCifras = 18;
    if (texto.size() < 2 || texto.size() > kCifras + 1 || texto.back() != '%') return std::nullopt;
    const std::string cifras = texto.substr(0, texto.size() - 1);
    if (cifras.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
    Rangos rangos;
    // No number but zero is written with a zero in front.
    if (cifras[0] == '0') {
        if (cifras.size() == 1) rangos.emplace_back(0, 0);
        return rangos;
    }
    const Int128 tope = Maximo(tipo);
    const Int128 prefijo = std::stoll(cifras);
    for (Int128 potencia = 1; prefijo * potencia <= tope; potencia *= 10) {
        const Int128 hasta = std::min((prefijo + 1) * potencia - 1, tope);
        rangos.emplace_back(static_cast<std::int64_t>(prefijo * potencia),
                            static_cast<std::int64_t>(hasta));
    }
    return rangos;
}

/// SELECT MAX(x) FROM t WHERE x LIKE '1%': the extreme of each range, each found in the index.
std::optional<Consulta> Traductor::ExtremoPorRangos(const Consulta& consulta,
                                                    const Ambito& ambito) const {
    const Seleccion& seleccion = *consulta.simple;
    const bool sencilla = seleccion.items.size() == 1 && seleccion.fuentes.size() == 1 &&
                          ambito.tablas.size() == 1 && seleccion.donde &&
                          seleccion.donde->clase == ClaseExpr::Como && !seleccion.donde->negado &&
                          seleccion.grupos.empty() && !seleccion.teniendo && !seleccion.distinto &&
                          !seleccion.tope && consulta.orden.empty();
    if (!sencilla) return std::nullopt;
    const ItemSeleccion& item = seleccion.items[0];
    const Expr& extremo = *item.expr;
    const Expr& como = *seleccion.donde;
    if (!EsAgregado(extremo) || (extremo.texto != "MAX" && extremo.texto != "MIN") ||
        extremo.hijos.size() != 1 || extremo.hijos[0]->clase != ClaseExpr::Columna ||
        !Igual(*extremo.hijos[0], *como.hijos[0], ambito)) {
        return std::nullopt;
    }
    const auto columna = BuscarColumna(*extremo.hijos[0], ambito);
    if (!columna || *columna == nullptr) return std::nullopt;
    const auto rangos = RangosDePrefijo(como, (*columna)->tipo);
    if (!rangos || rangos->size() < 2) return std::nullopt;
    std::vector<ConsultaPtr> cada;
    for (const auto& [desde, hasta] : *rangos) {
        Consulta una;
        una.simple.emplace();
        una.simple->items.push_back({item.expr, "m", {}});
        una.simple->fuentes = seleccion.fuentes;
        una.simple->donde = Nodo(ClaseExpr::Entre, {},
                                 {como.hijos[0], ComoTipo(Entero(desde), (*columna)->tipo),
                                  ComoTipo(Entero(hasta), (*columna)->tipo)});
        cada.push_back(std::make_shared<const Consulta>(std::move(una)));
    }
    Fuente fuente;
    fuente.clase = Fuente::Clase::Derivada;
    fuente.alias = "rangos";
    fuente.consulta = Unir(std::move(cada));
    Consulta nueva;
    nueva.simple.emplace();
    nueva.simple->fuentes.push_back(std::make_shared<const Fuente>(std::move(fuente)));
    nueva.simple->items.push_back(
        {Nodo(ClaseExpr::Funcion, extremo.texto, {Hoja(ClaseExpr::Columna, {}, {"m"})}), item.alias,
         item.variable});
    return nueva;
}

}  // namespace quimo::tsql
