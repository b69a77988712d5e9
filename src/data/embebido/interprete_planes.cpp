#include <sqlite3.h>

#include "data/embebido/errores_restriccion.h"
#include "data/embebido/interprete.h"
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

tsql::Entorno Interprete::EntornoDe(Marco& marco) const {
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
bool Interprete::Vigente(const PlanListo& listo) const {
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

Resultado<PlanListo*> Interprete::Preparar(const void* clave, Marco& marco,
                                           const Traduccion& traducir) {
    PlanListo& listo = marco.lote.planes[clave];
    if (Vigente(listo)) {
        listo.version = sesion_.Catalogo().Version();
        return &listo;
    }
    auto plan = traducir(EntornoDe(marco));
    if (!plan && (plan.error().nativo == 208 || plan.error().nativo == 207)) {
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

Hecho Interprete::Ligar(PlanListo& listo, const Marco& marco) {
    int lugar = 0;
    for (const tsql::Ranura& ranura : listo.plan.ranuras) {
        ++lugar;
        const auto indice = static_cast<std::size_t>(std::max(ranura.indice, 0));
        if (ranura.origen == tsql::Ranura::Origen::Literal) {
            listo.sentencia.Ligar(lugar, marco.lote.lote.literales[indice].valor);
        } else if (ranura.origen == tsql::Ranura::Origen::Parametro) {
            listo.sentencia.Ligar(lugar, (*marco.parametros)[indice].valor);
        } else if (ranura.origen == tsql::Ranura::Origen::Variable) {
            const auto variable = marco.variables.find(ranura.nombre);
            if (variable == marco.variables.end()) return tsql::CrearError(137, ranura.nombre);
            listo.sentencia.Ligar(lugar, variable->second.valor);
        } else {
            listo.sentencia.Ligar(lugar, sesion_.Global(ranura.nombre));
        }
    }
    return {};
}

ErrorSql Interprete::FalloDe(int codigo) {
    if (sesion_.Contexto().error) {
        ErrorSql error = *sesion_.Contexto().error;
        sesion_.Contexto().error.reset();
        return error;
    }
    return sesion_.Base().Fallo(codigo);
}

void Interprete::Contar(std::int64_t filas) {
    sesion_.Estado().filas = filas;
    if (sesion_.Estado().sin_cuenta || captura_ != nullptr) return;
    ResultadoSql resultado;
    resultado.afectadas = filas;
    respuesta_.resultados.append(std::move(resultado));
}

Resultado<ValorConTipo> Interprete::Evaluar(const tsql::Expr& expr, Marco& marco) {
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

Resultado<bool> Interprete::Cumple(const tsql::Expr& condicion, Marco& marco) {
    QUIMO_TRY(const ValorConTipo valor, Evaluar(condicion, marco));
    return valor.valor.exacto != 0;
}

Hecho Interprete::Leer(PlanListo& listo, Marco& marco) {
    if (!listo.plan.variables.empty()) return LeerVariables(listo, marco);
    const Uso uso(listo);
    const auto& columnas = listo.plan.columnas;
    ConjuntoInterno interno;
    Conjunto conjunto;
    for (const tsql::ColumnaSalida& columna : columnas)
        conjunto.columnas.append(AColumna(columna));
    int codigo = SQLITE_ROW;
    std::int64_t filas = 0;
    for (codigo = listo.sentencia.Paso(); codigo == SQLITE_ROW; codigo = listo.sentencia.Paso()) {
        ++filas;
        Fila fila;
        std::vector<Valor> valores;
        for (std::size_t i = 0; i < columnas.size(); ++i) {
            Valor valor = listo.sentencia.Leer(static_cast<int>(i));
            if (captura_ != nullptr) {
                valores.push_back(std::move(valor));
                continue;
            }
            QUIMO_TRY(QVariant variante, AVariante(valor, columnas[i].tipo));
            fila.append(std::move(variante));
        }
        if (captura_ != nullptr) {
            interno.filas.push_back(std::move(valores));
        } else {
            conjunto.filas.append(std::move(fila));
        }
    }
    if (codigo != SQLITE_DONE) return FalloDe(codigo);
    sesion_.Estado().filas = filas;
    if (captura_ != nullptr) {
        interno.columnas = columnas;
        captura_->push_back(std::move(interno));
    } else {
        ResultadoSql resultado;
        resultado.conjunto = std::move(conjunto);
        respuesta_.resultados.append(std::move(resultado));
    }
    return {};
}

/// SELECT @x = ...: each row assigns, so that the last one stays.
Hecho Interprete::LeerVariables(PlanListo& listo, Marco& marco) {
    const Uso uso(listo);
    int codigo = SQLITE_ROW;
    std::int64_t filas = 0;
    for (codigo = listo.sentencia.Paso(); codigo == SQLITE_ROW; codigo = listo.sentencia.Paso()) {
        ++filas;
        for (std::size_t i = 0; i < listo.plan.variables.size(); ++i) {
            const auto variable = marco.variables.find(listo.plan.variables[i]);
            if (variable == marco.variables.end())
                return tsql::CrearError(137, listo.plan.variables[i]);
            const tsql::Tipo& tipo = variable->second.tipo;
            QUIMO_TRY(const Valor valor,
                      tsql::Normalizar(listo.sentencia.Leer(static_cast<int>(i)), tipo));
            QUIMO_TRY(variable->second.valor,
                      tipo.EsExacto() ? Convertir(valor, tipo, tipo) : Resultado<Valor>(valor));
        }
    }
    if (codigo != SQLITE_DONE) return FalloDe(codigo);
    sesion_.Estado().filas = filas;
    return {};
}

Hecho Interprete::PasoDeEscritura(PlanListo& listo, const std::string& verbo, const Marco& marco) {
    int codigo = SQLITE_DONE;
    {
        const Uso uso(listo);
        codigo = listo.sentencia.Paso();
        if (codigo == SQLITE_DONE) return {};
    }
    codigo = sesion_.Base().CodigoExtendido();
    if (sesion_.Contexto().error || (codigo & 0xFF) != SQLITE_CONSTRAINT) return FalloDe(codigo);
    const bool repetida = codigo != SQLITE_CONSTRAINT_NOTNULL &&
                          codigo != SQLITE_CONSTRAINT_CHECK &&
                          codigo != SQLITE_CONSTRAINT_FOREIGNKEY;
    if (repetida && !listo.plan.sql_filas.empty()) {
        QUIMO_TRY(const bool escrita, EscribirPorPartes(listo, marco));
        if (escrita) return {};
        // Once more, for the text of what is repeated.
        const Uso uso(listo);
        codigo = listo.sentencia.Paso();
        if (codigo == SQLITE_DONE) return {};
        codigo = sesion_.Base().CodigoExtendido();
    }
    ErrorDeRestriccion error(sesion_, listo.plan.tabla, verbo);
    return error.Explicar(codigo, [&] {
        const Uso uso(listo);
        return listo.sentencia.Paso();
    });
}

Hecho Interprete::Escribir(PlanListo& listo, const std::string& verbo, const Marco& marco) {
    if (listo.plan.identidad_automatica || listo.plan.identidad_explicita) {
        return Numerar(listo, verbo, marco);
    }
    filas_por_partes_ = -1;
    QUIMO_TRY_VOID(PasoDeEscritura(listo, verbo, marco));
    Contar(filas_por_partes_ >= 0 ? filas_por_partes_ : sesion_.Base().Cambios());
    return {};
}

/// A write into a table with an identity column: the last number is read before and kept after.
Hecho Interprete::Numerar(PlanListo& listo, const std::string& verbo, const Marco& marco) {
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    const tsql::TablaPtr tabla = listo.plan.tabla;
    ContextoFunciones& contexto = sesion_.Contexto();
    QUIMO_TRY(contexto.ultimo_numero, sesion_.Catalogo().UltimoNumero(*tabla));
    contexto.incremento = tabla->Identidad()->incremento;
    contexto.numero_usado = false;
    QUIMO_TRY_VOID(PasoDeEscritura(listo, verbo, marco));
    const std::int64_t cambios = sesion_.Base().Cambios();
    if (contexto.numero_usado) {
        const Valor ultimo = Valor::De(contexto.ultimo_numero);
        const tsql::Tipo& tipo = tabla->Identidad()->tipo;
        QUIMO_TRY(const Valor en_rango,
                  Convertir(ultimo, tsql::TipoEntero(tsql::Clase::BigInt), tipo));
        QUIMO_TRY_VOID(sesion_.Catalogo().GuardarNumero(*tabla, contexto.ultimo_numero));
        sesion_.Estado().identidad = en_rango.Entero();
    }
    QUIMO_TRY_VOID(punto.Confirmar());
    Contar(cambios);
    return {};
}

Hecho Interprete::HacerSelect(const tsql::Seleccionar& seleccionar, const void* clave,
                              Marco& marco) {
    const auto& simple = seleccionar.consulta->simple;
    if (simple && simple->en) return HacerSelectInto(seleccionar, marco);
    QUIMO_TRY(PlanListo* const listo, Preparar(clave, marco, [&](const tsql::Entorno& e) {
                  return TraducirConsulta(*seleccionar.consulta, e);
              }));
    QUIMO_TRY_VOID(Ligar(*listo, marco));
    return Leer(*listo, marco);
}

Hecho Interprete::HacerInsert(const tsql::Insertar& insertar, Marco& marco) {
    QUIMO_TRY(PlanListo* const listo, Preparar(&insertar, marco, [&](const tsql::Entorno& e) {
                  return TraducirInsertar(insertar, e);
              }));
    QUIMO_TRY_VOID(Ligar(*listo, marco));
    return Escribir(*listo, "INSERT", marco);
}

}  // namespace quimo::data::embebido
