#pragma once

#include <map>
#include <string>

namespace quimo::data::embebido {

/// Named locks of one connection, each a lock of the system on one byte of a file beside the
/// database. They go with the connection, and with the process however it ends.
class Candados {
public:
    enum class Tomado {
        Si,
        Ocupado,     ///< somebody else holds it
        SinCerrojos  ///< this file system knows no locks, or the file cannot be made
    };

    Candados() = default;
    Candados(const Candados&) = delete;
    Candados& operator=(const Candados&) = delete;
    ~Candados() { Cerrar(); }

    /// `archivo`: the database. One that is held already is held once more.
    Tomado Tomar(const std::string& archivo, const std::string& nombre);
    /// False when this connection does not hold it.
    bool Soltar(const std::string& nombre);
    bool Tiene(const std::string& nombre) const { return veces_.count(nombre) > 0; }
    void Cerrar();

private:
    int archivo_ = -1;
    std::map<std::string, int> veces_;
};

}  // namespace quimo::data::embebido
