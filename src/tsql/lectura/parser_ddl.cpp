#include <utility>

#include "tsql/lectura/parser_interno.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

Resultado<SentenciaPtr> ParserDefiniciones::LeerCreate() {
    if (cursor_.EsPalabra("TABLE", 1)) {
        cursor_.Avanzar(2);
        QUIMO_TRY(NombreObjeto nombre, cursor_.Objeto());
        QUIMO_TRY(const std::shared_ptr<CrearTabla> tabla, CuerpoDeTabla(std::move(nombre)));
        if (cursor_.Aceptar("ON") || cursor_.Aceptar("TEXTIMAGE_ON")) {
            QUIMO_TRY(std::string grupo, cursor_.Nombre());
        }
        return Hacer(std::move(*tabla));
    }
    if (cursor_.EsPalabra("UNIQUE", 1) || cursor_.EsPalabra("CLUSTERED", 1) ||
        cursor_.EsPalabra("NONCLUSTERED", 1) || cursor_.EsPalabra("INDEX", 1)) {
        return LeerIndice();
    }
    return LeerModulo(false);
}

Resultado<std::shared_ptr<CrearTabla>> ParserDefiniciones::CuerpoDeTabla(NombreObjeto nombre) {
    const Cursor::Nivel nivel(cursor_);
    QUIMO_TRY_VOID(cursor_.Profundo());
    auto tabla = std::make_shared<CrearTabla>();
    tabla->tabla = std::move(nombre);
    QUIMO_TRY_VOID(cursor_.Exigir("("));
    do {
        if (cursor_.EsSigno(")")) break;  // a comma may stand behind the last column
        QUIMO_TRY_VOID(ElementoDeTabla(*tabla));
    } while (cursor_.Aceptar(","));
    if (tabla->columnas.empty()) return cursor_.Sintaxis();
    QUIMO_TRY_VOID(cursor_.Exigir(")"));
    return tabla;
}

bool ParserDefiniciones::EmpiezaRestriccion() const {
    return cursor_.EsPalabra("CONSTRAINT") || cursor_.EsPalabra("PRIMARY") ||
           cursor_.EsPalabra("UNIQUE") || cursor_.EsPalabra("FOREIGN") ||
           cursor_.EsPalabra("CHECK");
}

Hecho ParserDefiniciones::ElementoDeTabla(CrearTabla& tabla) {
    if (!EmpiezaRestriccion()) return LeerColumna(tabla.columnas, tabla.restricciones);
    QUIMO_TRY(RestriccionDef restriccion, LeerRestriccion({}));
    tabla.restricciones.push_back(std::move(restriccion));
    return {};
}

Hecho ParserDefiniciones::LeerColumna(std::vector<ColumnaDef>& columnas,
                                      std::vector<RestriccionDef>& restricciones) {
    ColumnaDef columna;
    QUIMO_TRY(columna.nombre, cursor_.Nombre());
    if (cursor_.Aceptar("AS")) {
        QUIMO_TRY_VOID(ColumnaCalculadaPor(columna));
        columnas.push_back(std::move(columna));
        return {};
    }
    QUIMO_TRY(columna.tipo, expresiones_.LeerTipo(false));
    bool hubo = true;
    while (hubo) {
        hubo = false;
        QUIMO_TRY_VOID(AtributoDeColumna(columna, restricciones, hubo));
    }
    columnas.push_back(std::move(columna));
    return {};
}

Hecho ParserDefiniciones::ColumnaCalculadaPor(ColumnaDef& columna) {
    const std::size_t desde = cursor_.Indice();
    QUIMO_TRY(const ExprPtr expr, expresiones_.Expresion());
    columna.calculada = cursor_.Desde(desde);
    columna.persistida = cursor_.Aceptar("PERSISTED");
    if (columna.persistida && cursor_.EsPalabra("NOT") && cursor_.EsPalabra("NULL", 1)) {
        cursor_.Avanzar(2);
        columna.admite_nulos = false;
    }
    return {};
}

