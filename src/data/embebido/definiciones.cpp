#include "data/embebido/definiciones.h"

#include <algorithm>

#include "data/embebido/errores_motor.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

using tsql::EntreComillas;
using tsql::Indice;
using tsql::MismoNombre;
using tsql::RestriccionDef;
using tsql::Tabla;

}  // namespace

tsql::Entorno Definiciones::Entorno() const {
    tsql::Entorno entorno;
    entorno.catalogo = &sesion_.Catalogo();
    entorno.orden = sesion_.Estado().orden;
    entorno.base = sesion_.NombreBase();
    return entorno;
}

std::string Definiciones::NombreLibre(const Tabla& tabla, const std::string& prefijo) const {
    const auto usado = [&](const std::string& nombre) {
        return std::any_of(tabla.indices.begin(), tabla.indices.end(),
                           [&](const Indice& i) { return MismoNombre(i.nombre, nombre); }) ||
               std::any_of(tabla.foraneas.begin(), tabla.foraneas.end(),
                           [&](const tsql::Foranea& f) { return MismoNombre(f.nombre, nombre); }) ||
               std::any_of(
                   tabla.comprobaciones.begin(), tabla.comprobaciones.end(),
                   [&](const tsql::Comprobacion& c) { return MismoNombre(c.nombre, nombre); });
    };
    std::string nombre = prefijo;
    for (int i = 2; usado(nombre); ++i)
        nombre = prefijo + "_" + std::to_string(i);
    return nombre;
}

Hecho Definiciones::AgregarColumna(Tabla& tabla, const tsql::ColumnaDef& def) const {
    if (tabla.Columna(def.nombre) >= 0) return ColumnaYaEsta(def.nombre, tabla.nombre);
    if (def.identidad && tabla.Identidad() != nullptr) return DosIdentidades(tabla.nombre);
    if (def.identidad && (def.tipo.escala != 0 || !def.tipo.EsExacto() || def.tipo.EsMoneda())) {
        return IdentidadDeTipoInvalido(def.nombre);
    }
    tsql::ColumnaTabla columna;
    columna.nombre = def.nombre;
    columna.tipo = def.tipo;
    columna.admite_nulos = def.admite_nulos.value_or(true);
    columna.identidad = def.identidad;
    columna.semilla = def.semilla;
    columna.incremento = def.incremento;
    columna.calculada = def.calculada;
    columna.persistida = def.persistida;
    tabla.columnas.push_back(std::move(columna));
    return {};
}

/// Types of the computed columns, once the others are known.
Hecho Definiciones::Calcular(Tabla& tabla) const {
    for (tsql::ColumnaTabla& columna : tabla.columnas) {
        if (columna.calculada.empty() || columna.tipo.clase != tsql::Clase::Nulo) continue;
        QUIMO_TRY(const tsql::ExpresionDeTabla expr,
                  TraducirDeTabla(columna.calculada, tabla, Entorno()));
        columna.tipo = expr.tipo;
        if (columna.tipo.clase == tsql::Clase::Nulo)
            columna.tipo = tsql::TipoEntero(tsql::Clase::Int);
        columna.admite_nulos = columna.admite_nulos && expr.admite_nulos;
    }
    return {};
}

Hecho Definiciones::AgregarRestriccion(Tabla& tabla, const RestriccionDef& def) const {
    for (const std::string& columna : def.columnas) {
        if (tabla.Columna(columna) >= 0) continue;
        if (def.clase == RestriccionDef::Clase::Foranea) {
            return ForaneaSinColumna(def.nombre, columna, tabla.nombre);
        }
        return ColumnaFaltante(columna);
    }
    if (def.clase == RestriccionDef::Clase::Primaria || def.clase == RestriccionDef::Clase::Unica) {
        return AgregarClave(tabla, def);
    }
    if (def.clase == RestriccionDef::Clase::Foranea) return AgregarForanea(tabla, def);
    if (def.clase == RestriccionDef::Clase::Comprobacion) {
        const std::string columna = def.columnas.empty() ? std::string() : def.columnas[0];
        const std::string prefijo = "CK_" + tabla.nombre + (columna.empty() ? "" : "_" + columna);
        const std::string nombre = def.nombre.empty() ? NombreLibre(tabla, prefijo) : def.nombre;
        tabla.comprobaciones.push_back({nombre, def.texto, columna});
        return {};
    }
    auto& columna = tabla.columnas[static_cast<std::size_t>(tabla.Columna(def.columnas[0]))];
    if (!columna.defecto.empty()) return DosValoresPorDefecto();
    columna.defecto = def.texto;
    columna.nombre_defecto =
        def.nombre.empty() ? "DF_" + tabla.nombre + "_" + columna.nombre : def.nombre;
    return {};
}

