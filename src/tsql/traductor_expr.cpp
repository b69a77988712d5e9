#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "tsql/decimales.h"
#include "tsql/texto.h"
#include "tsql/traductor_interno.h"

namespace quimo::tsql {

namespace {

/// Weaker than it is, so that parentheses keep a sign from meeting another: "--" begins a comment.
constexpr Fuerza kFuerzaDelSigno = Fuerza::Suma;

constexpr int kNivelesMaximos = 1500;

std::string NombreCompleto(const std::vector<std::string>& partes) {
    std::string nombre;
    for (const std::string& parte : partes)
        nombre += (nombre.empty() ? "" : ".") + parte;
    return nombre;
}

std::string NombreClausula(Clausula clausula) {
    if (clausula == Clausula::Teniendo) return "HAVING clause";
    if (clausula == Clausula::Orden) return "ORDER BY clause";
    return "select list";
}

std::string RealSql(double real) {
    std::array<char, 40> texto{};
    const auto fin = std::to_chars(texto.data(), texto.data() + texto.size(), real,
                                   std::chars_format::scientific, 17)
                         .ptr;
    return {texto.data(), fin};
}

std::string BinarioSql(std::string_view bytes) {
    constexpr std::string_view kCifras = "0123456789ABCDEF";
    std::string texto = "x'";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        texto.push_back(kCifras[byte >> 4U]);
        texto.push_back(kCifras[byte & 15U]);
    }
    return texto + "'";
}

}  // namespace

std::string Par(const Termino& termino, Fuerza minima) {
    return termino.fuerza >= minima ? termino.sql : "(" + termino.sql + ")";
}

std::string LiteralSql(const Literal& literal) {
    if (literal.valor.EsNulo()) return "NULL";
    if (literal.tipo.EsTexto()) return EntreApostrofes(literal.valor.texto);
    if (literal.tipo.EsReal()) return RealSql(literal.valor.real);
    if (literal.tipo.EsBinario()) return BinarioSql(literal.valor.texto);
    if (ContarCifras(literal.valor.exacto) <= kDigitosNativos) {
        return TextoDecimal(literal.valor.exacto, 0);
    }
    return "q_ancho('" + TextoDecimal(literal.valor.exacto, 0) + "')";
}

std::string TipoSqlTexto(const Tipo& tipo) { return std::to_string(Empaquetar(tipo)); }

std::string Traductor::Ranura(tsql::Ranura ranura) {
    for (std::size_t i = 0; i < ranuras_.size(); ++i) {
        const tsql::Ranura& otra = ranuras_[i];
        if (otra.origen == ranura.origen && otra.indice == ranura.indice &&
            otra.nombre == ranura.nombre) {
            return "?" + std::to_string(i + 1);
        }
    }
    ranuras_.push_back(std::move(ranura));
    return "?" + std::to_string(ranuras_.size());
}

std::optional<Literal> Traductor::Fijar(const Expr& expr) const {
    if (expr.clase == ClaseExpr::Unaria && expr.texto == "-") {
        auto literal = Fijar(*expr.hijos[0]);
        if (!literal || !literal->tipo.EsExacto()) return std::nullopt;
        literal->valor.exacto = -literal->valor.exacto;
        return literal;
    }
    if (expr.clase != ClaseExpr::Literal) return std::nullopt;
    if (expr.literal) return expr.literal;
    if (entorno_.lote == nullptr || expr.indice < 0) return std::nullopt;
    const auto indice = static_cast<std::size_t>(expr.indice);
    entorno_.lote->fijos[indice] = true;
    return entorno_.lote->literales[indice];
}

bool Traductor::Igual(const Expr& a, const Expr& b, const Ambito& ambito) const {
    if (a.clase != b.clase) return false;
    if (a.clase == ClaseExpr::Columna) {
        const auto x = BuscarColumna(a, ambito);
        const auto y = BuscarColumna(b, ambito);
        return x && y && *x != nullptr && *y != nullptr && (*x)->sql == (*y)->sql;
    }
    if (a.clase == ClaseExpr::Literal) {
        if (!(a.tipo == b.tipo)) return false;
        const auto x = Fijar(a);
        const auto y = Fijar(b);
        return x && y && LiteralSql(*x) == LiteralSql(*y);
    }
    const bool igual = a.texto == b.texto && a.indice == b.indice && a.tipo == b.tipo &&
                       a.negado == b.negado && a.distinto == b.distinto && a.simple == b.simple &&
                       a.con_sino == b.con_sino && a.consulta == b.consulta &&
                       a.hijos.size() == b.hijos.size() && a.partes.size() == b.partes.size();
    if (!igual) return false;
    for (std::size_t i = 0; i < a.hijos.size(); ++i) {
        if (!Igual(*a.hijos[i], *b.hijos[i], ambito)) return false;
    }
    return true;
}

