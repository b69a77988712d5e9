#include "data/embebido/interprete.h"
#include "data/embebido/revision_motor.h"
#include "tsql/valores/texto.h"

namespace quimo::data::embebido {

namespace {

constexpr int kFinDeRevision = 8989;
constexpr int kSoloInforme = 10;

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

std::vector<Valor> FilaDe(const Linea& linea) {
    return {Valor::De(linea.error.nativo), Valor::De(linea.error.severidad), Valor::De(1),
            Valor::DeTexto(linea.error.mensaje), linea.objeto};
}

}  // namespace

/// DBCC CHECKDB: each finding as an error, and a message that counts them; with TABLERESULTS as
/// the rows of a result set.
Hecho Interprete::HacerRevisarBase(const tsql::RevisarBase& revisar) {
    auto hallazgos = RevisarMotor(sesion_.Base());
    // A function of ours that met a damaged value has left its error there.
    sesion_.Contexto().error.reset();
    if (!hallazgos) return hallazgos.error();
    std::vector<Linea> lineas;
    for (const HallazgoMotor& hallazgo : *hallazgos) {
        const auto tabla = sesion_.Catalogo().Tablas().find(tsql::AMinusculas(hallazgo.tabla));
        const bool conocida = tabla != sesion_.Catalogo().Tablas().end();
        lineas.push_back({{.nativo = hallazgo.numero, .mensaje = hallazgo.mensaje},
                          conocida ? Valor::De(tabla->second->id) : Valor{}});
    }
    if (!revisar.solo_fallas) {
        lineas.push_back(
            {{.nativo = kFinDeRevision,
              .mensaje = "CHECKDB found 0 allocation errors and " +
                         std::to_string(hallazgos->size()) + " consistency errors in database '" +
                         sesion_.NombreBase() + "'.",
              .sqlstate = "01000",
              .severidad = kSoloInforme},
             {}});
    }
    sesion_.Estado().filas = 0;
    if (!revisar.en_filas) {
        for (const Linea& linea : lineas)
            Informar(linea.error);
        return {};
    }
    ConjuntoInterno interno{Columnas(), {}};
    Conjunto conjunto;
    for (const tsql::ColumnaSalida& columna : interno.columnas)
        conjunto.columnas.append(AColumna(columna));
    for (const Linea& linea : lineas) {
        interno.filas.push_back(FilaDe(linea));
        Fila fila;
        for (std::size_t i = 0; i < interno.columnas.size(); ++i) {
            QUIMO_TRY(QVariant valor, AVariante(interno.filas.back()[i], interno.columnas[i].tipo));
            fila.append(std::move(valor));
        }
        conjunto.filas.append(std::move(fila));
    }
    if (captura_ != nullptr) {
        captura_->push_back(std::move(interno));
    } else {
        respuesta_.resultados.append({std::move(conjunto), -1});
    }
    return {};
}

}  // namespace quimo::data::embebido
