#include <array>

#include "tsql/texto.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

constexpr int kBitDestino = 16;
constexpr int kBitOrden = 20;

Termino Verdad(std::string sql, Fuerza fuerza) {
    return {std::move(sql), TipoEntero(Clase::Bit), fuerza};
}

/// SUBSTRING(x, desde, largo) with these two constants; x when it is one.
const Expr* Trozo(const Expr& expr, std::int64_t desde, std::int64_t largo,
                  const std::function<std::optional<Literal>(const Expr&)>& fijar) {
    if (expr.clase != ClaseExpr::Funcion || expr.texto != "SUBSTRING" || expr.hijos.size() != 3) {
        return nullptr;
    }
    const auto a = fijar(*expr.hijos[1]);
    const auto b = fijar(*expr.hijos[2]);
    const bool iguales = a && b && a->tipo.EsEntero() && b->tipo.EsEntero() &&
                         a->valor.exacto == desde && b->valor.exacto == largo;
    return iguales && expr.hijos[0]->clase == ClaseExpr::Columna ? expr.hijos[0].get() : nullptr;
}

bool EsSuma(const Expr& expr) { return expr.clase == ClaseExpr::Binaria && expr.texto == "+"; }

}  // namespace

Termino Traductor::LlamarConversion(const Termino& termino, const Tipo& a, int estilo,
                                    Destino destino) const {
    const int opciones = estilo | (destino == Destino::Columna ? 1 << kBitDestino : 0) |
                         static_cast<int>(entorno_.orden) << kBitOrden;
    return {"q_cv(" + termino.sql + "," + TipoSqlTexto(termino.tipo) + "," + TipoSqlTexto(a) + "," +
                std::to_string(opciones) + ")",
            a, Fuerza::Atomo, termino.admite_nulos};
}

Resultado<Termino> Traductor::Convertir(Termino termino, const Tipo& a, int estilo) {
    if (a.clase == Clase::Nulo) return termino;
    if (auto nativa = ConversionNativa(termino, a)) return *std::move(nativa);
    return LlamarConversion(termino, a, estilo, Destino::Expresion);
}

Resultado<Termino> Traductor::Asignar(Termino termino, const ColumnaTabla& columna,
                                      const Tabla& tabla, std::string_view verbo) {
    QUIMO_TRY(const bool permitida, PermiteImplicita(termino.tipo, columna.tipo));
    QUIMO_CHECK(permitida);
    const bool exacto = columna.tipo.EsExacto() && termino.tipo.EsExacto();
    // A sum or product may have left the range of its own type without anybody noticing.
    const bool revisar = exacto && !termino.columna && !termino.constante && !termino.nulo;
    auto nativa = revisar ? std::nullopt : ConversionNativa(termino, columna.tipo);
    Termino valor =
        nativa ? *std::move(nativa) : LlamarConversion(termino, columna.tipo, 0, Destino::Columna);
    const int fila = tabla.ColumnaFila();
    const bool es_fila = fila >= 0 && &tabla.columnas[static_cast<std::size_t>(fila)] == &columna;
    if (es_fila && termino.admite_nulos) {
        valor.sql = "q_no_nulo(" + valor.sql + "," + EntreApostrofes(columna.nombre) + "," +
                    EntreApostrofes(tabla.nombre) + "," + EntreApostrofes(verbo) + ")";
        valor.fuerza = Fuerza::Atomo;
    }
    return valor;
}

