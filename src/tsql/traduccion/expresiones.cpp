#include <algorithm>
#include <array>
#include <utility>

#include "tsql/traduccion/conversiones_interno.h"
#include "tsql/traduccion/expresiones_interno.h"
#include "tsql/valores/conversion.h"

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

bool EnSuGrupo(const Expr& expr, const Ambito& ambito, Lote* lote) {
    return std::any_of(ambito.grupos.begin(), ambito.grupos.end(), [&](const ExprPtr& grupo) {
        return DicenLoMismo(expr, *grupo, ambito, lote);
    });
}

/// "table.column", as the message of a column out of its group names it.
std::string NombreExpuesto(const ColumnaAmbito& columna, const Ambito& ambito) {
    for (const TablaAmbito& tabla : ambito.tablas) {
        if (tabla.PosicionDe(&columna) >= 0) return tabla.expuesto + "." + columna.nombre;
    }
    return columna.nombre;
}

Termino Nulo() {
    Termino termino{"NULL", Tipo{}};
    termino.nulo = true;
    return termino;
}

}  // namespace

Termino TerminoDe(const ColumnaAmbito& columna) {
    Termino termino{columna.sql, columna.tipo, Fuerza::Atomo, columna.admite_nulos};
    termino.columna = true;
    return termino;
}

Resultado<Termino> TraductorExpresiones::Valor(const ExprPtr& expr, Ambito& ambito) {
    const Nivel nivel(contexto_);
    if (nivel.Pasa(kNivelesMaximos)) return DemasiadoAnidado();
    const bool agrupable = ambito.agrupado && !ambito.libre && expr->clase != ClaseExpr::Literal &&
                           expr->clase != ClaseExpr::Nulo;
    if (!agrupable || !EnSuGrupo(*expr, ambito, contexto_.entorno.lote)) {
        return ValorSinGrupo(*expr, ambito);
    }
    ambito.libre = true;
    auto termino = ValorSinGrupo(*expr, ambito);
    ambito.libre = false;
    return termino;
}

// Every kind of node has its case: one that nobody translates does not compile.
Resultado<Termino> TraductorExpresiones::ValorSinGrupo(const Expr& expr, Ambito& ambito) {
    switch (expr.clase) {
        case ClaseExpr::Literal:
            return Constante(expr);
        case ClaseExpr::Nulo:
            return Nulo();
        case ClaseExpr::Columna:
            return Columna(expr, ambito);
        case ClaseExpr::Asterisco:
            return SintaxisIncorrecta("*");
        case ClaseExpr::Variable:
            return Variable(expr);
        case ClaseExpr::Global:
            return Global(expr);
        case ClaseExpr::Parametro:
            return Parametro(expr);
        case ClaseExpr::Unaria:
            return Unaria(expr, ambito);
        case ClaseExpr::Binaria:
            return Binaria(expr, ambito);
        case ClaseExpr::Funcion:
            return funciones_.Funcion(expr, ambito);
        case ClaseExpr::Caso:
            return Caso(expr, ambito);
        case ClaseExpr::Conversion:
            return Conversion(expr, ambito);
        case ClaseExpr::Entre:
            return predicados_.Entre(expr, ambito);
        case ClaseExpr::EnLista:
            return predicados_.EnLista(expr, ambito);
        case ClaseExpr::EnConsulta:
            return predicados_.EnConsulta(expr, ambito);
        case ClaseExpr::Existe:
            return Existe(expr, ambito);
        case ClaseExpr::EsNulo:
            return predicados_.EsNulo(expr, ambito);
        case ClaseExpr::Como:
            return predicados_.Como(expr, ambito);
        case ClaseExpr::Subconsulta:
            return Subconsulta(expr, ambito);
        case ClaseExpr::Cuantificada:
            return predicados_.Cuantificada(expr, ambito);
    }
    QUIMO_CHECK(false);
    return DemasiadoAnidado();
}

