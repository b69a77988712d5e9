#include "dayclose/terminales/biblioteca_smb.h"

#include <optional>

#include <QLibrary>

namespace quimo::dayclose {

namespace {

constexpr int kVersion = 0;  // libsmbclient.so.0

template <typename Funcion>
bool Resolver(QLibrary& biblioteca, const char* nombre, Funcion& funcion) {
    funcion = reinterpret_cast<Funcion>(biblioteca.resolve(nombre));
    return funcion != nullptr;
}

std::optional<BibliotecaSmb> Leer() {
    QLibrary biblioteca(QStringLiteral("smbclient"), kVersion);
    BibliotecaSmb smb;
    bool todas = biblioteca.load();
#define QUIMO_RESOLVER(nombre) todas = todas && Resolver(biblioteca, "smbc_" #nombre, smb.nombre);
    QUIMO_FUNCIONES_SMB(QUIMO_RESOLVER)
#undef QUIMO_RESOLVER
    return todas ? std::optional(smb) : std::nullopt;
}

}  // namespace

const BibliotecaSmb* BibliotecaSmb::Cargar() {
    static const std::optional<BibliotecaSmb> kSmb = Leer();
    return kSmb ? &*kSmb : nullptr;
}

}  // namespace quimo::dayclose