/// Makes two values comparable by the engine's own operators.
Hecho Traductor::Igualar(Termino& a, Termino& b) {
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
        QUIMO_TRY(menor, Convertir(std::move(menor), comun));
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

/// A text with the order that the dialect compares by.
std::string Traductor::Cotejada(const Termino& termino) {
    if (!termino.tipo.EsTexto()) return termino.sql;
    return Par(termino, Fuerza::Cotejo) + " COLLATE QUIMO";
}

Resultado<Termino> Traductor::CompararTerminos(std::string_view operador, Termino a, Termino b) {
    QUIMO_TRY_VOID(Igualar(a, b));
    const bool texto = a.tipo.EsTexto() || b.tipo.EsTexto();
    const bool igual = operador == "=" || operador == "<>";
    const Fuerza fuerza = igual ? Fuerza::Igual : Fuerza::Orden;
    const auto derecha = static_cast<Fuerza>(static_cast<int>(fuerza) + 1);
    const std::string izquierda =
        texto && !a.nulo ? Par(a, Fuerza::Cotejo) + " COLLATE QUIMO" : Par(a, derecha);
    return Verdad(izquierda + std::string(operador) + Par(b, derecha), fuerza);
}

Resultado<Termino> Traductor::Entre(const Expr& expr, Ambito& ambito) {
    std::string control;
    Termino valor;
    if (auto fecha = FechaDeTrabajo(expr.hijos[0], ambito, control)) {
        valor = *std::move(fecha);
    } else {
        QUIMO_TRY(valor, Valor(expr.hijos[0], ambito));
    }
    QUIMO_TRY(Termino desde, ValorSuelto(expr.hijos[1], ambito));
    QUIMO_TRY(Termino hasta, ValorSuelto(expr.hijos[2], ambito));
    Termino con_desde = valor;
    Termino con_hasta = valor;
    QUIMO_TRY_VOID(Igualar(con_desde, desde));
    QUIMO_TRY_VOID(Igualar(con_hasta, hasta));
    const std::string no = expr.negado ? " NOT" : "";
    if (con_desde.sql == con_hasta.sql) {
        const bool texto = con_desde.tipo.EsTexto();
        const std::string izquierda = texto ? Cotejada(con_desde) : Par(con_desde, Fuerza::Orden);
        return ConControl(Verdad(izquierda + no + " BETWEEN " + Par(desde, Fuerza::Orden) +
                                     " AND " + Par(hasta, Fuerza::Orden),
                                 Fuerza::Igual),
                          control);
    }
    QUIMO_TRY(const Termino minimo, CompararTerminos(">=", valor, std::move(desde)));
    QUIMO_TRY(const Termino maximo, CompararTerminos("<=", valor, std::move(hasta)));
    const Termino ambos = Verdad(minimo.sql + " AND " + maximo.sql, Fuerza::Y);
    if (!expr.negado) return ConControl(ambos, control);
    return ConControl(Verdad("NOT (" + ambos.sql + ")", Fuerza::No), control);
}

Resultado<Termino> Traductor::EnLista(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(const Termino valor, Valor(expr.hijos[0], ambito));
    std::string lista;
    std::string alternativas;
    std::string izquierda;
    bool uniforme = true;
    for (std::size_t i = 1; i < expr.hijos.size(); ++i) {
        QUIMO_TRY(Termino item, ValorSuelto(expr.hijos[i], ambito));
        Termino convertido = valor;
        QUIMO_TRY_VOID(Igualar(convertido, item));
        const std::string este =
            convertido.tipo.EsTexto() ? Cotejada(convertido) : Par(convertido, Fuerza::Orden);
        if (i == 1) izquierda = este;
        uniforme = uniforme && este == izquierda;
        lista += (i > 1 ? "," : "") + item.sql;
        alternativas += (i > 1 ? " OR " : "") + este + "=" + Par(item, Fuerza::Orden);
    }
    if (uniforme) {
        return Verdad(izquierda + (expr.negado ? " NOT IN (" : " IN (") + lista + ")",
                      Fuerza::Igual);
    }
    return Verdad((expr.negado ? "NOT (" : "(") + alternativas + ")",
                  expr.negado ? Fuerza::No : Fuerza::Atomo);
}

Resultado<Termino> Traductor::EnConsulta(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino valor, Valor(expr.hijos[0], ambito));
    QUIMO_TRY(const ConsultaSql consulta, ConsultaEn(*expr.consulta, &ambito));
    if (consulta.columnas.size() != 1) return CrearError(116);
    Termino columna{"\"q1\"", consulta.columnas[0].tipo};
    columna.columna = true;
    QUIMO_TRY_VOID(Igualar(valor, columna));
    std::string sql = consulta.sql;
    if (columna.sql != "\"q1\"") sql = "SELECT " + columna.sql + " FROM (" + sql + ")";
    const std::string izquierda =
        valor.tipo.EsTexto() ? Cotejada(valor) : Par(valor, Fuerza::Orden);
    return Verdad(izquierda + (expr.negado ? " NOT IN (" : " IN (") + sql + ")", Fuerza::Igual);
}

Resultado<Termino> Traductor::Cuantificada(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino valor, Valor(expr.hijos[0], ambito));
    QUIMO_TRY(const ConsultaSql consulta, ConsultaEn(*expr.consulta, &ambito));
    if (consulta.columnas.size() != 1) return CrearError(116);
    const std::string alias = "t" + std::to_string(siguiente_tabla_++);
    const Termino columna{EntreComillas(alias) + ".\"q1\"", consulta.columnas[0].tipo};
    QUIMO_TRY(const Termino cada, CompararTerminos(expr.texto, std::move(valor), columna));
    const auto hay = [&](const std::string& prueba) {
        return "EXISTS (SELECT 1 FROM (" + consulta.sql + ") AS " + EntreComillas(alias) +
               " WHERE (" + cada.sql + ") IS " + prueba + ")";
    };
    // ALL is false as soon as one is false, ANY true as soon as one is true; unknown otherwise
    // when any comparison is unknown.
    const std::string decide = expr.distinto ? hay("FALSE") + " THEN 0" : hay("TRUE") + " THEN 1";
    return Verdad("CASE WHEN " + decide + " WHEN " + hay("NULL") + " THEN NULL ELSE " +
                      (expr.distinto ? "1" : "0") + " END",
                  Fuerza::Atomo);
}