Hecho Definiciones::AgregarClave(Tabla& tabla, const RestriccionDef& def) const {
    const bool primaria = def.clase == RestriccionDef::Clase::Primaria;
    if (primaria && tabla.Primaria() != nullptr) return DosClavesPrimarias(tabla.nombre);
    Indice indice;
    indice.clase = primaria ? Indice::Clase::Primaria : Indice::Clase::Unica;
    for (const std::string& nombre : def.columnas) {
        const int cual = tabla.Columna(nombre);
        if (std::find(indice.columnas.begin(), indice.columnas.end(), cual) !=
            indice.columnas.end()) {
            return ColumnaYaEsta(nombre, tabla.nombre);
        }
        indice.columnas.push_back(cual);
    }
    const std::string prefijo = (primaria ? "PK_" : "UQ_") + tabla.nombre;
    indice.nombre = def.nombre.empty() ? NombreLibre(tabla, prefijo) : def.nombre;
    tabla.indices.push_back(std::move(indice));
    return {};
}

Hecho Definiciones::AgregarForanea(Tabla& tabla, const RestriccionDef& def) const {
    tsql::Foranea foranea;
    foranea.columnas = def.columnas;
    const bool misma = MismoNombre(def.referencia.tabla.objeto, tabla.nombre);
    const auto hallada = misma ? nullptr : sesion_.Catalogo().BuscarTabla(def.referencia.tabla);
    foranea.nombre =
        def.nombre.empty()
            ? NombreLibre(tabla, "FK_" + tabla.nombre + "_" + def.referencia.tabla.objeto)
            : def.nombre;
    if (!misma && !hallada) return ForaneaSinTabla(foranea.nombre, def.referencia.tabla.Completo());
    const Tabla& madre = misma ? tabla : *hallada;
    foranea.tabla = madre.nombre;
    foranea.al_borrar = def.referencia.al_borrar;
    foranea.al_cambiar = def.referencia.al_cambiar;
    std::vector<int> referidas;
    if (def.referencia.columnas.empty()) {
        if (madre.Primaria() != nullptr) referidas = madre.Primaria()->columnas;
    }
    for (const std::string& nombre : def.referencia.columnas) {
        if (madre.Columna(nombre) < 0)
            return ForaneaSinColumnaReferida(foranea.nombre, nombre, madre.nombre);
        referidas.push_back(madre.Columna(nombre));
    }
    const bool hay_clave =
        std::any_of(madre.indices.begin(), madre.indices.end(), [&](const Indice& i) {
            return i.clase != Indice::Clase::Indice &&
                   std::is_permutation(i.columnas.begin(), i.columnas.end(), referidas.begin(),
                                       referidas.end());
        });
    if (!hay_clave || referidas.size() != foranea.columnas.size()) {
        return ForaneaSinClave(madre.nombre, foranea.nombre);
    }
    for (const int cual : referidas) {
        foranea.columnas_referidas.push_back(madre.columnas[static_cast<std::size_t>(cual)].nombre);
    }
    if (!tabla.temporal) tabla.foraneas.push_back(std::move(foranea));
    return {};
}

Hecho Definiciones::Definir(Tabla& tabla, const tsql::CrearTabla& crear) {
    for (const tsql::ColumnaDef& columna : crear.columnas) {
        QUIMO_TRY_VOID(AgregarColumna(tabla, columna));
    }
    // References last: they may point to this table's own key.
    for (const bool foraneas : {false, true}) {
        for (const RestriccionDef& def : crear.restricciones) {
            if ((def.clase == RestriccionDef::Clase::Foranea) != foraneas) continue;
            QUIMO_TRY_VOID(AgregarRestriccion(tabla, def));
        }
    }
    if (const Indice* primaria = tabla.Primaria()) {
        for (const int cual : primaria->columnas) {
            auto& columna = tabla.columnas[static_cast<std::size_t>(cual)];
            const auto& def = crear.columnas[static_cast<std::size_t>(cual)];
            if (def.admite_nulos.value_or(false)) return PrimariaConNulos(tabla.nombre);
            columna.admite_nulos = false;
        }
    }
    return Calcular(tabla);
}

/// A point from which nobody else changes definitions, with those that others have made until now:
/// two that did not know of each other would give two tables one number.
Resultado<PuntoDeSentencia> Definiciones::AbrirAlDia() {
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    QUIMO_TRY_VOID(sesion_.Catalogo().Refrescar());
    return punto;
}