Resultado<Termino> Traductor::Valor(const ExprPtr& expr, Ambito& ambito) {
    if (++niveles_ > kNivelesMaximos) return CrearError(191);
    const bool agrupable = ambito.agrupado && !ambito.libre && expr->clase != ClaseExpr::Literal &&
                           expr->clase != ClaseExpr::Nulo;
    bool en_grupo = false;
    for (std::size_t i = 0; agrupable && !en_grupo && i < ambito.grupos.size(); ++i) {
        en_grupo = Igual(*expr, *ambito.grupos[i], ambito);
    }
    if (en_grupo) ambito.libre = true;
    auto termino = ValorSinGrupo(*expr, ambito);
    if (en_grupo) ambito.libre = false;
    --niveles_;
    return termino;
}

Resultado<Termino> Traductor::ValorSinGrupo(const Expr& expr, Ambito& ambito) {
    using Traduccion = Resultado<Termino> (Traductor::*)(const Expr&, Ambito&);
    constexpr auto kTraducciones = std::to_array<std::pair<ClaseExpr, Traduccion>>({
        {ClaseExpr::Columna, &Traductor::ResolverColumna},
        {ClaseExpr::Unaria, &Traductor::Unaria},
        {ClaseExpr::Binaria, &Traductor::Binaria},
        {ClaseExpr::Funcion, &Traductor::Funcion},
        {ClaseExpr::Caso, &Traductor::Caso},
        {ClaseExpr::Conversion, &Traductor::ConversionExplicita},
        {ClaseExpr::Entre, &Traductor::Entre},
        {ClaseExpr::EnLista, &Traductor::EnLista},
        {ClaseExpr::EnConsulta, &Traductor::EnConsulta},
        {ClaseExpr::Cuantificada, &Traductor::Cuantificada},
        {ClaseExpr::Como, &Traductor::Como},
        {ClaseExpr::Subconsulta, &Traductor::Subconsulta},
    });
    for (const auto& [clase, traduccion] : kTraducciones) {
        if (clase == expr.clase) return (this->*traduccion)(expr, ambito);
    }
    if (expr.clase == ClaseExpr::Existe) {
        QUIMO_TRY(const ConsultaSql consulta, ConsultaEn(*expr.consulta, &ambito));
        return Termino{"EXISTS (" + consulta.sql + ")", TipoEntero(Clase::Bit), Fuerza::Unaria};
    }
    if (expr.clase == ClaseExpr::EsNulo) {
        QUIMO_TRY(const Termino valor, Valor(expr.hijos[0], ambito));
        const std::string no = expr.negado ? " IS NOT NULL" : " IS NULL";
        return Termino{Par(valor, Fuerza::Orden) + no, TipoEntero(Clase::Bit), Fuerza::Igual};
    }
    if (expr.clase == ClaseExpr::Asterisco) return CrearError(102, "*");
    return Literales(expr);
}

Resultado<Termino> Traductor::Condicion(const ExprPtr& expr, Ambito& ambito) {
    return Valor(expr, ambito);
}

