#include <algorithm>

#include <sqlite3.h>

#include "data/embebido/definiciones.h"
#include "data/embebido/errores_motor.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

using tsql::EntreComillas;
using tsql::Indice;
using tsql::Tabla;

constexpr std::size_t kNulasMaximas = 4;

std::string Afinidad(const tsql::Tipo& tipo) {
    if (tipo.EsAncho() || tipo.EsBinario()) return "BLOB";
    if (tipo.EsReal()) return "REAL";
    if (tipo.EsExacto() || tipo.EsFecha()) return "INTEGER";
    return "TEXT";
}

std::string Lista(const std::vector<std::string>& nombres) {
    std::string lista;
    for (const std::string& nombre : nombres)
        lista += (lista.empty() ? "" : ",") + EntreComillas(nombre);
    return lista;
}

std::string ColumnaDeIndice(const Tabla& tabla, int columna) {
    const auto& c = tabla.columnas[static_cast<std::size_t>(columna)];
    return EntreComillas(c.nombre) + (c.tipo.EsTexto() ? " COLLATE QUIMO" : "");
}

std::string NombreInterno(const Tabla& tabla, const Indice& indice, const std::string& cola) {
    return (tabla.temporal ? "temp." : "") +
           EntreComillas(tabla.nombre + "$" + indice.nombre + cola);
}

bool EsFechaDeOcho(const Tabla& tabla, const Indice& indice) {
    const tsql::Tipo& tipo = tabla.columnas[static_cast<std::size_t>(indice.columnas[0])].tipo;
    return tipo.EsTexto() && tipo.longitud == 8;
}

/// Statements that make one index. The server takes NULLs in a unique index for equal: for every
/// choice of columns that are NULL the others are unique among themselves.
std::vector<std::string> SqlDeIndice(const Tabla& tabla, const Indice& indice) {
    const bool unico = indice.clase != Indice::Clase::Indice;
    const std::string sobre = " ON " + EntreComillas(tabla.nombre) + "(";
    std::string columnas;
    std::vector<int> nulas;
    for (const int c : indice.columnas) {
        columnas += (columnas.empty() ? "" : ",") + ColumnaDeIndice(tabla, c);
        if (tabla.columnas[static_cast<std::size_t>(c)].admite_nulos) nulas.push_back(c);
    }
    std::vector<std::string> sentencias = {std::string("CREATE ") + (unico ? "UNIQUE " : "") +
                                           "INDEX " + NombreInterno(tabla, indice, "") + sobre +
                                           columnas + ")"};
    if (EsFechaDeOcho(tabla, indice)) {
        const auto& c = tabla.columnas[static_cast<std::size_t>(indice.columnas[0])];
        sentencias.push_back("CREATE INDEX " + NombreInterno(tabla, indice, "$fecha") + sobre +
                             "q_fecha8(" + EntreComillas(c.nombre) + "))");
    }
    if (!unico || nulas.size() > kNulasMaximas) return sentencias;
    for (std::size_t cuales = 1; cuales < (std::size_t{1} << nulas.size()); ++cuales) {
        std::string donde;
        std::string resto;
        for (const int c : indice.columnas) {
            const auto lugar = std::find(nulas.begin(), nulas.end(), c) - nulas.begin();
            const bool es_nula = lugar < static_cast<std::ptrdiff_t>(nulas.size()) &&
                                 (cuales >> static_cast<std::size_t>(lugar) & 1U) != 0;
            const std::string nombre =
                EntreComillas(tabla.columnas[static_cast<std::size_t>(c)].nombre);
            if (es_nula) {
                donde += (donde.empty() ? "" : " AND ") + nombre + " IS NULL";
            } else {
                resto += (resto.empty() ? "" : ",") + ColumnaDeIndice(tabla, c);
            }
        }
        if (resto.empty()) resto = "(" + donde + ")";
        sentencias.push_back("CREATE UNIQUE INDEX " +
                             NombreInterno(tabla, indice, "$nulos" + std::to_string(cuales)) +
                             sobre + resto + ") WHERE " + donde);
    }
    return sentencias;
}

}  // namespace

