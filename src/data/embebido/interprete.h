#pragma once

#include <string>
#include <vector>

#include "data/embebido/rutinas.h"

namespace quimo::data::embebido {

/// Runs the statements of one text and gathers what they leave in its answer: control flow, and one
/// `Hacer` for each kind of statement. What a statement needs translated it leaves to Planes, what
/// it calls to Rutinas. One object runs one text, or one function that a statement calls.
///
/// A statement that fails has undone itself; some failures end the whole text.
class Interprete final : private CorreSentencias {
public:
    Interprete(Sesion& sesion, RespuestaSql& respuesta)
        : sesion_(sesion),
          salida_(sesion, respuesta),
          planes_(sesion),
          rutinas_(sesion, planes_, salida_, *this) {}

    /// Reads a text and runs it; each ? takes the next of the parameters.
    void Correr(const std::string& texto, const std::vector<ValorConTipo>& parametros);
    /// A function written in T-SQL, called from a statement that is running.
    Resultado<Valor> LlamarFuncion(const std::string& nombre, tsql::Argumentos argumentos) {
        return rutinas_.LlamarFuncion(nombre, argumentos);
    }

private:
    Flujo Lista(const std::vector<tsql::SentenciaPtr>& sentencias, Marco& marco) override;
    Flujo Una(const tsql::Sentencia& sentencia, Marco& marco);
    Resultado<Flujo> Despachar(const tsql::Sentencia& sentencia, Marco& marco);

    // Those that lead somewhere else or hold others: they tell where it goes on, and leave @@ERROR
    // as what ran inside left it.
    Resultado<Flujo> Hacer(const tsql::Bloque& bloque, Marco& marco);
    Resultado<Flujo> Hacer(const tsql::Si& si, Marco& marco);
    Resultado<Flujo> Hacer(const tsql::Mientras& mientras, Marco& marco);
    Resultado<Flujo> Hacer(const tsql::Salto& salto, Marco& marco);
    Resultado<Flujo> Hacer(const tsql::Regresar& regresar, Marco& marco);
    Resultado<Flujo> Hacer(const tsql::Ejecutar& ejecutar, Marco& marco);

    // All others: the next one follows, and @@ERROR is 0.
    Hecho Hacer(const tsql::Seleccionar& seleccionar, Marco& marco);
    Hecho Hacer(const tsql::Insertar& insertar, Marco& marco);
    Hecho Hacer(const tsql::Actualizar& actualizar, Marco& marco);
    Hecho Hacer(const tsql::Borrar& borrar, Marco& marco);
    Hecho Hacer(const tsql::Truncar& truncar, Marco& marco);
    Hecho Hacer(const tsql::CrearTabla& crear, Marco& marco);
    Hecho Hacer(const tsql::CambiarTabla& cambiar, Marco& marco);
    Hecho Hacer(const tsql::CrearIndice& crear, Marco& marco);
    Hecho Hacer(const tsql::CrearModulo& crear, Marco& marco);
    Hecho Hacer(const tsql::Quitar& quitar, Marco& marco);
    Hecho Hacer(const tsql::Declarar& declarar, Marco& marco);
    Hecho Hacer(const tsql::Asignar& asignar, Marco& marco);
    Hecho Hacer(const tsql::Opcion& opcion, Marco& marco);
    Hecho Hacer(const tsql::Imprimir& imprimir, Marco& marco);
    Hecho Hacer(const tsql::LanzarError& lanzar, Marco& marco);
    Hecho Hacer(const tsql::Transaccion& transaccion, Marco& marco);
    Hecho Hacer(const tsql::RevisarBase& revisar, Marco& marco);

    Hecho SelectInto(const tsql::Seleccionar& seleccionar, Marco& marco);
    Hecho Escribir(const void* clave, const std::string& verbo, Marco& marco,
                   const Planes::Traduccion& traducir);
    template <typename Trabajo>
    Hecho Definir(const Trabajo& trabajo);

    Sesion& sesion_;
    Salida salida_;
    Planes planes_;
    Rutinas rutinas_;
};

}  // namespace quimo::data::embebido
