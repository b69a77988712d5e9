#pragma once

#include <string>
#include <vector>

#include "data/embebido/planes.h"
#include "data/embebido/procedimientos_candado.h"

namespace quimo::data::embebido {

/// How a statement ended: the next one follows, or a loop, a procedure or the whole text is left.
enum class Flujo { Sigue, Rompe, Continua, Regresa, Aborta };

/// Who runs statements: all that routines know of it.
class CorreSentencias {
public:
    CorreSentencias() = default;
    CorreSentencias(const CorreSentencias&) = delete;
    CorreSentencias& operator=(const CorreSentencias&) = delete;
    virtual ~CorreSentencias() = default;

    /// Runs them one after the other until one of them leads elsewhere. What goes wrong is told to
    /// the output that the runner was made with.
    virtual Flujo Lista(const std::vector<tsql::SentenciaPtr>& sentencias, Marco& marco) = 0;
};

/// What is run by its name or as a text inside another: EXEC of procedures and texts, functions
/// written in T-SQL, INSERT ... EXEC. Each gets a frame of its own and may be inside others down to
/// a limit. The statements in them are run by `cuerpo`.
class Rutinas {
public:
    Rutinas(Sesion& sesion, Planes& planes, Salida& salida, CorreSentencias& cuerpo)
        : sesion_(sesion),
          planes_(planes),
          salida_(salida),
          cuerpo_(cuerpo),
          candados_(sesion, planes) {}

    /// EXEC of a procedure or, with a text in parentheses, of that text. Sigue or Aborta.
    Resultado<Flujo> Ejecutar(const tsql::Ejecutar& ejecutar, Marco& marco);
    /// INSERT ... EXEC: writes the rows of every result set that is left; tells how many.
    Resultado<std::int64_t> InsertarLoQueDeje(const tsql::Insertar& insertar, Marco& marco);
    /// A function written in T-SQL, called from a statement that is running. What goes wrong inside
    /// becomes the failure of that statement.
    Resultado<Valor> LlamarFuncion(const std::string& nombre, tsql::Argumentos argumentos);

private:
    Resultado<Flujo> Procedimiento(const tsql::Ejecutar& ejecutar, Marco& marco);
    Resultado<Flujo> Texto(const tsql::Ejecutar& ejecutar, Marco& marco);
    Hecho Argumentos(const tsql::Ejecutar& ejecutar, const tsql::CrearModulo& modulo, Marco& marco,
                     Marco& nuevo);
    Hecho Defectos(const tsql::CrearModulo& modulo, Marco& nuevo);
    Resultado<Valor> ConvertirArgumento(const tsql::Argumento& argumento,
                                        const tsql::ParametroRutina& parametro, Marco& marco);
    Hecho Devolver(const tsql::Ejecutar& ejecutar, const tsql::CrearModulo& modulo, Marco& marco,
                   const Marco& nuevo);
    Resultado<std::int64_t> InsertarFilas(const tsql::Insertar& insertar,
                                          const ConjuntoInterno& conjunto, Marco& marco);

    Sesion& sesion_;
    Planes& planes_;
    Salida& salida_;
    CorreSentencias& cuerpo_;
    ProcedimientosDeCandado candados_;
};

}  // namespace quimo::data::embebido