Hecho ParserDefiniciones::AtributoDeColumna(ColumnaDef& columna,
                                            std::vector<RestriccionDef>& restricciones,
                                            bool& hubo) {
    hubo = true;
    if (cursor_.Aceptar("NULL")) {
        columna.admite_nulos = true;
    } else if (cursor_.EsPalabra("NOT") && cursor_.EsPalabra("NULL", 1)) {
        cursor_.Avanzar(2);
        columna.admite_nulos = false;
    } else if (cursor_.Aceptar("IDENTITY")) {
        columna.identidad = true;
        columna.admite_nulos = false;
        if (cursor_.Aceptar("(")) {
            QUIMO_TRY(columna.semilla, cursor_.EnteroFijo());
            QUIMO_TRY_VOID(cursor_.Exigir(","));
            QUIMO_TRY(columna.incremento, cursor_.EnteroFijo());
            if (columna.incremento == 0) return cursor_.SintaxisEn(cursor_.Indice() - 1);
            QUIMO_TRY_VOID(cursor_.Exigir(")"));
        }
    } else if (cursor_.Aceptar("COLLATE")) {
        QUIMO_TRY(std::string orden, cursor_.Nombre());
    } else if (EmpiezaRestriccion() || cursor_.EsPalabra("DEFAULT") ||
               cursor_.EsPalabra("REFERENCES")) {
        QUIMO_TRY(RestriccionDef restriccion, LeerRestriccion(columna.nombre));
        if (restriccion.clase == RestriccionDef::Clase::Primaria) columna.admite_nulos = false;
        restricciones.push_back(std::move(restriccion));
    } else {
        hubo = false;
    }
    return {};
}

/// A constraint of a table, or of the column named.
Resultado<RestriccionDef> ParserDefiniciones::LeerRestriccion(const std::string& columna) {
    RestriccionDef restriccion;
    if (cursor_.Aceptar("CONSTRAINT")) {
        QUIMO_TRY(restriccion.nombre, cursor_.Nombre());
    }
    if (cursor_.Aceptar("PRIMARY")) {
        QUIMO_TRY_VOID(cursor_.Exigir("KEY"));
        restriccion.clase = RestriccionDef::Clase::Primaria;
        QUIMO_TRY_VOID(Clave(restriccion, columna));
        return restriccion;
    }
    if (cursor_.Aceptar("UNIQUE")) {
        restriccion.clase = RestriccionDef::Clase::Unica;
        QUIMO_TRY_VOID(Clave(restriccion, columna));
        return restriccion;
    }
    if (cursor_.Aceptar("CHECK")) {
        restriccion.clase = RestriccionDef::Clase::Comprobacion;
        if (!columna.empty()) restriccion.columnas = {columna};
        QUIMO_TRY(restriccion.texto, TextoEntreParentesis());
        return restriccion;
    }
    if (cursor_.Aceptar("DEFAULT")) {
        QUIMO_TRY_VOID(Defecto(restriccion, columna));
        return restriccion;
    }
    restriccion.clase = RestriccionDef::Clase::Foranea;
    restriccion.columnas = {columna};
    if (cursor_.Aceptar("FOREIGN")) {
        QUIMO_TRY_VOID(cursor_.Exigir("KEY"));
        if (columna.empty()) {
            QUIMO_TRY(restriccion.columnas, cursor_.ListaDeNombres());
        }
    }
    QUIMO_TRY(restriccion.referencia, LeerReferencia());
    return restriccion;
}

Hecho ParserDefiniciones::Defecto(RestriccionDef& restriccion, const std::string& columna) {
    restriccion.clase = RestriccionDef::Clase::Defecto;
    const std::size_t desde = cursor_.Indice();
    QUIMO_TRY(const ExprPtr expr, expresiones_.Unaria());
    restriccion.texto = cursor_.Desde(desde);
    restriccion.columnas = {columna};
    if (columna.empty()) {
        QUIMO_TRY_VOID(cursor_.Exigir("FOR"));
        QUIMO_TRY(restriccion.columnas[0], cursor_.Nombre());
    }
    return {};
}

Hecho ParserDefiniciones::Clave(RestriccionDef& restriccion, const std::string& columna) {
    restriccion.agrupada = cursor_.Aceptar("CLUSTERED");
    if (!restriccion.agrupada) cursor_.Aceptar("NONCLUSTERED");
    if (cursor_.EsSigno("(")) {
        QUIMO_TRY(restriccion.columnas, cursor_.ListaDeNombres());
    } else if (!columna.empty()) {
        restriccion.columnas = {columna};
    } else {
        return cursor_.Sintaxis();
    }
    return OpcionesDeIndice();
}

