#include "data/embebido/interprete.h"

#include <algorithm>

#include "tsql/valores/conversion.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

/// Whether a text defines something that its later statements may stand on.
bool Define(const std::vector<tsql::SentenciaPtr>& sentencias) {
    return std::any_of(sentencias.begin(), sentencias.end(), [](const tsql::SentenciaPtr& s) {
        if (const auto* bloque = std::get_if<tsql::Bloque>(&s->que))
            return Define(bloque->sentencias);
        if (const auto* si = std::get_if<tsql::Si>(&s->que)) {
            return Define({si->entonces}) || (si->sino && Define({si->sino}));
        }
        if (const auto* mientras = std::get_if<tsql::Mientras>(&s->que))
            return Define({mientras->cuerpo});
        if (const auto* declarar = std::get_if<tsql::Declarar>(&s->que))
            return declarar->tabla != nullptr;
        if (const auto* seleccionar = std::get_if<tsql::Seleccionar>(&s->que)) {
            return seleccionar->consulta->simple && seleccionar->consulta->simple->en.has_value();
        }
        return std::holds_alternative<tsql::CrearTabla>(s->que) ||
               std::holds_alternative<tsql::CambiarTabla>(s->que) ||
               std::holds_alternative<tsql::Quitar>(s->que) ||
               std::holds_alternative<tsql::Opcion>(s->que) ||
               std::holds_alternative<tsql::Ejecutar>(s->que);
    });
}

}  // namespace

void Interprete::Informar(const ErrorSql& error) {
    constexpr int kSoloAviso = 10;
    if (error.severidad <= kSoloAviso) {
        respuesta_.mensajes.append(AProveedor(error));
        return;
    }
    sesion_.Estado().error = error.nativo;
    if (respuesta_.fallo) {
        respuesta_.fallo->errores.append(AProveedor(error));
    } else {
        respuesta_.fallo = AFallo(error);
    }
}

void Interprete::Correr(LoteListo& lote, const std::vector<ValorConTipo>& parametros) {
    Marco marco(lote);
    marco.parametros = &parametros;
    if (lote.lote.parametros != static_cast<int>(parametros.size())) {
        Informar(tsql::CrearError(8178, std::to_string(lote.lote.parametros),
                                  std::to_string(parametros.size())));
        return;
    }
    const auto& sentencias = lote.lote.sentencias;
    if (sentencias.size() > 1 && !Define(sentencias)) {
        // Names are looked up for the whole text before any of it is run.
        const auto comprobado = Comprobar(sentencias, marco);
        marco.variables.clear();
        if (!comprobado) {
            Informar(comprobado.error());
            return;
        }
    }
    Lista(sentencias, marco);
    Terminar(marco);
}

/// Drops the temporary tables that were made inside.
void Interprete::Terminar(Marco& marco) {
    for (const std::string& nombre : marco.temporales) {
        tsql::NombreObjeto objeto;
        objeto.objeto = nombre;
        const auto tabla = sesion_.Catalogo().BuscarTabla(objeto);
        if (!tabla || !tabla->temporal) continue;
        const bool olvidada = sesion_.Catalogo().Borrar(*tabla).has_value();
        QUIMO_CHECK(olvidada);
        const auto borrada = sesion_.Base().Correr("DROP TABLE " + tabla->sql);
        if (!borrada) Informar(borrada.error());
    }
    marco.temporales.clear();
}

Hecho Interprete::Comprobar(const std::vector<tsql::SentenciaPtr>& sentencias, Marco& marco) {
    for (const tsql::SentenciaPtr& sentencia : sentencias) {
        QUIMO_TRY_VOID(ComprobarUna(*sentencia, marco));
    }
    return {};
}

