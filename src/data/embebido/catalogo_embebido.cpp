#include "data/embebido/catalogo_embebido.h"

#include <sqlite3.h>

#include "data/embebido/errores_motor.h"
#include "data/embebido/vistas_sistema.h"
#include "tsql/lectura/parser.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

using tsql::AMinusculas;
using tsql::Tabla;
using tsql::TablaPtr;

constexpr std::string_view kTablas = R"(
CREATE TABLE IF NOT EXISTS _quimo_version(version INTEGER NOT NULL);
INSERT INTO _quimo_version SELECT 1 WHERE NOT EXISTS (SELECT 1 FROM _quimo_version);
CREATE TABLE IF NOT EXISTS _quimo_tablas(id INTEGER PRIMARY KEY, nombre TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS _quimo_columnas(tabla INTEGER NOT NULL, orden INTEGER NOT NULL,
  nombre TEXT NOT NULL, tipo INTEGER NOT NULL, nulos INTEGER NOT NULL, identidad INTEGER NOT NULL,
  semilla INTEGER NOT NULL, incremento INTEGER NOT NULL, defecto TEXT NOT NULL,
  nombre_defecto TEXT NOT NULL, calculada TEXT NOT NULL, persistida INTEGER NOT NULL,
  PRIMARY KEY(tabla, orden)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS _quimo_restricciones(tabla INTEGER NOT NULL, orden INTEGER NOT NULL,
  nombre TEXT NOT NULL, clase TEXT NOT NULL, columnas TEXT NOT NULL, referida TEXT NOT NULL,
  columnas_referidas TEXT NOT NULL, al_borrar TEXT NOT NULL, al_cambiar TEXT NOT NULL,
  texto TEXT NOT NULL, PRIMARY KEY(tabla, orden)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS _quimo_modulos(clave TEXT PRIMARY KEY, nombre TEXT NOT NULL,
  texto TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS _quimo_identidad(tabla INTEGER PRIMARY KEY, ultimo INTEGER NOT NULL);
)";

constexpr char kSeparador = '\n';

std::string Unir(const std::vector<std::string>& nombres) {
    std::string texto;
    for (const std::string& nombre : nombres) {
        if (!texto.empty()) texto.push_back(kSeparador);
        texto += nombre;
    }
    return texto;
}

std::vector<std::string> Partir(const std::string& texto) {
    std::vector<std::string> nombres;
    for (std::size_t i = 0; i < texto.size();) {
        const auto fin = std::min(texto.find(kSeparador, i), texto.size());
        nombres.push_back(texto.substr(i, fin - i));
        i = fin + 1;
    }
    return nombres;
}

std::string Clase(tsql::Indice::Clase clase) {
    if (clase == tsql::Indice::Clase::Primaria) return "PK";
    if (clase == tsql::Indice::Clase::Unica) return "UQ";
    if (clase == tsql::Indice::Clase::IndiceUnico) return "UX";
    return "IX";
}

tsql::Indice::Clase ClaseDe(const std::string& texto) {
    if (texto == "PK") return tsql::Indice::Clase::Primaria;
    if (texto == "UQ") return tsql::Indice::Clase::Unica;
    if (texto == "UX") return tsql::Indice::Clase::IndiceUnico;
    return tsql::Indice::Clase::Indice;
}

/// One row of _quimo_restricciones.
struct Fila {
    std::string nombre;
    std::string clase;
    std::string columnas;
    std::string referida = {};
    std::string columnas_referidas = {};
    std::string al_borrar = {};
    std::string al_cambiar = {};
    std::string texto = {};
};

std::vector<Fila> FilasDe(const Tabla& tabla) {
    std::vector<Fila> filas;
    for (const tsql::Indice& indice : tabla.indices) {
        std::vector<std::string> columnas;
        for (const int c : indice.columnas) {
            columnas.push_back(tabla.columnas[static_cast<std::size_t>(c)].nombre);
        }
        filas.push_back({indice.nombre, Clase(indice.clase), Unir(columnas)});
    }
    for (const tsql::Foranea& f : tabla.foraneas) {
        filas.push_back({f.nombre, "FK", Unir(f.columnas), f.tabla, Unir(f.columnas_referidas),
                         f.al_borrar, f.al_cambiar});
    }
    for (const tsql::Comprobacion& c : tabla.comprobaciones) {
        filas.push_back({c.nombre, "CK", c.columna, {}, {}, {}, {}, c.texto});
    }
    return filas;
}

void AgregarRestriccion(Tabla& tabla, const Preparada& fila) {
    const std::string clase = fila.Texto(2);
    if (clase == "FK") {
        tabla.foraneas.push_back({fila.Texto(1), Partir(fila.Texto(3)), fila.Texto(4),
                                  Partir(fila.Texto(5)), fila.Texto(6), fila.Texto(7)});
    } else if (clase == "CK") {
        tabla.comprobaciones.push_back({fila.Texto(1), fila.Texto(8), fila.Texto(3)});
    } else {
        tsql::Indice indice{fila.Texto(1), ClaseDe(clase), {}};
        for (const std::string& columna : Partir(fila.Texto(3))) {
            indice.columnas.push_back(tabla.Columna(columna));
        }
        tabla.indices.push_back(std::move(indice));
    }
}

}  // namespace

Hecho CatalogoEmbebido::Abrir() {
    QUIMO_TRY(Preparada hay,
              base_.Preparar("SELECT count(*) FROM sqlite_schema WHERE name='_quimo_version'"));
    if (const int codigo = hay.Paso(); codigo != SQLITE_ROW) return base_.Fallo(codigo);
    if (hay.Entero(0) == 0) {
        QUIMO_TRY(Preparada otras, base_.Preparar("SELECT count(*) FROM sqlite_schema"));
        if (const int codigo = otras.Paso(); codigo != SQLITE_ROW) return base_.Fallo(codigo);
        if (otras.Entero(0) > 0) return BaseDeOtroPrograma();
        hay.Reiniciar();
        otras.Reiniciar();
        QUIMO_TRY_VOID(base_.Correr("BEGIN IMMEDIATE;" + std::string(kTablas) + "COMMIT;"));
    }
    QUIMO_TRY(leer_numero_,
              base_.Preparar("SELECT ultimo FROM _quimo_identidad WHERE tabla=?1", true));
    QUIMO_TRY(guardar_numero_,
              base_.Preparar("INSERT INTO _quimo_identidad VALUES(?1,?2) ON CONFLICT(tabla) DO "
                             "UPDATE SET ultimo=excluded.ultimo",
                             true));
    return Cargar();
}

void CatalogoEmbebido::Cerrar() {
    leer_numero_ = Preparada();
    guardar_numero_ = Preparada();
}

Resultado<std::int64_t> CatalogoEmbebido::LeerVersion() {
    QUIMO_TRY(Preparada version, base_.Preparar("SELECT version FROM _quimo_version"));
    if (const int codigo = version.Paso(); codigo != SQLITE_ROW) return base_.Fallo(codigo);
    return version.Entero(0);
}

Hecho CatalogoEmbebido::Refrescar() {
    QUIMO_TRY(const std::int64_t version, LeerVersion());
    if (version == foto_.version_archivo) return {};
    return Cargar();
}

Hecho CatalogoEmbebido::Cargar() {
    // Read first: what somebody changes meanwhile is read again by the next look.
    Foto nueva;
    QUIMO_TRY(nueva.version_archivo, LeerVersion());
    std::map<std::int64_t, Tabla> tablas;
    QUIMO_TRY(Preparada filas, base_.Preparar("SELECT id,nombre FROM _quimo_tablas"));
    QUIMO_TRY_VOID(base_.CadaFila(filas, [&]() -> Hecho {
        Tabla tabla;
        tabla.id = filas.Entero(0);
        tabla.nombre = filas.Texto(1);
        tabla.sql = tsql::EntreComillas(tabla.nombre);
        ultimo_id_ = std::max(ultimo_id_, tabla.id);
        tablas.emplace(tabla.id, std::move(tabla));
        return {};
    }));
    QUIMO_TRY_VOID(CargarColumnas(tablas));
    QUIMO_TRY_VOID(CargarRestricciones(tablas));
    QUIMO_TRY_VOID(CargarModulos(nueva));
    for (const auto& [nombre, tabla] : foto_.tablas) {
        if (tabla->temporal) nueva.tablas[nombre] = tabla;
    }
    for (auto& [id, tabla] : tablas) {
        const std::string nombre = AMinusculas(tabla.nombre);
        nueva.tablas[nombre] = std::make_shared<const Tabla>(std::move(tabla));
    }
    for (const TablaPtr& vista : VistasDelSistema()) {
        nueva.tablas[AMinusculas(vista->nombre)] = vista;
    }
    Restaurar(std::move(nueva));
    return {};
}

Hecho CatalogoEmbebido::CargarColumnas(std::map<std::int64_t, Tabla>& tablas) {
    QUIMO_TRY(Preparada filas,
              base_.Preparar("SELECT tabla,nombre,tipo,nulos,identidad,semilla,incremento,defecto,"
                             "nombre_defecto,calculada,persistida FROM _quimo_columnas ORDER BY "
                             "tabla,orden"));
    return base_.CadaFila(filas, [&]() -> Hecho {
        tsql::ColumnaTabla columna;
        columna.nombre = filas.Texto(1);
        columna.tipo = tsql::Desempaquetar(filas.Entero(2));
        columna.admite_nulos = filas.Entero(3) != 0;
        columna.identidad = filas.Entero(4) != 0;
        columna.semilla = filas.Entero(5);
        columna.incremento = filas.Entero(6);
        columna.defecto = filas.Texto(7);
        columna.nombre_defecto = filas.Texto(8);
        columna.calculada = filas.Texto(9);
        columna.persistida = filas.Entero(10) != 0;
        tablas[filas.Entero(0)].columnas.push_back(std::move(columna));
        return {};
    });
}

Hecho CatalogoEmbebido::CargarRestricciones(std::map<std::int64_t, Tabla>& tablas) {
    QUIMO_TRY(Preparada filas,
              base_.Preparar("SELECT tabla,nombre,clase,columnas,referida,columnas_referidas,"
                             "al_borrar,al_cambiar,texto FROM _quimo_restricciones ORDER BY "
                             "tabla,orden"));
    return base_.CadaFila(filas, [&]() -> Hecho {
        AgregarRestriccion(tablas[filas.Entero(0)], filas);
        return {};
    });
}

Hecho CatalogoEmbebido::CargarModulos(Foto& foto) {
    QUIMO_TRY(Preparada filas, base_.Preparar("SELECT clave,texto FROM _quimo_modulos"));
    return base_.CadaFila(filas, [&]() -> Hecho {
        QUIMO_TRY(const tsql::Lote lote,
                  tsql::LeerLote(filas.Texto(1), tsql::Constantes::EnElArbol));
        const auto* modulo = std::get_if<tsql::CrearModulo>(&lote.sentencias.at(0)->que);
        QUIMO_CHECK(modulo != nullptr);
        foto.modulos[filas.Texto(0)] = std::make_shared<const tsql::CrearModulo>(*modulo);
        return {};
    });
}

tsql::TablaPtr CatalogoEmbebido::BuscarTabla(const tsql::NombreObjeto& nombre) const {
    std::string clave = AMinusculas(nombre.objeto);
    const std::string esquema = AMinusculas(nombre.esquema);
    if (esquema == "information_schema" || esquema == "sys") {
        clave.insert(0, esquema + ".");
    } else if (!esquema.empty() && esquema != "dbo") {
        return nullptr;
    }
    const auto hallada = foto_.tablas.find(clave);
    return hallada == foto_.tablas.end() ? nullptr : hallada->second;
}

tsql::ModuloPtr CatalogoEmbebido::BuscarModulo(const tsql::NombreObjeto& nombre) const {
    if (!nombre.esquema.empty() && !tsql::MismoNombre(nombre.esquema, "dbo")) return nullptr;
    const auto hallado = foto_.modulos.find(AMinusculas(nombre.objeto));
    return hallado == foto_.modulos.end() ? nullptr : hallado->second;
}

const tsql::Tabla* CatalogoEmbebido::Referente(const Tabla& tabla) const {
    for (const auto& [nombre, otra] : foto_.tablas) {
        for (const tsql::Foranea& foranea : otra->foraneas) {
            if (otra->id != tabla.id && tsql::MismoNombre(foranea.tabla, tabla.nombre)) {
                return otra.get();
            }
        }
    }
    return nullptr;
}

std::int64_t CatalogoEmbebido::NuevoId() { return ++ultimo_id_; }

std::int64_t CatalogoEmbebido::IdModulo(const std::string& nombre) const {
    constexpr std::int64_t kPrimero = 1'000'000'000;
    const auto hallado = foto_.modulos.find(nombre);
    if (hallado == foto_.modulos.end()) return 0;
    return kPrimero + std::distance(foto_.modulos.begin(), hallado);
}

Hecho CatalogoEmbebido::Avanzar() {
    ++version_;
    QUIMO_TRY_VOID(base_.Correr("UPDATE _quimo_version SET version=version+1"));
    QUIMO_TRY(foto_.version_archivo, LeerVersion());
    return {};
}

Hecho CatalogoEmbebido::Guardar(const Tabla& tabla) {
    const std::string clave = AMinusculas(tabla.nombre);
    if (tabla.temporal) {
        ++version_;
        foto_.tablas[clave] = std::make_shared<const Tabla>(tabla);
        return {};
    }
    const std::string id = std::to_string(tabla.id);
    QUIMO_TRY_VOID(base_.Correr("DELETE FROM _quimo_columnas WHERE tabla=" + id +
                                ";DELETE FROM _quimo_restricciones WHERE tabla=" + id));
    QUIMO_TRY(Preparada cabeza, base_.Preparar("REPLACE INTO _quimo_tablas VALUES(?1,?2)"));
    cabeza.Ligar(1, tabla.id);
    cabeza.Ligar(2, tabla.nombre);
    if (const int codigo = cabeza.Paso(); codigo != SQLITE_DONE) return base_.Fallo(codigo);
    QUIMO_TRY(Preparada columnas, base_.Preparar("INSERT INTO _quimo_columnas VALUES(?1,?2,?3,?4,"
                                                 "?5,?6,?7,?8,?9,?10,?11,?12)"));
    std::int64_t orden = 0;
    for (const tsql::ColumnaTabla& c : tabla.columnas) {
        columnas.Reiniciar();
        columnas.Ligar(1, tabla.id);
        columnas.Ligar(2, orden++);
        columnas.Ligar(3, c.nombre);
        columnas.Ligar(4, tsql::Empaquetar(c.tipo));
        columnas.Ligar(5, std::int64_t{c.admite_nulos});
        columnas.Ligar(6, std::int64_t{c.identidad});
        columnas.Ligar(7, c.semilla);
        columnas.Ligar(8, c.incremento);
        columnas.Ligar(9, c.defecto);
        columnas.Ligar(10, c.nombre_defecto);
        columnas.Ligar(11, c.calculada);
        columnas.Ligar(12, std::int64_t{c.persistida});
        if (const int codigo = columnas.Paso(); codigo != SQLITE_DONE) return base_.Fallo(codigo);
    }
    QUIMO_TRY(Preparada filas, base_.Preparar("INSERT INTO _quimo_restricciones VALUES(?1,?2,?3,?4,"
                                              "?5,?6,?7,?8,?9,?10)"));
    orden = 0;
    for (const Fila& fila : FilasDe(tabla)) {
        filas.Reiniciar();
        filas.Ligar(1, tabla.id);
        filas.Ligar(2, orden++);
        int lugar = 3;
        for (const std::string* texto :
             {&fila.nombre, &fila.clase, &fila.columnas, &fila.referida, &fila.columnas_referidas,
              &fila.al_borrar, &fila.al_cambiar, &fila.texto}) {
            filas.Ligar(lugar++, *texto);
        }
        if (const int codigo = filas.Paso(); codigo != SQLITE_DONE) return base_.Fallo(codigo);
    }
    foto_.tablas[clave] = std::make_shared<const Tabla>(tabla);
    return Avanzar();
}

Hecho CatalogoEmbebido::Borrar(const Tabla& tabla) {
    const std::string clave = AMinusculas(tabla.nombre);
    numeros_.erase(tabla.id);
    temporales_.erase(tabla.id);
    if (tabla.temporal) {
        ++version_;
        foto_.tablas.erase(clave);
        return {};
    }
    const std::string id = std::to_string(tabla.id);
    QUIMO_TRY_VOID(base_.Correr("DELETE FROM _quimo_columnas WHERE tabla=" + id +
                                ";DELETE FROM _quimo_restricciones WHERE tabla=" + id +
                                ";DELETE FROM _quimo_tablas WHERE id=" + id +
                                ";DELETE FROM _quimo_identidad WHERE tabla=" + id));
    foto_.tablas.erase(clave);
    return Avanzar();
}

Hecho CatalogoEmbebido::GuardarModulo(const tsql::CrearModulo& modulo) {
    const std::string clave = AMinusculas(modulo.nombre.objeto);
    QUIMO_TRY(Preparada filas, base_.Preparar("REPLACE INTO _quimo_modulos VALUES(?1,?2,?3)"));
    filas.Ligar(1, clave);
    filas.Ligar(2, modulo.nombre.objeto);
    filas.Ligar(3, modulo.texto);
    if (const int codigo = filas.Paso(); codigo != SQLITE_DONE) return base_.Fallo(codigo);
    ++version_modulos_;
    // Read again: what is kept has its constants in the tree.
    QUIMO_TRY(const tsql::Lote lote, tsql::LeerLote(modulo.texto, tsql::Constantes::EnElArbol));
    const auto* guardado = std::get_if<tsql::CrearModulo>(&lote.sentencias.at(0)->que);
    QUIMO_CHECK(guardado != nullptr);
    foto_.modulos[clave] = std::make_shared<const tsql::CrearModulo>(*guardado);
    return Avanzar();
}

Hecho CatalogoEmbebido::BorrarModulo(const std::string& nombre) {
    const std::string clave = AMinusculas(nombre);
    QUIMO_TRY(Preparada filas, base_.Preparar("DELETE FROM _quimo_modulos WHERE clave=?1"));
    filas.Ligar(1, clave);
    if (const int codigo = filas.Paso(); codigo != SQLITE_DONE) return base_.Fallo(codigo);
    ++version_modulos_;
    foto_.modulos.erase(clave);
    return Avanzar();
}

void CatalogoEmbebido::Restaurar(Foto foto) {
    foto_ = std::move(foto);
    ++version_;
    ++version_modulos_;
}

Resultado<std::int64_t> CatalogoEmbebido::UltimoNumero(const Tabla& tabla) {
    const tsql::ColumnaTabla* columna = tabla.Identidad();
    QUIMO_CHECK(columna != nullptr);
    std::int64_t numero = columna->semilla - columna->incremento;
    if (tabla.temporal) {
        const auto hallado = temporales_.find(tabla.id);
        return hallado == temporales_.end() ? numero : hallado->second;
    }
    leer_numero_.Ligar(1, tabla.id);
    const int codigo = leer_numero_.Paso();
    if (codigo == SQLITE_ROW) numero = leer_numero_.Entero(0);
    leer_numero_.Reiniciar();
    if (codigo != SQLITE_ROW && codigo != SQLITE_DONE) return base_.Fallo(codigo);
    const auto visto = numeros_.find(tabla.id);
    if (visto == numeros_.end()) return numero;
    return columna->incremento > 0 ? std::max(numero, visto->second)
                                   : std::min(numero, visto->second);
}

Hecho CatalogoEmbebido::GuardarNumero(const Tabla& tabla, std::int64_t numero) {
    if (tabla.temporal) {
        temporales_[tabla.id] = numero;
        return {};
    }
    numeros_[tabla.id] = numero;
    guardar_numero_.Ligar(1, tabla.id);
    guardar_numero_.Ligar(2, numero);
    const int codigo = guardar_numero_.Paso();
    guardar_numero_.Reiniciar();
    if (codigo != SQLITE_DONE) return base_.Fallo(codigo);
    return {};
}

}  // namespace quimo::data::embebido
