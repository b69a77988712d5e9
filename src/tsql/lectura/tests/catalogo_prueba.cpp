#include "catalogo_prueba.h"

#include "base/check.h"
#include "tsql/lectura/parser.h"
#include "tsql/valores/texto.h"

namespace quimo::tsql {

namespace {

std::vector<int> Lugares(const Tabla& tabla, const std::vector<std::string>& nombres) {
    std::vector<int> lugares;
    for (const std::string& nombre : nombres) {
        lugares.push_back(tabla.Columna(nombre));
        QUIMO_CHECK(lugares.back() >= 0);
    }
    return lugares;
}

}  // namespace

CatalogoPrueba::CatalogoPrueba(std::initializer_list<const char*> definiciones) {
    for (const char* texto : definiciones) {
        const auto lote = LeerLote(texto, Constantes::EnElArbol);
        QUIMO_CHECK(lote.has_value() && lote->sentencias.size() == 1);
        const auto& que = lote->sentencias[0]->que;
        if (const auto* tabla = std::get_if<CrearTabla>(&que)) Definir(*tabla);
        if (const auto* indice = std::get_if<CrearIndice>(&que)) Definir(*indice);
        if (const auto* modulo = std::get_if<CrearModulo>(&que)) Definir(*modulo);
    }
}

void CatalogoPrueba::Definir(const CrearTabla& definicion) {
    auto tabla = std::make_shared<tsql::Tabla>();
    tabla->nombre = definicion.tabla.objeto;
    tabla->sql = EntreComillas(tabla->nombre);
    for (const ColumnaDef& def : definicion.columnas) {
        ColumnaTabla columna;
        columna.nombre = def.nombre;
        columna.tipo = def.calculada.empty() ? def.tipo : TipoEntero(Clase::Int);
        columna.admite_nulos = def.admite_nulos.value_or(true);
        columna.identidad = def.identidad;
        columna.calculada = def.calculada;
        tabla->columnas.push_back(columna);
    }
    for (const RestriccionDef& def : definicion.restricciones) {
        const std::vector<int> lugares = Lugares(*tabla, def.columnas);
        if (def.clase == RestriccionDef::Clase::Primaria)
            tabla->indices.push_back({def.nombre, Indice::Clase::Primaria, lugares});
        if (def.clase == RestriccionDef::Clase::Defecto)
            tabla->columnas[static_cast<std::size_t>(lugares[0])].defecto = def.texto;
    }
    tablas_.push_back(std::move(tabla));
}

void CatalogoPrueba::Definir(const CrearIndice& definicion) {
    for (const auto& tabla : tablas_) {
        if (MismoNombre(tabla->nombre, definicion.tabla.objeto)) {
            tabla->indices.push_back(
                {definicion.nombre, Indice::Clase::Indice, Lugares(*tabla, definicion.columnas)});
        }
    }
}

void CatalogoPrueba::Definir(const CrearModulo& definicion) {
    modulos_.push_back(std::make_shared<const CrearModulo>(definicion));
}

TablaPtr CatalogoPrueba::BuscarTabla(const NombreObjeto& nombre) const {
    for (const auto& tabla : tablas_) {
        if (MismoNombre(tabla->nombre, nombre.objeto)) return tabla;
    }
    return nullptr;
}

ModuloPtr CatalogoPrueba::BuscarModulo(const NombreObjeto& nombre) const {
    for (const ModuloPtr& modulo : modulos_) {
        if (MismoNombre(modulo->nombre.objeto, nombre.objeto)) return modulo;
    }
    return nullptr;
}

}  // namespace quimo::tsql