Resultado<Termino> TraductorExpresiones::ValorSuelto(const ExprPtr& expr, Ambito& ambito) {
    const bool constante = expr->clase == ClaseExpr::Literal && expr->indice >= 0 &&
                           contexto_.entorno.lote != nullptr && !expr->tipo.EsAncho() &&
                           expr->tipo.longitud >= 0;
    if (!constante) return Valor(expr, ambito);
    Termino termino{contexto_.RanuraSql({Ranura::Origen::Literal, expr->indice, {}, expr->tipo}),
                    expr->tipo, Fuerza::Atomo, false};
    termino.constante = true;
    Tipo& tipo = termino.tipo;
    if (tipo.EsEntero()) tipo = TipoEntero(tipo.clase);
    if (tipo.clase == Clase::Numeric) tipo.precision = kDigitosNativos;
    if (tipo.EsTexto()) tipo.longitud = tipo.EsNacional() ? kLongitudMaxima / 2 : kLongitudMaxima;
    if (tipo.EsBinario()) tipo.longitud = kLongitudMaxima;
    return termino;
}

Termino TraductorExpresiones::Constante(const Expr& expr) {
    Termino termino;
    termino.tipo = expr.tipo;
    termino.constante = true;
    termino.admite_nulos = false;
    if (expr.literal) {
        termino.sql = LiteralSql(*expr.literal);
        if (!termino.sql.empty() && termino.sql[0] == '-') termino.fuerza = kFuerzaDelSigno;
    } else {
        Lote* const lote = contexto_.entorno.lote;
        if (lote != nullptr) lote->tipos_fijos[static_cast<std::size_t>(expr.indice)] = true;
        termino.sql = contexto_.RanuraSql({Ranura::Origen::Literal, expr.indice, {}, expr.tipo});
    }
    return termino;
}

Resultado<Termino> TraductorExpresiones::Variable(const Expr& expr) {
    if (!contexto_.sustituciones.empty()) {
        const auto& valores = contexto_.sustituciones.back();
        const auto valor = valores.find(expr.texto);
        if (valor == valores.end()) return VariableSinDeclarar(expr.texto);
        return valor->second;
    }
    const auto tipo = contexto_.TipoDeVariable(expr.texto);
    if (!tipo) return VariableSinDeclarar(expr.texto);
    return Termino{contexto_.RanuraSql({Ranura::Origen::Variable, -1, expr.texto, *tipo}), *tipo};
}

Resultado<Termino> TraductorExpresiones::Parametro(const Expr& expr) {
    const auto indice = static_cast<std::size_t>(expr.indice);
    const std::vector<Tipo>& dados = contexto_.entorno.parametros;
    if (indice >= dados.size()) {
        return ParametrosDeMenos(std::to_string(indice + 1), std::to_string(dados.size()));
    }
    const Tipo& tipo = dados[indice];
    Termino termino{contexto_.RanuraSql({Ranura::Origen::Parametro, expr.indice, {}, tipo}), tipo};
    termino.nulo = tipo.clase == Clase::Nulo;
    return termino;
}

Resultado<Termino> TraductorExpresiones::Global(const Expr& expr) {
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
        return VariableSinDeclarar(expr.texto);
    }
    termino.sql = contexto_.RanuraSql({Ranura::Origen::Global, -1, expr.texto, termino.tipo});
    return termino;
}

Resultado<Termino> TraductorExpresiones::Columna(const Expr& expr, const Ambito& ambito) const {
    for (const Ambito* a = &ambito; a != nullptr; a = a->padre) {
        QUIMO_TRY(const ColumnaAmbito* const columna, BuscarColumna(expr, *a));
        if (columna == nullptr) continue;
        const bool permitida =
            !a->agrupado || a->libre || EnSuGrupo(expr, *a, contexto_.entorno.lote);
        if (!permitida) {
            return ColumnaFueraDelGrupo(NombreExpuesto(*columna, *a), NombreClausula(a->clausula));
        }
        return TerminoDe(*columna);
    }
    if (expr.partes.size() > 1) return ColumnaSinDueno(NombreCompleto(expr.partes));
    return ColumnaDesconocida(expr.partes.back());
}

