#include "demo/acceso.h"

#include <QFileInfo>
#include <QRandomGenerator>

#include "demo/sql_demo.h"
#include "security/cifrado_rc4.h"
#include "security/clave.h"

namespace quimo::demo {

using namespace Qt::StringLiterals;
using base::Error;
using base::Result;
using data::Fila;

namespace {

constexpr int kLetras = 8;

// Without letters that are taken for each other.
QString ContrasenaNueva() {
    constexpr QStringView kAlfabeto = u"abcdefghjkmnpqrstuvwxyz23456789";
    QString contrasena;
    for (int i = 0; i < kLetras; ++i)
        contrasena += kAlfabeto[QRandomGenerator::system()->bounded(kAlfabeto.size())];
    return contrasena;
}

}  // namespace

Result<Acceso> PrepararAcceso(Central& central, const QString& archivo_clave) {
    if (!QFileInfo::exists(archivo_clave)) {
        QUIMO_TRY_VOID(security::CrearArchivoClave(archivo_clave));
    }
    QUIMO_TRY(const QString clave, security::LeerClaveDe(archivo_clave));
    security::CifradoRc4 cifrado;
    cifrado.PonerClave(clave);
    QUIMO_TRY(const QVector<Fila> gerentes,
              Consultar(central.Conexion(),
                        u"SELECT TOP 1 Usuario,Contraseña FROM Empleado WHERE Admin_Usuarios=1 "
                        "AND Estado_Empleado='A' ORDER BY ID_Empleado"_s));
    if (gerentes.isEmpty()) {
        return Error{Error::Codigo::NoEncontrado, "La demostración no tiene administrador."};
    }
    Acceso acceso{gerentes[0][0].toString(), {}};
    const auto guardada = cifrado.Descifrar(gerentes[0][1].toString());
    if (guardada && !guardada->isEmpty()) {
        acceso.contrasena = *guardada;
        return acceso;
    }
    acceso.contrasena = ContrasenaNueva();
    QUIMO_TRY(const QString cifrada, cifrado.Cifrar(acceso.contrasena));
    QUIMO_TRY_VOID(Ejecutar(central.Conexion(),
                            u"UPDATE Empleado SET Contraseña=? WHERE Usuario=?"_s,
                            {cifrada, acceso.usuario}));
    return acceso;
}

}  // namespace quimo::demo
