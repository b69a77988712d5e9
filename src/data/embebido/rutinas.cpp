#include "data/embebido/rutinas.h"

#include <algorithm>

#include "data/embebido/errores_motor.h"
#include "tsql/valores/conversion.h"

namespace quimo::data::embebido {

namespace {

/// One more procedure or function inside another, while it lives.
class Nivel {
public:
    static Resultado<Nivel> Entrar(EstadoSesion& estado) {
        constexpr int kMaximos = 32;
        if (estado.nivel >= kMaximos) return RutinasDemasiadoAnidadas(kMaximos);
        return Nivel(estado);
    }
    Nivel(const Nivel&) = delete;
    Nivel& operator=(const Nivel&) = delete;
    Nivel(Nivel&& otro) noexcept : estado_(std::exchange(otro.estado_, nullptr)) {}
    Nivel& operator=(Nivel&&) = delete;
    ~Nivel() {
        if (estado_ != nullptr) --estado_->nivel;
    }

private:
    explicit Nivel(EstadoSesion& estado) : estado_(&estado) { ++estado_->nivel; }

    EstadoSesion* estado_;
};

Hecho Poner(const std::string& destino, const ValorConTipo& valor, Marco& marco) {
    QUIMO_TRY(ValorConTipo* const variable, marco.Variable(destino));
    QUIMO_TRY(variable->valor, Convertir(valor.valor, valor.tipo, variable->tipo));
    return {};
}

}  // namespace

Resultado<Flujo> Rutinas::Ejecutar(const tsql::Ejecutar& ejecutar, Marco& marco) {
    return ejecutar.texto ? Texto(ejecutar, marco) : Procedimiento(ejecutar, marco);
}

Resultado<Flujo> Rutinas::Procedimiento(const tsql::Ejecutar& ejecutar, Marco& marco) {
    QUIMO_TRY_VOID(sesion_.Catalogo().Refrescar());
    const tsql::ModuloPtr modulo = sesion_.Catalogo().BuscarModulo(ejecutar.nombre);
    if (!modulo && ProcedimientosDeCandado::EsUno(ejecutar.nombre)) {
        QUIMO_TRY_VOID(candados_.Ejecutar(ejecutar, marco));
        return Flujo::Sigue;
    }
    if (!modulo || modulo->clase != tsql::CrearModulo::Clase::Procedimiento) {
        return ProcedimientoDesconocido(ejecutar.nombre.Completo());
    }
    EstadoSesion& estado = sesion_.Estado();
    QUIMO_TRY(const Nivel nivel, Nivel::Entrar(estado));
    const LotePrestado lote = sesion_.Textos().LoteDe(modulo);
    Marco nuevo(*lote);
    nuevo.es_rutina = true;
    QUIMO_TRY_VOID(Argumentos(ejecutar, *modulo, marco, nuevo));
    const bool sin_cuenta = estado.sin_cuenta;
    const int antes = estado.transacciones;
    const Flujo flujo = cuerpo_.Lista(modulo->cuerpo, nuevo);
    estado.sin_cuenta = sin_cuenta;
    nuevo.Terminar(sesion_, salida_);
    if (flujo == Flujo::Aborta) return flujo;
    QUIMO_TRY_VOID(Devolver(ejecutar, *modulo, marco, nuevo));
    if (antes != estado.transacciones) return TransaccionesDisparejas(antes, estado.transacciones);
    return Flujo::Sigue;
}

/// EXEC ('text'): a text of its own, which sees no variable of this one.
Resultado<Flujo> Rutinas::Texto(const tsql::Ejecutar& ejecutar, Marco& marco) {
    QUIMO_TRY(const ValorConTipo valor, planes_.Evaluar(*ejecutar.texto, marco));
    if (!valor.tipo.EsTexto()) return tsql::SintaxisIncorrecta("EXEC");
    QUIMO_TRY(const Nivel nivel, Nivel::Entrar(sesion_.Estado()));
    QUIMO_TRY(const LotePrestado lote, sesion_.Textos().Leer(valor.valor.texto, {}));
    const std::vector<ValorConTipo> ninguno;
    Marco nuevo(*lote);
    nuevo.parametros = &ninguno;
    const Flujo flujo = cuerpo_.Lista(lote->lote.sentencias, nuevo);
    nuevo.Terminar(sesion_, salida_);
    return flujo == Flujo::Aborta ? flujo : Flujo::Sigue;
}

Hecho Rutinas::Argumentos(const tsql::Ejecutar& ejecutar, const tsql::CrearModulo& modulo,
                          Marco& marco, Marco& nuevo) {
    const std::string& nombre = modulo.nombre.objeto;
    const auto& parametros = modulo.parametros;
    std::size_t siguiente = 0;
    for (const tsql::Argumento& argumento : ejecutar.argumentos) {
        std::size_t cual = siguiente++;
        if (!argumento.nombre.empty()) {
            const auto suyo = std::find_if(
                parametros.begin(), parametros.end(),
                [&](const tsql::ParametroRutina& p) { return p.nombre == argumento.nombre; });
            if (suyo == parametros.end()) return ParametroDesconocido(argumento.nombre, nombre);
            cual = static_cast<std::size_t>(suyo - parametros.begin());
        }
        if (cual >= parametros.size()) return tsql::ParametrosDeMas(nombre);
        const tsql::ParametroRutina& parametro = parametros[cual];
        if (nuevo.variables.count(parametro.nombre) > 0) return ParametroRepetido(parametro.nombre);
        if (argumento.salida && !parametro.salida) return ParametroSinSalida(parametro.nombre);
        if (!argumento.valor) continue;
        QUIMO_TRY(const Valor valor, ConvertirArgumento(argumento, parametro, marco));
        nuevo.variables[parametro.nombre] = {parametro.tipo, valor};
    }
    return Defectos(modulo, nuevo);
}

Resultado<Valor> Rutinas::ConvertirArgumento(const tsql::Argumento& argumento,
                                             const tsql::ParametroRutina& parametro, Marco& marco) {
    QUIMO_TRY(const ValorConTipo valor, planes_.Evaluar(*argumento.valor, marco));
    tsql::OpcionesConversion opciones;
    opciones.orden = sesion_.Estado().orden;
    auto convertido = Convertir(valor.valor, valor.tipo, parametro.tipo, opciones);
    if (convertido || !EsTextoSinConvertir(convertido.error())) return convertido;
    return tsql::ConversionImposible(std::string(NombreClase(valor.tipo.clase)),
                                     std::string(NombreClase(parametro.tipo.clase)));
}

/// The parameters that the call does not give.
Hecho Rutinas::Defectos(const tsql::CrearModulo& modulo, Marco& nuevo) {
    for (const tsql::ParametroRutina& parametro : modulo.parametros) {
        if (nuevo.variables.count(parametro.nombre) > 0) continue;
        if (!parametro.defecto) return ParametroFaltante(modulo.nombre.objeto, parametro.escrito);
        QUIMO_TRY(const ValorConTipo valor, planes_.Evaluar(*parametro.defecto, nuevo));
        QUIMO_TRY(const Valor convertido, Convertir(valor.valor, valor.tipo, parametro.tipo));
        nuevo.variables[parametro.nombre] = {parametro.tipo, convertido};
    }
    return {};
}

/// Values that a procedure gives back: its OUTPUT parameters and what it returned.
Hecho Rutinas::Devolver(const tsql::Ejecutar& ejecutar, const tsql::CrearModulo& modulo,
                        Marco& marco, const Marco& nuevo) {
    std::size_t siguiente = 0;
    for (const tsql::Argumento& argumento : ejecutar.argumentos) {
        const std::size_t lugar = siguiente++;
        if (!argumento.salida) continue;
        const std::string& nombre =
            argumento.nombre.empty() ? modulo.parametros[lugar].nombre : argumento.nombre;
        QUIMO_TRY_VOID(Poner(argumento.valor->texto, nuevo.variables.at(nombre), marco));
    }
    if (ejecutar.variable.empty()) return {};
    const Valor devuelto = nuevo.valor.EsNulo() ? Valor::De(0) : nuevo.valor;
    return Poner(ejecutar.variable, {tsql::TipoEntero(tsql::Clase::Int), devuelto}, marco);
}

Resultado<std::int64_t> Rutinas::InsertarLoQueDeje(const tsql::Insertar& insertar, Marco& marco) {
    if (salida_.Capturando()) return InsertExecAnidado();
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    std::vector<ConjuntoInterno> conjuntos;
    {
        Salida::Captura captura(salida_);
        const std::size_t antes = salida_.Errores();
        QUIMO_TRY(const Flujo flujo, Ejecutar(*insertar.ejecutar, marco));
        if (flujo == Flujo::Aborta || salida_.Errores() > antes) return SentenciaTerminada();
        conjuntos = std::move(captura.conjuntos);
    }
    std::int64_t filas = 0;
    for (const ConjuntoInterno& conjunto : conjuntos) {
        QUIMO_TRY(const std::int64_t escritas, InsertarFilas(insertar, conjunto, marco));
        filas += escritas;
    }
    QUIMO_TRY_VOID(punto.Confirmar());
    return filas;
}

Resultado<std::int64_t> Rutinas::InsertarFilas(const tsql::Insertar& insertar,
                                               const ConjuntoInterno& conjunto, Marco& marco) {
    LoteListo lote;
    lote.tipos_parametros.reserve(conjunto.columnas.size());
    for (const tsql::ColumnaSalida& columna : conjunto.columnas)
        lote.tipos_parametros.push_back(columna.tipo);
    const std::vector<tsql::Tipo>& tipos = lote.tipos_parametros;
    tsql::Entorno entorno = planes_.EntornoDe(marco);
    entorno.parametros = tipos;
    QUIMO_TRY(tsql::Plan plan, TraducirInsertarFila(insertar, tipos, entorno));
    QUIMO_TRY(PlanListo listo, planes_.PrepararSuelto(std::move(plan)));
    for (const std::vector<Valor>& fila : conjunto.filas) {
        std::vector<ValorConTipo> valores;
        valores.reserve(fila.size());
        for (std::size_t i = 0; i < fila.size(); ++i)
            valores.push_back({tipos[i], fila[i]});
        Marco propio(lote);
        propio.parametros = &valores;
        QUIMO_TRY_VOID(planes_.Ligar(listo, propio));
        QUIMO_TRY_VOID(planes_.Escribir(listo, "INSERT", propio));
    }
    return static_cast<std::int64_t>(conjunto.filas.size());
}

Resultado<Valor> Rutinas::LlamarFuncion(const std::string& nombre, tsql::Argumentos argumentos) {
    tsql::NombreObjeto objeto;
    const auto punto = nombre.rfind('.');
    objeto.objeto = punto == std::string::npos ? nombre : nombre.substr(punto + 1);
    const tsql::ModuloPtr modulo = sesion_.Catalogo().BuscarModulo(objeto);
    if (!modulo) return tsql::ObjetoDesconocido(nombre);
    EstadoSesion& estado = sesion_.Estado();
    QUIMO_TRY(const Nivel nivel, Nivel::Entrar(estado));
    const LotePrestado lote = sesion_.Textos().LoteDe(modulo);
    Marco marco(*lote);
    marco.es_rutina = true;
    marco.es_funcion = true;
    marco.retorno = modulo->retorno;
    for (std::size_t i = 0; i < argumentos.size() && i < modulo->parametros.size(); ++i) {
        const tsql::ParametroRutina& parametro = modulo->parametros[i];
        QUIMO_TRY(const Valor valor, tsql::Normalizar(argumentos[i], parametro.tipo));
        marco.variables[parametro.nombre] = {parametro.tipo, valor};
    }
    const std::int64_t filas = estado.filas;
    const int error = estado.error;
    const Flujo flujo = cuerpo_.Lista(modulo->cuerpo, marco);
    estado.filas = filas;
    estado.error = error;
    marco.Terminar(sesion_, salida_);
    if (flujo == Flujo::Aborta || salida_.Errores() > 0) {
        return FuncionFallida(salida_.PrimerError());
    }
    return marco.valor;
}

}  // namespace quimo::data::embebido