Resultado<Termino> Traductor::Literales(const Expr& expr) {
    Termino termino;
    termino.expr = &expr;
    if (expr.clase == ClaseExpr::Nulo) {
        termino.sql = "NULL";
        termino.nulo = true;
        return termino;
    }
    if (expr.clase == ClaseExpr::Global) return Global(expr);
    if (expr.clase == ClaseExpr::Variable) {
        if (!sustituciones_.empty()) {
            const auto valor = sustituciones_.back().find(expr.texto);
            if (valor == sustituciones_.back().end()) return CrearError(137, expr.texto);
            return valor->second;
        }
        const auto tipo =
            entorno_.tipo_variable ? entorno_.tipo_variable(expr.texto) : std::nullopt;
        if (!tipo) return CrearError(137, expr.texto);
        termino.tipo = *tipo;
        termino.sql = Ranura({Ranura::Origen::Variable, -1, expr.texto, *tipo});
        return termino;
    }
    if (expr.clase == ClaseExpr::Parametro) {
        const auto indice = static_cast<std::size_t>(expr.indice);
        if (indice >= entorno_.parametros.size()) {
            return CrearError(8178, std::to_string(indice + 1),
                              std::to_string(entorno_.parametros.size()));
        }
        termino.tipo = entorno_.parametros[indice];
        termino.nulo = termino.tipo.clase == Clase::Nulo;
        termino.sql = Ranura({Ranura::Origen::Parametro, expr.indice, {}, termino.tipo});
        return termino;
    }
    termino.tipo = expr.tipo;
    termino.constante = true;
    termino.admite_nulos = false;
    if (expr.literal) {
        termino.sql = LiteralSql(*expr.literal);
        if (!termino.sql.empty() && termino.sql[0] == '-') termino.fuerza = kFuerzaDelSigno;
    } else {
        if (entorno_.lote != nullptr) {
            entorno_.lote->tipos_fijos[static_cast<std::size_t>(expr.indice)] = true;
        }
        termino.sql = Ranura({Ranura::Origen::Literal, expr.indice, {}, expr.tipo});
    }
    return termino;
}

Resultado<Termino> Traductor::ValorSuelto(const ExprPtr& expr, Ambito& ambito) {
    const bool constante = expr->clase == ClaseExpr::Literal && expr->indice >= 0 &&
                           entorno_.lote != nullptr && !expr->tipo.EsAncho() &&
                           expr->tipo.longitud >= 0;
    if (!constante) return Valor(expr, ambito);
    Termino termino{Ranura({Ranura::Origen::Literal, expr->indice, {}, expr->tipo}), expr->tipo,
                    Fuerza::Atomo, false};
    termino.constante = true;
    Tipo& tipo = termino.tipo;
    if (tipo.EsEntero()) tipo = TipoEntero(tipo.clase);
    if (tipo.clase == Clase::Numeric) tipo.precision = kDigitosNativos;
    if (tipo.EsTexto()) tipo.longitud = tipo.EsNacional() ? kLongitudMaxima / 2 : kLongitudMaxima;
    if (tipo.EsBinario()) tipo.longitud = kLongitudMaxima;
    return termino;
}

Resultado<Termino> Traductor::Global(const Expr& expr) {
    constexpr auto kEnteras = std::to_array<std::string_view>(
        {"@@ROWCOUNT", "@@ERROR", "@@TRANCOUNT", "@@NESTLEVEL", "@@SPID", "@@PROCID"});
    constexpr auto kTextos =
        std::to_array<std::string_view>({"@@VERSION", "@@SERVERNAME", "@@LANGUAGE"});
    Termino termino;
    if (std::find(kEnteras.begin(), kEnteras.end(), expr.texto) != kEnteras.end()) {
        termino.tipo = TipoEntero(Clase::Int);
    } else if (std::find(kTextos.begin(), kTextos.end(), expr.texto) != kTextos.end()) {
        termino.tipo = TipoTexto(Clase::NVarChar, 300);
    } else if (expr.texto == "@@IDENTITY") {
        termino.tipo = TipoNumerico(kDigitosMaximos, 0);
    } else {
        return CrearError(137, expr.texto);
    }
    termino.sql = Ranura({Ranura::Origen::Global, -1, expr.texto, termino.tipo});
    return termino;
}

Resultado<const ColumnaAmbito*> Traductor::BuscarColumna(const Expr& expr,
                                                         const Ambito& ambito) const {
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
            if (hallada != nullptr) return CrearError(209, nombre);
            hallada = &columna;
        }
    }
    if (hallada == nullptr && prefijo) return CrearError(207, nombre);
    return hallada;
}

