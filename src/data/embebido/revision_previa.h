#pragma once

#include <vector>

#include "data/embebido/planes.h"

namespace quimo::data::embebido {

/// Names are looked up for a whole text before any of it is run, so that one with a wrong column
/// does nothing at all. Only for texts that define nothing that their own statements stand on.
class RevisionPrevia {
public:
    RevisionPrevia(Planes& planes, Marco& marco) : planes_(planes), marco_(marco) {}

    /// Whether a text is looked through: it has several statements and none defines anything.
    static bool Procede(const std::vector<tsql::SentenciaPtr>& sentencias);

    /// Translates every statement; its plan stays for the run. Fails with what a translation fails
    /// with, but for an object that is not there: that waits for its statement to run. Leaves the
    /// text's variables declared in the frame.
    Hecho Revisar(const std::vector<tsql::SentenciaPtr>& sentencias);

private:
    Hecho Una(const tsql::Sentencia& sentencia);
    Hecho Traducida(const void* clave, const Planes::Traduccion& traducir);

    Hecho Ver(const tsql::Seleccionar& seleccionar);
    Hecho Ver(const tsql::Insertar& insertar);
    Hecho Ver(const tsql::Actualizar& actualizar);
    Hecho Ver(const tsql::Borrar& borrar);
    Hecho Ver(const tsql::Declarar& declarar);
    Hecho Ver(const tsql::Si& si);
    Hecho Ver(const tsql::Mientras& mientras);
    Hecho Ver(const tsql::Bloque& bloque);

    Planes& planes_;
    Marco& marco_;
};

}  // namespace quimo::data::embebido
