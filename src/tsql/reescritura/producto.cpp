#include "tsql/reescritura/producto.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "tsql/reescritura/arbol_interno.h"

namespace quimo::tsql {

namespace {

/// (SELECT TOP 1 1 AS uno FROM ... WHERE ...) AS alias: a row, or none.
FuentePtr AlgunaFila(const Seleccion& seleccion, std::string alias) {
    Consulta consulta;
    consulta.simple.emplace();
    consulta.simple->tope = Entero(1);
    consulta.simple->items.push_back({Entero(1), "uno", {}});
    consulta.simple->fuentes = seleccion.fuentes;
    consulta.simple->donde = seleccion.donde;
    return Derivada(std::move(consulta), std::move(alias));
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
    Conjunciones(fuente->condicion, condiciones);
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

/// Takes a query's sources apart into those that no condition joins.
class Producto {
public:
    Producto(const Seleccion& seleccion, const Ambito& ambito)
        : seleccion_(seleccion), ambito_(ambito) {}

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
            nueva.simple->fuentes.push_back(Derivada(std::move(dentro), parte.nombre));
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
        const auto hallada = BuscarColumna(columna, ambito_);
        if (!hallada || *hallada == nullptr) return -1;
        for (std::size_t i = 0; i < ambito_.tablas.size(); ++i) {
            if (ambito_.tablas[i].PosicionDe(*hallada) >= 0) return static_cast<int>(i);
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
        Conjunciones(seleccion_.donde, condiciones);
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
        const auto hallada = BuscarColumna(columna, ambito_);
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
    std::vector<int> grupo_;  ///< of each table, one that it is joined with; itself at the root
    std::vector<int> raices_;
    std::vector<Parte> partes_;
};

}  // namespace

std::optional<Consulta> SinProducto(const Consulta& consulta, const Ambito& ambito) {
    const Seleccion& seleccion = *consulta.simple;
    if (!seleccion.grupos.empty() || seleccion.teniendo || seleccion.distinto || seleccion.tope ||
        !consulta.orden.empty()) {
        return std::nullopt;
    }
    const bool agrega =
        std::any_of(seleccion.items.begin(), seleccion.items.end(),
                    [](const ItemSeleccion& item) { return TieneAgregado(*item.expr); });
    if (!agrega) return std::nullopt;
    return Producto(seleccion, ambito).Repartir();
}

}  // namespace quimo::tsql