Resultado<std::string> Definiciones::ColumnaSql(const Tabla& tabla, std::size_t cual) const {
    const tsql::ColumnaTabla& columna = tabla.columnas[cual];
    std::string sql = EntreComillas(columna.nombre) + " " + Afinidad(columna.tipo);
    if (!columna.calculada.empty()) {
        Tabla sin_ella = tabla;
        sin_ella.columnas[cual].tipo = {};
        QUIMO_TRY(const tsql::ExpresionDeTabla expr,
                  TraducirDeTabla(columna.calculada, sin_ella, Entorno()));
        return sql + " GENERATED ALWAYS AS (" + expr.sql + ")" +
               (columna.persistida ? " STORED" : " VIRTUAL");
    }
    if (tabla.ColumnaFila() == static_cast<int>(cual)) return sql + " PRIMARY KEY";
    return columna.admite_nulos ? sql : sql + " NOT NULL";
}

Resultado<std::string> Definiciones::SqlDe(const Tabla& tabla, const std::string& nombre) const {
    std::string cuerpo;
    for (std::size_t i = 0; i < tabla.columnas.size(); ++i) {
        QUIMO_TRY(const std::string columna, ColumnaSql(tabla, i));
        cuerpo += (cuerpo.empty() ? "" : ",") + columna;
    }
    for (const tsql::Foranea& f : tabla.foraneas) {
        cuerpo += ",CONSTRAINT " + EntreComillas(f.nombre) + " FOREIGN KEY(" + Lista(f.columnas) +
                  ") REFERENCES " + EntreComillas(f.tabla) + "(" + Lista(f.columnas_referidas) +
                  ")";
        if (!f.al_borrar.empty()) cuerpo += " ON DELETE " + f.al_borrar;
        if (!f.al_cambiar.empty()) cuerpo += " ON UPDATE " + f.al_cambiar;
    }
    for (const tsql::Comprobacion& c : tabla.comprobaciones) {
        QUIMO_TRY(const tsql::ExpresionDeTabla expr, TraducirDeTabla(c.texto, tabla, Entorno()));
        cuerpo += ",CONSTRAINT " + EntreComillas(c.nombre) + " CHECK(" + expr.sql + ")";
    }
    return "CREATE TABLE " + nombre + "(" + cuerpo + ")";
}

Hecho Definiciones::CrearEnMotor(const Tabla& tabla, const std::string& nombre) {
    QUIMO_TRY(const std::string sql, SqlDe(tabla, nombre));
    return sesion_.Base().Correr(sql);
}

Hecho Definiciones::CrearIndices(const Tabla& tabla) {
    for (const Indice& indice : tabla.indices) {
        if (indice.clase == Indice::Clase::Primaria && tabla.ColumnaFila() >= 0) continue;
        QUIMO_TRY_VOID(CrearIndiceEnMotor(tabla, indice));
    }
    return {};
}

Hecho Definiciones::CrearIndiceEnMotor(const Tabla& tabla, const Indice& indice) {
    for (const std::string& sql : SqlDeIndice(tabla, indice)) {
        const auto hecho = sesion_.Base().Correr(sql);
        if (hecho) continue;
        const bool repetida = (sesion_.Base().CodigoExtendido() & 0xFF) == SQLITE_CONSTRAINT;
        if (!repetida) return hecho.error();
        return IndiceConRepetidos("dbo." + tabla.nombre, indice.nombre);
    }
    return {};
}

Hecho Definiciones::QuitarIndiceDelMotor(const Tabla& tabla, const Indice& indice) {
    for (const std::string& sql : SqlDeIndice(tabla, indice)) {
        const auto desde = sql.find("INDEX ") + 6;
        const std::string nombre = sql.substr(desde, sql.find(" ON ", desde) - desde);
        QUIMO_TRY_VOID(sesion_.Base().Correr("DROP INDEX IF EXISTS " + nombre));
    }
    return {};
}

