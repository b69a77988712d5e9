#include "app/comandos/administrador.h"

#include "data/transaccion.h"
#include "demo/sql_demo.h"
#include "foundation/permisos.h"
#include "security/pagina_codigos.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

using base::Error;
using base::Result;
using data::Fila;
using data::SqlConnection;
using demo::Consultar;
using demo::Ejecutar;
using demo::Traducido;

namespace {

constexpr qsizetype kUsuarioMax = 20;
constexpr qsizetype kNombreMax = 50;

Error Negado(Error::Codigo codigo, const QString& mensaje) {
    return {codigo, mensaje.toStdString()};
}

Result<void> ComprobarTexto(const QString& que, const QString& texto, qsizetype maximo) {
    if (texto.isEmpty() || texto.size() > maximo || texto.contains(u'\'') ||
        texto != texto.trimmed() || !security::CabeEnPagina(texto)) {
        return Negado(
            Error::Codigo::Datos,
            u"El %1 debe tener de 1 a %2 caracteres, sin apóstrofos ni blancos a los lados."_s
                .arg(que)
                .arg(maximo));
    }
    return {};
}

Result<int> Siguiente(SqlConnection& conexion, const QString& tabla, const QString& clave) {
    QUIMO_TRY(const QVector<Fila> filas,
              Consultar(conexion, u"SELECT ISNULL(MAX(%1),0)+1 FROM %2"_s.arg(clave, tabla)));
    return filas[0][0].toInt();
}

// The key of the row with this name, which is added when it is missing.
Result<int> ClaveDe(SqlConnection& conexion, const QString& tabla, const QString& clave,
                    const QString& columna, const QString& nombre) {
    QUIMO_TRY(const QVector<Fila> filas,
              Consultar(conexion, u"SELECT %1 FROM %2 WHERE %3=?"_s.arg(clave, tabla, columna),
                        {nombre}));
    if (!filas.isEmpty()) return filas[0][0].toInt();
    QUIMO_TRY(const int nueva, Siguiente(conexion, tabla, clave));
    QUIMO_TRY_VOID(Ejecutar(conexion,
                            u"INSERT INTO %1 (%2,%3) VALUES (?,?)"_s.arg(tabla, clave, columna),
                            {nueva, nombre}));
    return nueva;
}

Result<void> ComprobarQueFalta(SqlConnection& conexion, const NuevoAdministrador& nuevo) {
    QUIMO_TRY(
        const QVector<Fila> otros,
        Consultar(conexion,
                  u"SELECT Usuario FROM Empleado WHERE Admin_Usuarios=1 AND Contraseña<>''"_s));
    if (!otros.isEmpty()) {
        return Negado(Error::Codigo::Restriccion,
                      u"La base de datos ya tiene un administrador: "_s + otros[0][0].toString() +
                          u". Él da de alta a los demás."_s);
    }
    QUIMO_TRY(const QVector<Fila> iguales,
              Consultar(conexion,
                        u"SELECT Usuario,Contraseña FROM Empleado WHERE Usuario=? OR "
                        "Contraseña=?"_s,
                        {nuevo.usuario, nuevo.guardada}));
    if (iguales.isEmpty()) return {};
    const bool mismo_usuario =
        iguales[0][0].toString().compare(nuevo.usuario, Qt::CaseInsensitive) == 0;
    return Negado(Error::Codigo::Restriccion,
                  mismo_usuario ? u"Ya existe el usuario "_s + nuevo.usuario + u'.'
                                : u"Elija otra contraseña."_s);
}

Result<void> DarPermisos(SqlConnection& conexion, int grupo) {
    for (const QString& nombre : foundation::NombresDePermisos()) {
        QUIMO_TRY(const int permiso,
                  ClaveDe(conexion, u"Permisos"_s, u"ID_Permiso"_s, u"Nombre_Permiso"_s, nombre));
        QUIMO_TRY(const QVector<Fila> ya,
                  Consultar(conexion,
                            u"SELECT ID_Permiso FROM PermisosXGrupo_Trabajo WHERE "
                            "ID_Grupo_Trabajo=? AND ID_Permiso=?"_s,
                            {grupo, permiso}));
        if (!ya.isEmpty()) continue;
        QUIMO_TRY_VOID(Ejecutar(conexion,
                                u"INSERT INTO PermisosXGrupo_Trabajo (ID_Grupo_Trabajo,ID_Permiso) "
                                "VALUES (?,?)"_s,
                                {grupo, permiso}));
    }
    return {};
}

}  // namespace

Result<void> CrearAdministrador(SqlConnection& conexion, const NuevoAdministrador& nuevo) {
    QUIMO_TRY_VOID(ComprobarTexto(u"usuario"_s, nuevo.usuario, kUsuarioMax));
    QUIMO_TRY_VOID(ComprobarTexto(u"nombre"_s, nuevo.nombre, kNombreMax));
    QUIMO_TRY(auto transaccion, Traducido(data::Transaccion::Iniciar(conexion)));
    QUIMO_TRY_VOID(ComprobarQueFalta(conexion, nuevo));
    QUIMO_TRY(const int id, Siguiente(conexion, u"Empleado"_s, u"ID_Empleado"_s));
    QUIMO_TRY_VOID(Ejecutar(conexion,
                            u"INSERT INTO Empleado (ID_Empleado,Usuario,Nombre_Empleado,Contraseña,"
                            "Estado_Empleado,Intentos,Admin_Usuarios) VALUES (?,?,?,?,'A',0,1)"_s,
                            {id, nuevo.usuario, nuevo.nombre, nuevo.guardada}));
    QUIMO_TRY(const int grupo, ClaveDe(conexion, u"Grupo_Trabajo"_s, u"ID_Grupo_Trabajo"_s,
                                       u"Nombre_Grupo_Trabajo"_s, u"Administradores"_s));
    QUIMO_TRY_VOID(Ejecutar(
        conexion, u"INSERT INTO EmpleadosXGrupo (ID_Empleado,ID_Grupo_Trabajo) VALUES (?,?)"_s,
        {id, grupo}));
    QUIMO_TRY_VOID(DarPermisos(conexion, grupo));
    return Traducido(transaccion.Confirmar());
}

}  // namespace quimo::app
