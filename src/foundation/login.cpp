#include "foundation/login.h"

#include <limits>

#include "foundation/conector.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

namespace {

constexpr int kIntentosAntesDeSuspender = 3;

QString Titulo() { return u"Login"_s; }
QString TextoSuspendido() { return u"Usuario suspendido, contacte al administrador"_s; }

QString DondeUsuario(const QString& usuario) { return u"Usuario='"_s + usuario + u'\''; }

// Fields of the query's first row; the columns are named by the query itself.
QVariant Campo(const data::Recordset& filas, const QString& nombre) {
    const auto valor = filas.Campo(nombre);
    return valor ? *valor : QVariant();
}

}  // namespace

bool AbrirConexionDelPrograma(ClsAdo& ado, const QString& servidor, const QString& base_de_datos) {
    auto [nombre_servidor, nombre_base, usuario, clave] =
        AccesoDelPrograma(servidor, base_de_datos);
    // A missing word cannot name anything: no engine is asked what it makes of it.
    const bool completa = !servidor.isEmpty() && !base_de_datos.isEmpty();
    if (completa && ado.Conectar(nombre_servidor, nombre_base, usuario, clave)) return true;
    ado.Dialogo().Avisar(
        u"No es posible validar la seguridad, favor de contactar al administrador"_s,
        Icono::Critico);
    return false;
}

Login::Desenlace Login::Aceptar(const QString& usuario, const QString& contrasena) {
    if (const auto clave = cifrado_.Preparar(); !clave) {
        ado_.Dialogo().Avisar(QString::fromStdString(clave.error().mensaje), Icono::Critico,
                              Titulo());
        return {};
    }
    // Such a name would end the text it stands in, and what follows would be read as a statement.
    if (usuario.contains(u'\'')) return UsuarioDesconocido();
    data::RecordsetPtr empleado;
    if (!ado_.Consultar(
            empleado, u"SELECT Usuario,Intentos,Estado_Empleado,Contraseña FROM Empleado WHERE "_s +
                          DondeUsuario(usuario))) {
        if (ado_.Pendiente()) ado_.CClsBitacora.Escribir({ado_.Pendiente()->Descripcion()});
        return UsuarioDesconocido();
    }
    if (empleado->Vacio()) {
        ado_.Dialogo().Avisar(u"El usuario es incorrecto, intente de nuevo"_s, Icono::Informacion);
        return {};
    }
    return Comprobar(*empleado, usuario, contrasena);
}

Login::Desenlace Login::UsuarioDesconocido() {
    ado_.Dialogo().Avisar(u"¡Usuario inexistente ó contraseña invalida!"_s, Icono::Critico,
                          Titulo());
    return {.vaciar_usuario = true, .vaciar_contrasena = true, .foco = Foco::Usuario};
}

Login::Desenlace Login::Comprobar(const data::Recordset& empleado, const QString& usuario,
                                  const QString& contrasena) {
    const QString estado = Campo(empleado, u"Estado_Empleado"_s).toString().trimmed();
    if (estado == u"S"_s) {
        ado_.Dialogo().Avisar(TextoSuspendido(), Icono::Informacion);
        return {.foco = Foco::Usuario};
    }
    if (estado == u"N"_s) {
        ado_.Dialogo().Avisar(u"El usuario ya no labora en la empresa, contacte al administrador"_s,
                              Icono::Informacion);
        return {.vaciar_usuario = true, .foco = Foco::Usuario};
    }
    if (Coincide(Campo(empleado, u"Contraseña"_s).toString(), contrasena)) return Entrar(usuario);
    return ContarFallo(usuario, Campo(empleado, u"Intentos"_s).toInt());
}

bool Login::Coincide(const QString& guardada, const QString& contrasena) const {
    const auto clara = cifrado_.Descifrar(guardada);
    return clara && !clara->isEmpty() && clara->toUpper() == contrasena.toUpper();
}

Login::Desenlace Login::Entrar(const QString& usuario) {
    CambiarEmpleado(usuario, u"Intentos=0"_s);
    data::RecordsetPtr empleado;
    if (!ado_.Consultar(empleado, u"SELECT ID_Empleado,Admin_Usuarios FROM Empleado WHERE "_s +
                                      DondeUsuario(usuario))) {
        ado_.ManejaError();
        return {};
    }
    const int id = Campo(*empleado, u"ID_Empleado"_s).toInt();
    if (id < std::numeric_limits<qint16>::min() || id > std::numeric_limits<qint16>::max()) {
        ado_.Dialogo().Avisar(u"La clave de empleado %1 no es válida: pasa de %2."_s.arg(id).arg(
                                  std::numeric_limits<qint16>::max()),
                              Icono::Critico, Titulo());
        return {};
    }
    sesion_ = {.usuario = usuario,
               .id_empleado = static_cast<qint16>(id),
               .admin_usuarios = Campo(*empleado, u"Admin_Usuarios"_s).toBool(),
               .permisos = {}};
    ado_.CClsBitacora.PonerUsuarioApp(usuario);
    return {.entro = true};
}

Login::Desenlace Login::ContarFallo(const QString& usuario, int intentos) {
    ado_.Dialogo().Avisar(u"¡Contraseña invalida!"_s, Icono::Critico, Titulo());
    const QString cuenta = u"Intentos="_s + QString::number(intentos + 1);
    if (intentos > kIntentosAntesDeSuspender) {
        if (CambiarEmpleado(usuario, cuenta + u",Estado_Empleado='S'"_s)) {
            ado_.Dialogo().Avisar(TextoSuspendido(), Icono::Critico, Titulo());
        }
    } else {
        CambiarEmpleado(usuario, cuenta);
    }
    return {.vaciar_contrasena = true, .foco = Foco::Contrasena};
}

bool Login::CambiarEmpleado(const QString& usuario, const QString& actualizacion) {
    if (ado_.Modificar({}, u"Empleado"_s, actualizacion, DondeUsuario(usuario))) return true;
    ado_.ManejaError();
    return false;
}

}  // namespace quimo::foundation
