#include "data/embebido/errores_restriccion.h"

#include <algorithm>

#include <sqlite3.h>

#include "data/embebido/errores_motor.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

using tsql::EntreComillas;
using tsql::Foranea;
using tsql::Indice;
using tsql::Tabla;

std::string Tras(const std::string& mensaje, const std::string& marca) {
    const auto donde = mensaje.find(marca);
    return donde == std::string::npos ? std::string() : mensaje.substr(donde + marca.size());
}

/// "T.a, T.b" without the table.
std::vector<std::string> Columnas(const std::string& lista) {
    std::vector<std::string> columnas;
    for (std::size_t i = 0; i < lista.size();) {
        const auto fin = std::min(lista.find(", ", i), lista.size());
        const std::string completo = lista.substr(i, fin - i);
        const auto punto = completo.find('.');
        columnas.push_back(punto == std::string::npos ? completo : completo.substr(punto + 1));
        i = fin + 2;
    }
    return columnas;
}

/// Whether an index is over these columns. One that holds NULLs is told by those of its columns
/// that hold none.
bool EsDe(const Indice& indice, const Tabla& tabla, const std::vector<std::string>& columnas) {
    if (indice.clase == Indice::Clase::Indice) return false;
    std::size_t halladas = 0;
    for (const int c : indice.columnas) {
        const auto& columna = tabla.columnas[static_cast<std::size_t>(c)];
        const bool nombrada = std::any_of(
            columnas.begin(), columnas.end(),
            [&](const std::string& nombre) { return tsql::MismoNombre(columna.nombre, nombre); });
        if (nombrada) ++halladas;
        if (!nombrada && !columna.admite_nulos) return false;
    }
    return halladas == columnas.size();
}

}  // namespace

ErrorSql ErrorDeRestriccion::Explicar(int codigo, const std::function<int()>& repetir) {
    const std::string mensaje = sesion_.Base().Mensaje();
    if (codigo == SQLITE_CONSTRAINT_NOTNULL) return SinNulos(mensaje);
    if (codigo == SQLITE_CONSTRAINT_CHECK) return Comprobacion(mensaje);
    if (codigo == SQLITE_CONSTRAINT_FOREIGNKEY) return Referencia(repetir);
    if ((codigo & 0xFF) == SQLITE_CONSTRAINT) return Repetida(mensaje);
    return sesion_.Base().Fallo(codigo);
}

ErrorSql ErrorDeRestriccion::SinNulos(const std::string& mensaje) const {
    const auto columnas = Columnas(Tras(mensaje, "failed: "));
    return tsql::ColumnaSinNulos(columnas.empty() ? "" : columnas[0],
                                 sesion_.NombreBase() + ".dbo." + tabla_->nombre, verbo_);
}

ErrorSql ErrorDeRestriccion::Repetida(const std::string& mensaje) const {
    const std::string lista = Tras(mensaje, "failed: ");
    const std::string interno = Tras(lista, "index '");
    const auto columnas = Columnas(lista);
    const Indice* cual = nullptr;
    for (const Indice& indice : tabla_->indices) {
        const std::string prefijo = tabla_->nombre + "$" + indice.nombre;
        const bool suyo = interno.empty() ? EsDe(indice, *tabla_, columnas)
                                          : interno.starts_with(prefijo + "$") ||
                                                interno.starts_with(prefijo + "'");
        if (suyo && (cual == nullptr || indice.columnas.size() < cual->columnas.size()))
            cual = &indice;
    }
    const std::string objeto = "dbo." + tabla_->nombre;
    if (cual == nullptr) return ClaveRepetida("UNIQUE KEY", lista, objeto);
    if (cual->clase == Indice::Clase::IndiceUnico) {
        return IndiceUnicoRepetido(objeto, cual->nombre);
    }
    const bool primaria = cual->clase == Indice::Clase::Primaria;
    return ClaveRepetida(primaria ? "PRIMARY KEY" : "UNIQUE KEY", cual->nombre, objeto);
}

