#include <algorithm>

#include "data/embebido/definiciones.h"
#include "data/embebido/interprete.h"
#include "tsql/valores/conversion.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

constexpr int kNivelesMaximos = 32;

/// One more procedure or function inside another, while it lives.
class Nivel {
public:
    explicit Nivel(int& nivel) : nivel_(nivel) { ++nivel_; }
    Nivel(const Nivel&) = delete;
    Nivel& operator=(const Nivel&) = delete;
    ~Nivel() { --nivel_; }

private:
    int& nivel_;
};

/// Marks a text as free again.
class Suelta {
public:
    explicit Suelta(LoteListo& lote) : lote_(lote) {}
    Suelta(const Suelta&) = delete;
    Suelta& operator=(const Suelta&) = delete;
    ~Suelta() { lote_.en_uso = false; }

private:
    LoteListo& lote_;
};

}  // namespace

Hecho Interprete::HacerDeclarar(const tsql::Declarar& declarar, Marco& marco) {
    if (declarar.tabla) {
        QUIMO_TRY_VOID(Definiciones(sesion_).Crear(*declarar.tabla, true));
        marco.temporales.push_back(declarar.tabla->tabla.objeto);
        return {};
    }
    for (const tsql::Variable& variable : declarar.variables) {
        const bool larga = variable.tipo.clase == tsql::Clase::Text ||
                           variable.tipo.clase == tsql::Clase::NText ||
                           variable.tipo.clase == tsql::Clase::Image;
        if (larga) return tsql::CrearError(2739);
        ValorConTipo& viva = marco.variables[variable.nombre];
        viva.tipo = variable.tipo;
        if (!variable.inicial) continue;
        QUIMO_TRY_VOID(HacerAsignar({variable.nombre, variable.inicial}, marco));
    }
    return {};
}

Hecho Interprete::HacerTruncar(const tsql::Truncar& truncar) {
    return Definiciones(sesion_).Truncar(truncar.tabla);
}

Hecho Interprete::HacerDefinicion(const tsql::Sentencia& s, Marco& marco) {
    QUIMO_TRY_VOID(sesion_.Catalogo().Refrescar());
    Definiciones definiciones(sesion_);
    Hecho hecho;
    if (const auto* tabla = std::get_if<tsql::CrearTabla>(&s.que)) {
        hecho = definiciones.Crear(*tabla, false);
        if (hecho && tabla->tabla.EsTemporal() && marco.es_rutina) {
            marco.temporales.push_back(tabla->tabla.objeto);
        }
    } else if (const auto* indice = std::get_if<tsql::CrearIndice>(&s.que)) {
        hecho = definiciones.Crear(*indice);
    } else if (const auto* modulo = std::get_if<tsql::CrearModulo>(&s.que)) {
        hecho = definiciones.Crear(*modulo);
    } else if (const auto* cambiar = std::get_if<tsql::CambiarTabla>(&s.que)) {
        hecho = definiciones.Cambiar(*cambiar);
    } else if (const auto* quitar = std::get_if<tsql::Quitar>(&s.que)) {
        hecho = definiciones.Quitar(*quitar);
    }
    if (hecho) Contar(-1);
    return hecho;
}

