#include "data/embebido/revision_base.h"

#include <array>

#include "data/embebido/errores_motor.h"
#include "data/embebido/revision_motor.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

std::vector<tsql::ColumnaSalida> Columnas() {
    const tsql::Tipo entero = tsql::TipoEntero(tsql::Clase::Int);
    return {{"Error", entero},
            {"Level", entero},
            {"State", entero},
            {"MessageText", tsql::TipoTexto(tsql::Clase::NVarChar, -1)},
            {"ObjectId", entero}};
}

/// One line of the report.
struct Linea {
    ErrorSql error;
    Valor objeto;
};

std::array<Valor, 5> FilaDe(const Linea& linea) {
    return {Valor::De(linea.error.nativo), Valor::De(linea.error.severidad), Valor::De(1),
            Valor::DeTexto(linea.error.mensaje), linea.objeto};
}

}  // namespace

Hecho RevisarBase(const tsql::RevisarBase& revisar, Sesion& sesion, Salida& salida) {
    auto hallazgos = RevisarMotor(sesion.Base());
    // A function of ours that met a damaged value has left its error there.
    sesion.Contexto().error.reset();
    if (!hallazgos) return hallazgos.error();
    std::vector<Linea> lineas;
    for (const HallazgoMotor& hallazgo : *hallazgos) {
        const auto tabla = sesion.Catalogo().Tablas().find(tsql::AMinusculas(hallazgo.tabla));
        const bool conocida = tabla != sesion.Catalogo().Tablas().end();
        lineas.push_back({HallazgoDeRevision(hallazgo.numero, hallazgo.mensaje),
                          conocida ? Valor::De(tabla->second->id) : Valor{}});
    }
    if (!revisar.solo_fallas) {
        lineas.push_back({FinDeRevision(hallazgos->size(), sesion.NombreBase()), {}});
    }
    sesion.Estado().filas = 0;
    if (!revisar.en_filas) {
        for (const Linea& linea : lineas)
            salida.Informar(linea.error);
        return {};
    }
    const std::vector<tsql::ColumnaSalida> columnas = Columnas();
    Salida::Nuevo conjunto(salida, columnas);
    for (const Linea& linea : lineas) {
        const auto fila = FilaDe(linea);
        QUIMO_TRY_VOID(conjunto.Agregar([&](std::size_t i) { return fila[i]; }));
    }
    conjunto.Entregar();
    return {};
}

}  // namespace quimo::data::embebido
