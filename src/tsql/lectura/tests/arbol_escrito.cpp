#include "arbol_escrito.h"

#include "tsql/valores/decimales.h"

namespace quimo::tsql {

namespace {

std::string Lista(const std::vector<std::string>& nombres) {
    std::string texto;
    for (const std::string& nombre : nombres)
        texto += (texto.empty() ? "" : ",") + nombre;
    return texto;
}

std::string Lista(const std::vector<ExprPtr>& exprs, std::size_t desde = 0) {
    std::string texto;
    for (std::size_t i = desde; i < exprs.size(); ++i)
        texto += (i > desde ? "," : "") + (exprs[i] ? Escribir(*exprs[i]) : "DEFAULT");
    return texto;
}

std::string Orden(const std::vector<OrdenItem>& orden) {
    std::string texto;
    for (const OrdenItem& item : orden)
        texto +=
            (texto.empty() ? "" : ",") + Escribir(*item.expr) + (item.descendente ? " DESC" : "");
    return texto;
}

std::string EscribirLiteral(const Literal& literal) {
    if (literal.tipo.EsTexto())
        return (literal.tipo.EsNacional() ? "N'" : "'") + literal.valor.texto + "'";
    if (literal.tipo.EsReal()) return std::to_string(literal.valor.real);
    if (literal.tipo.EsBinario()) return "0x" + std::to_string(literal.valor.texto.size());
    return (literal.tipo.EsMoneda() ? "$" : "") +
           TextoDecimal(literal.valor.exacto, literal.tipo.escala);
}

std::string EscribirCaso(const Expr& e) {
    std::string texto = "CASE";
    std::size_t i = 0;
    if (e.simple) texto += " " + Escribir(*e.hijos[i++]);
    const std::size_t fin = e.hijos.size() - (e.con_sino ? 1 : 0);
    for (; i < fin; i += 2)
        texto += " WHEN " + Escribir(*e.hijos[i]) + " THEN " + Escribir(*e.hijos[i + 1]);
    if (e.con_sino) texto += " ELSE " + Escribir(*e.hijos.back());
    return texto + " END";
}

std::string EscribirFuncion(const Expr& e) {
    std::string texto = e.partes.empty() ? e.texto : Lista(e.partes);
    texto += std::string("(") + (e.distinto ? "DISTINCT " : "") + Lista(e.hijos) + ")";
    if (e.ventana)
        texto += " OVER(" + Lista(e.ventana->particion) + ";" + Orden(e.ventana->orden) + ")";
    return texto;
}

std::string Fuentes(const std::vector<FuentePtr>& fuentes);

std::string EscribirFuente(const Fuente& f) {
    const std::string alias = f.alias.empty() ? "" : " AS " + f.alias;
    if (f.clase == Fuente::Clase::Tabla) return f.nombre.Completo() + alias;
    if (f.clase == Fuente::Clase::Derivada) {
        return "(" + Escribir(*f.consulta) + ")" + alias +
               (f.columnas.empty() ? "" : "(" + Lista(f.columnas) + ")");
    }
    constexpr const char* kVerbos[] = {",",      " JOIN ",  " LEFT ",   " RIGHT ",
                                       " FULL ", " CROSS ", " DELANTE "};
    return "[" + EscribirFuente(*f.izquierda) + kVerbos[static_cast<int>(f.join)] +
           EscribirFuente(*f.derecha) + (f.condicion ? " ON " + Escribir(*f.condicion) : "") + "]";
}

std::string Fuentes(const std::vector<FuentePtr>& fuentes) {
    std::string texto;
    for (const FuentePtr& fuente : fuentes)
        texto += (texto.empty() ? "" : ",") + EscribirFuente(*fuente);
    return texto;
}

std::string Seguido(const char* palabra, const ExprPtr& expr) {
    return expr ? palabra + Escribir(*expr) : "";
}

std::string EscribirSeleccion(const Seleccion& s) {
    std::string texto = s.distinto ? "SELECT DISTINCT " : "SELECT ";
    if (s.tope) texto += "TOP " + Escribir(*s.tope) + (s.tope_porciento ? "% " : " ");
    std::string items;
    for (const ItemSeleccion& item : s.items) {
        items += (items.empty() ? "" : ",") + (item.variable.empty() ? "" : item.variable + "=") +
                 Escribir(*item.expr) + (item.alias.empty() ? "" : " AS " + item.alias);
    }
    texto += items + (s.en ? " INTO " + s.en->Completo() : "");
    if (!s.fuentes.empty()) texto += " FROM " + Fuentes(s.fuentes);
    texto += Seguido(" WHERE ", s.donde);
    if (!s.grupos.empty()) texto += " GROUP " + Lista(s.grupos);
    return texto + Seguido(" HAVING ", s.teniendo);
}

std::string EscribirColumna(const ColumnaDef& c) {
    if (!c.calculada.empty()) return c.nombre + " AS " + c.calculada + (c.persistida ? " P" : "");
    std::string texto = c.nombre + " " + Escribir(c.tipo);
    if (c.admite_nulos) texto += *c.admite_nulos ? " NULL" : " NOT NULL";
    if (c.identidad)
        texto += " ID(" + std::to_string(c.semilla) + "," + std::to_string(c.incremento) + ")";
    return texto;
}

std::string EscribirRestriccion(const RestriccionDef& r) {
    constexpr const char* kClases[] = {"PK", "UNIQUE", "FK", "CHECK", "DEFAULT"};
    std::string texto = std::string(kClases[static_cast<int>(r.clase)]) + " " + r.nombre + "(" +
                        Lista(r.columnas) + ")" + r.texto;
    if (r.clase == RestriccionDef::Clase::Foranea) {
        texto += "->" + r.referencia.tabla.Completo() + "(" + Lista(r.referencia.columnas) + ")" +
                 r.referencia.al_borrar + "/" + r.referencia.al_cambiar;
    }
    return texto;
}

std::string Definiciones(const std::vector<ColumnaDef>& columnas,
                         const std::vector<RestriccionDef>& restricciones) {
    std::string texto;
    for (const ColumnaDef& columna : columnas)
        texto += (texto.empty() ? "" : ", ") + EscribirColumna(columna);
    for (const RestriccionDef& restriccion : restricciones)
        texto += (texto.empty() ? "" : ", ") + EscribirRestriccion(restriccion);
    return texto;
}

/// One for each kind of statement: a new kind does not compile until it is written here.
struct Escritor {
    std::string Cuerpo(const SentenciaPtr& sentencia) const {
        return sentencia ? Escribir(*sentencia) : "-";
    }
    std::string Cuerpo(const std::vector<SentenciaPtr>& sentencias) const {
        std::string texto;
        for (const SentenciaPtr& sentencia : sentencias)
            texto += (texto.empty() ? "" : " ; ") + Escribir(*sentencia);
        return "{" + texto + "}";
    }

