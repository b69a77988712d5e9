#include "data/conexion_vigilada.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quimo::data {

namespace {

using Fin = ConexionVigilada::Fin;

/// A text that ended the transaction without a failure and does not speak of rolling back has
/// confirmed it. Of any other nobody can say so.
Fin FinDeTexto(const RespuestaSql& respuesta, const QString& tsql) {
    const bool habla = tsql.contains("ROLLBACK"_L1, Qt::CaseInsensitive);
    return respuesta.fallo || habla ? Fin::Deshecha : Fin::Confirmada;
}

}  // namespace

RespuestaSql ConexionVigilada::Ejecutar(const QString& tsql, const QVector<QVariant>& parametros) {
    return Vigilar([&] { return dentro_->Ejecutar(tsql, parametros); },
                   [&](const RespuestaSql& hecho) { return FinDeTexto(hecho, tsql); });
}

RespuestaSql ConexionVigilada::EjecutarVarias(const QStringList& sentencias) {
    // They change rows: a transaction that is over after them was ended by a failure.
    return Vigilar([&] { return dentro_->EjecutarVarias(sentencias); },
                   [](const RespuestaSql&) { return Fin::Deshecha; });
}

base::Result<void, FalloSql> ConexionVigilada::Confirmar() {
    return Vigilar([&] { return dentro_->Confirmar(); },
                   [](const auto& hecho) { return hecho ? Fin::Confirmada : Fin::Deshecha; });
}

base::Result<void, FalloSql> ConexionVigilada::Revertir() {
    return Vigilar([&] { return dentro_->Revertir(); }, [](const auto&) { return Fin::Deshecha; });
}

void ConexionVigilada::Cerrar() {
    const bool estaba = dentro_->EnTransaccion();
    dentro_->Cerrar();
    if (estaba) al_terminar_(Fin::Deshecha);
}

}  // namespace quimo::data
