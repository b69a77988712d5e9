#include <utility>

#include "tsql/parser_interno.h"
#include "tsql/texto.h"

namespace quimo::tsql {

Resultado<SentenciaPtr> Parser::LeerCreate() {
    const std::size_t posicion = Actual().desde;
    if (EsPalabra("TABLE", 1)) {
        i_ += 2;
        QUIMO_TRY(NombreObjeto nombre, Objeto());
        QUIMO_TRY(const std::shared_ptr<CrearTabla> tabla, CuerpoDeTabla(std::move(nombre)));
        if (Aceptar("ON") || Aceptar("TEXTIMAGE_ON")) {
            QUIMO_TRY(std::string grupo, Nombre());
        }
        return Hacer(posicion, std::move(*tabla));
    }
    if (EsPalabra("UNIQUE", 1) || EsPalabra("CLUSTERED", 1) || EsPalabra("NONCLUSTERED", 1) ||
        EsPalabra("INDEX", 1)) {
        return LeerIndice();
    }
    return LeerModulo(false);
}

Resultado<std::shared_ptr<CrearTabla>> Parser::CuerpoDeTabla(NombreObjeto nombre) {
    const Nivel nivel(niveles_);
    QUIMO_TRY_VOID(Profundo());
    auto tabla = std::make_shared<CrearTabla>();
    tabla->tabla = std::move(nombre);
    QUIMO_TRY_VOID(Exigir("("));
    do {
        if (EsSigno(")")) break;  // a comma may stand behind the last column
        QUIMO_TRY_VOID(ElementoDeTabla(*tabla));
    } while (Aceptar(","));
    if (tabla->columnas.empty()) return Sintaxis();
    QUIMO_TRY_VOID(Exigir(")"));
    return tabla;
}

bool Parser::EmpiezaRestriccion() const {
    return EsPalabra("CONSTRAINT") || EsPalabra("PRIMARY") || EsPalabra("UNIQUE") ||
           EsPalabra("FOREIGN") || EsPalabra("CHECK");
}

Hecho Parser::ElementoDeTabla(CrearTabla& tabla) {
    if (!EmpiezaRestriccion()) return LeerColumna(tabla.columnas, tabla.restricciones);
    QUIMO_TRY(RestriccionDef restriccion, LeerRestriccion({}));
    tabla.restricciones.push_back(std::move(restriccion));
    return {};
}

Hecho Parser::LeerColumna(std::vector<ColumnaDef>& columnas,
                          std::vector<RestriccionDef>& restricciones) {
    ColumnaDef columna;
    QUIMO_TRY(columna.nombre, Nombre());
    if (Aceptar("AS")) {
        const std::size_t desde = i_;
        QUIMO_TRY(const ExprPtr expr, Expresion());
        columna.calculada = Desde(desde);
        if (Aceptar("PERSISTED")) {
            columna.persistida = true;
            if (EsPalabra("NOT") && EsPalabra("NULL", 1)) {
                i_ += 2;
                columna.admite_nulos = false;
            }
        }
        columnas.push_back(std::move(columna));
        return {};
    }
    QUIMO_TRY(columna.tipo, LeerTipo(false));
    bool hubo = true;
    while (hubo) {
        hubo = false;
        QUIMO_TRY_VOID(AtributoDeColumna(columna, restricciones, hubo));
    }
    columnas.push_back(std::move(columna));
    return {};
}

Hecho Parser::AtributoDeColumna(ColumnaDef& columna, std::vector<RestriccionDef>& restricciones,
                                bool& hubo) {
    hubo = true;
    if (Aceptar("NULL")) {
        columna.admite_nulos = true;
    } else if (EsPalabra("NOT") && EsPalabra("NULL", 1)) {
        i_ += 2;
        columna.admite_nulos = false;
    } else if (Aceptar("IDENTITY")) {
        columna.identidad = true;
        columna.admite_nulos = false;
        if (Aceptar("(")) {
            QUIMO_TRY(columna.semilla, EnteroFijo());
            QUIMO_TRY_VOID(Exigir(","));
            QUIMO_TRY(columna.incremento, EnteroFijo());
            if (columna.incremento == 0) return SintaxisEn(i_ - 1);
            QUIMO_TRY_VOID(Exigir(")"));
        }
    } else if (Aceptar("COLLATE")) {
        QUIMO_TRY(std::string orden, Nombre());
    } else if (EmpiezaRestriccion() || EsPalabra("DEFAULT") || EsPalabra("REFERENCES")) {
        QUIMO_TRY(RestriccionDef restriccion, LeerRestriccion(columna.nombre));
        if (restriccion.clase == RestriccionDef::Clase::Primaria) columna.admite_nulos = false;
        restricciones.push_back(std::move(restriccion));
    } else {
        hubo = false;
    }
    return {};
}

/// A constraint of a table, or of the column named.
Resultado<RestriccionDef> Parser::LeerRestriccion(const std::string& columna) {
    RestriccionDef restriccion;
    if (Aceptar("CONSTRAINT")) {
        QUIMO_TRY(restriccion.nombre, Nombre());
    }
    if (Aceptar("PRIMARY")) {
        QUIMO_TRY_VOID(Exigir("KEY"));
        restriccion.clase = RestriccionDef::Clase::Primaria;
        QUIMO_TRY_VOID(Clave(restriccion, columna));
        return restriccion;
    }
    if (Aceptar("UNIQUE")) {
        restriccion.clase = RestriccionDef::Clase::Unica;
        QUIMO_TRY_VOID(Clave(restriccion, columna));
        return restriccion;
    }
    if (Aceptar("CHECK")) {
        restriccion.clase = RestriccionDef::Clase::Comprobacion;
        if (!columna.empty()) restriccion.columnas = {columna};
        QUIMO_TRY(restriccion.texto, TextoEntreParentesis());
        return restriccion;
    }
    if (Aceptar("DEFAULT")) {
        restriccion.clase = RestriccionDef::Clase::Defecto;
        const std::size_t desde = i_;
        QUIMO_TRY(const ExprPtr expr, Unaria());
        restriccion.texto = Desde(desde);
        restriccion.columnas = {columna};
        if (columna.empty()) {
            QUIMO_TRY_VOID(Exigir("FOR"));
            QUIMO_TRY(restriccion.columnas[0], Nombre());
        }
        return restriccion;
    }
    restriccion.clase = RestriccionDef::Clase::Foranea;
    restriccion.columnas = {columna};
    if (Aceptar("FOREIGN")) {
        QUIMO_TRY_VOID(Exigir("KEY"));
        if (columna.empty()) {
            QUIMO_TRY(restriccion.columnas, ListaDeNombres());
        }
    }
    QUIMO_TRY(restriccion.referencia, LeerReferencia());
    return restriccion;
}

Hecho Parser::Clave(RestriccionDef& restriccion, const std::string& columna) {
    restriccion.agrupada = Aceptar("CLUSTERED");
    if (!restriccion.agrupada) Aceptar("NONCLUSTERED");
    if (EsSigno("(")) {
        QUIMO_TRY(restriccion.columnas, ListaDeNombres());
    } else if (!columna.empty()) {
        restriccion.columnas = {columna};
    } else {
        return Sintaxis();
    }
    return OpcionesDeIndice();
}

/// WITH (FILLFACTOR = 90, ...) and ON filegroup, which mean nothing to one file.
Hecho Parser::OpcionesDeIndice() {
    if (EsPalabra("WITH") && EsSigno("(", 1)) {
        i_ += 2;
        do {
            if (Actual().clase != Token::Clase::Palabra) return Sintaxis();
            ++i_;
            QUIMO_TRY_VOID(Exigir("="));
            if (!Aceptar("ON") && !Aceptar("OFF")) {
                QUIMO_TRY(const std::int64_t valor, EnteroFijo());
                if (valor < 0) return SintaxisEn(i_ - 1);
            }
        } while (Aceptar(","));
        QUIMO_TRY_VOID(Exigir(")"));
    }
    if (EsPalabra("ON") && (EsPalabra("PRIMARY", 1) || HayNombre(1)) && !EsSigno("(", 2)) i_ += 2;
    return {};
}

Resultado<Referencia> Parser::LeerReferencia() {
    QUIMO_TRY_VOID(Exigir("REFERENCES"));
    Referencia referencia;
    QUIMO_TRY(referencia.tabla, Objeto());
    if (EsSigno("(")) {
        QUIMO_TRY(referencia.columnas, ListaDeNombres());
    }
    while (EsPalabra("ON") && (EsPalabra("DELETE", 1) || EsPalabra("UPDATE", 1))) {
        const bool borrar = EsPalabra("DELETE", 1);
        i_ += 2;
        std::string accion;
        if (Aceptar("CASCADE")) {
            accion = "CASCADE";
        } else if (Aceptar("NO")) {
            if (!Aceptar("ACTION")) return Sintaxis();
        } else {
            QUIMO_TRY_VOID(Exigir("SET"));
            if (!EsPalabra("NULL") && !EsPalabra("DEFAULT")) return Sintaxis();
            accion = EsPalabra("NULL") ? "SET NULL" : "SET DEFAULT";
            ++i_;
        }
        (borrar ? referencia.al_borrar : referencia.al_cambiar) = accion;
    }
    return referencia;
}

Resultado<std::string> Parser::TextoEntreParentesis() {
    QUIMO_TRY_VOID(Exigir("("));
    const std::size_t desde = i_;
    QUIMO_TRY(const ExprPtr expr, Condicion());
    std::string texto = Desde(desde);
    QUIMO_TRY_VOID(Exigir(")"));
    return texto;
}

Resultado<SentenciaPtr> Parser::LeerIndice() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    CrearIndice indice;
    indice.unico = Aceptar("UNIQUE");
    if (!Aceptar("CLUSTERED")) Aceptar("NONCLUSTERED");
    QUIMO_TRY_VOID(Exigir("INDEX"));
    QUIMO_TRY(indice.nombre, Nombre());
    QUIMO_TRY_VOID(Exigir("ON"));
    QUIMO_TRY(indice.tabla, Objeto());
    QUIMO_TRY(indice.columnas, ListaDeNombres());
    if (Aceptar("INCLUDE")) {
        // Carried columns become part of the key's tail: what the index answers is the same.
        QUIMO_TRY(const std::vector<std::string> incluidas, ListaDeNombres());
        if (!indice.unico) {
            indice.columnas.insert(indice.columnas.end(), incluidas.begin(), incluidas.end());
        }
    }
    QUIMO_TRY_VOID(OpcionesDeIndice());
    return Hacer(posicion, std::move(indice));
}

