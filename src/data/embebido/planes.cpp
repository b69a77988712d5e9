#include "data/embebido/planes.h"

#include <sqlite3.h>

#include "data/embebido/errores_motor.h"
#include "data/embebido/errores_restriccion.h"
#include "data/embebido/escritura_por_partes.h"
#include "tsql/valores/conversion.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

/// Gives a prepared statement back, whatever way its run ended.
class Uso {
public:
    explicit Uso(PlanListo& listo) : listo_(listo) { listo_.en_uso = true; }
    Uso(const Uso&) = delete;
    Uso& operator=(const Uso&) = delete;
    ~Uso() {
        listo_.sentencia.Reiniciar();
        listo_.en_uso = false;
    }

private:
    PlanListo& listo_;
};

}  // namespace

tsql::Entorno Planes::EntornoDe(Marco& marco) const {
    tsql::Entorno entorno;
    entorno.catalogo = &sesion_.Catalogo();
    entorno.tipo_variable = [&marco](const std::string& nombre) -> std::optional<tsql::Tipo> {
        const auto variable = marco.variables.find(nombre);
        if (variable == marco.variables.end()) return std::nullopt;
        return variable->second.tipo;
    };
    entorno.parametros = marco.lote.tipos_parametros;
    entorno.orden = sesion_.Estado().orden;
    entorno.base = sesion_.NombreBase();
    entorno.identity_insert = sesion_.Estado().identity_insert;
    entorno.lote = marco.lote.modulo ? nullptr : &marco.lote.lote;
    return entorno;
}

/// A plan stands while its tables are the same and no procedure or option has changed.
bool Planes::Vigente(const PlanListo& listo) const {
    const CatalogoEmbebido& catalogo = sesion_.Catalogo();
    if (!listo.sentencia.Lista() || listo.version_modulos != catalogo.VersionModulos() ||
        listo.opciones != sesion_.Estado().opciones) {
        return false;
    }
    if (listo.version == catalogo.Version()) return true;
    for (const tsql::TablaPtr& tabla : listo.plan.usadas) {
        const auto actual = catalogo.Tablas().find(tsql::AMinusculas(tabla->nombre));
        if (actual == catalogo.Tablas().end() || actual->second != tabla) return false;
    }
    return true;
}

Resultado<PlanListo*> Planes::Preparar(const void* clave, Marco& marco,
                                       const Traduccion& traducir) {
    PlanListo& listo = marco.lote.planes[clave];
    if (Vigente(listo)) {
        listo.version = sesion_.Catalogo().Version();
        return &listo;
    }
    auto plan = traducir(EntornoDe(marco));
    if (!plan && EsNombreDesconocido(plan.error())) {
        // Another process may have changed the definitions since they were read.
        const std::int64_t antes = sesion_.Catalogo().Version();
        QUIMO_TRY_VOID(sesion_.Catalogo().Refrescar());
        if (antes != sesion_.Catalogo().Version()) plan = traducir(EntornoDe(marco));
    }
    if (!plan) return plan.error();
    listo.plan = std::move(plan).value();
    QUIMO_TRY(listo.sentencia, sesion_.Base().Preparar(listo.plan.sql, true));
    listo.version = sesion_.Catalogo().Version();
    listo.version_modulos = sesion_.Catalogo().VersionModulos();
    listo.opciones = sesion_.Estado().opciones;
    return &listo;
}

Resultado<PlanListo> Planes::PrepararSuelto(tsql::Plan plan) {
    PlanListo listo;
    listo.plan = std::move(plan);
    QUIMO_TRY(listo.sentencia, sesion_.Base().Preparar(listo.plan.sql));
    return listo;
}

