#include <array>
#include <utility>

#include "tsql/parser_interno.h"
#include "tsql/texto.h"

namespace quimo::tsql {

Resultado<SentenciaPtr> Parser::LeerSentencia() {
    const Nivel nivel(niveles_);
    QUIMO_TRY_VOID(Profundo());
    QUIMO_TRY(SentenciaPtr sentencia, Despachar());
    while (Aceptar(";")) {
    }
    return sentencia;
}

Resultado<SentenciaPtr> Parser::Despachar() {
    using Lectura = Resultado<SentenciaPtr> (Parser::*)();
    constexpr auto kLecturas = std::to_array<std::pair<std::string_view, Lectura>>({
        {"SELECT", &Parser::LeerSelect},   {"WITH", &Parser::LeerWith},
        {"INSERT", &Parser::LeerInsert},   {"UPDATE", &Parser::LeerUpdate},
        {"DELETE", &Parser::LeerDelete},   {"TRUNCATE", &Parser::LeerTruncate},
        {"EXEC", &Parser::LeerExec},       {"EXECUTE", &Parser::LeerExec},
        {"DECLARE", &Parser::LeerDeclare}, {"SET", &Parser::LeerSet},
        {"IF", &Parser::LeerIf},           {"WHILE", &Parser::LeerWhile},
        {"BEGIN", &Parser::LeerBegin},     {"RETURN", &Parser::LeerReturn},
        {"PRINT", &Parser::LeerPrint},     {"RAISERROR", &Parser::LeerRaiserror},
        {"CREATE", &Parser::LeerCreate},   {"ALTER", &Parser::LeerAlter},
        {"DROP", &Parser::LeerDrop},       {"USE", &Parser::LeerUse},
        {"DBCC", &Parser::LeerDbcc},
    });
    const std::size_t posicion = Actual().desde;
    if (EsSigno("(") && EmpiezaConsulta()) return LeerSelect();
    for (const auto& [palabra, lectura] : kLecturas) {
        if (EsPalabra(palabra)) return (this->*lectura)();
    }
    if (Aceptar("BREAK")) return Hacer(posicion, Salto{false});
    if (Aceptar("CONTINUE")) return Hacer(posicion, Salto{true});
    const bool transaccion = EsPalabra("TRAN", 1) || EsPalabra("TRANSACTION", 1);
    if (Aceptar("SAVE") && transaccion) return LeerTransaccion(Transaccion::Clase::Guardar);
    if (Aceptar("COMMIT")) return LeerTransaccion(Transaccion::Clase::Confirmar);
    if (Aceptar("ROLLBACK")) return LeerTransaccion(Transaccion::Clase::Revertir);
    return Sintaxis();
}

Resultado<std::vector<SentenciaPtr>> Parser::SentenciasHasta(std::string_view fin) {
    std::vector<SentenciaPtr> sentencias;
    while (true) {
        while (Aceptar(";")) {
        }
        if (fin.empty() ? Fin() : EsPalabra(fin)) break;
        QUIMO_TRY(SentenciaPtr sentencia, LeerSentencia());
        sentencias.push_back(std::move(sentencia));
    }
    return sentencias;
}

Resultado<SentenciaPtr> Parser::LeerSelect() {
    const std::size_t posicion = Actual().desde;
    QUIMO_TRY(ConsultaPtr consulta, LeerConsulta());
    if (EsPalabra("OPTION") || EsPalabra("FOR") || EsPalabra("COMPUTE")) return Sintaxis();
    return Hacer(posicion, Seleccionar{std::move(consulta)});
}

Resultado<SentenciaPtr> Parser::LeerWith() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    std::vector<ExpresionComun> comunes;
    do {
        ExpresionComun comun;
        QUIMO_TRY(comun.nombre, Nombre());
        if (EsSigno("(")) {
            QUIMO_TRY(comun.columnas, ListaDeNombres());
        }
        QUIMO_TRY_VOID(Exigir("AS"));
        QUIMO_TRY_VOID(Exigir("("));
        QUIMO_TRY(comun.consulta, LeerConsulta());
        QUIMO_TRY_VOID(Exigir(")"));
        comunes.push_back(std::move(comun));
    } while (Aceptar(","));
    if (!EmpiezaConsulta()) return Sintaxis();
    QUIMO_TRY(const ConsultaPtr cuerpo, LeerConsulta());
    Consulta consulta = *cuerpo;
    consulta.comunes = std::move(comunes);
    return Hacer(posicion, Seleccionar{std::make_shared<const Consulta>(std::move(consulta))});
}

