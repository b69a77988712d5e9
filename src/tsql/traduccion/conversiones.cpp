#include <algorithm>
#include <optional>

#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/valores/conversion.h"
#include "tsql/valores/decimales.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr int kBitDestino = 16;
constexpr int kBitOrden = 20;

/// The conversion that the engine can do by itself, or that needs nothing done.
std::optional<Termino> ConversionNativa(const Termino& t, const Tipo& a) {
    const Tipo& de = t.tipo;
    Termino igual = t;
    igual.tipo = a;
    if (t.nulo || de == a) return igual;
    if (de.EsTexto() && a.EsTexto()) {
        const bool cabe = a.longitud < 0 || (de.longitud > 0 && de.longitud <= a.longitud);
        if (cabe && (!a.LongitudFija() || (de.LongitudFija() && de.longitud == a.longitud))) {
            return igual;
        }
        return std::nullopt;
    }
    if (de.EsEntero() && a.EsTexto()) {
        const bool cabe = a.longitud < 0 || a.longitud > TipoEntero(de.clase).precision;
        if (!cabe || a.LongitudFija()) return std::nullopt;
        igual.sql = "CAST(" + t.sql + " AS TEXT)";
        igual.fuerza = Fuerza::Atomo;
        return igual;
    }
    if (de.EsFecha() && a.clase == Clase::DateTime) return igual;
    if (de.EsReal() && a.clase == Clase::Float) return igual;
    if (a.clase == Clase::Float && de.EsExacto() && !de.EsAncho()) {
        igual.sql = "CAST(" + t.sql + " AS REAL)";
        igual.fuerza = Fuerza::Atomo;
        if (de.escala > 0) {
            igual.sql += "/" + TextoDecimal(*PotenciaDeDiez(de.escala), 0) + ".0";
            igual.fuerza = Fuerza::Producto;
        }
        return igual;
    }
    if (!de.EsExacto() || !a.EsExacto() || de.EsAncho() || a.EsAncho()) return std::nullopt;
    if (de.EsEntero() && a.EsEntero()) {
        if (a.clase >= de.clase) return igual;
        return std::nullopt;
    }
    const int enteros = std::max(de.precision, 1) - de.escala;
    const int enteros_a = a.clase == Clase::SmallMoney ? 5
                          : a.EsMoneda()               ? 14
                                                       : a.precision - a.escala;
    if (a.EsEntero() || a.escala < de.escala || enteros > enteros_a) return std::nullopt;
    if (a.escala > de.escala) {
        igual.sql = Escalar(t, de.escala, a.escala);
        igual.fuerza = Fuerza::Producto;
    }
    return igual;
}

Termino LlamarConversion(const Termino& termino, const Tipo& a, int estilo, Destino destino,
                         OrdenFecha orden) {
    const int opciones = estilo | (destino == Destino::Columna ? 1 << kBitDestino : 0) |
                         static_cast<int>(orden) << kBitOrden;
    return {"q_cv(" + termino.sql + "," + TipoSqlTexto(termino.tipo) + "," + TipoSqlTexto(a) + "," +
                std::to_string(opciones) + ")",
            a, Fuerza::Atomo, termino.admite_nulos};
}

}  // namespace

std::string TipoSqlTexto(const Tipo& tipo) { return std::to_string(Empaquetar(tipo)); }

std::string Escalar(const Termino& termino, int de, int a) {
    if (a <= de) return termino.sql;
    return Par(termino, Fuerza::Producto) + "*" + TextoDecimal(*PotenciaDeDiez(a - de), 0);
}

Resultado<Termino> Convertir(Termino termino, const Tipo& a, OrdenFecha orden, int estilo) {
    if (a.clase == Clase::Nulo) return termino;
    if (auto nativa = ConversionNativa(termino, a)) return *std::move(nativa);
    return LlamarConversion(termino, a, estilo, Destino::Expresion, orden);
}

Resultado<Termino> ConvertirParaColumna(Termino termino, const ColumnaTabla& columna,
                                        const Tabla& tabla, std::string_view verbo,
                                        OrdenFecha orden) {
    QUIMO_TRY(const bool permitida, PermiteImplicita(termino.tipo, columna.tipo));
    QUIMO_CHECK(permitida);
    const bool exacto = columna.tipo.EsExacto() && termino.tipo.EsExacto();
    // A sum or product may have left the range of its own type without anybody noticing.
    const bool revisar = exacto && !termino.columna && !termino.constante && !termino.nulo;
    auto nativa = revisar ? std::nullopt : ConversionNativa(termino, columna.tipo);
    Termino valor = nativa ? *std::move(nativa)
                           : LlamarConversion(termino, columna.tipo, 0, Destino::Columna, orden);
    const int fila = tabla.ColumnaFila();
    const bool es_fila = fila >= 0 && &tabla.columnas[static_cast<std::size_t>(fila)] == &columna;
    if (es_fila && termino.admite_nulos) {
        valor.sql = "q_no_nulo(" + valor.sql + "," + EntreApostrofes(columna.nombre) + "," +
                    EntreApostrofes(tabla.nombre) + "," + EntreApostrofes(verbo) + ")";
        valor.fuerza = Fuerza::Atomo;
    }
    return valor;
}

}  // namespace quimo::tsql
