// The statements that hold no others.

#include "data/embebido/definiciones.h"
#include "data/embebido/errores_motor.h"
#include "data/embebido/interprete.h"
#include "data/embebido/opciones_sesion.h"
#include "data/embebido/revision_base.h"
#include "tsql/valores/conversion.h"

namespace quimo::data::embebido {

namespace {

/// RAISERROR('text %s %d', severity, state, values...)
Resultado<std::string> Rellenar(const std::string& plantilla,
                                const std::vector<ValorConTipo>& argumentos) {
    constexpr std::string_view kMarcas = "sdiuxXo";
    std::string texto;
    std::size_t siguiente = 3;
    for (std::size_t i = 0; i < plantilla.size(); ++i) {
        const bool marca = plantilla[i] == '%' && i + 1 < plantilla.size();
        if (marca && plantilla[i + 1] == '%') {
            texto.push_back('%');
            ++i;
        } else if (marca && kMarcas.find(plantilla[i + 1]) != std::string_view::npos &&
                   siguiente < argumentos.size()) {
            const ValorConTipo& valor = argumentos[siguiente++];
            QUIMO_TRY(const Valor dicho, Convertir(valor.valor, valor.tipo,
                                                   tsql::TipoTexto(tsql::Clase::NVarChar, -1)));
            texto += valor.valor.EsNulo() ? "(null)" : dicho.texto;
            ++i;
        } else {
            texto.push_back(plantilla[i]);
        }
    }
    return texto;
}

}  // namespace

Hecho Interprete::Hacer(const tsql::Seleccionar& seleccionar, Marco& marco) {
    const auto& simple = seleccionar.consulta->simple;
    if (simple && simple->en) return SelectInto(seleccionar, marco);
    QUIMO_TRY(PlanListo* const listo,
              planes_.Preparar(&seleccionar, marco, [&](const tsql::Entorno& e) {
                  return TraducirConsulta(*seleccionar.consulta, e);
              }));
    QUIMO_TRY_VOID(planes_.Ligar(*listo, marco));
    return planes_.Leer(*listo, marco, salida_);
}

/// SELECT ... INTO: a table like the query's columns, filled with its rows.
Hecho Interprete::SelectInto(const tsql::Seleccionar& seleccionar, Marco& marco) {
    const tsql::NombreObjeto nombre = *seleccionar.consulta->simple->en;
    tsql::Consulta consulta = *seleccionar.consulta;
    consulta.simple->en.reset();
    QUIMO_TRY(const tsql::Plan plan, TraducirConsulta(consulta, planes_.EntornoDe(marco)));
    tsql::CrearTabla crear;
    crear.tabla = nombre;
    for (const tsql::ColumnaSalida& columna : plan.columnas) {
        if (columna.nombre.empty()) return ColumnaSinNombreEnInto();
        tsql::ColumnaDef def;
        def.nombre = columna.nombre;
        def.tipo = columna.tipo;
        if (def.tipo.EsTexto() && def.tipo.longitud == 0) def.tipo.longitud = 1;
        def.admite_nulos = columna.admite_nulos;
        crear.columnas.push_back(std::move(def));
    }
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    QUIMO_TRY_VOID(Definiciones(sesion_).Crear(crear, false));
    tsql::Insertar insertar;
    insertar.tabla = nombre;
    insertar.consulta = std::make_shared<const tsql::Consulta>(consulta);
    QUIMO_TRY(tsql::Plan llenar, TraducirInsertar(insertar, planes_.EntornoDe(marco)));
    QUIMO_TRY(PlanListo listo, planes_.PrepararSuelto(std::move(llenar)));
    QUIMO_TRY_VOID(planes_.Ligar(listo, marco));
    QUIMO_TRY(const std::int64_t escritas, planes_.Escribir(listo, "INSERT", marco));
    QUIMO_TRY_VOID(punto.Confirmar());
    if (nombre.EsTemporal() && marco.es_rutina) marco.temporales.push_back(nombre.objeto);
    salida_.Contar(escritas);
    return {};
}

Hecho Interprete::Escribir(const void* clave, const std::string& verbo, Marco& marco,
                           const Planes::Traduccion& traducir) {
    QUIMO_TRY(PlanListo* const listo, planes_.Preparar(clave, marco, traducir));
    QUIMO_TRY_VOID(planes_.Ligar(*listo, marco));
    QUIMO_TRY(const std::int64_t escritas, planes_.Escribir(*listo, verbo, marco));
    salida_.Contar(escritas);
    return {};
}

Hecho Interprete::Hacer(const tsql::Insertar& insertar, Marco& marco) {
    if (insertar.ejecutar) {
        QUIMO_TRY(const std::int64_t escritas, rutinas_.InsertarLoQueDeje(insertar, marco));
        salida_.Contar(escritas);
        return {};
    }
    return Escribir(&insertar, "INSERT", marco,
                    [&](const tsql::Entorno& e) { return TraducirInsertar(insertar, e); });
}

Hecho Interprete::Hacer(const tsql::Actualizar& actualizar, Marco& marco) {
    return Escribir(&actualizar, "UPDATE", marco,
                    [&](const tsql::Entorno& e) { return TraducirActualizar(actualizar, e); });
}

Hecho Interprete::Hacer(const tsql::Borrar& borrar, Marco& marco) {
    return Escribir(&borrar, "DELETE", marco,
                    [&](const tsql::Entorno& e) { return TraducirBorrar(borrar, e); });
}

Hecho Interprete::Hacer(const tsql::Truncar& truncar, Marco& /*marco*/) {
    return Definiciones(sesion_).Truncar(truncar.tabla);
}

/// Definitions stand on those that other processes have made until now.
template <typename Trabajo>
Hecho Interprete::Definir(const Trabajo& trabajo) {
    QUIMO_TRY_VOID(sesion_.Catalogo().Refrescar());
    QUIMO_TRY_VOID(trabajo(Definiciones(sesion_)));
    salida_.Contar(-1);
    return {};
}

Hecho Interprete::Hacer(const tsql::CrearTabla& crear, Marco& marco) {
    return Definir([&](Definiciones definiciones) -> Hecho {
        QUIMO_TRY_VOID(definiciones.Crear(crear, false));
        if (crear.tabla.EsTemporal() && marco.es_rutina) {
            marco.temporales.push_back(crear.tabla.objeto);
        }
        return {};
    });
}

Hecho Interprete::Hacer(const tsql::CambiarTabla& cambiar, Marco& /*marco*/) {
    return Definir([&](Definiciones definiciones) { return definiciones.Cambiar(cambiar); });
}

Hecho Interprete::Hacer(const tsql::CrearIndice& crear, Marco& /*marco*/) {
    return Definir([&](Definiciones definiciones) { return definiciones.Crear(crear); });
}

Hecho Interprete::Hacer(const tsql::CrearModulo& crear, Marco& /*marco*/) {
    return Definir([&](Definiciones definiciones) { return definiciones.Crear(crear); });
}

Hecho Interprete::Hacer(const tsql::Quitar& quitar, Marco& /*marco*/) {
    return Definir([&](Definiciones definiciones) { return definiciones.Quitar(quitar); });
}

Hecho Interprete::Hacer(const tsql::Declarar& declarar, Marco& marco) {
    if (declarar.tabla) {
        QUIMO_TRY_VOID(Definiciones(sesion_).Crear(*declarar.tabla, true));
        marco.temporales.push_back(declarar.tabla->tabla.objeto);
        return {};
    }
    for (const tsql::Variable& variable : declarar.variables) {
        const bool larga = variable.tipo.clase == tsql::Clase::Text ||
                           variable.tipo.clase == tsql::Clase::NText ||
                           variable.tipo.clase == tsql::Clase::Image;
        if (larga) return VariableDeTipoLargo();
        marco.variables[variable.nombre].tipo = variable.tipo;
        if (!variable.inicial) continue;
        QUIMO_TRY_VOID(Hacer(tsql::Asignar{variable.nombre, variable.inicial}, marco));
    }
    return {};
}

Hecho Interprete::Hacer(const tsql::Asignar& asignar, Marco& marco) {
    QUIMO_TRY(ValorConTipo* const variable, marco.Variable(asignar.variable));
    QUIMO_TRY(const ValorConTipo valor, planes_.Evaluar(*asignar.expr, marco));
    QUIMO_TRY(const bool permitida, PermiteImplicita(valor.tipo, variable->tipo));
    QUIMO_CHECK(permitida);
    tsql::OpcionesConversion opciones;
    opciones.orden = sesion_.Estado().orden;
    QUIMO_TRY(variable->valor, Convertir(valor.valor, valor.tipo, variable->tipo, opciones));
    return {};
}

Hecho Interprete::Hacer(const tsql::Opcion& opcion, Marco& /*marco*/) {
    return PonerOpcion(opcion, sesion_);
}

Hecho Interprete::Hacer(const tsql::Imprimir& imprimir, Marco& marco) {
    QUIMO_TRY(const ValorConTipo valor, planes_.Evaluar(*imprimir.expr, marco));
    QUIMO_TRY(const Valor texto,
              Convertir(valor.valor, valor.tipo, tsql::TipoTexto(tsql::Clase::NVarChar, -1)));
    salida_.Informar(Aviso(texto.texto));
    return {};
}

Hecho Interprete::Hacer(const tsql::LanzarError& lanzar, Marco& marco) {
    std::vector<ValorConTipo> argumentos;
    for (const tsql::ExprPtr& expr : lanzar.argumentos) {
        QUIMO_TRY(ValorConTipo valor, planes_.Evaluar(*expr, marco));
        argumentos.push_back(std::move(valor));
    }
    QUIMO_TRY(const std::string texto, Rellenar(argumentos[0].valor.texto, argumentos));
    QUIMO_TRY(const Valor convertida, Convertir(argumentos[1].valor, argumentos[1].tipo,
                                                tsql::TipoEntero(tsql::Clase::Int)));
    const auto severidad = static_cast<int>(convertida.exacto);
    const ErrorSql error =
        argumentos[0].tipo.EsEntero()
            ? ErrorLanzado(static_cast<int>(argumentos[0].valor.exacto), severidad)
            : ErrorLanzado(texto, severidad);
    if (!EsSoloAviso(error)) return error;
    salida_.Informar(error);
    return {};
}

Hecho Interprete::Hacer(const tsql::Transaccion& transaccion, Marco& /*marco*/) {
    using Clase = tsql::Transaccion::Clase;
    switch (transaccion.clase) {
        case Clase::Iniciar:
            return sesion_.Iniciar(transaccion.nombre);
        case Clase::Confirmar:
            if (salida_.Capturando() && sesion_.Estado().transacciones <= 1)
                return ConfirmarEnInsertExec();
            return sesion_.Confirmar();
        case Clase::Revertir:
            if (salida_.Capturando()) return RevertirEnInsertExec();
            return sesion_.Revertir(transaccion.nombre);
        case Clase::Guardar:
            break;
    }
    return sesion_.Guardar(transaccion.nombre);
}

Hecho Interprete::Hacer(const tsql::RevisarBase& revisar, Marco& /*marco*/) {
    return RevisarBase(revisar, sesion_, salida_);
}

}  // namespace quimo::data::embebido