/// WITH (FILLFACTOR = 90, ...) and ON filegroup, which mean nothing to one file.
Hecho ParserDefiniciones::OpcionesDeIndice() {
    if (cursor_.EsPalabra("WITH") && cursor_.EsSigno("(", 1)) {
        cursor_.Avanzar(2);
        do {
            if (!cursor_.EsClase(Token::Clase::Palabra)) return cursor_.Sintaxis();
            cursor_.Avanzar();
            QUIMO_TRY_VOID(cursor_.Exigir("="));
            if (!cursor_.Aceptar("ON") && !cursor_.Aceptar("OFF")) {
                QUIMO_TRY(const std::int64_t valor, cursor_.EnteroFijo());
                if (valor < 0) return cursor_.SintaxisEn(cursor_.Indice() - 1);
            }
        } while (cursor_.Aceptar(","));
        QUIMO_TRY_VOID(cursor_.Exigir(")"));
    }
    if (cursor_.EsPalabra("ON") && (cursor_.EsPalabra("PRIMARY", 1) || cursor_.HayNombre(1)) &&
        !cursor_.EsSigno("(", 2))
        cursor_.Avanzar(2);
    return {};
}

Resultado<Referencia> ParserDefiniciones::LeerReferencia() {
    QUIMO_TRY_VOID(cursor_.Exigir("REFERENCES"));
    Referencia referencia;
    QUIMO_TRY(referencia.tabla, cursor_.Objeto());
    if (cursor_.EsSigno("(")) {
        QUIMO_TRY(referencia.columnas, cursor_.ListaDeNombres());
    }
    while (cursor_.EsPalabra("ON") &&
           (cursor_.EsPalabra("DELETE", 1) || cursor_.EsPalabra("UPDATE", 1))) {
        const bool borrar = cursor_.EsPalabra("DELETE", 1);
        cursor_.Avanzar(2);
        std::string accion;
        if (cursor_.Aceptar("CASCADE")) {
            accion = "CASCADE";
        } else if (cursor_.Aceptar("NO")) {
            if (!cursor_.Aceptar("ACTION")) return cursor_.Sintaxis();
        } else {
            QUIMO_TRY_VOID(cursor_.Exigir("SET"));
            if (!cursor_.EsPalabra("NULL") && !cursor_.EsPalabra("DEFAULT"))
                return cursor_.Sintaxis();
            accion = cursor_.EsPalabra("NULL") ? "SET NULL" : "SET DEFAULT";
            cursor_.Avanzar();
        }
        (borrar ? referencia.al_borrar : referencia.al_cambiar) = accion;
    }
    return referencia;
}

Resultado<std::string> ParserDefiniciones::TextoEntreParentesis() {
    QUIMO_TRY_VOID(cursor_.Exigir("("));
    const std::size_t desde = cursor_.Indice();
    QUIMO_TRY(const ExprPtr expr, expresiones_.Condicion());
    std::string texto = cursor_.Desde(desde);
    QUIMO_TRY_VOID(cursor_.Exigir(")"));
    return texto;
}

Resultado<SentenciaPtr> ParserDefiniciones::LeerIndice() {
    cursor_.Avanzar();
    CrearIndice indice;
    indice.unico = cursor_.Aceptar("UNIQUE");
    if (!cursor_.Aceptar("CLUSTERED")) cursor_.Aceptar("NONCLUSTERED");
    QUIMO_TRY_VOID(cursor_.Exigir("INDEX"));
    QUIMO_TRY(indice.nombre, cursor_.Nombre());
    QUIMO_TRY_VOID(cursor_.Exigir("ON"));
    QUIMO_TRY(indice.tabla, cursor_.Objeto());
    QUIMO_TRY(indice.columnas, cursor_.ListaDeNombres());
    if (cursor_.Aceptar("INCLUDE")) {
        // Carried columns become part of the key's tail: what the index answers is the same.
        QUIMO_TRY(const std::vector<std::string> incluidas, cursor_.ListaDeNombres());
        if (!indice.unico) {
            indice.columnas.insert(indice.columnas.end(), incluidas.begin(), incluidas.end());
        }
    }
    QUIMO_TRY_VOID(OpcionesDeIndice());
    return Hacer(std::move(indice));
}

