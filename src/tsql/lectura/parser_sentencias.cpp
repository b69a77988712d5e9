#include <array>
#include <utility>

#include "tsql/lectura/parser_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

constexpr std::size_t kSentenciasMaximas = 100'000;

/// a += b as a = a + b.
Resultado<ExprPtr> Compuesta(std::string operador, ExprPtr a, ExprPtr b) {
    Expr suma{ClaseExpr::Binaria};
    suma.texto = std::move(operador);
    suma.hijos = {std::move(a), std::move(b)};
    return Cerrar(std::move(suma));
}

}  // namespace

Hecho ParserSentencias::LeerTodo() {
    Lote& lote = cursor_.EnCurso();
    while (true) {
        while (cursor_.Aceptar(";")) {
        }
        if (cursor_.Fin()) return {};
        if (lote.sentencias.size() >= kSentenciasMaximas) return DemasiadoAnidado();
        const bool llamada = lote.sentencias.empty() && cursor_.HayNombre();
        QUIMO_TRY(SentenciaPtr sentencia, llamada ? LeerLlamada() : LeerSentencia());
        lote.sentencias.push_back(std::move(sentencia));
    }
}

Resultado<SentenciaPtr> ParserSentencias::LeerSentencia() {
    const Cursor::Nivel nivel(cursor_);
    QUIMO_TRY_VOID(cursor_.Profundo());
    QUIMO_TRY(SentenciaPtr sentencia, Despachar());
    while (cursor_.Aceptar(";")) {
    }
    return sentencia;
}

Resultado<SentenciaPtr> ParserSentencias::Despachar() {
    using Lectura = Resultado<SentenciaPtr> (ParserSentencias::*)();
    constexpr auto kLecturas = std::to_array<std::pair<std::string_view, Lectura>>({
        {"SELECT", &ParserSentencias::LeerSelect},
        {"WITH", &ParserSentencias::LeerWith},
        {"INSERT", &ParserSentencias::LeerInsert},
        {"UPDATE", &ParserSentencias::LeerUpdate},
        {"DELETE", &ParserSentencias::LeerDelete},
        {"TRUNCATE", &ParserSentencias::LeerTruncate},
        {"EXEC", &ParserSentencias::LeerExec},
        {"EXECUTE", &ParserSentencias::LeerExec},
        {"DECLARE", &ParserSentencias::LeerDeclare},
        {"SET", &ParserSentencias::LeerSet},
        {"IF", &ParserSentencias::LeerIf},
        {"WHILE", &ParserSentencias::LeerWhile},
        {"BEGIN", &ParserSentencias::LeerBegin},
        {"RETURN", &ParserSentencias::LeerReturn},
        {"PRINT", &ParserSentencias::LeerPrint},
        {"RAISERROR", &ParserSentencias::LeerRaiserror},
        {"CREATE", &ParserSentencias::LeerCreate},
        {"ALTER", &ParserSentencias::LeerAlter},
        {"DROP", &ParserSentencias::LeerDrop},
        {"USE", &ParserSentencias::LeerUse},
        {"DBCC", &ParserSentencias::LeerDbcc},
    });
    if (cursor_.EsSigno("(") && cursor_.EmpiezaConsulta()) return LeerSelect();
    for (const auto& [palabra, lectura] : kLecturas) {
        if (cursor_.EsPalabra(palabra)) return (this->*lectura)();
    }
    if (cursor_.Aceptar("BREAK")) return Hacer(Salto{false});
    if (cursor_.Aceptar("CONTINUE")) return Hacer(Salto{true});
    const bool transaccion = cursor_.EsPalabra("TRAN", 1) || cursor_.EsPalabra("TRANSACTION", 1);
    if (cursor_.Aceptar("SAVE") && transaccion) return LeerTransaccion(Transaccion::Clase::Guardar);
    if (cursor_.Aceptar("COMMIT")) return LeerTransaccion(Transaccion::Clase::Confirmar);
    if (cursor_.Aceptar("ROLLBACK")) return LeerTransaccion(Transaccion::Clase::Revertir);
    return cursor_.Sintaxis();
}

Resultado<std::vector<SentenciaPtr>> ParserSentencias::SentenciasHasta(std::string_view fin) {
    std::vector<SentenciaPtr> sentencias;
    while (true) {
        while (cursor_.Aceptar(";")) {
        }
        if (fin.empty() ? cursor_.Fin() : cursor_.EsPalabra(fin)) break;
        QUIMO_TRY(SentenciaPtr sentencia, LeerSentencia());
        sentencias.push_back(std::move(sentencia));
    }
    return sentencias;
}

