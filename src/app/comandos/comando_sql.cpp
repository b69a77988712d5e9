#include <iostream>
#include <string>

#include "app/comandos/consola.h"
#include "app/comandos/formato_sql.h"
#include "data/esquema.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

Estado PorLineas(data::SqlConnection& conexion) {
    std::string linea;
    while (std::getline(std::cin, linea)) {
        const QString sentencia = QString::fromStdString(linea).trimmed();
        if (sentencia.isEmpty()) continue;
        Escribir(JsonDeRespuesta(conexion.Ejecutar(sentencia)));
    }
    return kHecho;
}

Estado Mostrar(const data::RespuestaSql& respuesta, FormatoSql formato) {
    for (const data::ResultadoSql& resultado : respuesta.resultados) {
        if (resultado.conjunto) {
            Escribir(Formatear(*resultado.conjunto, formato));
        } else if (resultado.afectadas >= 0 && formato == FormatoSql::Tabla) {
            Escribir(u"(%1 filas afectadas)"_s.arg(resultado.afectadas));
        }
    }
    for (const data::ErrorProveedor& mensaje : respuesta.mensajes) {
        EscribirError(mensaje.descripcion);
    }
    if (!respuesta.fallo) return kHecho;
    for (const data::ErrorProveedor& error : respuesta.fallo->errores) {
        EscribirError(u"Error %1: %2"_s.arg(error.nativo).arg(error.descripcion));
    }
    return kFallo;
}

}  // namespace

Estado ComandoSql(const Argumentos& argumentos, const Entorno& entorno) {
    const auto formato = FormatoDeTexto(argumentos.Opcion(u"formato"_s, u"tabla"_s));
    if (!formato) {
        EscribirError(u"El formato debe ser tabla, csv o json."_s);
        return kMalUso;
    }
    const int fuentes = static_cast<int>(argumentos.Hay(u"consulta"_s)) +
                        static_cast<int>(argumentos.Hay(u"archivo"_s)) +
                        static_cast<int>(argumentos.Hay(u"lineas"_s));
    if (fuentes != 1) {
        EscribirError(u"Indique una de las opciones --consulta, --archivo o --lineas."_s);
        return kMalUso;
    }
    QString texto = argumentos.Opcion(u"consulta"_s);
    if (argumentos.Hay(u"archivo"_s)) {
        const auto leido = LeerTexto(argumentos.Opcion(u"archivo"_s));
        if (!leido) return kFallo;
        texto = *leido;
    }
    const auto sesion = AbrirSesion(argumentos, entorno, foundation::SiFalta::Fallar, QString());
    if (sesion == nullptr) return kFallo;
    data::SqlConnection& conexion = sesion->ado->Conexion();
    if (argumentos.Hay(u"lineas"_s)) return PorLineas(conexion);
    for (const QString& lote : data::PartirLotes(texto)) {
        const Estado estado = Mostrar(conexion.Ejecutar(lote), *formato);
        if (estado != kHecho) return estado;
    }
    return kHecho;
}

}  // namespace quimo::app