Hecho Interprete::ComprobarUna(const tsql::Sentencia& s, Marco& marco) {
    constexpr int kSinObjeto = 208;
    Hecho hecho;
    const auto probar = [&](const void* clave, const Traduccion& traducir) {
        const auto plan = Preparar(clave, marco, traducir);
        if (!plan && plan.error().nativo != kSinObjeto && plan.error().nativo != 8630) {
            hecho = plan.error();
        }
    };
    if (const auto* declarar = std::get_if<tsql::Declarar>(&s.que)) {
        for (const tsql::Variable& v : declarar->variables)
            marco.variables[v.nombre].tipo = v.tipo;
    } else if (const auto* seleccionar = std::get_if<tsql::Seleccionar>(&s.que)) {
        probar(&s,
               [&](const tsql::Entorno& e) { return TraducirConsulta(*seleccionar->consulta, e); });
    } else if (const auto* insertar = std::get_if<tsql::Insertar>(&s.que)) {
        if (!insertar->ejecutar) {
            probar(insertar,
                   [&](const tsql::Entorno& e) { return TraducirInsertar(*insertar, e); });
        }
    } else if (const auto* actualizar = std::get_if<tsql::Actualizar>(&s.que)) {
        probar(&s, [&](const tsql::Entorno& e) { return TraducirActualizar(*actualizar, e); });
    } else if (const auto* borrar = std::get_if<tsql::Borrar>(&s.que)) {
        probar(&s, [&](const tsql::Entorno& e) { return TraducirBorrar(*borrar, e); });
    } else if (const auto* bloque = std::get_if<tsql::Bloque>(&s.que)) {
        return Comprobar(bloque->sentencias, marco);
    } else if (const auto* si = std::get_if<tsql::Si>(&s.que)) {
        QUIMO_TRY_VOID(ComprobarUna(*si->entonces, marco));
        if (si->sino) return ComprobarUna(*si->sino, marco);
    } else if (const auto* mientras = std::get_if<tsql::Mientras>(&s.que)) {
        return ComprobarUna(*mientras->cuerpo, marco);
    }
    return hecho;
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
    const bool compuesta = std::holds_alternative<tsql::Bloque>(sentencia.que);
    sesion_.SoltarHora();
    const std::uint64_t transaccion = sesion_.TransaccionActual();
    auto flujo = Hacer(sentencia, marco);
    sesion_.Conciliar();
    if (flujo) {
        const bool conserva = compuesta || std::holds_alternative<tsql::Ejecutar>(sentencia.que) ||
                              std::holds_alternative<tsql::LanzarError>(sentencia.que) ||
                              std::holds_alternative<tsql::Si>(sentencia.que) ||
                              std::holds_alternative<tsql::Mientras>(sentencia.que) ||
                              std::holds_alternative<tsql::Regresar>(sentencia.que);
        if (!conserva) sesion_.Estado().error = 0;
        return *flujo;
    }
    const ErrorSql& error = flujo.error();
    Informar(error);
    sesion_.Estado().filas = 0;
    if (transaccion != 0 && sesion_.TransaccionActual() != transaccion) {
        Informar(TransaccionDeshecha());
        return Flujo::Aborta;
    }
    if (sesion_.Estado().aborta_todo && error.severidad > 10) {
        if (sesion_.Estado().transacciones > 0) {
            const auto revertida = sesion_.Revertir({});
            if (!revertida) Informar(revertida.error());
        }
        return Flujo::Aborta;
    }
    return error.AbortaLote() ? Flujo::Aborta : Flujo::Sigue;
}

Resultado<Flujo> Interprete::Hacer(const tsql::Sentencia& s, Marco& marco) {
    if (const auto* bloque = std::get_if<tsql::Bloque>(&s.que))
        return Lista(bloque->sentencias, marco);
    if (const auto* si = std::get_if<tsql::Si>(&s.que)) return HacerSi(*si, marco);
    if (const auto* mientras = std::get_if<tsql::Mientras>(&s.que))
        return HacerMientras(*mientras, marco);
    if (const auto* salto = std::get_if<tsql::Salto>(&s.que)) {
        return salto->continuar ? Flujo::Continua : Flujo::Rompe;
    }
    if (const auto* regresar = std::get_if<tsql::Regresar>(&s.que))
        return HacerRegresar(*regresar, marco);
    if (const auto* ejecutar = std::get_if<tsql::Ejecutar>(&s.que)) {
        return ejecutar->texto ? HacerTexto(*ejecutar, marco) : HacerExec(*ejecutar, marco);
    }
    Hecho hecho;
    if (const auto* seleccionar = std::get_if<tsql::Seleccionar>(&s.que)) {
        hecho = HacerSelect(*seleccionar, &s, marco);
    } else if (const auto* insertar = std::get_if<tsql::Insertar>(&s.que)) {
        hecho =
            insertar->ejecutar ? HacerInsertExec(*insertar, marco) : HacerInsert(*insertar, marco);
    } else if (const auto* actualizar = std::get_if<tsql::Actualizar>(&s.que)) {
        QUIMO_TRY(PlanListo* const plan, Preparar(&s, marco, [&](const tsql::Entorno& e) {
                      return TraducirActualizar(*actualizar, e);
                  }));
        QUIMO_TRY_VOID(Ligar(*plan, marco));
        hecho = Escribir(*plan, "UPDATE", marco);
    } else if (const auto* borrar = std::get_if<tsql::Borrar>(&s.que)) {
        QUIMO_TRY(PlanListo* const plan, Preparar(&s, marco, [&](const tsql::Entorno& e) {
                      return TraducirBorrar(*borrar, e);
                  }));
        QUIMO_TRY_VOID(Ligar(*plan, marco));
        hecho = Escribir(*plan, "DELETE", marco);
    } else if (const auto* truncar = std::get_if<tsql::Truncar>(&s.que)) {
        hecho = HacerTruncar(*truncar);
    } else if (const auto* declarar = std::get_if<tsql::Declarar>(&s.que)) {
        hecho = HacerDeclarar(*declarar, marco);
    } else if (const auto* asignar = std::get_if<tsql::Asignar>(&s.que)) {
        hecho = HacerAsignar(*asignar, marco);
    } else if (const auto* opcion = std::get_if<tsql::Opcion>(&s.que)) {
        hecho = HacerOpcion(*opcion);
    } else if (const auto* imprimir = std::get_if<tsql::Imprimir>(&s.que)) {
        hecho = HacerImprimir(*imprimir, marco);
    } else if (const auto* lanzar = std::get_if<tsql::LanzarError>(&s.que)) {
        hecho = HacerLanzar(*lanzar, marco);
    } else if (const auto* transaccion = std::get_if<tsql::Transaccion>(&s.que)) {
        hecho = HacerTransaccion(*transaccion);
    } else if (const auto* revisar = std::get_if<tsql::RevisarBase>(&s.que)) {
        hecho = HacerRevisarBase(*revisar);
    } else {
        hecho = HacerDefinicion(s, marco);
    }
    if (!hecho) return hecho.error();
    return Flujo::Sigue;
}