Resultado<SentenciaPtr> ParserSentencias::LeerSelect() {
    QUIMO_TRY(ConsultaPtr consulta, consultas_.LeerConsulta());
    if (cursor_.EsPalabra("OPTION") || cursor_.EsPalabra("FOR") || cursor_.EsPalabra("COMPUTE"))
        return cursor_.Sintaxis();
    return Hacer(Seleccionar{std::move(consulta)});
}

Resultado<SentenciaPtr> ParserSentencias::LeerWith() {
    cursor_.Avanzar();
    std::vector<ExpresionComun> comunes;
    do {
        ExpresionComun comun;
        QUIMO_TRY(comun.nombre, cursor_.Nombre());
        if (cursor_.EsSigno("(")) {
            QUIMO_TRY(comun.columnas, cursor_.ListaDeNombres());
        }
        QUIMO_TRY_VOID(cursor_.Exigir("AS"));
        QUIMO_TRY_VOID(cursor_.Exigir("("));
        QUIMO_TRY(comun.consulta, consultas_.LeerConsulta());
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
        comunes.push_back(std::move(comun));
    } while (cursor_.Aceptar(","));
    if (!cursor_.EmpiezaConsulta()) return cursor_.Sintaxis();
    QUIMO_TRY(const ConsultaPtr cuerpo, consultas_.LeerConsulta());
    Consulta consulta = *cuerpo;
    consulta.comunes = std::move(comunes);
    return Hacer(Seleccionar{std::make_shared<const Consulta>(std::move(consulta))});
}

Resultado<SentenciaPtr> ParserSentencias::LeerInsert() {
    cursor_.Avanzar();
    cursor_.Aceptar("INTO");
    Insertar insertar;
    QUIMO_TRY(insertar.tabla, cursor_.ObjetoOVariable());
    if (cursor_.EsSigno("(") && !cursor_.EmpiezaConsulta()) {
        QUIMO_TRY(insertar.columnas, cursor_.ListaDeNombres());
    }
    if (cursor_.Aceptar("DEFAULT")) {
        QUIMO_TRY_VOID(cursor_.Exigir("VALUES"));
        insertar.por_defecto = true;
    } else if (cursor_.Aceptar("VALUES")) {
        QUIMO_TRY_VOID(Valores(insertar));
    } else if (cursor_.EsPalabra("EXEC") || cursor_.EsPalabra("EXECUTE")) {
        QUIMO_TRY(const SentenciaPtr llamada, LeerExec());
        insertar.ejecutar = std::make_shared<const Ejecutar>(*std::get_if<Ejecutar>(&llamada->que));
    } else if (cursor_.EmpiezaConsulta()) {
        QUIMO_TRY(insertar.consulta, consultas_.LeerConsulta());
    } else {
        return cursor_.Sintaxis();
    }
    return Hacer(std::move(insertar));
}

Hecho ParserSentencias::Valores(Insertar& insertar) {
    constexpr std::size_t kFilasMaximas = 1000;
    do {
        QUIMO_TRY_VOID(cursor_.Exigir("("));
        std::vector<ExprPtr> fila;
        do {
            if (cursor_.Aceptar("DEFAULT")) {
                fila.push_back(nullptr);
            } else {
                QUIMO_TRY(ExprPtr expr, expresiones_.Expresion());
                fila.push_back(std::move(expr));
            }
        } while (cursor_.Aceptar(","));
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
        insertar.filas.push_back(std::move(fila));
        if (insertar.filas.size() > kFilasMaximas) return DemasiadoAnidado();
    } while (cursor_.Aceptar(","));
    return {};
}

Resultado<Asignacion> ParserSentencias::LeerAsignacion() {
    Asignacion asignacion;
    do {
        QUIMO_TRY(asignacion.columna, cursor_.Nombre());
    } while (cursor_.Aceptar("."));
    QUIMO_TRY(std::string operador, cursor_.SignoDeAsignacion());
    if (operador.empty() && cursor_.Aceptar("DEFAULT")) return asignacion;
    QUIMO_TRY(asignacion.expr, expresiones_.Expresion());
    if (!operador.empty()) {
        Expr columna{ClaseExpr::Columna};
        columna.partes = {asignacion.columna};
        QUIMO_TRY(asignacion.expr,
                  Compuesta(std::move(operador), std::make_shared<const Expr>(std::move(columna)),
                            asignacion.expr));
    }
    return asignacion;
}

