#include "tsql/reescritura/fecha_trabajo.h"

#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr int kLargo = 8;
constexpr int kEstiloDma = 103;

bool EsSuma(const Expr& expr) { return expr.clase == ClaseExpr::Binaria && expr.texto == "+"; }

bool EsBarra(const Expr& expr, Lote* lote) {
    const auto literal = Fijar(expr, lote);
    return literal && literal->tipo.EsTexto() && literal->valor.texto == "/";
}

/// SUBSTRING(x, desde, largo) with these two constants; x when it is one.
const Expr* Trozo(const Expr& expr, std::int64_t desde, std::int64_t largo, Lote* lote) {
    if (expr.clase != ClaseExpr::Funcion || expr.texto != "SUBSTRING" || expr.hijos.size() != 3) {
        return nullptr;
    }
    const auto a = Fijar(*expr.hijos[1], lote);
    const auto b = Fijar(*expr.hijos[2], lote);
    const bool iguales = a && b && a->tipo.EsEntero() && b->tipo.EsEntero() &&
                         a->valor.exacto == desde && b->valor.exacto == largo;
    return iguales && expr.hijos[0]->clase == ClaseExpr::Columna ? expr.hijos[0].get() : nullptr;
}

/// The columns that the three pieces are cut from.
struct Trozos {
    const Expr* dia;
    const Expr* mes;
    const Expr* anio;
};

std::optional<Trozos> LeerTrozos(const Expr& expr, OrdenFecha orden, Lote* lote) {
    if (expr.clase != ClaseExpr::Conversion || expr.tipo.clase != Clase::DateTime) return {};
    const Expr& suma = *expr.hijos[0];
    if (!EsSuma(suma) || !EsSuma(*suma.hijos[0]) || !EsSuma(*suma.hijos[0]->hijos[0]) ||
        !EsSuma(*suma.hijos[0]->hijos[0]->hijos[0])) {
        return {};
    }
    if (expr.hijos.size() > 1) {
        const auto estilo = Fijar(*expr.hijos[1], lote);
        if (!estilo || estilo->valor.exacto != kEstiloDma) return {};
    } else if (orden != OrdenFecha::Dma) {
        return {};
    }
    const Expr& mes_barra = *suma.hijos[0];
    const Expr& hasta_mes = *mes_barra.hijos[0];
    const Expr& dia_barra = *hasta_mes.hijos[0];
    const Trozos trozos{Trozo(*dia_barra.hijos[0], 1, 2, lote),
                        Trozo(*hasta_mes.hijos[1], 3, 2, lote), Trozo(*suma.hijos[1], 5, 4, lote)};
    if (trozos.dia == nullptr || trozos.mes == nullptr || trozos.anio == nullptr ||
        !EsBarra(*dia_barra.hijos[1], lote) || !EsBarra(*mes_barra.hijos[1], lote)) {
        return {};
    }
    return trozos;
}

std::optional<FechaIndexada> PorIndice(const ColumnaAmbito& columna, const Ambito& ambito) {
    for (const TablaAmbito& tabla : ambito.tablas) {
        const std::ptrdiff_t cual = tabla.PosicionDe(&columna);
        if (cual < 0 || !tabla.tabla || columna.tipo.longitud != kLargo) continue;
        for (const Indice& indice : tabla.tabla->indices) {
            if (indice.columnas[0] != cual) continue;
            return FechaIndexada{{"q_fecha8(" + columna.sql + ")", TipoFecha()},
                                 "q_fechas_validas((SELECT 1 FROM " + tabla.tabla->sql +
                                     " WHERE q_fecha8(" + EntreComillas(columna.nombre) +
                                     ")='!' LIMIT 1))"};
        }
    }
    return {};
}

}  // namespace

Termino FechaIndexada::ConControl(const Termino& condicion) const {
    return Verdad(Par(condicion, Fuerza::Y) + " AND " + control, Fuerza::Y);
}

std::optional<FechaIndexada> FechaDeTrabajo(const Expr& expr, const Ambito& ambito,
                                            OrdenFecha orden, Lote* lote) {
    const auto trozos = LeerTrozos(expr, orden, lote);
    if (!trozos) return {};
    for (const Ambito* a = &ambito; a != nullptr; a = a->padre) {
        const auto hallada = BuscarColumna(*trozos->dia, *a);
        if (!hallada) return {};
        if (*hallada == nullptr) continue;
        if ((a->agrupado && !a->libre) || !DicenLoMismo(*trozos->dia, *trozos->mes, *a, lote) ||
            !DicenLoMismo(*trozos->dia, *trozos->anio, *a, lote)) {
            return {};
        }
        return PorIndice(**hallada, *a);
    }
    return {};
}

}  // namespace quimo::tsql