Resultado<SentenciaPtr> Parser::LeerInsert() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Aceptar("INTO");
    Insertar insertar;
    if (Actual().clase == Token::Clase::Variable) {
        insertar.tabla.objeto = AMinusculas(Actual().texto);
        ++i_;
    } else {
        QUIMO_TRY(insertar.tabla, Objeto());
    }
    if (EsSigno("(") && !EmpiezaConsulta()) {
        QUIMO_TRY(insertar.columnas, ListaDeNombres());
    }
    if (Aceptar("DEFAULT")) {
        QUIMO_TRY_VOID(Exigir("VALUES"));
        insertar.por_defecto = true;
    } else if (Aceptar("VALUES")) {
        QUIMO_TRY_VOID(Valores(insertar));
    } else if (EsPalabra("EXEC") || EsPalabra("EXECUTE")) {
        QUIMO_TRY(const SentenciaPtr llamada, LeerExec());
        insertar.ejecutar = std::make_shared<const Ejecutar>(*std::get_if<Ejecutar>(&llamada->que));
    } else if (EmpiezaConsulta()) {
        QUIMO_TRY(insertar.consulta, LeerConsulta());
    } else {
        return Sintaxis();
    }
    return Hacer(posicion, std::move(insertar));
}

Hecho Parser::Valores(Insertar& insertar) {
    constexpr std::size_t kFilasMaximas = 1000;
    do {
        QUIMO_TRY_VOID(Exigir("("));
        std::vector<ExprPtr> fila;
        do {
            if (Aceptar("DEFAULT")) {
                fila.push_back(nullptr);
            } else {
                QUIMO_TRY(ExprPtr expr, Expresion());
                fila.push_back(std::move(expr));
            }
        } while (Aceptar(","));
        QUIMO_TRY_VOID(Exigir(")"));
        insertar.filas.push_back(std::move(fila));
        if (insertar.filas.size() > kFilasMaximas) return DemasiadoAnidado();
    } while (Aceptar(","));
    return {};
}

Resultado<Asignacion> Parser::LeerAsignacion() {
    Asignacion asignacion;
    Expr columna{ClaseExpr::Columna, Actual().desde};
    do {
        QUIMO_TRY(asignacion.columna, Nombre());
    } while (Aceptar("."));
    columna.partes = {asignacion.columna};
    constexpr auto kCompuestas = std::to_array<std::string_view>({"+=", "-=", "*=", "/=", "%="});
    std::string operador;
    for (const std::string_view signo : kCompuestas) {
        if (EsSigno(signo)) operador = signo.substr(0, 1);
    }
    if (operador.empty() && !EsSigno("=")) return Sintaxis();
    ++i_;
    if (operador.empty() && Aceptar("DEFAULT")) return asignacion;
    QUIMO_TRY(asignacion.expr, Expresion());
    if (!operador.empty()) {
        Expr suma{ClaseExpr::Binaria, columna.posicion};
        suma.texto = std::move(operador);
        suma.hijos = {std::make_shared<const Expr>(std::move(columna)), asignacion.expr};
        QUIMO_TRY(asignacion.expr, Cerrar(std::move(suma)));
    }
    return asignacion;
}

Resultado<SentenciaPtr> Parser::LeerUpdate() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Actualizar actualizar;
    QUIMO_TRY_VOID(Tope(actualizar.tope, nullptr));
    if (Actual().clase == Token::Clase::Variable) {
        actualizar.tabla.objeto = AMinusculas(Actual().texto);
        ++i_;
    } else {
        QUIMO_TRY(actualizar.tabla, Objeto());
    }
    QUIMO_TRY_VOID(Sugerencias());
    QUIMO_TRY_VOID(Exigir("SET"));
    do {
        QUIMO_TRY(Asignacion asignacion, LeerAsignacion());
        actualizar.asignaciones.push_back(std::move(asignacion));
    } while (Aceptar(","));
    if (Aceptar("FROM")) {
        QUIMO_TRY(actualizar.fuentes, Fuentes());
    }
    if (Aceptar("WHERE")) {
        QUIMO_TRY(actualizar.donde, Condicion());
    }
    return Hacer(posicion, std::move(actualizar));
}