Resultado<SentenciaPtr> ParserSentencias::LeerUpdate() {
    cursor_.Avanzar();
    Actualizar actualizar;
    QUIMO_TRY_VOID(consultas_.Tope(actualizar.tope, nullptr));
    QUIMO_TRY(actualizar.tabla, cursor_.ObjetoOVariable());
    QUIMO_TRY_VOID(consultas_.Sugerencias());
    QUIMO_TRY_VOID(cursor_.Exigir("SET"));
    do {
        QUIMO_TRY(Asignacion asignacion, LeerAsignacion());
        actualizar.asignaciones.push_back(std::move(asignacion));
    } while (cursor_.Aceptar(","));
    if (cursor_.Aceptar("FROM")) {
        QUIMO_TRY(actualizar.fuentes, consultas_.Fuentes());
    }
    if (cursor_.Aceptar("WHERE")) {
        QUIMO_TRY(actualizar.donde, expresiones_.Condicion());
    }
    return Hacer(std::move(actualizar));
}

Resultado<SentenciaPtr> ParserSentencias::LeerDelete() {
    cursor_.Avanzar();
    Borrar borrar;
    QUIMO_TRY_VOID(consultas_.Tope(borrar.tope, nullptr));
    cursor_.Aceptar("FROM");
    QUIMO_TRY(borrar.tabla, cursor_.ObjetoOVariable());
    QUIMO_TRY_VOID(consultas_.Sugerencias());
    if (cursor_.Aceptar("FROM")) {
        QUIMO_TRY(borrar.fuentes, consultas_.Fuentes());
    }
    if (cursor_.Aceptar("WHERE")) {
        QUIMO_TRY(borrar.donde, expresiones_.Condicion());
    }
    return Hacer(std::move(borrar));
}

Resultado<SentenciaPtr> ParserSentencias::LeerTruncate() {
    cursor_.Avanzar();
    QUIMO_TRY_VOID(cursor_.Exigir("TABLE"));
    QUIMO_TRY(NombreObjeto tabla, cursor_.Objeto());
    return Hacer(Truncar{std::move(tabla)});
}

Resultado<SentenciaPtr> ParserSentencias::LeerExec() {
    cursor_.Avanzar();
    Ejecutar ejecutar;
    if (cursor_.Aceptar("(")) {
        QUIMO_TRY(ejecutar.texto, expresiones_.Expresion());
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
        return Hacer(std::move(ejecutar));
    }
    if (cursor_.EsClase(Token::Clase::Variable) && cursor_.EsSigno("=", 1)) {
        ejecutar.variable = cursor_.Variable();
        cursor_.Avanzar();
    }
    QUIMO_TRY(ejecutar.nombre, cursor_.Objeto());
    QUIMO_TRY_VOID(Argumentos(ejecutar));
    return Hacer(std::move(ejecutar));
}

/// A procedure named without EXEC, which only the first statement of a text may do.
Resultado<SentenciaPtr> ParserSentencias::LeerLlamada() {
    const std::size_t token = cursor_.Indice();
    Ejecutar ejecutar;
    QUIMO_TRY(ejecutar.nombre, cursor_.Objeto());
    // What follows a misspelled keyword is no argument: the misspelled word is what is wrong.
    const bool argumento = cursor_.EsClase(Token::Clase::Literal) || cursor_.EsSigno("-") ||
                           cursor_.EsClase(Token::Clase::Variable) || cursor_.Fin() ||
                           cursor_.EsSigno(";") || cursor_.EsClase(Token::Clase::Parametro) ||
                           cursor_.EsPalabra("NULL") || cursor_.EsPalabra("DEFAULT");
    if (!argumento && !cursor_.HayNombre())
        return cursor_.SintaxisEn(cursor_.EsClase(Token::Clase::Signo) ? cursor_.Indice() : token);
    QUIMO_TRY_VOID(Argumentos(ejecutar));
    return Hacer(std::move(ejecutar));
}

Hecho ParserSentencias::Argumentos(Ejecutar& ejecutar) {
    const Token& token = cursor_.Actual();
    const bool hay =
        token.clase == Token::Clase::Literal || token.clase == Token::Clase::Variable ||
        token.clase == Token::Clase::Parametro || token.clase == Token::Clase::Global ||
        cursor_.EsSigno("-") || cursor_.EsPalabra("NULL") || cursor_.EsPalabra("DEFAULT") ||
        cursor_.HayNombre();
    if (!hay) return {};
    do {
        QUIMO_TRY(Argumento argumento, expresiones_.LeerArgumento());
        ejecutar.argumentos.push_back(std::move(argumento));
    } while (cursor_.Aceptar(","));
    return {};
}