Resultado<Termino> Traductor::ResolverColumna(const Expr& expr, Ambito& ambito) {
    for (Ambito* a = &ambito; a != nullptr; a = a->padre) {
        QUIMO_TRY(const ColumnaAmbito* const columna, BuscarColumna(expr, *a));
        if (columna == nullptr) continue;
        bool permitida = !a->agrupado || a->libre;
        for (std::size_t i = 0; !permitida && i < a->grupos.size(); ++i) {
            permitida = Igual(expr, *a->grupos[i], *a);
        }
        if (!permitida) {
            std::string nombre = columna->nombre;
            for (const TablaAmbito& tabla : a->tablas) {
                for (const ColumnaAmbito& otra : tabla.columnas) {
                    if (&otra == columna) nombre = tabla.expuesto + "." + nombre;
                }
            }
            return CrearError(8120, nombre, NombreClausula(a->clausula));
        }
        return Columna(*columna);
    }
    if (expr.partes.size() > 1) return CrearError(4104, NombreCompleto(expr.partes));
    return CrearError(207, expr.partes.back());
}

Termino Traductor::Columna(const ColumnaAmbito& columna) const {
    Termino termino{columna.sql, columna.tipo, Fuerza::Atomo, columna.admite_nulos};
    termino.columna = true;
    return termino;
}

Resultado<Termino> Traductor::Unaria(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino valor, Valor(expr.hijos[0], ambito));
    if (expr.texto == "NOT") {
        valor.sql = "NOT " + Par(valor, Fuerza::Igual);
        valor.fuerza = Fuerza::No;
        return valor;
    }
    if (expr.texto == "+") return valor;
    const std::string signo = expr.texto;
    const bool sirve = expr.texto == "~" ? valor.tipo.EsEntero() : valor.tipo.EsNumero();
    if (!sirve && !valor.nulo) {
        return CrearError(8117, std::string(NombreClase(valor.tipo.clase)),
                          expr.texto == "~" ? "'~'" : "minus");
    }
    if (expr.texto == "~" && valor.tipo.clase == Clase::Bit) {
        valor.sql = "1-" + Par(valor, Fuerza::Producto);
        valor.fuerza = Fuerza::Suma;
    } else if (valor.tipo.EsAncho()) {
        valor.sql = "q_menos(0," + valor.sql + "," + std::to_string(valor.tipo.escala) + "," +
                    std::to_string(valor.tipo.escala) + "," + TipoSqlTexto(valor.tipo) + ")";
        valor.fuerza = Fuerza::Atomo;
    } else {
        valor.sql = signo + Par(valor, Fuerza::Atomo);
        valor.fuerza = signo == "-" ? kFuerzaDelSigno : Fuerza::Unaria;
        if (valor.tipo.clase == Clase::Bit) valor.tipo = TipoEntero(Clase::Int);
    }
    valor.columna = false;
    return valor;
}

Resultado<Termino> Traductor::Binaria(const Expr& expr, Ambito& ambito) {
    const ExprPtr& izquierda = expr.hijos[0];
    const ExprPtr& derecha = expr.hijos[1];
    if (expr.texto == "AND" || expr.texto == "OR") {
        QUIMO_TRY(const Termino a, Valor(izquierda, ambito));
        QUIMO_TRY(const Termino b, Valor(derecha, ambito));
        const Fuerza fuerza = expr.texto == "AND" ? Fuerza::Y : Fuerza::O;
        return Termino{Par(a, fuerza) + " " + expr.texto + " " + Par(b, Fuerza::No),
                       TipoEntero(Clase::Bit), fuerza};
    }
    if (!expr.EsCondicion()) {
        QUIMO_TRY(Termino a, Valor(izquierda, ambito));
        QUIMO_TRY(Termino b, Valor(derecha, ambito));
        return Aritmetica(expr.texto[0], std::move(a), std::move(b));
    }
    std::string control;
    const auto operando = [&](const ExprPtr& hijo) -> Resultado<Termino> {
        if (control.empty()) {
            if (auto fecha = FechaDeTrabajo(hijo, ambito, control)) return *std::move(fecha);
        }
        return ValorSuelto(hijo, ambito);
    };
    QUIMO_TRY(Termino a, operando(izquierda));
    QUIMO_TRY(Termino b, operando(derecha));
    QUIMO_TRY(Termino igual, CompararTerminos(expr.texto, std::move(a), std::move(b)));
    return ConControl(std::move(igual), control);
}