/// CREATE or ALTER VIEW, PROCEDURE or FUNCTION: the text's first statement, which takes all of it.
Resultado<SentenciaPtr> Parser::LeerModulo(bool cambiar) {
    const std::size_t posicion = Actual().desde;
    if (!lote_.sentencias.empty() || niveles_ > 1) return SintaxisEn(i_ + 1);
    const std::size_t primero = i_;
    ++i_;
    CrearModulo modulo;
    modulo.cambiar = cambiar;
    if (Aceptar("VIEW")) {
        modulo.clase = CrearModulo::Clase::Vista;
    } else if (Aceptar("FUNCTION")) {
        modulo.clase = CrearModulo::Clase::Funcion;
    } else if (!Aceptar("PROCEDURE") && !Aceptar("PROC")) {
        return Sintaxis();
    }
    QUIMO_TRY(modulo.nombre, Objeto());
    if (modulo.clase == CrearModulo::Clase::Vista) {
        if (EsSigno("(")) {
            QUIMO_TRY(modulo.columnas, ListaDeNombres());
        }
        QUIMO_TRY_VOID(Exigir("AS"));
        QUIMO_TRY(modulo.consulta, LeerConsulta());
        if (!Fin() && !EsSigno(";")) return Sintaxis();
    } else {
        QUIMO_TRY_VOID(LeerParametros(modulo.parametros));
        if (modulo.clase == CrearModulo::Clase::Funcion) {
            QUIMO_TRY_VOID(Exigir("RETURNS"));
            QUIMO_TRY(modulo.retorno, LeerTipo(false));
        }
        if (Aceptar("WITH")) {  // RECOMPILE, SCHEMABINDING, RETURNS NULL ON NULL INPUT
            if (!Aceptar("RECOMPILE") && !Aceptar("SCHEMABINDING")) return Sintaxis();
        }
        if (modulo.clase == CrearModulo::Clase::Funcion) {
            Aceptar("AS");
            if (!EsPalabra("BEGIN")) return Sintaxis();
        } else {
            QUIMO_TRY_VOID(Exigir("AS"));
        }
        QUIMO_TRY(modulo.cuerpo, SentenciasHasta({}));
        if (modulo.cuerpo.empty()) return Sintaxis();
    }
    const std::size_t desde = tokens_[primero + 1].desde;
    modulo.texto = "CREATE " + std::string(texto_.substr(desde));
    i_ = tokens_.size() - 1;
    return Hacer(posicion, std::move(modulo));
}

