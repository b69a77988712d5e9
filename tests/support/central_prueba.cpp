#include "support/central_prueba.h"

#include <gtest/gtest.h>

#include <QFile>

#include "data/esquema.h"
#include "foundation/conector.h"
#include "foundation/permisos.h"

using namespace Qt::StringLiterals;

namespace quimo::pruebas {

namespace {

foundation::OpcionesBitacora Opciones(const QString& archivo) {
    foundation::OpcionesBitacora opciones;
    opciones.PArchivoLog = archivo;
    opciones.PMsgBox = false;
    return opciones;
}

}  // namespace

bool CopiarRestaurante(const QString& destino) {
    static const QTemporaryDir carpeta;
    const QString original = carpeta.filePath(u"central.db"_s);
    if (!QFile::exists(original)) {
        QFile datos(QStringLiteral(QUIMO_TEST_DATA "/day-golden/central-before.sql"));
        if (!datos.open(QIODevice::ReadOnly)) return false;
        const RelojFijo reloj;
        auto conexion = foundation::CrearConector(
            reloj, foundation::SiFalta::Crear)({u"embebido"_s, original, {}, {}});
        if (!conexion) return false;
        if (!data::CrearBase(**conexion, QString::fromUtf8(datos.readAll()))) return false;
        (*conexion)->Cerrar();
    }
    return QFile::copy(original, destino);
}

bool ConcederTodo(foundation::ClsAdo& ado, int id_empleado) {
    for (const QString& permiso : foundation::NombresDePermisos()) {
        // One that is there already is refused.
        static_cast<void>(ado.Conexion().Ejecutar(
            u"INSERT INTO Permisos SELECT MAX(ID_Permiso)+1,'%1',1 FROM Permisos"_s.arg(permiso)));
    }
    const data::RespuestaSql dado = ado.Conexion().Ejecutar(
        u"INSERT INTO PermisosXGrupo_Trabajo SELECT ID_Grupo_Trabajo,ID_Permiso FROM "
        u"EmpleadosXGrupo,Permisos WHERE ID_Empleado=%1 AND NOT EXISTS (SELECT * FROM "
        u"PermisosXGrupo_Trabajo P WHERE P.ID_Grupo_Trabajo=EmpleadosXGrupo.ID_Grupo_Trabajo AND "
        u"P.ID_Permiso=Permisos.ID_Permiso)"_s.arg(id_empleado));
    return !dado.fallo;
}

CentralPrueba::CentralPrueba()
    : bitacora_(Opciones(carpeta_.filePath(u"QUIMO.log"_s)), dialogos_, reloj_),
      ado_(foundation::CrearConector(reloj_), dialogos_, bitacora_) {
    QString servidor = QString::fromUtf16(foundation::kServidorEmbebido);
    QString base = carpeta_.filePath(u"central.db"_s);
    QString usuario;
    QString clave;
    EXPECT_TRUE(CopiarRestaurante(base));
    EXPECT_TRUE(ado_.Conectar(servidor, base, usuario, clave));
}

void CentralPrueba::Ejecutar(const QString& tsql) {
    const data::RespuestaSql respuesta = ado_.Conexion().Ejecutar(tsql);
    EXPECT_FALSE(respuesta.fallo) << tsql.toStdString() << "\n"
                                  << respuesta.fallo->Descripcion().toStdString();
}

data::RecordsetPtr CentralPrueba::Abrir(const QString& consulta) {
    data::RecordsetPtr filas;
    EXPECT_TRUE(ado_.Consultar(filas, consulta)) << consulta.toStdString();
    return filas;
}

}  // namespace quimo::pruebas