/// SELECT ... INTO: a table like the query's columns, filled with its rows.
Hecho Interprete::HacerSelectInto(const tsql::Seleccionar& seleccionar, Marco& marco) {
    const tsql::NombreObjeto nombre = *seleccionar.consulta->simple->en;
    tsql::Consulta consulta = *seleccionar.consulta;
    consulta.simple->en.reset();
    QUIMO_TRY(const tsql::Plan plan, TraducirConsulta(consulta, EntornoDe(marco)));
    tsql::CrearTabla crear;
    crear.tabla = nombre;
    for (const tsql::ColumnaSalida& columna : plan.columnas) {
        if (columna.nombre.empty()) {
            ErrorSql error = tsql::CrearError(8155, "1", nombre.objeto);
            error.nativo = 1038;
            error.mensaje =
                "An object or column name is missing or empty. For SELECT INTO statements, verify "
                "each column has a name.";
            return error;
        }
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
    PlanListo listo;
    QUIMO_TRY(listo.plan, TraducirInsertar(insertar, EntornoDe(marco)));
    QUIMO_TRY(listo.sentencia, sesion_.Base().Preparar(listo.plan.sql));
    QUIMO_TRY_VOID(Ligar(listo, marco));
    QUIMO_TRY_VOID(PasoDeEscritura(listo, "INSERT", marco));
    const std::int64_t cambios = sesion_.Base().Cambios();
    QUIMO_TRY_VOID(punto.Confirmar());
    if (nombre.EsTemporal() && marco.es_rutina) marco.temporales.push_back(nombre.objeto);
    Contar(cambios);
    return {};
}

Hecho Interprete::Argumentos(const tsql::Ejecutar& ejecutar, const tsql::CrearModulo& modulo,
                             Marco& marco, Marco& nuevo) {
    const std::string& nombre = modulo.nombre.objeto;
    std::size_t siguiente = 0;
    for (const tsql::Argumento& argumento : ejecutar.argumentos) {
        std::size_t cual = siguiente++;
        if (!argumento.nombre.empty()) {
            cual = 0;
            while (cual < modulo.parametros.size() &&
                   modulo.parametros[cual].nombre != argumento.nombre) {
                ++cual;
            }
            if (cual == modulo.parametros.size())
                return tsql::CrearError(8145, argumento.nombre, nombre);
        }
        if (cual >= modulo.parametros.size()) return tsql::CrearError(8144, nombre);
        const tsql::ParametroRutina& parametro = modulo.parametros[cual];
        if (nuevo.variables.count(parametro.nombre) > 0)
            return tsql::CrearError(8143, parametro.nombre);
        if (argumento.salida && !parametro.salida) return tsql::CrearError(8162, parametro.nombre);
        if (!argumento.valor) continue;
        QUIMO_TRY(const ValorConTipo valor, Evaluar(*argumento.valor, marco));
        tsql::OpcionesConversion opciones;
        opciones.orden = sesion_.Estado().orden;
        auto convertido = Convertir(valor.valor, valor.tipo, parametro.tipo, opciones);
        if (!convertido) {
            if (convertido.error().nativo != 245 && convertido.error().nativo != 241) {
                return convertido.error();
            }
            return tsql::CrearError(8114, std::string(NombreClase(valor.tipo.clase)),
                                    std::string(NombreClase(parametro.tipo.clase)));
        }
        nuevo.variables[parametro.nombre] = {parametro.tipo, *convertido};
    }
    for (const tsql::ParametroRutina& parametro : modulo.parametros) {
        if (nuevo.variables.count(parametro.nombre) > 0) continue;
        if (!parametro.defecto) return tsql::CrearError(201, nombre, parametro.escrito);
        QUIMO_TRY(const ValorConTipo valor, Evaluar(*parametro.defecto, nuevo));
        QUIMO_TRY(const Valor convertido, Convertir(valor.valor, valor.tipo, parametro.tipo));
        nuevo.variables[parametro.nombre] = {parametro.tipo, convertido};
    }
    return {};
}

/// Values that a procedure gives back: its OUTPUT parameters and what it returned.
Hecho Interprete::Devolver(const tsql::Ejecutar& ejecutar, const tsql::CrearModulo& modulo,
                           Marco& marco, const Marco& nuevo) {
    const auto poner = [&](const std::string& destino, const ValorConTipo& valor) -> Hecho {
        const auto variable = marco.variables.find(destino);
        if (variable == marco.variables.end()) return tsql::CrearError(137, destino);
        QUIMO_TRY(variable->second.valor,
                  Convertir(valor.valor, valor.tipo, variable->second.tipo));
        return {};
    };
    std::size_t siguiente = 0;
    for (const tsql::Argumento& argumento : ejecutar.argumentos) {
        const std::size_t lugar = siguiente++;
        if (!argumento.salida) continue;
        const std::string& nombre =
            argumento.nombre.empty() ? modulo.parametros[lugar].nombre : argumento.nombre;
        QUIMO_TRY_VOID(poner(argumento.valor->texto, nuevo.variables.at(nombre)));
    }
    if (ejecutar.variable.empty()) return {};
    const Valor devuelto = nuevo.valor.EsNulo() ? Valor::De(0) : nuevo.valor;
    return poner(ejecutar.variable, {tsql::TipoEntero(tsql::Clase::Int), devuelto});
}

Resultado<Flujo> Interprete::HacerExec(const tsql::Ejecutar& ejecutar, Marco& marco) {
    QUIMO_TRY_VOID(sesion_.Catalogo().Refrescar());
    const tsql::ModuloPtr modulo = sesion_.Catalogo().BuscarModulo(ejecutar.nombre);
    if (!modulo && EsDeCandados(ejecutar.nombre)) return HacerCandado(ejecutar, marco);
    if (!modulo || modulo->clase != tsql::CrearModulo::Clase::Procedimiento) {
        return tsql::CrearError(2812, ejecutar.nombre.Completo());
    }
    EstadoSesion& estado = sesion_.Estado();
    if (estado.nivel >= kNivelesMaximos)
        return tsql::CrearError(217, std::to_string(kNivelesMaximos));
    const Nivel nivel(estado.nivel);
    const auto lote = sesion_.LoteDe(modulo);
    const Suelta suelta(*lote);
    Marco nuevo(*lote);
    nuevo.es_rutina = true;
    QUIMO_TRY_VOID(Argumentos(ejecutar, *modulo, marco, nuevo));
    const bool sin_cuenta = estado.sin_cuenta;
    const int antes = estado.transacciones;
    const Flujo flujo = Lista(modulo->cuerpo, nuevo);
    estado.sin_cuenta = sin_cuenta;
    Terminar(nuevo);
    if (flujo == Flujo::Aborta) return flujo;
    QUIMO_TRY_VOID(Devolver(ejecutar, *modulo, marco, nuevo));
    if (antes != estado.transacciones) {
        return tsql::CrearError(266, std::to_string(antes), std::to_string(estado.transacciones));
    }
    return Flujo::Sigue;
}

/// EXEC ('text'): a text of its own, which sees no variable of this one.
Resultado<Flujo> Interprete::HacerTexto(const tsql::Ejecutar& ejecutar, Marco& marco) {
    QUIMO_TRY(const ValorConTipo valor, Evaluar(*ejecutar.texto, marco));
    if (!valor.tipo.EsTexto()) return tsql::CrearError(102, "EXEC");
    EstadoSesion& estado = sesion_.Estado();
    if (estado.nivel >= kNivelesMaximos)
        return tsql::CrearError(217, std::to_string(kNivelesMaximos));
    const Nivel nivel(estado.nivel);
    QUIMO_TRY(const std::shared_ptr<LoteListo> lote, sesion_.Leer(valor.valor.texto, {}));
    const Suelta suelta(*lote);
    const std::vector<ValorConTipo> ninguno;
    Marco nuevo(*lote);
    nuevo.parametros = &ninguno;
    const Flujo flujo = Lista(lote->lote.sentencias, nuevo);
    Terminar(nuevo);
    return flujo == Flujo::Aborta ? flujo : Flujo::Sigue;
}

/// INSERT ... EXEC: the rows of every result set that the procedure leaves.
Hecho Interprete::HacerInsertExec(const tsql::Insertar& insertar, Marco& marco) {
    if (captura_ != nullptr) {
        ErrorSql error = tsql::CrearError(2528, "An INSERT EXEC statement cannot be nested.");
        error.nativo = 8164;
        return error;
    }
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    std::vector<ConjuntoInterno> conjuntos;
    captura_ = &conjuntos;
    const auto fallos = [this] { return respuesta_.fallo ? respuesta_.fallo->errores.size() : 0; };
    const auto antes = fallos();
    const auto flujo = insertar.ejecutar->texto ? HacerTexto(*insertar.ejecutar, marco)
                                                : HacerExec(*insertar.ejecutar, marco);
    captura_ = nullptr;
    if (!flujo) return flujo.error();
    if (*flujo == Flujo::Aborta || fallos() > antes) {
        ErrorSql error = tsql::CrearError(3621);
        error.severidad = 0;
        return error;
    }
    std::int64_t filas = 0;
    for (const ConjuntoInterno& conjunto : conjuntos) {
        std::vector<tsql::Tipo> tipos;
        for (const auto& columna : conjunto.columnas)
            tipos.push_back(columna.tipo);
        tsql::Entorno entorno = EntornoDe(marco);
        entorno.parametros = tipos;
        PlanListo listo;
        QUIMO_TRY(listo.plan, TraducirInsertarFila(insertar, tipos, entorno));
        QUIMO_TRY(listo.sentencia, sesion_.Base().Preparar(listo.plan.sql));
        LoteListo lote;
        lote.tipos_parametros = tipos;
        for (const std::vector<Valor>& fila : conjunto.filas) {
            Marco propio(lote);
            std::vector<ValorConTipo> valores;
            for (std::size_t i = 0; i < fila.size(); ++i)
                valores.push_back({tipos[i], fila[i]});
            propio.parametros = &valores;
            QUIMO_TRY_VOID(Ligar(listo, propio));
            std::vector<ConjuntoInterno> nada;
            captura_ = &nada;
            const auto escrita = Escribir(listo, "INSERT", propio);
            captura_ = nullptr;
            if (!escrita) return escrita.error();
            ++filas;
        }
    }
    QUIMO_TRY_VOID(punto.Confirmar());
    Contar(filas);
    return {};
}

Resultado<Valor> Interprete::LlamarFuncion(const std::string& nombre, tsql::Argumentos argumentos) {
    tsql::NombreObjeto objeto;
    const auto punto = nombre.rfind('.');
    objeto.objeto = punto == std::string::npos ? nombre : nombre.substr(punto + 1);
    const tsql::ModuloPtr modulo = sesion_.Catalogo().BuscarModulo(objeto);
    if (!modulo) return tsql::CrearError(208, nombre);
    EstadoSesion& estado = sesion_.Estado();
    if (estado.nivel >= kNivelesMaximos)
        return tsql::CrearError(217, std::to_string(kNivelesMaximos));
    const Nivel nivel(estado.nivel);
    const auto lote = sesion_.LoteDe(modulo);
    const Suelta suelta(*lote);
    Marco marco(*lote);
    marco.es_rutina = true;
    marco.es_funcion = true;
    marco.retorno = modulo->retorno;
    for (std::size_t i = 0; i < argumentos.size() && i < modulo->parametros.size(); ++i) {
        const tsql::ParametroRutina& parametro = modulo->parametros[i];
        QUIMO_TRY(const Valor valor, tsql::Normalizar(argumentos[i], parametro.tipo));
        marco.variables[parametro.nombre] = {parametro.tipo, valor};
    }
    // What goes wrong inside is the failure of the statement that called it.
    const EstadoSesion antes = estado;
    const auto flujo = Lista(modulo->cuerpo, marco);
    estado.filas = antes.filas;
    estado.error = antes.error;
    Terminar(marco);
    if (flujo == Flujo::Aborta || respuesta_.fallo) {
        ErrorSql error = tsql::CrearError(2528, "The function failed.");
        if (respuesta_.fallo) {
            error.nativo = respuesta_.fallo->Nativo();
            error.mensaje = respuesta_.fallo->Descripcion().mid(47).toStdString();
            error.sqlstate = respuesta_.fallo->errores.first().sqlstate.toStdString();
        }
        return error;
    }
    return marco.valor;
}

}  // namespace quimo::data::embebido
