#include "foundation/cls_bitacora.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include "support/dialogos_guion.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {
namespace {

class BitacoraTest : public ::testing::Test {
protected:
    OpcionesBitacora Opciones() const {
        OpcionesBitacora opciones;
        opciones.PArchivoLog = ruta_;
        opciones.PUsuario = u"maria"_s;
        opciones.PVersion = u"1.2.3"_s;
        opciones.PMsgBox = false;
        return opciones;
    }
    QString Contenido() const {
        QFile archivo(ruta_);
        EXPECT_TRUE(archivo.open(QIODevice::ReadOnly));
        return QString::fromUtf8(archivo.readAll());
    }
    void Hacer(const QString& nombre) const {
        QFile archivo(carpeta_.filePath(nombre));
        ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
        archivo.write("línea\n");
    }

    QTemporaryDir carpeta_;
    QString ruta_ = carpeta_.filePath(u"QUIMO.log"_s);
    pruebas::DialogosGuion dialogos_;
    pruebas::RelojFijo reloj_{QDateTime(QDate(2026, 3, 5), QTime(7, 8, 9), Qt::UTC)};
};

TEST_F(BitacoraTest, UnaEntradaEsUnaLineaYNoBorraLasAnteriores) {
    {
        ClsBitacora primera(Opciones(), dialogos_, reloj_);
        primera.PonerUsuarioApp(u"Ñoño"_s);
        primera.Escribir(
            {u"Valor insertado en "_s, u"Productos"_s, u"dos\nlíneas\r\ny\tmás"_s, 48});
    }
    const ClsBitacora segunda(Opciones(), dialogos_, reloj_);
    const QString inicio = u"05-03-26 07:08:09\tQUIMO\tV1.2.3\tmaria\t"_s;
    EXPECT_EQ(Contenido(),
              inicio + u"Desconocido\tIniciando\t...Log Iniciado...\t\n"_s + inicio +
                  u"Ñoño\tValor insertado en \tProductos\tdos líneas  y más\t48\t\n"_s + inicio +
                  u"Desconocido\tIniciando\t...Log Iniciado...\t\n"_s);
    EXPECT_TRUE(dialogos_.Mostrados().isEmpty());
}

TEST_F(BitacoraTest, CadaLineaLlevaSuSegundo) {
    ClsBitacora bitacora(Opciones(), dialogos_, reloj_);
    QStringList horas;
    for (const QTime hora : {QTime(7, 8, 9, 999), QTime(7, 8, 10), QTime(7, 8, 9)}) {
        reloj_.Poner(QDateTime(QDate(2026, 3, 5), hora, Qt::UTC));
        const QStringView textos[] = {u"uno", u"dos"};
        QByteArray linea;
        ClsBitacora::AgregarLinea(linea, bitacora.Principio(), textos);
        EXPECT_EQ(linea, bitacora.Linea({u"uno"_s, u"dos"_s}));
        horas << QString::fromUtf8(linea).section(u'\t', 0, 0);
    }
    EXPECT_EQ(horas, (QStringList{u"05-03-26 07:08:09"_s, u"05-03-26 07:08:10"_s,
                                  u"05-03-26 07:08:09"_s}));
}

TEST_F(BitacoraTest, UnArchivoQueNoSePuedeEscribirSeAvisaUnaVez) {
    OpcionesBitacora opciones = Opciones();
    opciones.PArchivoLog = carpeta_.path();  // a folder
    ClsBitacora bitacora(opciones, dialogos_, reloj_);
    bitacora.Escribir({u"otra"_s});
    ASSERT_EQ(dialogos_.Mostrados().size(), 1);
    EXPECT_TRUE(dialogos_.Mostrados().first().startsWith(
        u"[x] Error Bitácora|No se pudo escribir en la bitácora "_s));
}

TEST_F(BitacoraTest, MuestraCadaEntradaCuandoSePide) {
    OpcionesBitacora opciones = Opciones();
    opciones.PMsgBox = true;
    opciones.Parchivo = false;
    const ClsBitacora bitacora(opciones, dialogos_, reloj_);
    EXPECT_EQ(dialogos_.Mostrados().size(), 1);
    EXPECT_FALSE(QFileInfo::exists(ruta_));
}

TEST_F(BitacoraTest, LosTrasladosDicenPorQueNo) {
    ClsBitacora bitacora(Opciones(), dialogos_, reloj_);
    Hacer(u"a.log"_s);
    const auto en = [&](const QString& nombre) { return carpeta_.filePath(nombre); };
    EXPECT_TRUE(bitacora.CopiarLog(en(u"a.log"_s), en(u"b.log"_s)));
    EXPECT_TRUE(bitacora.RenombrarLog(en(u"b.log"_s), u"c.log"_s));
    EXPECT_TRUE(bitacora.LocalizarLog(en(u"c.log"_s)));
    EXPECT_FALSE(QFileInfo::exists(en(u"b.log"_s)));
    EXPECT_TRUE(dialogos_.Mostrados().isEmpty());

    EXPECT_FALSE(bitacora.CopiarLog(en(u"no.log"_s), en(u"d.log"_s)));
    EXPECT_FALSE(bitacora.RenombrarLog(en(u"no.log"_s), u"d.log"_s));
    EXPECT_FALSE(bitacora.LocalizarLog(en(u"no.log"_s)));
    EXPECT_FALSE(bitacora.CopiarLog(en(u"a.log"_s), en(u"no/d.log"_s)));
    EXPECT_FALSE(bitacora.CopiarLog(en(u"a.log"_s), carpeta_.path()));
    EXPECT_FALSE(bitacora.CopiarLog(en(u"a.log"_s), en(u"c.log"_s)));
    EXPECT_EQ(dialogos_.Mostrados(),
              (QStringList{u"[!] Error Bitácora|No existe el archivo log a copiar"_s,
                           u"[!] Error_Log|No existe el archivo log a renombrar"_s,
                           u"[!] Error_Log|No se encontro el archivo log"_s,
                           u"[!] Error_Log|Ruta del archivo log incorrecta"_s,
                           u"[!] Error_Log|Nombre del archivo log incorrecto"_s,
                           u"[!] Error_Log|El archivo destino ya existe"_s}));
}

TEST_F(BitacoraTest, ElArchivoFechadoHaceSuCarpetaODiceQueNoPudo) {
    ClsBitacora bitacora(Opciones(), dialogos_, reloj_);
    auto archivo = bitacora.AbrirFechado(carpeta_.path());
    ASSERT_NE(archivo, nullptr);
    EXPECT_EQ(archivo->write("x"), 1);
    EXPECT_TRUE(archivo->fileName().endsWith(u"/QuimoComTra/norsa/05032026.log"_s));
    EXPECT_TRUE(QDir(carpeta_.filePath(u"norsa/log"_s)).exists());

    Hacer(u"norsa2"_s);
    EXPECT_EQ(bitacora.AbrirFechado(carpeta_.filePath(u"norsa2"_s)), nullptr);
    EXPECT_EQ(dialogos_.Mostrados(),
              QStringList{u"[x] |Error en bitacora al crear el directorio \\norsa\\log !"_s});
}

}  // namespace
}  // namespace quimo::foundation