/// The engine wants the key of a reference to texts unique byte by byte too.
Hecho Definiciones::AsegurarClaves(const Tabla& tabla) {
    for (const tsql::Foranea& f : tabla.foraneas) {
        tsql::NombreObjeto nombre;
        nombre.objeto = f.tabla;
        const auto hallada = sesion_.Catalogo().BuscarTabla(nombre);
        const Tabla& madre = hallada ? *hallada : tabla;
        const bool textos =
            std::any_of(f.columnas_referidas.begin(), f.columnas_referidas.end(),
                        [&](const std::string& columna) {
                            return madre.columnas[static_cast<std::size_t>(madre.Columna(columna))]
                                .tipo.EsTexto();
                        });
        if (!textos) continue;
        const std::string interno =
            EntreComillas(madre.nombre + "$bytes$" + f.columnas_referidas[0]);
        QUIMO_TRY_VOID(sesion_.Base().Correr("CREATE UNIQUE INDEX IF NOT EXISTS " + interno +
                                             " ON " + EntreComillas(madre.nombre) + "(" +
                                             Lista(f.columnas_referidas) + ")"));
    }
    return {};
}

/// Runs work that takes tables away and puts them back without their references being watched.
/// Only outside of a transaction can they be left unwatched.
Hecho Definiciones::SinReferencias(const std::function<Hecho()>& trabajo) {
    if (sesion_.Base().EnTransaccion()) return CambioEnTransaccion();
    QUIMO_TRY_VOID(sesion_.Base().Correr("PRAGMA foreign_keys=OFF;PRAGMA legacy_alter_table=ON"));
    auto hecho = trabajo();
    const auto puesto =
        sesion_.Base().Correr("PRAGMA legacy_alter_table=OFF;PRAGMA foreign_keys=ON");
    if (!hecho) return hecho;
    return puesto;
}

Hecho Definiciones::Rehacer(const Tabla& vieja, const Tabla& nueva) {
    return SinReferencias([&]() -> Hecho {
        QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
        const std::string interina = EntreComillas(vieja.nombre + "$nueva");
        QUIMO_TRY_VOID(CrearEnMotor(nueva, interina));
        std::string columnas;
        std::string valores;
        for (const tsql::ColumnaTabla& columna : nueva.columnas) {
            const int antes = vieja.Columna(columna.nombre);
            if (antes < 0 || !columna.calculada.empty()) continue;
            const tsql::Tipo& tipo = vieja.columnas[static_cast<std::size_t>(antes)].tipo;
            std::string valor =
                EntreComillas(vieja.columnas[static_cast<std::size_t>(antes)].nombre);
            if (!(tipo == columna.tipo)) {
                constexpr int kAColumna = 1 << 16;
                valor = "q_cv(" + valor + "," + std::to_string(tsql::Empaquetar(tipo)) + "," +
                        std::to_string(tsql::Empaquetar(columna.tipo)) + "," +
                        std::to_string(kAColumna) + ")";
            }
            columnas += (columnas.empty() ? "" : ",") + EntreComillas(columna.nombre);
            valores += (valores.empty() ? "" : ",") + valor;
        }
        const auto copiada = sesion_.Base().Correr("INSERT INTO " + interina + "(" + columnas +
                                                   ") SELECT " + valores + " FROM " + vieja.sql);
        if (!copiada) {
            if (!sesion_.Contexto().error) return copiada;
            const ErrorSql error = *sesion_.Contexto().error;
            sesion_.Contexto().error.reset();
            return error;
        }
        QUIMO_TRY_VOID(sesion_.Base().Correr("DROP TABLE " + vieja.sql + ";ALTER TABLE " +
                                             interina + " RENAME TO " +
                                             EntreComillas(nueva.nombre)));
        QUIMO_TRY_VOID(CrearIndices(nueva));
        QUIMO_TRY_VOID(AsegurarClaves(nueva));
        QUIMO_TRY(Preparada rotas,
                  sesion_.Base().Preparar("PRAGMA foreign_key_check(" + nueva.sql + ")"));
        const int codigo = rotas.Paso();
        if (codigo != SQLITE_ROW && codigo != SQLITE_DONE) return sesion_.Base().Fallo(codigo);
        if (codigo == SQLITE_ROW) return CambioRompeReferencias(nueva.nombre);
        rotas.Reiniciar();
        QUIMO_TRY_VOID(sesion_.Catalogo().Guardar(nueva));
        return punto.Confirmar();
    });
}

}  // namespace quimo::data::embebido