Resultado<SentenciaPtr> Parser::LeerDelete() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Borrar borrar;
    QUIMO_TRY_VOID(Tope(borrar.tope, nullptr));
    Aceptar("FROM");
    if (Actual().clase == Token::Clase::Variable) {
        borrar.tabla.objeto = AMinusculas(Actual().texto);
        ++i_;
    } else {
        QUIMO_TRY(borrar.tabla, Objeto());
    }
    QUIMO_TRY_VOID(Sugerencias());
    if (Aceptar("FROM")) {
        QUIMO_TRY(borrar.fuentes, Fuentes());
    }
    if (Aceptar("WHERE")) {
        QUIMO_TRY(borrar.donde, Condicion());
    }
    return Hacer(posicion, std::move(borrar));
}

Resultado<SentenciaPtr> Parser::LeerTruncate() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    QUIMO_TRY_VOID(Exigir("TABLE"));
    QUIMO_TRY(NombreObjeto tabla, Objeto());
    return Hacer(posicion, Truncar{std::move(tabla)});
}

Resultado<SentenciaPtr> Parser::LeerExec() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Ejecutar ejecutar;
    if (Aceptar("(")) {
        QUIMO_TRY(ejecutar.texto, Expresion());
        QUIMO_TRY_VOID(Exigir(")"));
        return Hacer(posicion, std::move(ejecutar));
    }
    if (Actual().clase == Token::Clase::Variable && EsSigno("=", 1)) {
        ejecutar.variable = AMinusculas(Actual().texto);
        i_ += 2;
    }
    QUIMO_TRY(ejecutar.nombre, Objeto());
    QUIMO_TRY_VOID(Argumentos(ejecutar));
    return Hacer(posicion, std::move(ejecutar));
}

/// A procedure named without EXEC, which only the first statement of a text may do.
Resultado<SentenciaPtr> Parser::LeerLlamada() {
    const std::size_t posicion = Actual().desde;
    const std::size_t token = i_;
    Ejecutar ejecutar;
    QUIMO_TRY(ejecutar.nombre, Objeto());
    // What follows a misspelled keyword is no argument: the misspelled word is what is wrong.
    const bool argumento = Actual().clase == Token::Clase::Literal || EsSigno("-") ||
                           Actual().clase == Token::Clase::Variable || Fin() || EsSigno(";") ||
                           Actual().clase == Token::Clase::Parametro || EsPalabra("NULL") ||
                           EsPalabra("DEFAULT");
    if (!argumento && !HayNombre())
        return SintaxisEn(Actual().clase == Token::Clase::Signo ? i_ : token);
    QUIMO_TRY_VOID(Argumentos(ejecutar));
    return Hacer(posicion, std::move(ejecutar));
}

Hecho Parser::Argumentos(Ejecutar& ejecutar) {
    const Token& token = Actual();
    const bool hay =
        token.clase == Token::Clase::Literal || token.clase == Token::Clase::Variable ||
        token.clase == Token::Clase::Parametro || token.clase == Token::Clase::Global ||
        EsSigno("-") || EsPalabra("NULL") || EsPalabra("DEFAULT") || HayNombre();
    if (!hay) return {};
    do {
        QUIMO_TRY(Argumento argumento, LeerArgumento());
        ejecutar.argumentos.push_back(std::move(argumento));
    } while (Aceptar(","));
    return {};
}

Resultado<Argumento> Parser::LeerArgumento() {
    Argumento argumento;
    if (Actual().clase == Token::Clase::Variable && EsSigno("=", 1)) {
        argumento.nombre = AMinusculas(Actual().texto);
        i_ += 2;
    }
    if (Aceptar("DEFAULT")) return argumento;
    if (HayNombre()) {
        Expr palabra{ClaseExpr::Literal, Actual().desde};
        QUIMO_TRY(std::string texto, Nombre());
        palabra.tipo = TipoTexto(Clase::VarChar, std::max(1, ContarCaracteres(texto)));
        palabra.literal = Literal{palabra.tipo, tsql::Valor::DeTexto(std::move(texto))};
        QUIMO_TRY(argumento.valor, Cerrar(std::move(palabra)));
        return argumento;
    }
    QUIMO_TRY(argumento.valor, Unaria());
    argumento.salida = Aceptar("OUTPUT") || Aceptar("OUT");
    if (argumento.salida && argumento.valor->clase != ClaseExpr::Variable)
        return SintaxisEn(i_ - 1);
    return argumento;
}