Resultado<SentenciaPtr> ParserSentencias::LeerDeclare() {
    cursor_.Avanzar();
    Declarar declarar;
    do {
        if (!cursor_.EsClase(Token::Clase::Variable)) return cursor_.Sintaxis();
        Variable variable;
        variable.nombre = cursor_.Variable();
        cursor_.Aceptar("AS");
        if (cursor_.Aceptar("TABLE")) {
            NombreObjeto nombre;
            nombre.objeto = variable.nombre;
            QUIMO_TRY(declarar.tabla, definiciones_.CuerpoDeTabla(std::move(nombre)));
            return Hacer(std::move(declarar));
        }
        QUIMO_TRY(variable.tipo, expresiones_.LeerTipo(false));
        if (cursor_.Aceptar("=")) {
            QUIMO_TRY(variable.inicial, expresiones_.Expresion());
        }
        declarar.variables.push_back(std::move(variable));
    } while (cursor_.Aceptar(","));
    return Hacer(std::move(declarar));
}

Resultado<SentenciaPtr> ParserSentencias::LeerSet() {
    cursor_.Avanzar();
    if (!cursor_.EsClase(Token::Clase::Variable)) return LeerOpcion();
    Asignar asignar;
    QUIMO_TRY(const ExprPtr variable, expresiones_.DeToken(ClaseExpr::Variable));
    asignar.variable = variable->texto;
    QUIMO_TRY(std::string operador, cursor_.SignoDeAsignacion());
    QUIMO_TRY(asignar.expr, expresiones_.Expresion());
    if (!operador.empty()) {
        QUIMO_TRY(asignar.expr, Compuesta(std::move(operador), variable, asignar.expr));
    }
    return Hacer(std::move(asignar));
}

Resultado<SentenciaPtr> ParserSentencias::LeerOpcion() {
    Opcion opcion;
    if (cursor_.Aceptar("IDENTITY_INSERT")) {
        opcion.nombre = "IDENTITY_INSERT";
        QUIMO_TRY(opcion.tabla, cursor_.Objeto());
    } else if (cursor_.Aceptar("TRANSACTION")) {
        opcion.nombre = "TRANSACTION";
        if (!cursor_.Aceptar("ISOLATION") || !cursor_.Aceptar("LEVEL")) return cursor_.Sintaxis();
        while (cursor_.EsPalabra("READ") || cursor_.EsPalabra("UNCOMMITTED") ||
               cursor_.EsPalabra("COMMITTED") || cursor_.EsPalabra("REPEATABLE") ||
               cursor_.EsPalabra("SERIALIZABLE") || cursor_.EsPalabra("SNAPSHOT")) {
            opcion.valor += AMayusculas(cursor_.Actual().texto);
            cursor_.Avanzar();
        }
        if (opcion.valor.empty()) return cursor_.Sintaxis();
        return Hacer(std::move(opcion));
    } else {
        if (!cursor_.EsClase(Token::Clase::Palabra)) return cursor_.Sintaxis();
        opcion.nombre = AMayusculas(cursor_.Actual().texto);
        cursor_.Avanzar();
    }
    if (cursor_.EsClase(Token::Clase::Literal) || cursor_.EsSigno("-")) {
        QUIMO_TRY(const std::int64_t valor, cursor_.EnteroFijo());
        opcion.valor = std::to_string(valor);
    } else if (cursor_.EsClase(Token::Clase::Palabra)) {
        opcion.valor = AMayusculas(cursor_.Actual().texto);
        cursor_.Avanzar();
    } else {
        return cursor_.Sintaxis();
    }
    return Hacer(std::move(opcion));
}

Resultado<SentenciaPtr> ParserSentencias::LeerIf() {
    cursor_.Avanzar();
    Si si;
    QUIMO_TRY(si.condicion, expresiones_.Condicion());
    QUIMO_TRY(si.entonces, LeerSentencia());
    if (cursor_.Aceptar("ELSE")) {
        QUIMO_TRY(si.sino, LeerSentencia());
    }
    return Hacer(std::move(si));
}

Resultado<SentenciaPtr> ParserSentencias::LeerWhile() {
    cursor_.Avanzar();
    Mientras mientras;
    QUIMO_TRY(mientras.condicion, expresiones_.Condicion());
    QUIMO_TRY(mientras.cuerpo, LeerSentencia());
    return Hacer(std::move(mientras));
}