Resultado<Flujo> Interprete::HacerSi(const tsql::Si& si, Marco& marco) {
    QUIMO_TRY(const bool cumple, Cumple(*si.condicion, marco));
    if (cumple) return Una(*si.entonces, marco);
    if (si.sino) return Una(*si.sino, marco);
    return Flujo::Sigue;
}

Resultado<Flujo> Interprete::HacerMientras(const tsql::Mientras& mientras, Marco& marco) {
    while (true) {
        QUIMO_TRY(const bool cumple, Cumple(*mientras.condicion, marco));
        if (!cumple) return Flujo::Sigue;
        const Flujo flujo = Una(*mientras.cuerpo, marco);
        if (flujo == Flujo::Rompe) return Flujo::Sigue;
        if (flujo == Flujo::Regresa || flujo == Flujo::Aborta) return flujo;
    }
}

Resultado<Flujo> Interprete::HacerRegresar(const tsql::Regresar& regresar, Marco& marco) {
    if (regresar.expr) {
        if (!marco.es_rutina) return tsql::CrearError(178);
        QUIMO_TRY(const ValorConTipo valor, Evaluar(*regresar.expr, marco));
        const tsql::Tipo tipo =
            marco.es_funcion ? marco.retorno : tsql::TipoEntero(tsql::Clase::Int);
        QUIMO_TRY(marco.valor, Convertir(valor.valor, valor.tipo, tipo));
    }
    return Flujo::Regresa;
}

Hecho Interprete::HacerAsignar(const tsql::Asignar& asignar, Marco& marco) {
    const auto variable = marco.variables.find(asignar.variable);
    if (variable == marco.variables.end()) return tsql::CrearError(137, asignar.variable);
    QUIMO_TRY(const ValorConTipo valor, Evaluar(*asignar.expr, marco));
    QUIMO_TRY(const bool permitida, PermiteImplicita(valor.tipo, variable->second.tipo));
    QUIMO_CHECK(permitida);
    tsql::OpcionesConversion opciones;
    opciones.orden = sesion_.Estado().orden;
    QUIMO_TRY(variable->second.valor,
              Convertir(valor.valor, valor.tipo, variable->second.tipo, opciones));
    return {};
}

Hecho Interprete::HacerOpcion(const tsql::Opcion& opcion) {
    EstadoSesion& estado = sesion_.Estado();
    const bool si = opcion.valor == "ON";
    const auto es = [&](std::string_view nombre) { return opcion.nombre == nombre; };
    if (es("NOCOUNT")) {
        estado.sin_cuenta = si;
    } else if (es("XACT_ABORT")) {
        estado.aborta_todo = si;
    } else if (es("IDENTITY_INSERT")) {
        const auto tabla = sesion_.Catalogo().BuscarTabla(opcion.tabla);
        if (!tabla) return tsql::CrearError(208, opcion.tabla.Completo());
        if (tabla->Identidad() == nullptr) return tsql::CrearError(8106, tabla->nombre);
        if (si && !estado.identity_insert.empty() &&
            !tsql::MismoNombre(estado.identity_insert, tabla->nombre)) {
            return tsql::CrearError(8107, estado.identity_insert, tabla->nombre);
        }
        if (si || tsql::MismoNombre(estado.identity_insert, tabla->nombre)) {
            estado.identity_insert = si ? tabla->nombre : "";
        }
        ++estado.opciones;
    } else if (es("DATEFORMAT")) {
        if (opcion.valor != "DMY" && opcion.valor != "MDY" && opcion.valor != "YMD") {
            return tsql::CrearError(195, opcion.valor, "SET DATEFORMAT option");
        }
        estado.orden = opcion.valor == "DMY"   ? tsql::OrdenFecha::Dma
                       : opcion.valor == "MDY" ? tsql::OrdenFecha::Mda
                                               : tsql::OrdenFecha::Amd;
        ++estado.opciones;
    } else if (es("USE")) {
        if (!tsql::MismoNombre(opcion.valor, sesion_.NombreBase())) {
            return tsql::CrearError(911, opcion.valor);
        }
    } else if (!es("TRANSACTION") && !es("LOCK_TIMEOUT") && !es("ARITHABORT") &&
               !es("ANSI_DEFAULTS")) {
        // What the engine always does; switching it off would change meanings.
        const bool conocida = es("ANSI_NULLS") || es("QUOTED_IDENTIFIER") || es("ANSI_WARNINGS") ||
                              es("ANSI_PADDING") || es("CONCAT_NULL_YIELDS_NULL") ||
                              es("ANSI_NULL_DFLT_ON");
        const bool apagada = es("NUMERIC_ROUNDABORT") || es("IMPLICIT_TRANSACTIONS");
        if (!(conocida && si) && !(apagada && !si)) {
            return tsql::CrearError(195, opcion.nombre + " " + opcion.valor, "SET option");
        }
    }
    return {};
}