Hecho Definiciones::Crear(const tsql::CrearTabla& crear, bool local) {
    Tabla tabla;
    tabla.nombre = crear.tabla.objeto;
    tabla.temporal = local || crear.tabla.EsTemporal();
    QUIMO_TRY(PuntoDeSentencia punto, AbrirAlDia());
    tabla.id = sesion_.Catalogo().NuevoId();
    if (sesion_.Catalogo().BuscarTabla(crear.tabla) ||
        sesion_.Catalogo().BuscarModulo(crear.tabla)) {
        return NombreOcupado(tabla.nombre);
    }
    const bool reservado = tsql::AMinusculas(tabla.nombre).starts_with("_quimo_") ||
                           tsql::AMinusculas(tabla.nombre).starts_with("sqlite_");
    if (reservado) return NombreOcupado(tabla.nombre);
    tabla.sql = (tabla.temporal ? "temp." : "") + EntreComillas(tabla.nombre);
    QUIMO_TRY_VOID(Definir(tabla, crear));
    QUIMO_TRY_VOID(CrearEnMotor(tabla, tabla.sql));
    QUIMO_TRY_VOID(CrearIndices(tabla));
    QUIMO_TRY_VOID(AsegurarClaves(tabla));
    QUIMO_TRY_VOID(sesion_.Catalogo().Guardar(tabla));
    return punto.Confirmar();
}

Hecho Definiciones::Crear(const tsql::CrearIndice& crear) {
    QUIMO_TRY(PuntoDeSentencia punto, AbrirAlDia());
    const auto hallada = sesion_.Catalogo().BuscarTabla(crear.tabla);
    if (!hallada || hallada->del_sistema) return IndiceSinTabla(crear.tabla.Completo());
    Tabla tabla = *hallada;
    Indice indice;
    indice.nombre = crear.nombre;
    indice.clase = crear.unico ? Indice::Clase::IndiceUnico : Indice::Clase::Indice;
    for (const Indice& otro : tabla.indices) {
        if (MismoNombre(otro.nombre, crear.nombre)) {
            return IndiceYaEsta(crear.nombre, crear.tabla.Completo());
        }
    }
    for (const std::string& columna : crear.columnas) {
        const int cual = tabla.Columna(columna);
        if (cual < 0) return ColumnaFaltante(columna);
        indice.columnas.push_back(cual);
    }
    tabla.indices.push_back(indice);
    QUIMO_TRY_VOID(CrearIndiceEnMotor(tabla, indice));
    QUIMO_TRY_VOID(sesion_.Catalogo().Guardar(tabla));
    return punto.Confirmar();
}

Hecho Definiciones::Crear(const tsql::CrearModulo& crear) {
    QUIMO_TRY(PuntoDeSentencia punto, AbrirAlDia());
    const auto antes = sesion_.Catalogo().BuscarModulo(crear.nombre);
    if (crear.cambiar) {
        if (!antes) return tsql::ObjetoDesconocido(crear.nombre.Completo());
        if (antes->clase != crear.clase) return ModuloDeOtraClase(crear.nombre.Completo());
    } else if (antes || sesion_.Catalogo().BuscarTabla(crear.nombre)) {
        return NombreOcupado(crear.nombre.objeto);
    }
    if (crear.clase == tsql::CrearModulo::Clase::Vista) {
        QUIMO_TRY(const tsql::Lote lote, tsql::LeerLote(crear.texto, tsql::Constantes::EnElArbol));
        const auto* modulo = std::get_if<tsql::CrearModulo>(&lote.sentencias.at(0)->que);
        QUIMO_CHECK(modulo != nullptr);
        tsql::Fuente fuente;
        fuente.clase = tsql::Fuente::Clase::Derivada;
        fuente.alias = crear.nombre.objeto;
        fuente.columnas = modulo->columnas;
        fuente.consulta = modulo->consulta;
        tsql::Consulta prueba;
        prueba.simple.emplace();
        tsql::Expr todas{tsql::ClaseExpr::Asterisco};
        prueba.simple->items.push_back(
            {std::make_shared<const tsql::Expr>(std::move(todas)), {}, {}});
        prueba.simple->fuentes.push_back(std::make_shared<const tsql::Fuente>(std::move(fuente)));
        QUIMO_TRY(const tsql::Plan plan, TraducirConsulta(prueba, Entorno()));
        QUIMO_TRY(const Preparada comprobada, sesion_.Base().Preparar(plan.sql));
    }
    QUIMO_TRY_VOID(sesion_.Catalogo().GuardarModulo(crear));
    return punto.Confirmar();
}