Termino Traductor::EnRangos(const Termino& numero, const Rangos& rangos, bool negado) {
    std::string sql;
    for (const auto& [desde, hasta] : rangos) {
        sql += (sql.empty() ? "" : " OR ") + numero.sql + " BETWEEN " + std::to_string(desde) +
               " AND " + std::to_string(hasta);
    }
    if (negado) return Verdad("NOT (" + sql + ")", Fuerza::No);
    return Verdad("(" + sql + ")", Fuerza::Atomo);
}

Resultado<Termino> Traductor::Como(const Expr& expr, Ambito& ambito) {
    if (expr.hijos[0]->clase == ClaseExpr::Columna) {
        QUIMO_TRY(const Termino numero, Valor(expr.hijos[0], ambito));
        const auto rangos = RangosDePrefijo(expr, numero.tipo);
        if (rangos && !rangos->empty()) return EnRangos(numero, *rangos, expr.negado);
    }
    std::string argumentos;
    for (const ExprPtr& hijo : expr.hijos) {
        QUIMO_TRY(Termino termino, Valor(hijo, ambito));
        if (!termino.tipo.EsTexto()) {
            QUIMO_TRY(termino, Convertir(std::move(termino), TipoTexto(Clase::VarChar, 8000)));
        }
        argumentos += (argumentos.empty() ? "" : ",") + termino.sql;
    }
    return Verdad((expr.negado ? "NOT q_como(" : "q_como(") + argumentos + ")",
                  expr.negado ? Fuerza::No : Fuerza::Atomo);
}

/// CONVERT(DateTime, SUBSTRING(x,1,2)+'/'+SUBSTRING(x,3,2)+'/'+SUBSTRING(x,5,4), 103) over an
/// indexed text of eight characters: the engine keeps an index on what it yields.
std::optional<Termino> Traductor::FechaDeTrabajo(const ExprPtr& expr, Ambito& ambito,
                                                 std::string& control) {
    if (expr->clase != ClaseExpr::Conversion || expr->tipo.clase != Clase::DateTime) return {};
    const Expr& suma = *expr->hijos[0];
    if (!EsSuma(suma) || !EsSuma(*suma.hijos[0]) || !EsSuma(*suma.hijos[0]->hijos[0]) ||
        !EsSuma(*suma.hijos[0]->hijos[0]->hijos[0])) {
        return {};
    }
    if (expr->hijos.size() > 1) {
        const auto estilo = Fijar(*expr->hijos[1]);
        if (!estilo || estilo->valor.exacto != 103) return {};
    } else if (entorno_.orden != OrdenFecha::Dma) {
        return {};
    }
    const auto fijar = [this](const Expr& e) { return Fijar(e); };
    const auto barra = [&](const Expr& e) {
        const auto literal = Fijar(e);
        return literal && literal->tipo.EsTexto() && literal->valor.texto == "/";
    };
    const Expr& mes_barra = *suma.hijos[0];
    const Expr& hasta_mes = *mes_barra.hijos[0];
    const Expr& dia_barra = *hasta_mes.hijos[0];
    const Expr* dia = Trozo(*dia_barra.hijos[0], 1, 2, fijar);
    const Expr* mes = Trozo(*hasta_mes.hijos[1], 3, 2, fijar);
    const Expr* anio = Trozo(*suma.hijos[1], 5, 4, fijar);
    if (dia == nullptr || mes == nullptr || anio == nullptr || !barra(*dia_barra.hijos[1]) ||
        !barra(*mes_barra.hijos[1])) {
        return {};
    }
    for (Ambito* a = &ambito; a != nullptr; a = a->padre) {
        const auto hallada = BuscarColumna(*dia, *a);
        if (!hallada) return {};
        if (*hallada == nullptr) continue;
        if ((a->agrupado && !a->libre) || !Igual(*dia, *mes, *a) || !Igual(*dia, *anio, *a))
            return {};
        for (const TablaAmbito& tabla : a->tablas) {
            const std::ptrdiff_t cual = *hallada - tabla.columnas.data();
            const bool suya =
                cual >= 0 && cual < static_cast<std::ptrdiff_t>(tabla.columnas.size());
            if (!suya || !tabla.tabla) continue;
            for (const Indice& indice : tabla.tabla->indices) {
                if (indice.columnas[0] != cual || (*hallada)->tipo.longitud != 8) continue;
                const std::string columna = EntreComillas((*hallada)->nombre);
                control = "q_fechas_validas((SELECT 1 FROM " + tabla.tabla->sql +
                          " WHERE q_fecha8(" + columna + ")='!' LIMIT 1))";
                return Termino{"q_fecha8(" + (*hallada)->sql + ")", TipoFecha()};
            }
        }
        return {};
    }
    return {};
}

/// A condition over the date index stands only while no text there fails to be a date.
Resultado<Termino> Traductor::ConControl(Termino termino, const std::string& control) const {
    if (control.empty()) return termino;
    return Verdad(Par(termino, Fuerza::Y) + " AND " + control, Fuerza::Y);
}

}  // namespace quimo::tsql
