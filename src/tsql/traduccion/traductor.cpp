#include "tsql/traduccion/traductor.h"

#include <utility>

#include "tsql/traduccion/escritura_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

/// One translation: what its parts share, and the parts.
struct Traduccion {
    explicit Traduccion(const Entorno& entorno)
        : contexto(entorno), consultas(contexto), escritura(contexto, consultas) {}

    Contexto contexto;
    TraductorConsultas consultas;
    TraductorEscritura escritura;
};

Plan PlanDe(ConsultaSql consulta, Contexto& contexto) {
    Plan plan;
    plan.sql = std::move(consulta.sql);
    plan.columnas = std::move(consulta.columnas);
    plan.variables = std::move(consulta.variables);
    for (ColumnaSalida& columna : plan.columnas) {
        if (columna.tipo.clase == Clase::Nulo) columna.tipo = TipoEntero(Clase::Int);
    }
    return contexto.Terminar(std::move(plan));
}

}  // namespace

Resultado<Plan> TraducirConsulta(const Consulta& consulta, const Entorno& entorno) {
    Traduccion traduccion(entorno);
    QUIMO_TRY(ConsultaSql salida, traduccion.consultas.ConsultaEn(consulta, nullptr));
    return PlanDe(std::move(salida), traduccion.contexto);
}

Resultado<Plan> TraducirValor(const Expr& expr, const Entorno& entorno) {
    Traduccion traduccion(entorno);
    Ambito vacio;
    vacio.clausula = Clausula::Donde;
    const ExprPtr sin_dueno(std::shared_ptr<void>(), &expr);
    QUIMO_TRY(Termino termino, traduccion.consultas.Expresiones().Valor(sin_dueno, vacio));
    if (expr.EsCondicion()) termino.sql = "CASE WHEN " + termino.sql + " THEN 1 ELSE 0 END";
    ConsultaSql salida;
    salida.sql = "SELECT " + termino.sql;
    salida.columnas.push_back({"", termino.tipo, termino.admite_nulos});
    return PlanDe(std::move(salida), traduccion.contexto);
}

Resultado<Plan> TraducirInsertar(const Insertar& insertar, const Entorno& entorno) {
    return Traduccion(entorno).escritura.InsertarEn(insertar);
}

Resultado<Plan> TraducirInsertarFila(const Insertar& insertar, const std::vector<Tipo>& tipos,
                                     const Entorno& entorno) {
    Insertar fila = insertar;
    fila.ejecutar = nullptr;
    fila.filas.emplace_back();
    for (std::size_t i = 0; i < tipos.size(); ++i) {
        Expr parametro{ClaseExpr::Parametro};
        parametro.indice = static_cast<int>(i);
        fila.filas[0].push_back(std::make_shared<const Expr>(std::move(parametro)));
    }
    return TraducirInsertar(fila, entorno);
}

Resultado<Plan> TraducirActualizar(const Actualizar& actualizar, const Entorno& entorno) {
    return Traduccion(entorno).escritura.ActualizarEn(actualizar);
}

Resultado<Plan> TraducirBorrar(const Borrar& borrar, const Entorno& entorno) {
    return Traduccion(entorno).escritura.BorrarDe(borrar);
}

Resultado<ExpresionDeTabla> TraducirDeTabla(const std::string& texto, const Tabla& tabla,
                                            const Entorno& entorno) {
    QUIMO_TRY(const ExprPtr expr, LeerExpresion(texto));
    Ambito ambito;
    ambito.clausula = Clausula::Donde;
    TablaAmbito fila;
    fila.expuesto = tabla.nombre;
    for (const ColumnaTabla& columna : tabla.columnas) {
        if (columna.tipo.clase == Clase::Nulo) continue;
        fila.columnas.push_back(
            {columna.nombre, EntreComillas(columna.nombre), columna.tipo, columna.admite_nulos});
    }
    ambito.tablas.push_back(std::move(fila));
    Traduccion traduccion(entorno);
    QUIMO_TRY(const Termino termino, traduccion.consultas.Expresiones().Valor(expr, ambito));
    return ExpresionDeTabla{termino.sql, termino.tipo, termino.admite_nulos};
}

}  // namespace quimo::tsql