Hecho Definiciones::Truncar(const tsql::NombreObjeto& nombre) {
    const auto tabla = sesion_.Catalogo().BuscarTabla(nombre);
    if (!tabla || tabla->del_sistema) return VaciarSinTabla(nombre.objeto);
    if (sesion_.Catalogo().Referente(*tabla) != nullptr) return VaciarTablaReferida(nombre.objeto);
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    QUIMO_TRY_VOID(sesion_.Base().Correr("DELETE FROM " + tabla->sql));
    if (const auto* identidad = tabla->Identidad()) {
        QUIMO_TRY_VOID(
            sesion_.Catalogo().GuardarNumero(*tabla, identidad->semilla - identidad->incremento));
    }
    return punto.Confirmar();
}

Hecho Definiciones::Quitar(const tsql::Quitar& quitar) {
    for (const tsql::NombreObjeto& nombre : quitar.nombres) {
        if (quitar.clase == "TABLE") {
            QUIMO_TRY_VOID(QuitarTabla(nombre, quitar.si_existe));
        } else if (quitar.clase == "INDEX") {
            QUIMO_TRY_VOID(QuitarIndice(nombre, quitar.si_existe));
        } else {
            QUIMO_TRY_VOID(QuitarModulo(nombre, quitar));
        }
    }
    return {};
}

Hecho Definiciones::QuitarTabla(const tsql::NombreObjeto& nombre, bool si_existe) {
    const auto tabla = sesion_.Catalogo().BuscarTabla(nombre);
    if (!tabla || tabla->del_sistema) {
        if (si_existe) return {};
        return QuitarLoQueNoEsta("table", nombre.Completo());
    }
    if (sesion_.Catalogo().Referente(*tabla) != nullptr)
        return QuitarTablaReferida(nombre.Completo());
    if (MismoNombre(sesion_.Estado().identity_insert, tabla->nombre)) {
        sesion_.Estado().identity_insert.clear();
    }
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    QUIMO_TRY_VOID(sesion_.Base().Correr("DROP TABLE " + tabla->sql));
    QUIMO_TRY_VOID(sesion_.Catalogo().Borrar(*tabla));
    return punto.Confirmar();
}

/// DROP INDEX table.index, or index ON table.
Hecho Definiciones::QuitarIndice(const tsql::NombreObjeto& nombre, bool si_existe) {
    tsql::NombreObjeto de;
    de.objeto = nombre.esquema;
    const auto hallada = sesion_.Catalogo().BuscarTabla(de);
    for (std::size_t i = 0; hallada && i < hallada->indices.size(); ++i) {
        const Indice& indice = hallada->indices[i];
        if (!MismoNombre(indice.nombre, nombre.objeto)) continue;
        if (indice.clase == Indice::Clase::Primaria || indice.clase == Indice::Clase::Unica) {
            return QuitarIndiceDeRestriccion(nombre.Completo());
        }
        Tabla tabla = *hallada;
        tabla.indices.erase(tabla.indices.begin() + static_cast<std::ptrdiff_t>(i));
        QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
        QUIMO_TRY_VOID(QuitarIndiceDelMotor(*hallada, indice));
        QUIMO_TRY_VOID(sesion_.Catalogo().Guardar(tabla));
        return punto.Confirmar();
    }
    if (si_existe) return {};
    return QuitarLoQueNoEsta("index", nombre.Completo());
}

Hecho Definiciones::QuitarModulo(const tsql::NombreObjeto& nombre, const tsql::Quitar& quitar) {
    using Clase = tsql::CrearModulo::Clase;
    const Clase clase = quitar.clase == "VIEW"       ? Clase::Vista
                        : quitar.clase == "FUNCTION" ? Clase::Funcion
                                                     : Clase::Procedimiento;
    const auto modulo = sesion_.Catalogo().BuscarModulo(nombre);
    if (!modulo || modulo->clase != clase) {
        if (quitar.si_existe) return {};
        return QuitarLoQueNoEsta(tsql::AMinusculas(quitar.clase), nombre.Completo());
    }
    QUIMO_TRY(PuntoDeSentencia punto, PuntoDeSentencia::Abrir(sesion_));
    QUIMO_TRY_VOID(sesion_.Catalogo().BorrarModulo(nombre.objeto));
    return punto.Confirmar();
}

}  // namespace quimo::data::embebido