Hecho Parser::LeerParametros(std::vector<ParametroRutina>& parametros) {
    const bool parentesis = Aceptar("(");
    while (Actual().clase == Token::Clase::Variable) {
        ParametroRutina parametro;
        parametro.escrito = Actual().texto;
        parametro.nombre = AMinusculas(parametro.escrito);
        ++i_;
        Aceptar("AS");
        QUIMO_TRY(parametro.tipo, LeerTipo(false));
        if (Aceptar("=")) {
            QUIMO_TRY(const Argumento argumento, LeerArgumento());
            if (!argumento.valor) return Sintaxis();
            parametro.defecto = argumento.valor;
        }
        parametro.salida = Aceptar("OUTPUT") || Aceptar("OUT");
        parametros.push_back(std::move(parametro));
        if (!Aceptar(",")) break;
        if (Actual().clase != Token::Clase::Variable) return Sintaxis();
    }
    if (parentesis) return Exigir(")");
    return {};
}

Resultado<SentenciaPtr> Parser::LeerAlter() {
    if (EsPalabra("TABLE", 1)) return LeerAlterTable();
    return LeerModulo(true);
}

Resultado<SentenciaPtr> Parser::LeerAlterTable() {
    const std::size_t posicion = Actual().desde;
    i_ += 2;
    CambiarTabla cambio;
    QUIMO_TRY(cambio.tabla, Objeto());
    if (EsPalabra("WITH") && (EsPalabra("NOCHECK", 1) || EsPalabra("CHECK", 1))) {
        if (EsPalabra("NOCHECK", 1)) {
            ++i_;
            return Sintaxis();
        }
        i_ += 2;
    }
    if (Aceptar("ADD")) return AgregarATabla(std::move(cambio));
    if (Aceptar("ALTER")) {
        QUIMO_TRY_VOID(Exigir("COLUMN"));
        cambio.clase = CambiarTabla::Clase::CambiarColumna;
        QUIMO_TRY_VOID(LeerColumna(cambio.columnas, cambio.restricciones));
        if (!cambio.restricciones.empty()) return SintaxisEn(i_ - 1);
        return Hacer(posicion, std::move(cambio));
    }
    QUIMO_TRY_VOID(Exigir("DROP"));
    cambio.clase = Aceptar("COLUMN") ? CambiarTabla::Clase::QuitarColumna
                                     : CambiarTabla::Clase::QuitarRestriccion;
    if (cambio.clase == CambiarTabla::Clase::QuitarRestriccion) Aceptar("CONSTRAINT");
    do {
        QUIMO_TRY(std::string nombre, Nombre());
        cambio.nombres.push_back(std::move(nombre));
    } while (Aceptar(","));
    return Hacer(posicion, std::move(cambio));
}