Hecho Planes::Ligar(PlanListo& listo, Marco& marco) {
    int lugar = 0;
    for (const tsql::Ranura& ranura : listo.plan.ranuras) {
        ++lugar;
        const auto indice = static_cast<std::size_t>(std::max(ranura.indice, 0));
        switch (ranura.origen) {
            case tsql::Ranura::Origen::Literal:
                listo.sentencia.Ligar(lugar, marco.lote.lote.literales[indice].valor);
                break;
            case tsql::Ranura::Origen::Parametro:
                listo.sentencia.Ligar(lugar, (*marco.parametros)[indice].valor);
                break;
            case tsql::Ranura::Origen::Variable: {
                QUIMO_TRY(const ValorConTipo* const variable, marco.Variable(ranura.nombre));
                listo.sentencia.Ligar(lugar, variable->valor);
                break;
            }
            case tsql::Ranura::Origen::Global:
                listo.sentencia.Ligar(lugar, sesion_.Global(ranura.nombre));
                break;
        }
    }
    return {};
}

ErrorSql Planes::FalloDe(int codigo) {
    if (sesion_.Contexto().error) return *std::exchange(sesion_.Contexto().error, std::nullopt);
    return sesion_.Base().Fallo(codigo);
}

Resultado<ValorConTipo> Planes::Evaluar(const tsql::Expr& expr, Marco& marco) {
    QUIMO_TRY(PlanListo* const listo, Preparar(&expr, marco, [&](const tsql::Entorno& e) {
                  return TraducirValor(expr, e);
              }));
    QUIMO_TRY_VOID(Ligar(*listo, marco));
    const Uso uso(*listo);
    const int codigo = listo->sentencia.Paso();
    if (codigo != SQLITE_ROW) return FalloDe(codigo);
    const tsql::Tipo tipo = listo->plan.columnas[0].tipo;
    QUIMO_TRY(const Valor valor, tsql::Normalizar(listo->sentencia.Leer(0), tipo));
    // A sum may have left its type's range.
    if (tipo.EsExacto()) {
        QUIMO_TRY(const Valor en_rango, Convertir(valor, tipo, tipo));
        return ValorConTipo{tipo, en_rango};
    }
    return ValorConTipo{tipo, valor};
}

Resultado<bool> Planes::Cumple(const tsql::Expr& condicion, Marco& marco) {
    QUIMO_TRY(const ValorConTipo valor, Evaluar(condicion, marco));
    return valor.valor.exacto != 0;
}

Hecho Planes::Leer(PlanListo& listo, Marco& marco, Salida& salida) {
    if (!listo.plan.variables.empty()) return LeerVariables(listo, marco);
    const Uso uso(listo);
    Salida::Nuevo conjunto(salida, listo.plan.columnas);
    std::int64_t filas = 0;
    int codigo = SQLITE_ROW;
    for (codigo = listo.sentencia.Paso(); codigo == SQLITE_ROW; codigo = listo.sentencia.Paso()) {
        ++filas;
        QUIMO_TRY_VOID(conjunto.Agregar(
            [&](std::size_t i) { return listo.sentencia.Leer(static_cast<int>(i)); }));
    }
    if (codigo != SQLITE_DONE) return FalloDe(codigo);
    sesion_.Estado().filas = filas;
    conjunto.Entregar();
    return {};
}

/// SELECT @x = ...: each row assigns, so that the last one stays.
Hecho Planes::LeerVariables(PlanListo& listo, Marco& marco) {
    const Uso uso(listo);
    std::int64_t filas = 0;
    int codigo = SQLITE_ROW;
    for (codigo = listo.sentencia.Paso(); codigo == SQLITE_ROW; codigo = listo.sentencia.Paso()) {
        ++filas;
        for (std::size_t i = 0; i < listo.plan.variables.size(); ++i) {
            QUIMO_TRY(ValorConTipo* const variable, marco.Variable(listo.plan.variables[i]));
            const tsql::Tipo& tipo = variable->tipo;
            QUIMO_TRY(const Valor valor,
                      tsql::Normalizar(listo.sentencia.Leer(static_cast<int>(i)), tipo));
            QUIMO_TRY(variable->valor,
                      tipo.EsExacto() ? Convertir(valor, tipo, tipo) : Resultado<Valor>(valor));
        }
    }
    if (codigo != SQLITE_DONE) return FalloDe(codigo);
    sesion_.Estado().filas = filas;
    return {};
}