Resultado<Termino> Traductor::Concatenar(Termino a, Termino b) {
    const Tipo comun = TipoComun(a.tipo, b.tipo);
    Tipo tipo = TipoTexto(comun.EsNacional() ? Clase::NVarChar : Clase::VarChar, 0);
    const int maximo = comun.EsNacional() ? kLongitudMaxima / 2 : kLongitudMaxima;
    const bool sin_limite = a.tipo.longitud < 0 || b.tipo.longitud < 0;
    tipo.longitud = sin_limite ? -1 : std::min(a.tipo.longitud + b.tipo.longitud, maximo);
    if (tipo.longitud == 0) tipo.longitud = 1;
    Termino suma{Par(a, Fuerza::Union) + "||" + Par(b, Fuerza::Cotejo), tipo, Fuerza::Union,
                 a.admite_nulos || b.admite_nulos};
    return suma;
}

Resultado<Termino> Traductor::Caso(const Expr& expr, Ambito& ambito) {
    const std::size_t inicio = expr.simple ? 1 : 0;
    const std::size_t pares = (expr.hijos.size() - inicio - (expr.con_sino ? 1 : 0)) / 2;
    std::vector<Termino> condiciones;
    std::vector<Termino> valores;
    Termino operando;
    if (expr.simple) {
        QUIMO_TRY(operando, Valor(expr.hijos[0], ambito));
    }
    for (std::size_t i = 0; i < pares; ++i) {
        QUIMO_TRY(Termino cuando, Valor(expr.hijos[inicio + 2 * i], ambito));
        if (expr.simple) {
            QUIMO_TRY(cuando, CompararTerminos("=", operando, std::move(cuando)));
        }
        condiciones.push_back(std::move(cuando));
        QUIMO_TRY(Termino valor, Valor(expr.hijos[inicio + 2 * i + 1], ambito));
        valores.push_back(std::move(valor));
    }
    if (expr.con_sino) {
        QUIMO_TRY(Termino valor, Valor(expr.hijos.back(), ambito));
        valores.push_back(std::move(valor));
    }
    Tipo tipo;
    for (const Termino& valor : valores) {
        if (!valor.nulo) tipo = TipoComun(tipo, valor.tipo);
    }
    if (tipo.clase == Clase::Nulo) return CrearError(8133);
    bool admite_nulos = !expr.con_sino;
    for (Termino& valor : valores) {
        admite_nulos = admite_nulos || valor.admite_nulos;
        QUIMO_TRY(valor, Convertir(std::move(valor), tipo));
    }
    std::string sql = "CASE";
    for (std::size_t i = 0; i < pares; ++i) {
        sql += " WHEN " + condiciones[i].sql + " THEN " + valores[i].sql;
    }
    if (expr.con_sino) sql += " ELSE " + valores.back().sql;
    return Termino{sql + " END", tipo, Fuerza::Atomo, admite_nulos};
}

Resultado<Termino> Traductor::ConversionExplicita(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino valor, Valor(expr.hijos[0], ambito));
    int estilo = 0;
    if (expr.hijos.size() > 1) {
        const auto literal = Fijar(*expr.hijos[1]);
        if (!literal || !literal->tipo.EsEntero()) {
            return CrearError(8116, "expression", "3", "convert");
        }
        estilo = static_cast<int>(literal->valor.Entero());
    }
    const bool uuid =
        valor.tipo.clase == Clase::UniqueIdentifier || expr.tipo.clase == Clase::UniqueIdentifier;
    if (uuid) {
        QUIMO_TRY(const bool permitida, PermiteImplicita(valor.tipo, expr.tipo));
        QUIMO_CHECK(permitida);
    }
    QUIMO_TRY(valor, Convertir(std::move(valor), expr.tipo, estilo));
    valor.nulo = false;  // a NULL of a type of its own
    return valor;
}

Resultado<Termino> Traductor::Subconsulta(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(const ConsultaSql consulta, ConsultaEn(*expr.consulta, &ambito));
    if (consulta.columnas.size() != 1) return CrearError(116);
    Termino termino{"(" + consulta.sql + ")", consulta.columnas[0].tipo};
    if (!consulta.una_fila) {
        termino.sql = "(SELECT q_unico(\"q1\") FROM (" + consulta.sql + "))";
    }
    termino.nulo = termino.tipo.clase == Clase::Nulo;
    return termino;
}

}  // namespace quimo::tsql
