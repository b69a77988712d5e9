#include <algorithm>

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

}  // namespace

Hecho Definiciones::Cambiar(const CambiarTabla& cambiar) {
    using Clase = CambiarTabla::Clase;
    const auto hallada = sesion_.Catalogo().BuscarTabla(cambiar.tabla);
    if (!hallada || hallada->del_sistema) return CambioSinTabla(cambiar.tabla.Completo());
    if (cambiar.clase == Clase::AgregarColumnas) return AgregarColumnas(*hallada, cambiar);
    if (cambiar.clase == Clase::CambiarColumna) return CambiarColumna(*hallada, cambiar);
    if (cambiar.clase == Clase::QuitarColumna) return QuitarColumnas(*hallada, cambiar);
    if (cambiar.clase == Clase::QuitarRestriccion) return QuitarRestricciones(*hallada, cambiar);
    Tabla nueva = *hallada;
    bool rehacer = false;
    for (const RestriccionDef& def : cambiar.restricciones) {
        QUIMO_TRY_VOID(AgregarRestriccion(nueva, def));
        rehacer = rehacer || def.clase == RestriccionDef::Clase::Foranea ||
                  def.clase == RestriccionDef::Clase::Comprobacion ||
                  def.clase == RestriccionDef::Clase::Primaria;
    }
    for (const RestriccionDef& def : cambiar.restricciones) {
        if (def.clase != RestriccionDef::Clase::Primaria) continue;
        for (const int cual : nueva.Primaria()->columnas) {
            if (nueva.columnas[static_cast<std::size_t>(cual)].admite_nulos) {
                return PrimariaConNulos(nueva.nombre);
            }
        }
    }
    if (rehacer) return Rehacer(*hallada, nueva);
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    for (std::size_t i = hallada->indices.size(); i < nueva.indices.size(); ++i) {
        QUIMO_TRY_VOID(CrearIndiceEnMotor(nueva, nueva.indices[i]));
    }
    QUIMO_TRY_VOID(sesion_.Catalogo().Guardar(nueva));
    return punto.Confirmar();
}

/// New columns take their default in the rows that there are when they cannot be NULL.
Hecho Definiciones::AgregarColumnas(const Tabla& vieja, const CambiarTabla& cambiar) {
    Tabla nueva = vieja;
    for (const tsql::ColumnaDef& def : cambiar.columnas) {
        QUIMO_TRY_VOID(AgregarColumna(nueva, def));
    }
    bool rehacer = false;
    for (const RestriccionDef& def : cambiar.restricciones) {
        QUIMO_TRY_VOID(AgregarRestriccion(nueva, def));
        rehacer = rehacer || def.clase == RestriccionDef::Clase::Foranea ||
                  def.clase == RestriccionDef::Clase::Comprobacion ||
                  def.clase == RestriccionDef::Clase::Primaria;
    }
    QUIMO_TRY_VOID(Calcular(nueva));
    QUIMO_TRY(Preparada filas, sesion_.Base().Preparar("SELECT 1 FROM " + vieja.sql + " LIMIT 1"));
    const int codigo = filas.Paso();
    if (codigo != SQLITE_ROW && codigo != SQLITE_DONE) return sesion_.Base().Fallo(codigo);
    const bool con_filas = codigo == SQLITE_ROW;
    filas.Reiniciar();
    for (std::size_t i = vieja.columnas.size(); i < nueva.columnas.size(); ++i) {
        const auto& columna = nueva.columnas[i];
        if (columna.persistida) rehacer = true;
        const bool obligatoria = !columna.admite_nulos && columna.calculada.empty();
        if (!obligatoria) continue;
        if (columna.identidad || (con_filas && columna.defecto.empty())) {
            return ColumnaNuevaSinValor(columna.nombre, vieja.nombre);
        }
    }
    if (rehacer) {
        if (con_filas) {
            for (std::size_t i = vieja.columnas.size(); i < nueva.columnas.size(); ++i) {
                const auto& columna = nueva.columnas[i];
                if (!columna.admite_nulos && columna.calculada.empty()) {
                    return ColumnaNuevaSinValor(columna.nombre, vieja.nombre);
                }
            }
        }
        return Rehacer(vieja, nueva);
    }
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    for (std::size_t i = vieja.columnas.size(); i < nueva.columnas.size(); ++i) {
        const auto& columna = nueva.columnas[i];
        QUIMO_TRY(std::string sql, ColumnaSql(nueva, i));
        if (!columna.admite_nulos && columna.calculada.empty()) {
            QUIMO_TRY(const tsql::ExprPtr expr, tsql::LeerExpresion(columna.defecto));
            tsql::Insertar una;
            una.filas.push_back({expr});
            Tabla sola;
            sola.nombre = nueva.nombre;
            sola.columnas = {columna};
            const tsql::Entorno entorno = Entorno();
            QUIMO_TRY(const tsql::Plan plan, TraducirValor(*expr, entorno));
            QUIMO_TRY(Preparada valor,
                      sesion_.Base().Preparar(
                          "SELECT quote(q_cv((" + plan.sql + ")," +
                          std::to_string(tsql::Empaquetar(plan.columnas[0].tipo)) + "," +
                          std::to_string(tsql::Empaquetar(columna.tipo)) + ",0))"));
            int lugar = 0;
            for (const tsql::Ranura& ranura : plan.ranuras) {
                valor.Ligar(++lugar, sesion_.Global(ranura.nombre));
            }
            if (valor.Paso() != SQLITE_ROW)
                return sesion_.Base().Fallo(sesion_.Base().CodigoExtendido());
            sql += " DEFAULT " + valor.Texto(0);
        }
        QUIMO_TRY_VOID(sesion_.Base().Correr("ALTER TABLE " + vieja.sql + " ADD COLUMN " + sql));
    }
    for (std::size_t i = vieja.indices.size(); i < nueva.indices.size(); ++i) {
        QUIMO_TRY_VOID(CrearIndiceEnMotor(nueva, nueva.indices[i]));
    }
    QUIMO_TRY_VOID(sesion_.Catalogo().Guardar(nueva));
    return punto.Confirmar();
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