ErrorSql ErrorDeRestriccion::Conflicto(const std::string& clase, const std::string& nombre,
                                       const std::string& tabla,
                                       const std::vector<std::string>& columnas) const {
    // The wording with single quotes: the table's name is shown to the user as it stands here.
    const bool de_columna = columnas.size() == 1 && !columnas[0].empty();
    std::string mensaje = verbo_ + " statement conflicted with " +
                          (de_columna ? "COLUMN " : "TABLE ") + clase + " constraint '" + nombre +
                          "'. The conflict occurred in database '" + sesion_.NombreBase() +
                          "', table '" + tabla + "'";
    if (de_columna) mensaje += ", column '" + columnas[0] + "'";
    return RestriccionIncumplida(mensaje + ".");
}

ErrorSql ErrorDeRestriccion::Comprobacion(const std::string& mensaje) const {
    const std::string nombre = Tras(mensaje, "failed: ");
    std::vector<std::string> columnas;
    for (const tsql::Comprobacion& c : tabla_->comprobaciones) {
        if (tsql::MismoNombre(c.nombre, nombre)) columnas = {c.columna};
    }
    return Conflicto("CHECK", nombre, tabla_->nombre, columnas);
}

/// Whether a row of the child names a row that the parent has not.
bool ErrorDeRestriccion::Viola(const Tabla& hija, const Foranea& foranea, const Tabla& madre) {
    std::string sql = "SELECT 1 FROM " + hija.sql + " AS h WHERE NOT EXISTS (SELECT 1 FROM " +
                      madre.sql + " AS m WHERE ";
    std::string completas;
    for (std::size_t i = 0; i < foranea.columnas.size(); ++i) {
        const std::string columna = "h." + EntreComillas(foranea.columnas[i]);
        sql += (i > 0 ? " AND m." : "m.") + EntreComillas(foranea.columnas_referidas[i]) + "=" +
               columna;
        completas += " AND " + columna + " IS NOT NULL";
    }
    auto consulta = sesion_.Base().Preparar(sql + ")" + completas + " LIMIT 1");
    return consulta && consulta->Paso() == SQLITE_ROW;
}

ErrorSql ErrorDeRestriccion::Referencia(const std::function<int()>& repetir) {
    // The write is done again with references left for later, to see which of them is broken then.
    ErrorSql hallado = Conflicto("REFERENCE", "", tabla_->nombre, {});
    {
        const auto punto = PuntoDeSentencia::Abrir(sesion_);
        if (!punto || !sesion_.Base().Correr("PRAGMA defer_foreign_keys=ON")) return hallado;
        Examinar(repetir(), hallado);
    }
    // What stands no longer in a transaction has lost the setting with it.
    static_cast<void>(sesion_.Base().Correr("PRAGMA defer_foreign_keys=OFF"));
    return hallado;
}

/// Looks for the reference that is broken after the write.
void ErrorDeRestriccion::Examinar(int codigo, ErrorSql& hallado) {
    bool encontrada = false;
    if (codigo == SQLITE_DONE || codigo == SQLITE_ROW) {
        const auto& tablas = sesion_.Catalogo().Tablas();
        for (const Foranea& foranea : tabla_->foraneas) {
            const auto madre = tablas.find(tsql::AMinusculas(foranea.tabla));
            if (encontrada || verbo_ == "DELETE" || madre == tablas.end()) continue;
            if (!Viola(*tabla_, foranea, *madre->second)) continue;
            encontrada = true;
            hallado = Conflicto("FOREIGN KEY", foranea.nombre, madre->second->nombre,
                                foranea.columnas_referidas);
            if (madre->second == tabla_)
                hallado = Conflicto("FOREIGN KEY SAME TABLE", foranea.nombre, tabla_->nombre,
                                    foranea.columnas_referidas);
        }
        for (const auto& [nombre, hija] : tablas) {
            for (const Foranea& foranea : hija->foraneas) {
                if (encontrada || !tsql::MismoNombre(foranea.tabla, tabla_->nombre)) continue;
                if (!Viola(*hija, foranea, *tabla_)) continue;
                encontrada = true;
                hallado = Conflicto(hija == tabla_ ? "SAME TABLE REFERENCE" : "REFERENCE",
                                    foranea.nombre, hija->nombre, foranea.columnas);
            }
        }
    }
}

}  // namespace quimo::data::embebido
