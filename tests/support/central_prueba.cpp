#include "support/central_prueba.h"

#include <gtest/gtest.h>

#include <QFile>

#include "foundation/conector.h"
#include "foundation/esquema.h"

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

CentralPrueba::CentralPrueba()
    : bitacora_(Opciones(carpeta_.filePath(u"QUIMO.log"_s)), dialogos_, reloj_),
      ado_(foundation::CrearConector(reloj_, foundation::SiFalta::Crear), dialogos_, bitacora_) {
    QString servidor = QString::fromUtf16(foundation::kServidorEmbebido);
    QString base = carpeta_.filePath(u"central.db"_s);
    QString usuario;
    QString clave;
    EXPECT_TRUE(ado_.Conectar(servidor, base, usuario, clave));
    QFile datos(QStringLiteral(QUIMO_TEST_DATA "/day-golden/central-before.sql"));
    EXPECT_TRUE(datos.open(QIODevice::ReadOnly));
    const auto creada = foundation::CrearBase(ado_.Conexion(), QString::fromUtf8(datos.readAll()));
    EXPECT_TRUE(creada) << creada.error().Descripcion().toStdString();
}

void CentralPrueba::Ejecutar(const QString& tsql) {
    const foundation::RespuestaSql respuesta = ado_.Conexion().Ejecutar(tsql);
    EXPECT_FALSE(respuesta.fallo) << tsql.toStdString() << "\n"
                                  << respuesta.fallo->Descripcion().toStdString();
}

foundation::RecordsetPtr CentralPrueba::Abrir(const QString& consulta) {
    foundation::RecordsetPtr filas;
    EXPECT_TRUE(ado_.Consultar(filas, consulta)) << consulta.toStdString();
    return filas;
}

}  // namespace quimo::pruebas