Hecho Interprete::HacerImprimir(const tsql::Imprimir& imprimir, Marco& marco) {
    QUIMO_TRY(const ValorConTipo valor, Evaluar(*imprimir.expr, marco));
    QUIMO_TRY(const Valor texto,
              Convertir(valor.valor, valor.tipo, tsql::TipoTexto(tsql::Clase::NVarChar, -1)));
    ErrorSql mensaje;
    mensaje.severidad = 0;
    mensaje.sqlstate = "01000";
    mensaje.mensaje = texto.texto;
    Informar(mensaje);
    return {};
}

Hecho Interprete::HacerTransaccion(const tsql::Transaccion& transaccion) {
    using Clase = tsql::Transaccion::Clase;
    if (transaccion.clase == Clase::Iniciar) return sesion_.Iniciar(transaccion.nombre);
    if (captura_ != nullptr && transaccion.clase == Clase::Revertir) return tsql::CrearError(3915);
    if (captura_ != nullptr && transaccion.clase == Clase::Confirmar &&
        sesion_.Estado().transacciones <= 1) {
        return tsql::CrearError(3916);
    }
    if (transaccion.clase == Clase::Confirmar) return sesion_.Confirmar();
    if (transaccion.clase == Clase::Revertir) return sesion_.Revertir(transaccion.nombre);
    return sesion_.Guardar(transaccion.nombre);
}

/// RAISERROR('text %s %d', severity, state, values...)
Hecho Interprete::HacerLanzar(const tsql::LanzarError& lanzar, Marco& marco) {
    std::vector<ValorConTipo> argumentos;
    for (const tsql::ExprPtr& expr : lanzar.argumentos) {
        QUIMO_TRY(ValorConTipo valor, Evaluar(*expr, marco));
        argumentos.push_back(std::move(valor));
    }
    ErrorSql error;
    error.nativo = 50000;
    if (argumentos[0].tipo.EsEntero()) {
        error.nativo = static_cast<int>(argumentos[0].valor.exacto);
        error.mensaje = "Error " + std::to_string(error.nativo) + ".";
    }
    const std::string& plantilla = argumentos[0].valor.texto;
    std::size_t siguiente = 3;
    for (std::size_t i = 0; i < plantilla.size(); ++i) {
        const bool marca = plantilla[i] == '%' && i + 1 < plantilla.size();
        if (marca && plantilla[i + 1] == '%') {
            error.mensaje.push_back('%');
            ++i;
        } else if (marca &&
                   std::string_view("sdiuxXo").find(plantilla[i + 1]) != std::string_view::npos &&
                   siguiente < argumentos.size()) {
            const ValorConTipo& valor = argumentos[siguiente++];
            QUIMO_TRY(const Valor texto, Convertir(valor.valor, valor.tipo,
                                                   tsql::TipoTexto(tsql::Clase::NVarChar, -1)));
            error.mensaje += valor.valor.EsNulo() ? "(null)" : texto.texto;
            ++i;
        } else {
            error.mensaje.push_back(plantilla[i]);
        }
    }
    QUIMO_TRY(const Valor severidad, Convertir(argumentos[1].valor, argumentos[1].tipo,
                                               tsql::TipoEntero(tsql::Clase::Int)));
    error.severidad = static_cast<int>(severidad.exacto);
    if (error.severidad <= 10) error.sqlstate = "01000";
    if (error.severidad <= 10) {
        Informar(error);
        sesion_.Estado().error = 0;
        return {};
    }
    return error;
}

}  // namespace quimo::data::embebido