Resultado<SentenciaPtr> Parser::LeerDeclare() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Declarar declarar;
    do {
        if (Actual().clase != Token::Clase::Variable) return Sintaxis();
        Variable variable;
        variable.nombre = AMinusculas(Actual().texto);
        ++i_;
        Aceptar("AS");
        if (Aceptar("TABLE")) {
            NombreObjeto nombre;
            nombre.objeto = variable.nombre;
            QUIMO_TRY(declarar.tabla, CuerpoDeTabla(std::move(nombre)));
            return Hacer(posicion, std::move(declarar));
        }
        QUIMO_TRY(variable.tipo, LeerTipo(false));
        if (Aceptar("=")) {
            QUIMO_TRY(variable.inicial, Expresion());
        }
        declarar.variables.push_back(std::move(variable));
    } while (Aceptar(","));
    return Hacer(posicion, std::move(declarar));
}

Resultado<SentenciaPtr> Parser::LeerSet() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    if (Actual().clase != Token::Clase::Variable) return LeerOpcion();
    Asignar asignar;
    QUIMO_TRY(const ExprPtr variable, DeToken(ClaseExpr::Variable));
    asignar.variable = variable->texto;
    constexpr auto kCompuestas = std::to_array<std::string_view>({"+=", "-=", "*=", "/=", "%="});
    std::string operador;
    for (const std::string_view signo : kCompuestas) {
        if (EsSigno(signo)) operador = signo.substr(0, 1);
    }
    if (operador.empty() && !EsSigno("=")) return Sintaxis();
    ++i_;
    QUIMO_TRY(asignar.expr, Expresion());
    if (!operador.empty()) {
        Expr suma{ClaseExpr::Binaria, posicion};
        suma.texto = std::move(operador);
        suma.hijos = {variable, asignar.expr};
        QUIMO_TRY(asignar.expr, Cerrar(std::move(suma)));
    }
    return Hacer(posicion, std::move(asignar));
}

Resultado<SentenciaPtr> Parser::LeerOpcion() {
    const std::size_t posicion = Actual().desde;
    Opcion opcion;
    if (Aceptar("IDENTITY_INSERT")) {
        opcion.nombre = "IDENTITY_INSERT";
        QUIMO_TRY(opcion.tabla, Objeto());
    } else if (Aceptar("TRANSACTION")) {
        opcion.nombre = "TRANSACTION";
        if (!Aceptar("ISOLATION") || !Aceptar("LEVEL")) return Sintaxis();
        while (EsPalabra("READ") || EsPalabra("UNCOMMITTED") || EsPalabra("COMMITTED") ||
               EsPalabra("REPEATABLE") || EsPalabra("SERIALIZABLE") || EsPalabra("SNAPSHOT")) {
            opcion.valor += AMayusculas(Actual().texto);
            ++i_;
        }
        if (opcion.valor.empty()) return Sintaxis();
        return Hacer(posicion, std::move(opcion));
    } else {
        if (Actual().clase != Token::Clase::Palabra) return Sintaxis();
        opcion.nombre = AMayusculas(Actual().texto);
        ++i_;
    }
    if (Actual().clase == Token::Clase::Literal || EsSigno("-")) {
        QUIMO_TRY(const std::int64_t valor, EnteroFijo());
        opcion.valor = std::to_string(valor);
    } else if (Actual().clase == Token::Clase::Palabra) {
        opcion.valor = AMayusculas(Actual().texto);
        ++i_;
    } else {
        return Sintaxis();
    }
    return Hacer(posicion, std::move(opcion));
}

Resultado<SentenciaPtr> Parser::LeerIf() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Si si;
    QUIMO_TRY(si.condicion, Condicion());
    QUIMO_TRY(si.entonces, LeerSentencia());
    if (Aceptar("ELSE")) {
        QUIMO_TRY(si.sino, LeerSentencia());
    }
    return Hacer(posicion, std::move(si));
}

