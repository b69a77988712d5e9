#include <algorithm>
#include <span>

#include <sqlite3.h>

#include "data/embebido/definiciones.h"
#include "data/embebido/errores_motor.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

using tsql::CambiarTabla;
using tsql::EntreComillas;
using tsql::Indice;
using tsql::MismoNombre;
using tsql::RestriccionDef;
using tsql::Tabla;

bool Nombra(const std::vector<std::string>& nombres, const std::string& nombre) {
    return std::any_of(nombres.begin(), nombres.end(),
                       [&](const std::string& otro) { return MismoNombre(otro, nombre); });
}

/// A value must stand in it that nobody computes.
bool EsObligatoria(const tsql::ColumnaTabla& columna) {
    return !columna.admite_nulos && columna.calculada.empty();
}

}  // namespace

Hecho Definiciones::Cambiar(const CambiarTabla& cambiar) {
    using Clase = CambiarTabla::Clase;
    const auto hallada = sesion_.Catalogo().BuscarTabla(cambiar.tabla);
    if (!hallada || hallada->del_sistema) return CambioSinTabla(cambiar.tabla.Completo());
    switch (cambiar.clase) {
        case Clase::AgregarColumnas:
            return AgregarColumnas(*hallada, cambiar);
        case Clase::CambiarColumna:
            return CambiarColumna(*hallada, cambiar);
        case Clase::QuitarColumna:
            return QuitarColumnas(*hallada, cambiar);
        case Clase::QuitarRestriccion:
            return QuitarRestricciones(*hallada, cambiar);
        case Clase::AgregarRestricciones:
            break;
    }
    return AgregarRestricciones(*hallada, cambiar);
}

/// Adds them to a definition. Whether the engine's table must be made anew for them.
Resultado<bool> Definiciones::SumarRestricciones(Tabla& tabla, const CambiarTabla& cambiar) const {
    bool rehacer = false;
    for (const RestriccionDef& def : cambiar.restricciones) {
        QUIMO_TRY_VOID(AgregarRestriccion(tabla, def));
        rehacer = rehacer || def.clase == RestriccionDef::Clase::Foranea ||
                  def.clase == RestriccionDef::Clase::Comprobacion ||
                  def.clase == RestriccionDef::Clase::Primaria;
    }
    return rehacer;
}

Hecho Definiciones::AgregarRestricciones(const Tabla& vieja, const CambiarTabla& cambiar) {
    Tabla nueva = vieja;
    QUIMO_TRY(const bool rehacer, SumarRestricciones(nueva, cambiar));
    for (const RestriccionDef& def : cambiar.restricciones) {
        if (def.clase != RestriccionDef::Clase::Primaria) continue;
        for (const int cual : nueva.Primaria()->columnas) {
            if (nueva.columnas[static_cast<std::size_t>(cual)].admite_nulos) {
                return PrimariaConNulos(nueva.nombre);
            }
        }
    }
    if (rehacer) return Rehacer(vieja, nueva);
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    QUIMO_TRY_VOID(GuardarConIndices(vieja, nueva));
    return punto.Confirmar();
}

/// Makes the indexes that are new, and keeps the definition.
Hecho Definiciones::GuardarConIndices(const Tabla& vieja, const Tabla& nueva) {
    for (std::size_t i = vieja.indices.size(); i < nueva.indices.size(); ++i) {
        QUIMO_TRY_VOID(CrearIndiceEnMotor(nueva, nueva.indices[i]));
    }
    return sesion_.Catalogo().Guardar(nueva);
}

/// New columns take their default in the rows that there are when they cannot be NULL.
Hecho Definiciones::AgregarColumnas(const Tabla& vieja, const CambiarTabla& cambiar) {
    Tabla nueva = vieja;
    for (const tsql::ColumnaDef& def : cambiar.columnas) {
        QUIMO_TRY_VOID(AgregarColumna(nueva, def));
    }
    QUIMO_TRY(bool rehacer, SumarRestricciones(nueva, cambiar));
    QUIMO_TRY_VOID(Calcular(nueva));
    QUIMO_TRY(const bool con_filas, TieneFilas(vieja));
    const std::span nuevas = std::span(nueva.columnas).subspan(vieja.columnas.size());
    for (const auto& columna : nuevas) {
        rehacer = rehacer || columna.persistida;
        const bool sin_valor = columna.identidad || (con_filas && columna.defecto.empty());
        if (EsObligatoria(columna) && sin_valor)
            return ColumnaNuevaSinValor(columna.nombre, vieja.nombre);
    }
    if (rehacer) {
        // The rows are taken over as they are: none would get the new column's default.
        const auto obligatoria = std::find_if(nuevas.begin(), nuevas.end(), EsObligatoria);
        if (con_filas && obligatoria != nuevas.end())
            return ColumnaNuevaSinValor(obligatoria->nombre, vieja.nombre);
        return Rehacer(vieja, nueva);
    }
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    for (std::size_t i = vieja.columnas.size(); i < nueva.columnas.size(); ++i) {
        QUIMO_TRY(std::string sql, ColumnaSql(nueva, i));
        if (EsObligatoria(nueva.columnas[i])) {
            QUIMO_TRY(const std::string valor, ValorPorDefecto(nueva.columnas[i]));
            sql += " DEFAULT " + valor;
        }
        QUIMO_TRY_VOID(sesion_.Base().Correr("ALTER TABLE " + vieja.sql + " ADD COLUMN " + sql));
    }
    QUIMO_TRY_VOID(GuardarConIndices(vieja, nueva));
    return punto.Confirmar();
}