Resultado<std::int64_t> Planes::Escribir(PlanListo& listo, const std::string& verbo, Marco& marco) {
    if (listo.plan.identidad_automatica || listo.plan.identidad_explicita) {
        return Numerar(listo, verbo, marco);
    }
    return EscribirSinNumerar(listo, verbo, marco);
}

Resultado<std::int64_t> Planes::EscribirSinNumerar(PlanListo& listo, const std::string& verbo,
                                                   Marco& marco) {
    const auto paso = [&] {
        const Uso uso(listo);
        return listo.sentencia.Paso();
    };
    if (paso() == SQLITE_DONE) return sesion_.Base().Cambios();
    int codigo = sesion_.Base().CodigoExtendido();
    if (sesion_.Contexto().error || (codigo & 0xFF) != SQLITE_CONSTRAINT) return FalloDe(codigo);
    const bool repetida = codigo != SQLITE_CONSTRAINT_NOTNULL &&
                          codigo != SQLITE_CONSTRAINT_CHECK &&
                          codigo != SQLITE_CONSTRAINT_FOREIGNKEY;
    if (repetida && !listo.plan.sql_filas.empty()) {
        QUIMO_TRY(const std::optional<std::int64_t> escritas, PorPartes(listo, marco));
        if (escritas) return *escritas;
        // Once more, for the text of what is repeated.
        if (paso() == SQLITE_DONE) return sesion_.Base().Cambios();
        codigo = sesion_.Base().CodigoExtendido();
    }
    ErrorDeRestriccion error(sesion_, listo.plan.tabla, verbo);
    return error.Explicar(codigo, paso);
}

Resultado<std::optional<std::int64_t>> Planes::PorPartes(const PlanListo& listo, Marco& marco) {
    EscrituraPorPartes escritura(sesion_, listo.plan);
    if (!escritura.Sirve()) return std::optional<std::int64_t>();
    PlanListo lectura;
    lectura.plan.ranuras = listo.plan.ranuras;
    QUIMO_TRY(lectura.sentencia, sesion_.Base().Preparar(listo.plan.sql_filas));
    QUIMO_TRY_VOID(Ligar(lectura, marco));
    return escritura.Escribir(std::move(lectura.sentencia));
}

/// A write into a table with an identity column: the last number is read before and kept after.
Resultado<std::int64_t> Planes::Numerar(PlanListo& listo, const std::string& verbo, Marco& marco) {
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    const tsql::TablaPtr tabla = listo.plan.tabla;
    ContextoFunciones& contexto = sesion_.Contexto();
    QUIMO_TRY(contexto.ultimo_numero, sesion_.Catalogo().UltimoNumero(*tabla));
    contexto.incremento = tabla->Identidad()->incremento;
    contexto.numero_usado = false;
    QUIMO_TRY(const std::int64_t escritas, EscribirSinNumerar(listo, verbo, marco));
    if (contexto.numero_usado) {
        const Valor ultimo = Valor::De(contexto.ultimo_numero);
        const tsql::Tipo& tipo = tabla->Identidad()->tipo;
        QUIMO_TRY(const Valor en_rango,
                  Convertir(ultimo, tsql::TipoEntero(tsql::Clase::BigInt), tipo));
        QUIMO_TRY_VOID(sesion_.Catalogo().GuardarNumero(*tabla, contexto.ultimo_numero));
        sesion_.Estado().identidad = en_rango.Entero();
    }
    QUIMO_TRY_VOID(punto.Confirmar());
    return escritas;
}

}  // namespace quimo::data::embebido