/// CREATE or ALTER VIEW, PROCEDURE or FUNCTION: the text's first statement, which takes all of it.
Resultado<SentenciaPtr> ParserDefiniciones::LeerModulo(bool cambiar) {
    if (!cursor_.EsPrimeraSentencia()) return cursor_.SintaxisEn(cursor_.Indice() + 1);
    const std::size_t primero = cursor_.Indice();
    cursor_.Avanzar();
    CrearModulo modulo;
    modulo.cambiar = cambiar;
    if (cursor_.Aceptar("VIEW")) {
        modulo.clase = CrearModulo::Clase::Vista;
    } else if (cursor_.Aceptar("FUNCTION")) {
        modulo.clase = CrearModulo::Clase::Funcion;
    } else if (!cursor_.Aceptar("PROCEDURE") && !cursor_.Aceptar("PROC")) {
        return cursor_.Sintaxis();
    }
    QUIMO_TRY(modulo.nombre, cursor_.Objeto());
    const bool vista = modulo.clase == CrearModulo::Clase::Vista;
    QUIMO_TRY_VOID(vista ? CuerpoDeVista(modulo) : CuerpoDeRutina(modulo));
    modulo.texto = "CREATE " + cursor_.TextoDesde(primero + 1);
    cursor_.IrAlFin();
    return Hacer(std::move(modulo));
}

Hecho ParserDefiniciones::CuerpoDeVista(CrearModulo& vista) {
    if (cursor_.EsSigno("(")) {
        QUIMO_TRY(vista.columnas, cursor_.ListaDeNombres());
    }
    QUIMO_TRY_VOID(cursor_.Exigir("AS"));
    QUIMO_TRY(vista.consulta, consultas_.LeerConsulta());
    if (!cursor_.Fin() && !cursor_.EsSigno(";")) return cursor_.Sintaxis();
    return {};
}

Hecho ParserDefiniciones::CuerpoDeRutina(CrearModulo& rutina) {
    const bool funcion = rutina.clase == CrearModulo::Clase::Funcion;
    QUIMO_TRY_VOID(LeerParametros(rutina.parametros));
    if (funcion) {
        QUIMO_TRY_VOID(cursor_.Exigir("RETURNS"));
        QUIMO_TRY(rutina.retorno, expresiones_.LeerTipo(false));
    }
    if (cursor_.Aceptar("WITH")) {
        if (!cursor_.Aceptar("RECOMPILE") && !cursor_.Aceptar("SCHEMABINDING")) {
            return cursor_.Sintaxis();
        }
    }
    if (funcion) {
        cursor_.Aceptar("AS");
        if (!cursor_.EsPalabra("BEGIN")) return cursor_.Sintaxis();
    } else {
        QUIMO_TRY_VOID(cursor_.Exigir("AS"));
    }
    QUIMO_TRY(rutina.cuerpo, sentencias_.SentenciasHasta({}));
    if (rutina.cuerpo.empty()) return cursor_.Sintaxis();
    return {};
}

Hecho ParserDefiniciones::LeerParametros(std::vector<ParametroRutina>& parametros) {
    const bool parentesis = cursor_.Aceptar("(");
    while (cursor_.EsClase(Token::Clase::Variable)) {
        ParametroRutina parametro;
        parametro.escrito = cursor_.Actual().texto;
        parametro.nombre = AMinusculas(parametro.escrito);
        cursor_.Avanzar();
        cursor_.Aceptar("AS");
        QUIMO_TRY(parametro.tipo, expresiones_.LeerTipo(false));
        if (cursor_.Aceptar("=")) {
            QUIMO_TRY(const Argumento argumento, expresiones_.LeerArgumento());
            if (!argumento.valor) return cursor_.Sintaxis();
            parametro.defecto = argumento.valor;
        }
        parametro.salida = cursor_.Aceptar("OUTPUT") || cursor_.Aceptar("OUT");
        parametros.push_back(std::move(parametro));
        if (!cursor_.Aceptar(",")) break;
        if (!cursor_.EsClase(Token::Clase::Variable)) return cursor_.Sintaxis();
    }
    if (parentesis) return cursor_.Exigir(")");
    return {};
}

