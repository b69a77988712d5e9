#include "tsql/reescritura/ambito.h"

#include "tsql/reescritura/termino.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

std::ptrdiff_t TablaAmbito::PosicionDe(const ColumnaAmbito* columna) const {
    for (std::size_t i = 0; i < columnas.size(); ++i) {
        if (&columnas[i] == columna) return static_cast<std::ptrdiff_t>(i);
    }
    return -1;
}

Resultado<const ColumnaAmbito*> BuscarColumna(const Expr& expr, const Ambito& ambito) {
    const std::string& nombre = expr.partes.back();
    const ColumnaAmbito* hallada = nullptr;
    bool prefijo = false;
    for (const TablaAmbito& tabla : ambito.tablas) {
        if (expr.partes.size() > 1) {
            if (!MismoNombre(tabla.expuesto, expr.partes[expr.partes.size() - 2])) continue;
            prefijo = true;
        }
        for (const ColumnaAmbito& columna : tabla.columnas) {
            if (!MismoNombre(columna.nombre, nombre)) continue;
            if (hallada != nullptr) return ColumnaAmbigua(nombre);
            hallada = &columna;
        }
    }
    if (hallada == nullptr && prefijo) return ColumnaDesconocida(nombre);
    return hallada;
}

std::optional<Literal> Fijar(const Expr& expr, Lote* lote) {
    if (expr.clase == ClaseExpr::Unaria && expr.texto == "-") {
        auto literal = Fijar(*expr.hijos[0], lote);
        if (!literal || !literal->tipo.EsExacto()) return std::nullopt;
        literal->valor.exacto = -literal->valor.exacto;
        return literal;
    }
    if (expr.clase != ClaseExpr::Literal) return std::nullopt;
    if (expr.literal) return expr.literal;
    if (lote == nullptr || expr.indice < 0) return std::nullopt;
    const auto indice = static_cast<std::size_t>(expr.indice);
    lote->fijos[indice] = true;
    return lote->literales[indice];
}

bool DicenLoMismo(const Expr& a, const Expr& b, const Ambito& ambito, Lote* lote) {
    if (a.clase != b.clase) return false;
    if (a.clase == ClaseExpr::Columna) {
        const auto x = BuscarColumna(a, ambito);
        const auto y = BuscarColumna(b, ambito);
        return x && y && *x != nullptr && *y != nullptr && (*x)->sql == (*y)->sql;
    }
    if (a.clase == ClaseExpr::Literal) {
        if (!(a.tipo == b.tipo)) return false;
        const auto x = Fijar(a, lote);
        const auto y = Fijar(b, lote);
        return x && y && LiteralSql(*x) == LiteralSql(*y);
    }
    const bool igual = a.texto == b.texto && a.indice == b.indice && a.tipo == b.tipo &&
                       a.negado == b.negado && a.distinto == b.distinto && a.simple == b.simple &&
                       a.con_sino == b.con_sino && a.consulta == b.consulta &&
                       a.hijos.size() == b.hijos.size() && a.partes.size() == b.partes.size();
    if (!igual) return false;
    for (std::size_t i = 0; i < a.hijos.size(); ++i) {
        if (!DicenLoMismo(*a.hijos[i], *b.hijos[i], ambito, lote)) return false;
    }
    return true;
}

}  // namespace quimo::tsql