Resultado<bool> Definiciones::TieneFilas(const Tabla& tabla) {
    QUIMO_TRY(Preparada filas, sesion_.Base().Preparar("SELECT 1 FROM " + tabla.sql + " LIMIT 1"));
    const int codigo = filas.Paso();
    if (codigo != SQLITE_ROW && codigo != SQLITE_DONE) return sesion_.Base().Fallo(codigo);
    return codigo == SQLITE_ROW;
}

/// What a column's default is worth now, as the engine writes values.
Resultado<std::string> Definiciones::ValorPorDefecto(const tsql::ColumnaTabla& columna) {
    QUIMO_TRY(const tsql::ExprPtr expr, tsql::LeerExpresion(columna.defecto));
    QUIMO_TRY(const tsql::Plan plan, TraducirValor(*expr, Entorno()));
    QUIMO_TRY(Preparada valor, sesion_.Base().Preparar(
                                   "SELECT quote(q_cv((" + plan.sql + ")," +
                                   std::to_string(tsql::Empaquetar(plan.columnas[0].tipo)) + "," +
                                   std::to_string(tsql::Empaquetar(columna.tipo)) + ",0))"));
    int lugar = 0;
    for (const tsql::Ranura& ranura : plan.ranuras)
        valor.Ligar(++lugar, sesion_.Global(ranura.nombre));
    if (valor.Paso() != SQLITE_ROW) return sesion_.Base().Fallo(sesion_.Base().CodigoExtendido());
    return valor.Texto(0);
}

Hecho Definiciones::CambiarColumna(const Tabla& vieja, const CambiarTabla& cambiar) {
    const tsql::ColumnaDef& def = cambiar.columnas[0];
    const int cual = vieja.Columna(def.nombre);
    if (cual < 0) return CambioSinColumna("ALTER COLUMN", def.nombre, vieja.nombre);
    Tabla nueva = vieja;
    auto& columna = nueva.columnas[static_cast<std::size_t>(cual)];
    if (!columna.calculada.empty()) return CambioImpedido("ALTER TABLE ALTER COLUMN " + def.nombre);
    columna.tipo = def.tipo;
    columna.admite_nulos = def.admite_nulos.value_or(true);
    if (vieja.Primaria() != nullptr) {
        const auto& clave = vieja.Primaria()->columnas;
        if (std::find(clave.begin(), clave.end(), cual) != clave.end() && columna.admite_nulos) {
            return DependeDeColumna("object", vieja.Primaria()->nombre, def.nombre);
        }
    }
    return Rehacer(vieja, nueva);
}

Hecho Definiciones::QuitarColumnas(const Tabla& vieja, const CambiarTabla& cambiar) {
    Tabla nueva = vieja;
    for (const std::string& nombre : cambiar.nombres) {
        const int cual = nueva.Columna(nombre);
        if (cual < 0) return CambioSinColumna("DROP COLUMN", nombre, vieja.nombre);
        const auto& columna = nueva.columnas[static_cast<std::size_t>(cual)];
        if (!columna.defecto.empty())
            return DependeDeColumna("object", columna.nombre_defecto, nombre);
        for (Indice& indice : nueva.indices) {
            for (int& c : indice.columnas) {
                if (c == cual) return DependeDeColumna("index", indice.nombre, nombre);
                if (c > cual) --c;
            }
        }
        for (const tsql::Foranea& f : nueva.foraneas) {
            if (Nombra(f.columnas, nombre)) return DependeDeColumna("object", f.nombre, nombre);
        }
        for (const tsql::Comprobacion& c : nueva.comprobaciones) {
            if (MismoNombre(c.columna, nombre)) return DependeDeColumna("object", c.nombre, nombre);
        }
        nueva.columnas.erase(nueva.columnas.begin() + cual);
        if (nueva.columnas.empty()) return CambioImpedido("ALTER TABLE DROP COLUMN " + nombre);
    }
    return Rehacer(vieja, nueva);
}

Hecho Definiciones::QuitarRestricciones(const Tabla& vieja, const CambiarTabla& cambiar) {
    Tabla nueva = vieja;
    bool solo_defectos = true;
    for (const std::string& nombre : cambiar.nombres) {
        const auto es = [&](const auto& cosa) { return MismoNombre(cosa.nombre, nombre); };
        const auto quitadas =
            std::erase_if(nueva.indices,
                          [&](const Indice& i) {
                              return es(i) && (i.clase == Indice::Clase::Primaria ||
                                               i.clase == Indice::Clase::Unica);
                          }) +
            std::erase_if(nueva.foraneas, es) + std::erase_if(nueva.comprobaciones, es);
        bool defecto = false;
        for (tsql::ColumnaTabla& columna : nueva.columnas) {
            if (columna.nombre_defecto.empty() || !MismoNombre(columna.nombre_defecto, nombre))
                continue;
            columna.defecto.clear();
            columna.nombre_defecto.clear();
            defecto = true;
        }
        if (quitadas == 0 && !defecto) return RestriccionDesconocida(nombre);
        solo_defectos = solo_defectos && quitadas == 0;
    }
    if (!solo_defectos) return Rehacer(vieja, nueva);
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    QUIMO_TRY_VOID(sesion_.Catalogo().Guardar(nueva));
    return punto.Confirmar();
}

}  // namespace quimo::data::embebido