Resultado<Termino> TraductorExpresiones::Unaria(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino valor, Valor(expr.hijos[0], ambito));
    if (expr.texto == "NOT") {
        valor.sql = "NOT " + Par(valor, Fuerza::Igual);
        valor.fuerza = Fuerza::No;
        return valor;
    }
    if (expr.texto == "+") return valor;
    const std::string& signo = expr.texto;
    const bool sirve = expr.texto == "~" ? valor.tipo.EsEntero() : valor.tipo.EsNumero();
    if (!sirve && !valor.nulo) {
        return OperandoDeTipoInvalido(std::string(NombreClase(valor.tipo.clase)),
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

Resultado<Termino> TraductorExpresiones::Binaria(const Expr& expr, Ambito& ambito) {
    const bool logica = expr.texto == "AND" || expr.texto == "OR";
    if (!logica && expr.EsCondicion()) return predicados_.Comparacion(expr, ambito);
    QUIMO_TRY(Termino a, Valor(expr.hijos[0], ambito));
    QUIMO_TRY(Termino b, Valor(expr.hijos[1], ambito));
    if (!logica) {
        return Aritmetica(expr.texto[0], std::move(a), std::move(b), contexto_.entorno.orden);
    }
    const Fuerza fuerza = expr.texto == "AND" ? Fuerza::Y : Fuerza::O;
    return Verdad(Par(a, fuerza) + " " + expr.texto + " " + Par(b, Fuerza::No), fuerza);
}

Resultado<Termino> TraductorExpresiones::Caso(const Expr& expr, Ambito& ambito) {
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
            QUIMO_TRY(cuando,
                      CompararTerminos("=", operando, std::move(cuando), contexto_.entorno.orden));
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
    if (tipo.clase == Clase::Nulo) return CasoSinTipo();
    bool admite_nulos = !expr.con_sino;
    for (Termino& valor : valores) {
        admite_nulos = admite_nulos || valor.admite_nulos;
        QUIMO_TRY(valor, Convertir(std::move(valor), tipo, contexto_.entorno.orden));
    }
    std::string sql = "CASE";
    for (std::size_t i = 0; i < pares; ++i) {
        sql += " WHEN " + condiciones[i].sql + " THEN " + valores[i].sql;
    }
    if (expr.con_sino) sql += " ELSE " + valores.back().sql;
    return Termino{sql + " END", tipo, Fuerza::Atomo, admite_nulos};
}

Resultado<Termino> TraductorExpresiones::Conversion(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(Termino valor, Valor(expr.hijos[0], ambito));
    int estilo = 0;
    if (expr.hijos.size() > 1) {
        const auto literal = contexto_.Constante(*expr.hijos[1]);
        if (!literal || !literal->tipo.EsEntero()) {
            return ArgumentoDeTipoInvalido("expression", "3", "convert");
        }
        estilo = static_cast<int>(literal->valor.Entero());
    }
    const bool uuid =
        valor.tipo.clase == Clase::UniqueIdentifier || expr.tipo.clase == Clase::UniqueIdentifier;
    if (uuid) {
        QUIMO_TRY(const bool permitida, PermiteImplicita(valor.tipo, expr.tipo));
        QUIMO_CHECK(permitida);
    }
    QUIMO_TRY(valor, Convertir(std::move(valor), expr.tipo, contexto_.entorno.orden, estilo));
    valor.nulo = false;  // a NULL of a type of its own
    return valor;
}

Resultado<Termino> TraductorExpresiones::Subconsulta(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(const ConsultaSql consulta, consultas_.ConsultaEn(*expr.consulta, &ambito));
    if (consulta.columnas.size() != 1) return UnaSolaExpresion();
    Termino termino{"(" + consulta.sql + ")", consulta.columnas[0].tipo};
    if (!consulta.una_fila) {
        termino.sql = "(SELECT q_unico(\"q1\") FROM (" + consulta.sql + "))";
    }
    termino.nulo = termino.tipo.clase == Clase::Nulo;
    return termino;
}

Resultado<Termino> TraductorExpresiones::Existe(const Expr& expr, Ambito& ambito) {
    QUIMO_TRY(const ConsultaSql consulta, consultas_.ConsultaEn(*expr.consulta, &ambito));
    return Verdad("EXISTS (" + consulta.sql + ")", Fuerza::Unaria);
}

}  // namespace quimo::tsql
