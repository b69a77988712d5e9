#include "data/embebido/salida.h"

#include "data/embebido/errores_motor.h"

namespace quimo::data::embebido {

void Salida::Informar(const ErrorSql& error) {
    if (EsSoloAviso(error)) {
        respuesta_.mensajes.append(AProveedor(error));
        return;
    }
    sesion_.Estado().error = error.nativo;
    if (respuesta_.fallo) {
        respuesta_.fallo->errores.append(AProveedor(error));
    } else {
        respuesta_.fallo = AFallo(error);
    }
    if (!primero_) primero_ = error;
    ++errores_;
}

void Salida::Contar(std::int64_t filas) {
    sesion_.Estado().filas = filas;
    if (sesion_.Estado().sin_cuenta || captura_ != nullptr) return;
    ResultadoSql resultado;
    resultado.afectadas = filas;
    respuesta_.resultados.append(std::move(resultado));
}

Salida::Nuevo::Nuevo(Salida& salida, const std::vector<tsql::ColumnaSalida>& columnas)
    : salida_(salida), columnas_(columnas), interno_(salida.Capturando()) {
    if (interno_) {
        capturado_.columnas = columnas;
        return;
    }
    for (const tsql::ColumnaSalida& columna : columnas)
        conjunto_.columnas.append(AColumna(columna));
}

void Salida::Nuevo::Entregar() {
    if (interno_) {
        salida_.captura_->push_back(std::move(capturado_));
    } else {
        salida_.respuesta_.resultados.append({std::move(conjunto_), -1});
    }
}

}  // namespace quimo::data::embebido