Resultado<SentenciaPtr> ParserDefiniciones::LeerAlter() {
    if (cursor_.EsPalabra("TABLE", 1)) return LeerAlterTable();
    return LeerModulo(true);
}

Resultado<SentenciaPtr> ParserDefiniciones::LeerAlterTable() {
    cursor_.Avanzar(2);
    CambiarTabla cambio;
    QUIMO_TRY(cambio.tabla, cursor_.Objeto());
    if (cursor_.EsPalabra("WITH") &&
        (cursor_.EsPalabra("NOCHECK", 1) || cursor_.EsPalabra("CHECK", 1))) {
        if (cursor_.EsPalabra("NOCHECK", 1)) {
            cursor_.Avanzar();
            return cursor_.Sintaxis();
        }
        cursor_.Avanzar(2);
    }
    if (cursor_.Aceptar("ADD")) return AgregarATabla(std::move(cambio));
    if (cursor_.Aceptar("ALTER")) {
        QUIMO_TRY_VOID(cursor_.Exigir("COLUMN"));
        cambio.clase = CambiarTabla::Clase::CambiarColumna;
        QUIMO_TRY_VOID(LeerColumna(cambio.columnas, cambio.restricciones));
        if (!cambio.restricciones.empty()) return cursor_.SintaxisEn(cursor_.Indice() - 1);
        return Hacer(std::move(cambio));
    }
    QUIMO_TRY_VOID(cursor_.Exigir("DROP"));
    cambio.clase = cursor_.Aceptar("COLUMN") ? CambiarTabla::Clase::QuitarColumna
                                             : CambiarTabla::Clase::QuitarRestriccion;
    if (cambio.clase == CambiarTabla::Clase::QuitarRestriccion) cursor_.Aceptar("CONSTRAINT");
    do {
        QUIMO_TRY(std::string nombre, cursor_.Nombre());
        cambio.nombres.push_back(std::move(nombre));
    } while (cursor_.Aceptar(","));
    return Hacer(std::move(cambio));
}

Resultado<SentenciaPtr> ParserDefiniciones::AgregarATabla(CambiarTabla cambio) {
    const bool restriccion = EmpiezaRestriccion() || cursor_.EsPalabra("DEFAULT");
    cambio.clase = restriccion ? CambiarTabla::Clase::AgregarRestricciones
                               : CambiarTabla::Clase::AgregarColumnas;
    do {
        if (EmpiezaRestriccion() || cursor_.EsPalabra("DEFAULT")) {
            QUIMO_TRY(RestriccionDef nueva, LeerRestriccion({}));
            cambio.restricciones.push_back(std::move(nueva));
        } else {
            QUIMO_TRY_VOID(LeerColumna(cambio.columnas, cambio.restricciones));
        }
    } while (cursor_.Aceptar(","));
    return Hacer(std::move(cambio));
}

Resultado<SentenciaPtr> ParserDefiniciones::LeerDrop() {
    cursor_.Avanzar();
    Quitar quitar;
    if (cursor_.Aceptar("TABLE")) {
        quitar.clase = "TABLE";
    } else if (cursor_.Aceptar("VIEW")) {
        quitar.clase = "VIEW";
    } else if (cursor_.Aceptar("PROCEDURE") || cursor_.Aceptar("PROC")) {
        quitar.clase = "PROCEDURE";
    } else if (cursor_.Aceptar("FUNCTION")) {
        quitar.clase = "FUNCTION";
    } else if (cursor_.Aceptar("INDEX")) {
        quitar.clase = "INDEX";
    } else {
        return cursor_.Sintaxis();
    }
    if (cursor_.Aceptar("IF")) {
        QUIMO_TRY_VOID(cursor_.Exigir("EXISTS"));
        quitar.si_existe = true;
    }
    do {
        QUIMO_TRY(NombreObjeto nombre, cursor_.Objeto());
        if (quitar.clase == "INDEX" && cursor_.Aceptar("ON")) {
            QUIMO_TRY(NombreObjeto tabla, cursor_.Objeto());
            tabla.esquema = tabla.objeto;
            tabla.objeto = nombre.objeto;
            nombre = std::move(tabla);
        }
        quitar.nombres.push_back(std::move(nombre));
    } while (cursor_.Aceptar(","));
    return Hacer(std::move(quitar));
}

}  // namespace quimo::tsql