Resultado<SentenciaPtr> Parser::LeerWhile() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Mientras mientras;
    QUIMO_TRY(mientras.condicion, Condicion());
    QUIMO_TRY(mientras.cuerpo, LeerSentencia());
    return Hacer(posicion, std::move(mientras));
}

Resultado<SentenciaPtr> Parser::LeerBegin() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    if (EsPalabra("TRAN") || EsPalabra("TRANSACTION")) {
        return LeerTransaccion(Transaccion::Clase::Iniciar);
    }
    Bloque bloque;
    QUIMO_TRY(bloque.sentencias, SentenciasHasta("END"));
    QUIMO_TRY_VOID(Exigir("END"));
    if (bloque.sentencias.empty()) return SintaxisEn(i_ - 1);
    return Hacer(posicion, std::move(bloque));
}

Resultado<SentenciaPtr> Parser::LeerTransaccion(Transaccion::Clase clase) {
    const std::size_t posicion = Actual().desde;
    Transaccion transaccion{clase};
    const bool palabra = Aceptar("TRAN") || Aceptar("TRANSACTION");
    if (!palabra && !Aceptar("WORK") && clase == Transaccion::Clase::Iniciar) return Sintaxis();
    if (palabra && HayNombre()) {
        QUIMO_TRY(transaccion.nombre, Nombre());
    }
    if (clase == Transaccion::Clase::Guardar && transaccion.nombre.empty()) return Sintaxis();
    return Hacer(posicion, std::move(transaccion));
}

Resultado<SentenciaPtr> Parser::LeerReturn() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Regresar regresar;
    const Token& token = Actual();
    const bool valor =
        token.clase == Token::Clase::Literal || token.clase == Token::Clase::Variable ||
        token.clase == Token::Clase::Global || HayNombre() || EsSigno("(") || EsSigno("-") ||
        EsSigno("+") || EsSigno("~") || EsPalabra("NULL") || EsPalabra("CASE") ||
        EsPalabra("CONVERT") || EsPalabra("COALESCE") || EsPalabra("NULLIF") || EsPalabra("LEFT") ||
        EsPalabra("RIGHT") || token.clase == Token::Clase::Parametro;
    if (valor) {
        QUIMO_TRY(regresar.expr, Expresion());
    }
    return Hacer(posicion, std::move(regresar));
}

Resultado<SentenciaPtr> Parser::LeerPrint() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    QUIMO_TRY(ExprPtr expr, Expresion());
    return Hacer(posicion, Imprimir{std::move(expr)});
}

Resultado<SentenciaPtr> Parser::LeerRaiserror() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    LanzarError lanzar;
    QUIMO_TRY_VOID(Exigir("("));
    QUIMO_TRY(lanzar.argumentos, ListaDeExpresiones());
    if (lanzar.argumentos.size() < 3) return Sintaxis();
    QUIMO_TRY_VOID(Exigir(")"));
    if (Aceptar("WITH")) {
        do {
            if (!Aceptar("NOWAIT") && !Aceptar("LOG") && !Aceptar("SETERROR")) return Sintaxis();
        } while (Aceptar(","));
    }
    return Hacer(posicion, std::move(lanzar));
}

Resultado<SentenciaPtr> Parser::LeerUse() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Opcion opcion;
    opcion.nombre = "USE";
    QUIMO_TRY(opcion.valor, Nombre());
    return Hacer(posicion, std::move(opcion));
}

Resultado<SentenciaPtr> Parser::LeerDbcc() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    if (!Aceptar("CHECKDB")) return Sintaxis();
    RevisarBase revisar;
    if (Aceptar("WITH")) {
        do {
            const bool en_filas = Aceptar("TABLERESULTS");
            const bool solo_fallas = !en_filas && Aceptar("NO_INFOMSGS");
            if (!en_filas && !solo_fallas && !Aceptar("ALL_ERRORMSGS")) return Sintaxis();
            revisar.en_filas = revisar.en_filas || en_filas;
            revisar.solo_fallas = revisar.solo_fallas || solo_fallas;
        } while (Aceptar(","));
    }
    return Hacer(posicion, revisar);
}

}  // namespace quimo::tsql