Resultado<SentenciaPtr> ParserSentencias::LeerBegin() {
    cursor_.Avanzar();
    if (cursor_.EsPalabra("TRAN") || cursor_.EsPalabra("TRANSACTION")) {
        return LeerTransaccion(Transaccion::Clase::Iniciar);
    }
    Bloque bloque;
    QUIMO_TRY(bloque.sentencias, SentenciasHasta("END"));
    QUIMO_TRY_VOID(cursor_.Exigir("END"));
    if (bloque.sentencias.empty()) return cursor_.SintaxisEn(cursor_.Indice() - 1);
    return Hacer(std::move(bloque));
}

Resultado<SentenciaPtr> ParserSentencias::LeerTransaccion(Transaccion::Clase clase) {
    Transaccion transaccion{clase};
    const bool palabra = cursor_.Aceptar("TRAN") || cursor_.Aceptar("TRANSACTION");
    if (!palabra && !cursor_.Aceptar("WORK") && clase == Transaccion::Clase::Iniciar)
        return cursor_.Sintaxis();
    if (palabra && cursor_.HayNombre()) {
        QUIMO_TRY(transaccion.nombre, cursor_.Nombre());
    }
    if (clase == Transaccion::Clase::Guardar && transaccion.nombre.empty())
        return cursor_.Sintaxis();
    return Hacer(std::move(transaccion));
}

Resultado<SentenciaPtr> ParserSentencias::LeerReturn() {
    cursor_.Avanzar();
    Regresar regresar;
    const Token& token = cursor_.Actual();
    const bool valor =
        token.clase == Token::Clase::Literal || token.clase == Token::Clase::Variable ||
        token.clase == Token::Clase::Global || cursor_.HayNombre() || cursor_.EsSigno("(") ||
        cursor_.EsSigno("-") || cursor_.EsSigno("+") || cursor_.EsSigno("~") ||
        cursor_.EsPalabra("NULL") || cursor_.EsPalabra("CASE") || cursor_.EsPalabra("CONVERT") ||
        cursor_.EsPalabra("COALESCE") || cursor_.EsPalabra("NULLIF") || cursor_.EsPalabra("LEFT") ||
        cursor_.EsPalabra("RIGHT") || token.clase == Token::Clase::Parametro;
    if (valor) {
        QUIMO_TRY(regresar.expr, expresiones_.Expresion());
    }
    return Hacer(std::move(regresar));
}

Resultado<SentenciaPtr> ParserSentencias::LeerPrint() {
    cursor_.Avanzar();
    QUIMO_TRY(ExprPtr expr, expresiones_.Expresion());
    return Hacer(Imprimir{std::move(expr)});
}

Resultado<SentenciaPtr> ParserSentencias::LeerRaiserror() {
    cursor_.Avanzar();
    LanzarError lanzar;
    QUIMO_TRY_VOID(cursor_.Exigir("("));
    QUIMO_TRY(lanzar.argumentos, expresiones_.ListaDeExpresiones());
    if (lanzar.argumentos.size() < 3) return cursor_.Sintaxis();
    QUIMO_TRY_VOID(cursor_.Exigir(")"));
    if (cursor_.Aceptar("WITH")) {
        do {
            if (!cursor_.Aceptar("NOWAIT") && !cursor_.Aceptar("LOG") &&
                !cursor_.Aceptar("SETERROR"))
                return cursor_.Sintaxis();
        } while (cursor_.Aceptar(","));
    }
    return Hacer(std::move(lanzar));
}

Resultado<SentenciaPtr> ParserSentencias::LeerUse() {
    cursor_.Avanzar();
    Opcion opcion;
    opcion.nombre = "USE";
    QUIMO_TRY(opcion.valor, cursor_.Nombre());
    return Hacer(std::move(opcion));
}

Resultado<SentenciaPtr> ParserSentencias::LeerDbcc() {
    cursor_.Avanzar();
    if (!cursor_.Aceptar("CHECKDB")) return cursor_.Sintaxis();
    RevisarBase revisar;
    if (cursor_.Aceptar("WITH")) {
        do {
            const bool en_filas = cursor_.Aceptar("TABLERESULTS");
            const bool solo_fallas = !en_filas && cursor_.Aceptar("NO_INFOMSGS");
            if (!en_filas && !solo_fallas && !cursor_.Aceptar("ALL_ERRORMSGS"))
                return cursor_.Sintaxis();
            revisar.en_filas = revisar.en_filas || en_filas;
            revisar.solo_fallas = revisar.solo_fallas || solo_fallas;
        } while (cursor_.Aceptar(","));
    }
    return Hacer(revisar);
}

}  // namespace quimo::tsql
