#include "data/embebido/interprete.h"

#include <type_traits>

#include "data/embebido/errores_motor.h"
#include "data/embebido/revision_previa.h"
#include "tsql/valores/conversion.h"

namespace quimo::data::embebido {

void Interprete::Correr(const std::string& texto, const std::vector<ValorConTipo>& parametros) {
    std::vector<tsql::Tipo> tipos;
    tipos.reserve(parametros.size());
    for (const ValorConTipo& parametro : parametros)
        tipos.push_back(parametro.tipo);
    const auto leido = sesion_.Textos().Leer(texto, tipos);
    if (!leido) return salida_.Informar(leido.error());
    LoteListo& lote = **leido;
    Marco marco(lote);
    marco.parametros = &parametros;
    if (lote.lote.parametros != static_cast<int>(parametros.size())) {
        return salida_.Informar(tsql::ParametrosDeMenos(std::to_string(lote.lote.parametros),
                                                        std::to_string(parametros.size())));
    }
    const auto& sentencias = lote.lote.sentencias;
    if (RevisionPrevia::Procede(sentencias)) {
        const auto revisado = RevisionPrevia(planes_, marco).Revisar(sentencias);
        marco.variables.clear();
        if (!revisado) return salida_.Informar(revisado.error());
    }
    Lista(sentencias, marco);
    marco.Terminar(sesion_, salida_);
}

Flujo Interprete::Lista(const std::vector<tsql::SentenciaPtr>& sentencias, Marco& marco) {
    for (const tsql::SentenciaPtr& sentencia : sentencias) {
        const Flujo flujo = Una(*sentencia, marco);
        if (flujo != Flujo::Sigue) return flujo;
    }
    return Flujo::Sigue;
}

/// Runs one statement. One that fails has undone itself; some failures end the whole text.
Flujo Interprete::Una(const tsql::Sentencia& sentencia, Marco& marco) {
    sesion_.SoltarHora();
    const std::uint64_t transaccion = sesion_.TransaccionActual();
    const auto flujo = Despachar(sentencia, marco);
    sesion_.Conciliar();
    if (flujo) return *flujo;
    const ErrorSql& error = flujo.error();
    salida_.Informar(error);
    sesion_.Estado().filas = 0;
    if (transaccion != 0 && sesion_.TransaccionActual() != transaccion) {
        salida_.Informar(TransaccionDeshecha());
        return Flujo::Aborta;
    }
    if (sesion_.Estado().aborta_todo && !EsSoloAviso(error)) {
        if (sesion_.Estado().transacciones > 0) {
            const auto revertida = sesion_.Revertir({});
            if (!revertida) salida_.Informar(revertida.error());
        }
        return Flujo::Aborta;
    }
    return error.AbortaLote() ? Flujo::Aborta : Flujo::Sigue;
}

/// A kind of statement without its Hacer does not compile.
Resultado<Flujo> Interprete::Despachar(const tsql::Sentencia& sentencia, Marco& marco) {
    return std::visit(
        [&](const auto& que) -> Resultado<Flujo> {
            if constexpr (std::is_same_v<decltype(Hacer(que, marco)), Hecho>) {
                QUIMO_TRY_VOID(Hacer(que, marco));
                sesion_.Estado().error = 0;
                return Flujo::Sigue;
            } else {
                return Hacer(que, marco);
            }
        },
        sentencia.que);
}

Resultado<Flujo> Interprete::Hacer(const tsql::Bloque& bloque, Marco& marco) {
    return Lista(bloque.sentencias, marco);
}

Resultado<Flujo> Interprete::Hacer(const tsql::Si& si, Marco& marco) {
    QUIMO_TRY(const bool cumple, planes_.Cumple(*si.condicion, marco));
    if (cumple) return Una(*si.entonces, marco);
    if (si.sino) return Una(*si.sino, marco);
    return Flujo::Sigue;
}

Resultado<Flujo> Interprete::Hacer(const tsql::Mientras& mientras, Marco& marco) {
    while (true) {
        QUIMO_TRY(const bool cumple, planes_.Cumple(*mientras.condicion, marco));
        if (!cumple) return Flujo::Sigue;
        const Flujo flujo = Una(*mientras.cuerpo, marco);
        if (flujo == Flujo::Rompe) return Flujo::Sigue;
        if (flujo == Flujo::Regresa || flujo == Flujo::Aborta) return flujo;
    }
}

Resultado<Flujo> Interprete::Hacer(const tsql::Salto& salto, Marco& /*marco*/) {
    sesion_.Estado().error = 0;
    return salto.continuar ? Flujo::Continua : Flujo::Rompe;
}

Resultado<Flujo> Interprete::Hacer(const tsql::Regresar& regresar, Marco& marco) {
    if (regresar.expr) {
        if (!marco.es_rutina) return RegresoConValor();
        QUIMO_TRY(const ValorConTipo valor, planes_.Evaluar(*regresar.expr, marco));
        const tsql::Tipo tipo =
            marco.es_funcion ? marco.retorno : tsql::TipoEntero(tsql::Clase::Int);
        QUIMO_TRY(marco.valor, Convertir(valor.valor, valor.tipo, tipo));
    }
    return Flujo::Regresa;
}

Resultado<Flujo> Interprete::Hacer(const tsql::Ejecutar& ejecutar, Marco& marco) {
    return rutinas_.Ejecutar(ejecutar, marco);
}

}  // namespace quimo::data::embebido
