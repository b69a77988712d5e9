#pragma once

#include <sqlite3.h>

namespace quimo::data {

/// What the engine asks of the disk and can be refused.
enum class Operacion { Lectura, Escritura, Sincronia, Apertura, Recorte, Cerrojo };

/// Which operation fails, and how.
struct Falla {
    Operacion operacion = Operacion::Escritura;
    int desde = 0;         ///< the n-th from now on, counted from 1; 0: none
    bool siempre = false;  ///< and all that follow it
    bool lleno = false;    ///< for want of room, not of a working disk
};

/// The system's disk for every database that is opened while it lives, with operations that fail
/// when told to. It does not wait for the real disk.
class DiscoQueFalla {
public:
    DiscoQueFalla();
    DiscoQueFalla(const DiscoQueFalla&) = delete;
    DiscoQueFalla& operator=(const DiscoQueFalla&) = delete;
    ~DiscoQueFalla();

    void Armar(const Falla& falla);
    void Desarmar() { Armar({}); }
    /// How often it has failed since it was told to.
    int Fallidas() const;
};

}  // namespace quimo::data