    std::string operator()(const Seleccionar& s) const { return Escribir(*s.consulta); }
    std::string operator()(const Insertar& s) const {
        std::string texto = "INSERT " + s.tabla.Completo() + "(" + Lista(s.columnas) + ")";
        if (s.por_defecto) texto += " DEFAULT VALUES";
        for (const auto& fila : s.filas)
            texto += " (" + Lista(fila) + ")";
        if (s.consulta) texto += " " + Escribir(*s.consulta);
        return texto + (s.ejecutar ? " " + (*this)(*s.ejecutar) : "");
    }
    std::string operator()(const Actualizar& s) const {
        std::string texto = "UPDATE " + s.tabla.Completo() + Seguido(" TOP ", s.tope) + " SET";
        for (const Asignacion& a : s.asignaciones)
            texto += " " + a.columna + "=" + (a.expr ? Escribir(*a.expr) : "DEFAULT");
        return texto + (s.fuentes.empty() ? "" : " FROM " + Fuentes(s.fuentes)) +
               Seguido(" WHERE ", s.donde);
    }
    std::string operator()(const Borrar& s) const {
        return "DELETE " + s.tabla.Completo() + Seguido(" TOP ", s.tope) +
               (s.fuentes.empty() ? "" : " FROM " + Fuentes(s.fuentes)) +
               Seguido(" WHERE ", s.donde);
    }
    std::string operator()(const Truncar& s) const { return "TRUNCATE " + s.tabla.Completo(); }
    std::string operator()(const CrearTabla& s) const {
        return "TABLE " + s.tabla.Completo() + "(" + Definiciones(s.columnas, s.restricciones) +
               ")";
    }
    std::string operator()(const CambiarTabla& s) const {
        constexpr const char* kClases[] = {"ADD COLUMN", "ADD CONSTRAINT", "DROP COLUMN",
                                           "DROP CONSTRAINT", "ALTER COLUMN"};
        return std::string(kClases[static_cast<int>(s.clase)]) + " " + s.tabla.Completo() + " " +
               Definiciones(s.columnas, s.restricciones) + Lista(s.nombres);
    }
    std::string operator()(const CrearIndice& s) const {
        return std::string(s.unico ? "UNIQUE " : "") + "INDEX " + s.nombre + " ON " +
               s.tabla.Completo() + "(" + Lista(s.columnas) + ")";
    }
    std::string operator()(const CrearModulo& s) const {
        constexpr const char* kClases[] = {"VIEW", "PROCEDURE", "FUNCTION"};
        std::string texto = std::string(s.cambiar ? "ALTER " : "CREATE ") +
                            kClases[static_cast<int>(s.clase)] + " " + s.nombre.Completo() + "(" +
                            Lista(s.columnas);
        for (const ParametroRutina& p : s.parametros) {
            texto += p.nombre + " " + Escribir(p.tipo) + Seguido("=", p.defecto) +
                     (p.salida ? " OUT" : "") + ";";
        }
        return texto + ") " + (s.consulta ? Escribir(*s.consulta) : Cuerpo(s.cuerpo));
    }
    std::string operator()(const Quitar& s) const {
        std::string texto = "DROP " + s.clase + (s.si_existe ? " IF EXISTS" : "");
        for (const NombreObjeto& nombre : s.nombres)
            texto += " " + nombre.Completo();
        return texto;
    }
    std::string operator()(const Ejecutar& s) const {
        std::string texto = "EXEC " + (s.variable.empty() ? "" : s.variable + "=") +
                            s.nombre.Completo() + Seguido("text ", s.texto);
        for (const Argumento& a : s.argumentos) {
            texto += " " + (a.nombre.empty() ? "" : a.nombre + "=") +
                     (a.valor ? Escribir(*a.valor) : "DEFAULT") + (a.salida ? " OUT" : "");
        }
        return texto;
    }
    std::string operator()(const Declarar& s) const {
        std::string texto = "DECLARE";
        for (const Variable& v : s.variables)
            texto += " " + v.nombre + " " + Escribir(v.tipo) + Seguido("=", v.inicial);
        return texto + (s.tabla ? " " + (*this)(*s.tabla) : "");
    }
    std::string operator()(const Asignar& s) const {
        return "SET " + s.variable + "=" + Escribir(*s.expr);
    }
    std::string operator()(const Opcion& s) const {
        return "SET " + s.nombre + " " + s.valor + s.tabla.Completo();
    }
    std::string operator()(const Si& s) const {
        return "IF " + Escribir(*s.condicion) + " " + Cuerpo(s.entonces) + " ELSE " +
               Cuerpo(s.sino);
    }
    std::string operator()(const Mientras& s) const {
        return "WHILE " + Escribir(*s.condicion) + " " + Cuerpo(s.cuerpo);
    }
    std::string operator()(const Bloque& s) const { return Cuerpo(s.sentencias); }
    std::string operator()(const Salto& s) const { return s.continuar ? "CONTINUE" : "BREAK"; }
    std::string operator()(const Regresar& s) const { return "RETURN" + Seguido(" ", s.expr); }
    std::string operator()(const Imprimir& s) const { return "PRINT " + Escribir(*s.expr); }
    std::string operator()(const LanzarError& s) const {
        return "RAISERROR " + Lista(s.argumentos);
    }
    std::string operator()(const Transaccion& s) const {
        constexpr const char* kClases[] = {"BEGIN", "COMMIT", "ROLLBACK", "SAVE"};
        return std::string(kClases[static_cast<int>(s.clase)]) + " TRAN " + s.nombre;
    }
    std::string operator()(const RevisarBase& s) const {
        return std::string("CHECKDB") + (s.en_filas ? " ROWS" : "") + (s.solo_fallas ? " BAD" : "");
    }
};

}  // namespace

std::string Escribir(const Tipo& tipo) {
    std::string texto(NombreClase(tipo.clase));
    if (tipo.clase == Clase::Numeric)
        return texto + "(" + std::to_string(tipo.precision) + "," + std::to_string(tipo.escala) +
               ")";
    if (tipo.longitud != 0) texto += "(" + std::to_string(tipo.longitud) + ")";
    return texto;
}

std::string Escribir(const Expr& e) {
    const std::string no = e.negado ? " NOT" : "";
    switch (e.clase) {
        case ClaseExpr::Literal:
            return e.literal ? EscribirLiteral(*e.literal) : "#" + std::to_string(e.indice);
        case ClaseExpr::Nulo:
            return "NULL";
        case ClaseExpr::Columna: {
            std::string texto;
            for (const std::string& parte : e.partes)
                texto += (texto.empty() ? "" : ".") + parte;
            return texto;
        }
        case ClaseExpr::Asterisco:
            return e.partes.empty() ? "*" : Lista(e.partes) + ".*";
        case ClaseExpr::Variable:
        case ClaseExpr::Global:
            return e.texto;
        case ClaseExpr::Parametro:
            return "?" + std::to_string(e.indice);
        case ClaseExpr::Unaria:
            return "(" + e.texto + " " + Escribir(*e.hijos[0]) + ")";
        case ClaseExpr::Binaria:
            return "(" + Escribir(*e.hijos[0]) + " " + e.texto + " " + Escribir(*e.hijos[1]) + ")";
        case ClaseExpr::Funcion:
            return EscribirFuncion(e);
        case ClaseExpr::Caso:
            return EscribirCaso(e);
        case ClaseExpr::Conversion:
            return "CAST(" + Lista(e.hijos) + " AS " + Escribir(e.tipo) + ")";
        case ClaseExpr::Entre:
            return "(" + Escribir(*e.hijos[0]) + no + " BETWEEN " + Lista(e.hijos, 1) + ")";
        case ClaseExpr::EnLista:
            return "(" + Escribir(*e.hijos[0]) + no + " IN " + Lista(e.hijos, 1) + ")";
        case ClaseExpr::EnConsulta:
            return "(" + Escribir(*e.hijos[0]) + no + " IN " + Escribir(*e.consulta) + ")";
        case ClaseExpr::Existe:
            return "EXISTS(" + Escribir(*e.consulta) + ")";
        case ClaseExpr::EsNulo:
            return "(" + Escribir(*e.hijos[0]) + " IS" + no + " NULL)";
        case ClaseExpr::Como:
            return "(" + Escribir(*e.hijos[0]) + no + " LIKE " + Lista(e.hijos, 1) + ")";
        case ClaseExpr::Subconsulta:
            return "(" + Escribir(*e.consulta) + ")";
        case ClaseExpr::Cuantificada:
            return "(" + Escribir(*e.hijos[0]) + " " + e.texto + (e.distinto ? " ALL " : " ANY ") +
                   Escribir(*e.consulta) + ")";
    }
    return "?";
}

std::string Escribir(const Consulta& c) {
    std::string texto;
    for (const ExpresionComun& comun : c.comunes) {
        texto += "WITH " + comun.nombre + "(" + Lista(comun.columnas) + "){" +
                 Escribir(*comun.consulta) + "} ";
    }
    if (c.combinacion == Combinacion::Simple) {
        texto += EscribirSeleccion(*c.simple);
    } else {
        constexpr const char* kVerbos[] = {"", "UNION", "UNION ALL", "EXCEPT", "INTERSECT"};
        texto += "<" + Escribir(*c.izquierda) + " " + kVerbos[static_cast<int>(c.combinacion)] +
                 " " + Escribir(*c.derecha) + ">";
    }
    return texto + (c.orden.empty() ? "" : " ORDER " + Orden(c.orden));
}

std::string Escribir(const Sentencia& sentencia) { return std::visit(Escritor(), sentencia.que); }

std::string ArbolDe(const std::string& texto, Constantes constantes) {
    const auto lote = LeerLote(texto, constantes);
    if (!lote) return "error " + std::to_string(lote.error().nativo) + " " + lote.error().mensaje;
    std::string arbol;
    for (const SentenciaPtr& sentencia : lote->sentencias)
        arbol += (arbol.empty() ? "" : " ; ") + Escribir(*sentencia);
    return arbol;
}

}  // namespace quimo::tsql
