#pragma once

#include <QString>

#include "foundation/cifrado_contrasenas.h"
#include "foundation/cls_ado.h"
#include "foundation/sesion.h"

namespace quimo::foundation {

/// Opens the program's one connection with its own database login (QUIMO_BD_USUARIO and
/// QUIMO_BD_CLAVE stand in for the built-in one). On failure tells that nobody can be let in, and
/// the program has to end.
bool AbrirConexionDelPrograma(ClsAdo& ado, const QString& servidor, const QString& base_de_datos);

/// The login's decisions: who may enter, what the others read, and the count of wrong passwords.
class Login {
public:
    enum class Foco { Igual, Usuario, Contrasena };
    /// What the window does after an attempt.
    struct Desenlace {
        bool entro = false;
        bool vaciar_usuario = false;
        bool vaciar_contrasena = false;
        Foco foco = Foco::Igual;
    };

    /// The data-access object and the cipher must outlive it.
    Login(ClsAdo& ado, CifradoContrasenas& cifrado) : ado_(ado), cifrado_(cifrado) {}

    /// One attempt. Passwords are compared without regard to case; an employee without a stored
    /// password cannot enter. The fifth wrong password in a row suspends the account.
    Desenlace Aceptar(const QString& usuario, const QString& contrasena);

    /// Who entered; its rights are loaded by the main window.
    const EstadoSesion& Sesion() const { return sesion_; }

private:
    Desenlace UsuarioDesconocido();
    Desenlace Comprobar(const data::Recordset& empleado, const QString& usuario,
                        const QString& contrasena);
    Desenlace Entrar(const QString& usuario);
    Desenlace ContarFallo(const QString& usuario, int intentos);
    bool Coincide(const QString& guardada, const QString& contrasena) const;
    bool CambiarEmpleado(const QString& usuario, const QString& actualizacion);

    ClsAdo& ado_;
    CifradoContrasenas& cifrado_;
    EstadoSesion sesion_;
};

}  // namespace quimo::foundation