Resultado<SentenciaPtr> Parser::AgregarATabla(CambiarTabla cambio) {
    const std::size_t posicion = Actual().desde;
    const bool restriccion = EmpiezaRestriccion() || EsPalabra("DEFAULT");
    cambio.clase = restriccion ? CambiarTabla::Clase::AgregarRestricciones
                               : CambiarTabla::Clase::AgregarColumnas;
    do {
        if (EmpiezaRestriccion() || EsPalabra("DEFAULT")) {
            QUIMO_TRY(RestriccionDef nueva, LeerRestriccion({}));
            cambio.restricciones.push_back(std::move(nueva));
        } else {
            QUIMO_TRY_VOID(LeerColumna(cambio.columnas, cambio.restricciones));
        }
    } while (Aceptar(","));
    return Hacer(posicion, std::move(cambio));
}

Resultado<SentenciaPtr> Parser::LeerDrop() {
    const std::size_t posicion = Actual().desde;
    ++i_;
    Quitar quitar;
    if (Aceptar("TABLE")) {
        quitar.clase = "TABLE";
    } else if (Aceptar("VIEW")) {
        quitar.clase = "VIEW";
    } else if (Aceptar("PROCEDURE") || Aceptar("PROC")) {
        quitar.clase = "PROCEDURE";
    } else if (Aceptar("FUNCTION")) {
        quitar.clase = "FUNCTION";
    } else if (Aceptar("INDEX")) {
        quitar.clase = "INDEX";
    } else {
        return Sintaxis();
    }
    if (Aceptar("IF")) {
        QUIMO_TRY_VOID(Exigir("EXISTS"));
        quitar.si_existe = true;
    }
    do {
        QUIMO_TRY(NombreObjeto nombre, Objeto());
        if (quitar.clase == "INDEX" && Aceptar("ON")) {
            QUIMO_TRY(NombreObjeto tabla, Objeto());
            tabla.esquema = tabla.objeto;
            tabla.objeto = nombre.objeto;
            nombre = std::move(tabla);
        }
        quitar.nombres.push_back(std::move(nombre));
    } while (Aceptar(","));
    return Hacer(posicion, std::move(quitar));
}

}  // namespace quimo::tsql
